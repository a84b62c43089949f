"""Strips of addressable LEDs."""

from machine.pixels import show


class NeoPixel:
    ORDER = (1, 0, 2, 3)  # Where red, green, blue and white are in the data.

    def __init__(self, pin, n, bpp=3, timing=1):
        if bpp not in (3, 4):
            raise ValueError("bpp must be 3 or 4")
        self.pin = pin
        self.n = n
        self.bpp = bpp
        self.buf = bytearray(n * bpp)
        self.timing = timing
        pin.init(pin.OUT)

    def __len__(self):
        return self.n

    def _start(self, index):
        if index < 0:
            index += self.n
        if not 0 <= index < self.n:
            raise IndexError("bytearray index out of range")
        return index * self.bpp

    def __setitem__(self, index, colour):
        start = self._start(index)
        for i in range(self.bpp):
            self.buf[start + self.ORDER[i]] = colour[i]

    def __getitem__(self, index):
        start = self._start(index)
        return tuple([self.buf[start + self.ORDER[i]] for i in range(self.bpp)])

    def fill(self, colour):
        for i in range(self.n):
            self[i] = colour

    def write(self):
        show(self.pin, self.buf, self.bpp)
