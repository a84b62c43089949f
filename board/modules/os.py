"""The interpreter's os module and what boards have in addition."""

import sys
from collections import namedtuple
from uos import *

_Uname = namedtuple("uname", ("sysname", "nodename", "release", "version", "machine"))


def uname():
    release = "%d.%d.%d" % sys.implementation[1][:3]
    version = sys.version.split("MicroPython ")[-1]
    return _Uname("virtual", "virtual", release, version, "Virtual board")
