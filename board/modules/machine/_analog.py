"""The classes ADC and PWM."""

import struct
from _board import ANALOG, DUTY, FREQUENCY, MODE, block
from machine._pin import Pin

_PWM_MODE, _ADC_MODE = 4, 5
_MAX = 65535
_FULL_SCALE_MICROVOLTS = 3_300_000
_TEMPERATURE_SENSOR_MICROVOLTS = 706_000  # At 27 degrees Celsius.
# Of a Pico, and of an ESP32.
_ADC_PINS = (26, 27, 28, 29, 32, 33, 34, 35, 36, 37, 38, 39)


class ADC:
    CORE_TEMP = 4
    ATTN_0DB, ATTN_2_5DB, ATTN_6DB, ATTN_11DB = 0, 1, 2, 3
    WIDTH_9BIT, WIDTH_10BIT, WIDTH_11BIT, WIDTH_12BIT = 9, 10, 11, 12

    def __init__(self, id, *, sample_ns=0, atten=ATTN_11DB):
        self._record = None
        if id == self.CORE_TEMP:
            return
        if isinstance(id, int) and 0 <= id < self.CORE_TEMP:
            id += _ADC_PINS[0]  # A channel.
        pin = Pin(id)
        if pin._index not in _ADC_PINS:
            raise ValueError("Pin doesn't have ADC capabilities")
        self._record = pin._record
        block[self._record + MODE] = _ADC_MODE

    def init(self, *, sample_ns=0, atten=ATTN_11DB):
        pass

    # The range does not depend on it here.
    def atten(self, attenuation=None):
        pass

    def width(self, bits=None):
        pass

    def read_u16(self):
        if self._record is None:
            return _TEMPERATURE_SENSOR_MICROVOLTS * _MAX // _FULL_SCALE_MICROVOLTS
        return struct.unpack_from("H", block, self._record + ANALOG)[0]

    def read_uv(self):
        return self.read_u16() * _FULL_SCALE_MICROVOLTS // _MAX

    def read(self):
        return self.read_u16() >> 4


class PWM:
    def __init__(self, dest, freq=None, duty=None, *, duty_u16=None, duty_ns=None, invert=False):
        self._pin = Pin(dest)
        self._record = self._pin._record
        if block[self._record + MODE] != _PWM_MODE:
            struct.pack_into("H", block, self._record + DUTY, 0)
            struct.pack_into("I", block, self._record + FREQUENCY, 0)
        self._duty_ns = None
        self._invert = False
        self.init(freq=freq, duty=duty, duty_u16=duty_u16, duty_ns=duty_ns, invert=invert)

    def init(self, freq=None, duty=None, *, duty_u16=None, duty_ns=None, invert=None):
        if invert is not None:
            self._invert = bool(invert)
        if freq is not None:
            self.freq(freq)
        for function, value in (
            (self.duty, duty),
            (self.duty_u16, duty_u16),
            (self.duty_ns, duty_ns),
        ):
            if value is not None:
                function(value)
        block[self._record + MODE] = _PWM_MODE

    def deinit(self):
        self._pin.init(Pin.IN)

    def freq(self, hertz=None):
        if hertz is None:
            return struct.unpack_from("I", block, self._record + FREQUENCY)[0]
        if hertz < 1:
            raise ValueError("freq too small")
        if hertz > 40_000_000:
            raise ValueError("freq too large")
        struct.pack_into("I", block, self._record + FREQUENCY, int(hertz))
        if self._duty_ns is not None:
            self.duty_ns(self._duty_ns)

    def duty_u16(self, duty=None):
        if duty is None:
            return self._from_line(struct.unpack_from("H", block, self._record + DUTY)[0])
        if duty < 0:
            raise ValueError("duty must be from 0 to 65535")
        self._duty_ns = None
        self._set(duty)

    # What the pin outputs is inverted.
    def _from_line(self, duty):
        return _MAX - duty if self._invert else duty

    def _set(self, duty):
        duty = self._from_line(min(duty, _MAX))
        struct.pack_into("H", block, self._record + DUTY, duty)

    def duty_ns(self, nanoseconds=None):
        frequency = self.freq()
        if nanoseconds is None:
            duty = self.duty_u16()
            return duty * 1_000_000_000 // (_MAX * frequency) if frequency else 0
        if nanoseconds < 0:
            raise ValueError("duty must not be negative")
        self._duty_ns = nanoseconds
        self._set(nanoseconds * frequency * _MAX // 1_000_000_000)

    def duty(self, duty=None):
        """In 1024 steps, as on an ESP8266 and an ESP32."""
        if duty is None:
            return self.duty_u16() >> 6
        if not 0 <= duty <= 1023:
            raise ValueError("duty must be from 0 to 1023")
        self.duty_u16(_MAX if duty == 1023 else duty << 6)

    def __repr__(self):
        return "PWM(%r, freq=%d, duty_u16=%d)" % (self._pin, self.freq(), self.duty_u16())
