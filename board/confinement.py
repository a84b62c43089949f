"""Confines this process, once it has loaded what it needs; see confinement.h."""

import struct
import uctypes

try:
    import ffi
except ImportError:
    ffi = None

PR_SET_SECCOMP = 22
PR_SET_NO_NEW_PRIVS = 38
SECCOMP_MODE_FILTER = 2
LANDLOCK_RESTRICT_SELF = 446  # The number of this system call is the same on all processors.
FILTER_ITEM_SIZE = 8


def confine(rules, filter):
    """Returns what could not be forbidden, as a sentence; empty if that is nothing.

    rules is a descriptor, or -1; filter is empty if there is none.
    """
    if not ffi:
        return "the whole computer: the interpreter has no module ffi"
    library = ffi.open(None)
    prctl = library.func("i", "prctl", "iLLLL")
    syscall = library.func("l", "syscall", "liL")
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0)
    reachable = []
    if rules < 0 or syscall(LANDLOCK_RESTRICT_SELF, rules, 0) != 0:
        reachable.append("the files of this computer: the system has no Landlock")
    library.func("i", "close", "i")(rules)
    # A sock_fprog: the number of items and their address.
    program = struct.pack("HP", len(filter) // FILTER_ITEM_SIZE, uctypes.addressof(filter))
    address = uctypes.addressof(program)
    if not filter or prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, address, 0, 0) != 0:
        reachable.append("processes and the network: the system has no seccomp filters")
    return " and ".join(reachable)
