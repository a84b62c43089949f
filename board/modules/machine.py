"""Functions of the board's hardware that the interpreter itself does not have."""

import time
import utime
import _board
from umachine import *

# The commands of the serial side know the board by the same number.
_UNIQUE_ID = b"\x01\x23\x45\x67\x89\xab"


def reset():
    _board.reset()


def unique_id():
    return _UNIQUE_ID


class RTC:
    """The clock shows the computer's time until it is set, and again after a reset."""

    def datetime(self, value=None):
        if value is None:
            year, month, day, hour, minute, second, weekday, _ = time.localtime()
            microsecond = time.time_ns() // 1000 % 1_000_000
            return year, month, day, weekday, hour, minute, second, microsecond
        year, month, day, _, hour, minute, second, _ = value
        wanted = utime.mktime((year, month, day, hour, minute, second, 0, 0, -1))
        time._offset = int(wanted) - int(utime.time())
