# Prints line after line, so that one sees the output arrive while the board works.

import sys
import time

print("Hello from", sys.implementation.name, "on", sys.platform)
for number in range(1, 6):
    print("line", number)
    time.sleep(0.4)
print("Done.")
