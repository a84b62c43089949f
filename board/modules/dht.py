"""Temperature and humidity sensors. None is connected, so none answers."""

import errno


class DHTBase:
    def __init__(self, pin):
        self.pin = pin
        self.buf = bytearray(5)

    def measure(self):
        self.pin.init(self.pin.OPEN_DRAIN, value=1)
        raise OSError(errno.ETIMEDOUT)


class DHT11(DHTBase):
    def humidity(self):
        return self.buf[0]

    def temperature(self):
        return self.buf[2]


class DHT22(DHTBase):
    def humidity(self):
        return (self.buf[0] << 8 | self.buf[1]) * 0.1

    def temperature(self):
        degrees = ((self.buf[2] & 0x7F) << 8 | self.buf[3]) * 0.1
        return -degrees if self.buf[2] & 0x80 else degrees
