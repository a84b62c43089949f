"""The interpreter's time module with whole seconds and other properties that it has on boards."""

import utime
from utime import *

_offset = 0  # Seconds by which the clock of this board is ahead of the computer's.


# The interpreter's own function returns early when a timer or a pin calls a function.
def sleep_us(microseconds):
    end = utime.ticks_add(utime.ticks_us(), microseconds)
    while microseconds > 0:
        utime.sleep_us(microseconds)
        microseconds = utime.ticks_diff(end, utime.ticks_us())


def time():
    return int(utime.time()) + _offset


def time_ns():
    return utime.time_ns() + _offset * 1_000_000_000


def localtime(seconds=None):
    return utime.localtime(time() if seconds is None else seconds)[:8]


def gmtime(seconds=None):
    return utime.gmtime(time() if seconds is None else seconds)[:8]
