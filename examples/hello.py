# Prints one line after another, to show that output appears while the program is still running.

import sys
import time

print("Hello from", sys.implementation.name, "on", sys.platform)
for number in range(1, 6):
    print("line", number)
    time.sleep(0.4)
print("Done.")
