"""The interpreter's time module with whole seconds, and eight items of a local time, as on boards."""

import utime
from utime import *

_offset = 0  # Seconds by which the clock of this board is ahead of the computer's.


def time():
    return int(utime.time()) + _offset


def time_ns():
    return utime.time_ns() + _offset * 1_000_000_000


def localtime(seconds=None):
    return utime.localtime(time() if seconds is None else seconds)[:8]


def gmtime(seconds=None):
    return utime.gmtime(time() if seconds is None else seconds)[:8]
