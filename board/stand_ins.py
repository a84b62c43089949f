"""Hides from programs what the interpreter has because it runs on a computer.

The modules socket and websocket are hidden by files in modules/. A module that the interpreter finds
before any file cannot be made to fail at its import; it fails when it is used.
"""

import os
import sys
import vfs

HIDDEN_MODULES = ("ffi", "jni", "termios", "tls", "usocket", "uwebsocket")
HIDDEN_NAMES = ("VfsPosix", "errno", "getenv", "putenv", "system", "unsetenv")


def empty_module(name):
    import empty

    del sys.modules["empty"]  # The next import makes another one.
    empty.__name__ = name
    sys.modules[name] = empty
    return empty


def hide(name):
    def missing(_attribute):
        raise ImportError("no module named '%s'" % name)

    empty_module(name).__getattr__ = missing


def hide_names(module, name):
    visible = empty_module(name)
    for attribute in dir(module):
        if not attribute.startswith("__") and attribute not in HIDDEN_NAMES:
            setattr(visible, attribute, getattr(module, attribute))


def forward(name, target):
    """Makes a module the other name of one that is not loaded yet."""

    def attribute(attribute_name):
        return getattr(__import__(target), attribute_name)

    empty_module(name).__getattr__ = attribute


def hide_computer():
    for name in HIDDEN_MODULES:
        hide(name)
    hide_names(os, "uos")  # The board's module os consists of this one.
    hide_names(vfs, "vfs")
    forward("umachine", "machine")  # The interpreter's own has access to all addresses.
