# Measures the voltage at pin 26, and dims a light at pin 15 with it.

import time
from machine import ADC, PWM, Pin

sensor = ADC(26)
light = PWM(Pin(15))
light.freq(1000)
printed = -1.0
print("Turn the dial at pin 26.")

while True:
    level = sensor.read_u16()
    light.duty_u16(level)
    volts = level * 3.3 / 65535
    if abs(volts - printed) > 0.1:
        print("%.2f V" % volts)
        printed = volts
    time.sleep_ms(50)
