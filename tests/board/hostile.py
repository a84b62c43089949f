"""Tries to reach the computer around the virtual board; prints the names of what succeeded.

The line before this one assigns OUTSIDE, a folder with the file "secret", to which the board's links
"file" and "folder" lead.
"""

import os
import sys

for name in ("ffi", "termios", "uos", "usocket", "vfs"):
    sys.modules.pop(name, None)  # What the board hides is found by the next import.
import ffi
import uos
import usocket
import vfs

library = ffi.open(None)
parent = library.func("i", "getppid", "")()
READ, CREATE = 0, 0o101
FILE_SIZE, PRIVATE_ANONYMOUS = 1, 0x22


def call(name, types="", *arguments):
    """Calls a function of the C library."""
    if library.func("l", name, types)(*arguments) in (-1, 0xFFFFFFFF):
        raise OSError


def allocate(name, types, *arguments):
    address = library.func("L", name, types)(*arguments)
    if address in (0, 0xFFFFFFFFFFFFFFFF):
        raise MemoryError


def run(command):
    if uos.system(command) != 0:
        raise OSError


def write_beyond_the_limit():
    number = library.func("i", "open", "sii")(BOARD + "/large", CREATE | 1, 0o600)
    call("lseek", "ili", number, 1 << 30, 0)
    call("write", "isL", number, "x", 1)


def fill_memory():
    chunks = []
    while True:
        chunks.append(bytearray(4096))


def mount(path):
    vfs.mount(vfs.VfsPosix(path), "/outside")
    os.listdir("/outside")


SECRET = OUTSIDE + "/secret"
ATTEMPTS = {
    "read through the parent folder": lambda: open("../.." + SECRET),
    "read a path of the computer": lambda: open(SECRET),
    "read through a link": lambda: open("file"),
    "write through a link": lambda: open("file", "w"),
    "read through a link to a folder": lambda: open("folder/secret"),
    "create through a link to a folder": lambda: open("folder/created", "w"),
    "list through a link to a folder": lambda: os.listdir("folder"),
    "import through a link": lambda: __import__("folder.secret"),
    "read with the interpreter's file system": lambda: vfs.VfsPosix().open(SECRET, "r"),
    "mount": lambda: mount(OUTSIDE),
    "open": lambda: call("open", "si", SECRET, READ),
    "create": lambda: call("open", "sii", OUTSIDE + "/created", CREATE, 0o600),
    "read the interpreter": lambda: call("open", "si", sys.executable, READ),
    "read the own process": lambda: call("open", "si", "/proc/self/environ", READ),
    "read the parent's memory": lambda: call("open", "si", "/proc/%d/mem" % parent, READ),
    "open a device": lambda: call("open", "si", "/dev/zero", READ),
    "delete": lambda: call("unlink", "s", SECRET),
    "rename": lambda: call("rename", "ss", SECRET, BOARD + "/secret"),
    "link": lambda: call("link", "ss", SECRET, BOARD + "/linked"),
    "symlink": lambda: call("symlink", "ss", SECRET, BOARD + "/linked"),
    "truncate": lambda: call("truncate", "sl", SECRET, 0),
    "chmod": lambda: call("chmod", "si", SECRET, 0),
    "socket": lambda: usocket.socket(),
    "local socket": lambda: call("socket", "iii", 1, 1, 0),
    "system": lambda: run("true"),
    "fork": lambda: call("fork"),
    "execute": lambda: call("execl", "sspp", "/bin/true", "true", None, None),
    "execute itself": lambda: call("execl", "sspp", sys.executable, "micropython", None, None),
    "execute from memory": lambda: call("memfd_create", "si", "program", 0),
    "signal the parent": lambda: call("kill", "ii", parent, 0),
    "signal everybody": lambda: call("kill", "ii", -1, 0),
    "trace the parent": lambda: call("ptrace", "lLpp", 0x4206, parent, None, None),
    "open the parent": lambda: call("syscall", "liL", 434, parent, 0),
    "io_uring": lambda: call("syscall", "liL", 425, 1, 0),
    "other namespaces": lambda: call("unshare", "i", 0x10000000),
    "mount a file system": lambda: call("mount", "sssip", "none", BOARD, "tmpfs", 0, None),
    "change the limits": lambda: call("setrlimit", "ip", FILE_SIZE, bytes(16)),
    "change the confinement": lambda: call("prctl", "iLLLL", 22, 1, 0, 0, 0),
    "write a large file": write_beyond_the_limit,
    "use the computer's memory": lambda: allocate("malloc", "L", 1 << 30),
    "map the computer's memory": lambda: allocate(
        "mmap", "LLiiil", 0, 1 << 30, 3, PRIVATE_ANONYMOUS, -1, 0
    ),
    "fill the memory": fill_memory,
}
for name, attempt in ATTEMPTS.items():
    try:
        attempt()
    except (ImportError, MemoryError, OSError):
        continue
    print(name)
print(len(ATTEMPTS), "attempts")
