"""The classes I2C and SoftI2C. No device is connected, so no address is acknowledged."""

import errno
from machine.pin import Pin


class SoftI2C:
    def __init__(self, scl, sda, *, freq=400_000, timeout=50_000):
        self._scl, self._sda = Pin(scl), Pin(sda)
        self.init(freq=freq)

    def init(self, *, scl=None, sda=None, freq=400_000, timeout=50_000):
        if freq <= 0:
            raise ValueError("freq must be positive")
        self._freq = freq
        self._scl = self._scl if scl is None else Pin(scl)
        self._sda = self._sda if sda is None else Pin(sda)
        for pin in (self._scl, self._sda):
            pin.init(Pin.OPEN_DRAIN, Pin.PULL_UP, value=1)

    def deinit(self):
        for pin in (self._scl, self._sda):
            pin.init(Pin.IN, None)

    def scan(self):
        return []

    def _no_device(self, *arguments, **options):
        raise OSError(errno.ENODEV)

    readfrom = readfrom_into = writeto = writevto = _no_device
    readfrom_mem = readfrom_mem_into = writeto_mem = _no_device

    # The primitive operations, which exist on a bus without devices, too.
    def start(self):
        pass

    def stop(self):
        pass

    def readinto(self, buffer, nack=True):
        for i in range(len(buffer)):
            buffer[i] = 0xFF

    def write(self, buffer):
        return 0  # The number of acknowledged bytes.

    def __repr__(self):
        return "SoftI2C(scl=%d, sda=%d, freq=%d)" % (
            self._scl._index,
            self._sda._index,
            self._freq,
        )


class I2C(SoftI2C):
    _DEFAULT_PINS = ((5, 4), (7, 6))  # SCL and SDA

    def __init__(self, id=0, *, scl=None, sda=None, freq=400_000, timeout=50_000):
        if id not in (0, 1):
            raise ValueError("I2C(%s) doesn't exist" % id)
        self._id = id
        default_scl, default_sda = self._DEFAULT_PINS[id]
        super().__init__(
            default_scl if scl is None else scl, default_sda if sda is None else sda, freq=freq
        )

    def _no_device(self, *arguments, **options):
        raise OSError(errno.EIO)

    readfrom = readfrom_into = writeto = writevto = _no_device
    readfrom_mem = readfrom_mem_into = writeto_mem = _no_device

    def _unsupported(self, *arguments):
        raise OSError("I2C operation not supported")

    start = stop = readinto = write = _unsupported

    def __repr__(self):
        return "I2C(%d, scl=%d, sda=%d, freq=%d)" % (
            self._id,
            self._scl._index,
            self._sda._index,
            self._freq,
        )
