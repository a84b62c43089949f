"""The classes SPI and SoftSPI. No device is connected, so only zeros are read."""

from machine.pin import Pin


class SoftSPI:
    MSB, LSB = 0, 1

    def __init__(self, *, sck, mosi, miso=None, **options):
        self._connect(sck, mosi, miso)
        self.init(**options)

    def _connect(self, sck, mosi, miso):
        for pin, mode in ((sck, Pin.OUT), (mosi, Pin.OUT), (miso, Pin.IN)):
            if pin is not None:
                Pin(pin).init(mode)

    def init(
        self,
        baudrate=1_000_000,
        *,
        polarity=0,
        phase=0,
        bits=8,
        firstbit=MSB,
        sck=None,
        mosi=None,
        miso=None
    ):
        if baudrate <= 0 or bits not in (8, 16, 32):
            raise ValueError("invalid baudrate or bits")
        self._connect(sck, mosi, miso)

    def deinit(self):
        pass

    def read(self, count, write=0):
        return bytes(count)

    def readinto(self, buffer, write=0):
        for i in range(len(buffer)):
            buffer[i] = 0

    def write(self, buffer):
        len(buffer)  # Raises a TypeError for what is not a buffer.

    def write_readinto(self, written, buffer):
        if len(written) != len(buffer):
            raise ValueError("buffers must be the same length")
        self.readinto(buffer)


class SPI(SoftSPI):
    _DEFAULT_PINS = ((18, 19, 16), (10, 11, 8))  # SCK, MOSI and MISO

    def __init__(self, id=0, baudrate=1_000_000, *, sck=None, mosi=None, miso=None, **options):
        if id not in (0, 1, 2):
            raise ValueError("SPI(%s) doesn't exist" % id)
        default_sck, default_mosi, default_miso = self._DEFAULT_PINS[id % 2]
        super().__init__(
            sck=default_sck if sck is None else sck,
            mosi=default_mosi if mosi is None else mosi,
            miso=default_miso if miso is None else miso,
            baudrate=baudrate,
            **options
        )
