# Blinks the board's LED until it is stopped.

import time
from machine import Pin

led = Pin("LED", Pin.OUT)
print("The LED blinks. Stop ends the program.")

while True:
    led.toggle()
    time.sleep(0.5)
