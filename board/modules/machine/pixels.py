"""Data for addressable LEDs."""

import struct
from _board import PIXELS, PIXEL_SIZE, STRIPS, STRIP_SIZE, block
from machine.pin import Pin


def show(pin, data, size):
    """Shows what the LEDs of a pin receive; as many as the board can show."""
    count = min(len(data), STRIP_SIZE) // size
    strip = STRIPS + pin._index * STRIP_SIZE
    block[strip : strip + count * size] = memoryview(data)[: count * size]
    block[pin._record + PIXEL_SIZE] = size
    struct.pack_into("H", block, pin._record + PIXELS, count)


def bitstream(pin, encoding, timing, data):
    if encoding != 0:
        raise ValueError("invalid encoding")
    if len(timing) != 4:
        raise ValueError("requested length 4 but object has length %d" % len(timing))
    show(Pin(pin), data, 3)
