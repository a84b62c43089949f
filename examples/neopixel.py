# Moves a rainbow along eight NeoPixels at pin 0. Do not upload this
# file under its own name: it would hide the module neopixel.

import time
from machine import Pin
from neopixel import NeoPixel

COUNT = 8
pixels = NeoPixel(Pin(0, Pin.OUT), COUNT)


def color(position):
    """Returns red, green and blue at a position of the rainbow, from 0 to 255."""
    third, rest = divmod(position % 256 * 3, 256)
    colors = [0, 0, 0]
    colors[third] = (255 - rest) // 4
    colors[(third + 1) % 3] = rest // 4
    return tuple(colors)


print("The NeoPixels show a rainbow.")
start = 0
while True:
    for i in range(COUNT):
        pixels[i] = color(start + i * 256 // COUNT)
    pixels.write()
    start += 4
    time.sleep_ms(40)
