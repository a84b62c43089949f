# Blinks until it is stopped. Uses the board's LED if there is one, and prints the state.

import time

try:
    from machine import Pin

    led = Pin("LED", Pin.OUT)
except (ImportError, TypeError, ValueError):
    led = None

state = False
while True:
    state = not state
    if led:
        led.value(state)
    print("on" if state else "off")
    time.sleep(0.5)
