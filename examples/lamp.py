# A lamp of eight NeoPixels at pin 0. The button at pin 14 switches it
# on and off, and the dial at pin 26 chooses its colour and brightness.

import time
from machine import ADC, PWM, Pin
from neopixel import NeoPixel

COUNT = 8
pixels = NeoPixel(Pin(0, Pin.OUT), COUNT)
button = Pin(14, Pin.IN, Pin.PULL_UP)
dial = ADC(26)
led = Pin("LED", Pin.OUT)
light = PWM(Pin(15), freq=1000, duty_u16=0)


def color(position):
    """Returns the red, green and blue of a position from 0 to 255."""
    third, rest = divmod(position % 256 * 3, 256)
    colors = [0, 0, 0]
    colors[third] = 255 - rest
    colors[(third + 1) % 3] = rest
    return tuple(colors)


def show(is_on):
    level = dial.read_u16()
    for i in range(COUNT):
        pixels[i] = color((level >> 8) + i * 16) if is_on else (0, 0, 0)
    pixels.write()
    led.value(is_on)
    light.duty_u16(level if is_on else 0)


is_on = True
was_pressed = False
print("Press the button, turn the dial.")

while True:
    is_pressed = button.value() == 0
    if is_pressed and not was_pressed:
        is_on = not is_on
        print("on" if is_on else "off")
    was_pressed = is_pressed
    show(is_on)
    time.sleep_ms(30)
