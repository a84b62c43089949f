"""The class RTC."""

import time
import utime


class RTC:
    """The clock shows the computer's time until it is set, and again after a reset."""

    def __init__(self, id=0, *, datetime=None):
        if id != 0:
            raise ValueError("RTC(%s) doesn't exist" % id)
        if datetime is not None:
            self.datetime(datetime)

    def datetime(self, value=None):
        if value is None:
            year, month, day, hour, minute, second, weekday, _ = time.localtime()
            microsecond = time.time_ns() // 1000 % 1_000_000
            return year, month, day, weekday, hour, minute, second, microsecond
        if len(value) != 8:
            raise ValueError("requested length 8 but object has length %d" % len(value))
        year, month, day, _, hour, minute, second, _ = value
        wanted = utime.mktime((year, month, day, hour, minute, second, 0, 0, -1))
        time._offset = int(wanted) - int(utime.time())

    init = datetime
