# Lights the LED while a button is pressed. The button connects pin 14
# with ground.

import time
from machine import Pin

button = Pin(14, Pin.IN, Pin.PULL_UP)
led = Pin("LED", Pin.OUT)
count = 0
was_pressed = False
print("Press the button at pin 14.")

while True:
    is_pressed = button.value() == 0
    led.value(is_pressed)
    if is_pressed and not was_pressed:
        count += 1
        print("pressed", count)
    was_pressed = is_pressed
    time.sleep_ms(20)  # Longer than the contacts bounce.
