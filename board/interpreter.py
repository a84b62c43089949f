"""Runs in the board's MicroPython and executes the requests of the serial side.

Descriptor 3 is a socket to the serial side. A request consists of a header of
18 bytes, "MODE SEQUENCE LENGTH", and the source text; MODE is E (statements),
S (one interactive line) or F (the name of a file on the board). The answer
consists of a header of the same form, "STATUS SEQUENCE LENGTH", and the
traceback; STATUS is N (finished normally), E (failed with a traceback) or X
(called sys.exit). Standard input and output are used only by the program.
"""
import io
import os
import sys
import vfs

HEADER_SIZE = 18
BLOCK_SIZE = 4096
FLASH_BLOCKS = 4096
# The whole answer must fit into the socket's buffer, so that an interrupt cannot split it.
TRACEBACK_LIMIT = 32000
INTERRUPTED = "Traceback (most recent call last):\nKeyboardInterrupt: \n"


class Flash:
    """The board's file system: a folder of the computer. Paths cannot refer to anything outside."""

    def __init__(self, folder):
        self.posix = vfs.VfsPosix(folder)
        self.directory = "/"

    def absolute(self, path):
        parts = [] if path.startswith("/") else self.directory.split("/")
        resolved = []
        for part in parts + path.split("/"):
            if part == "..":
                resolved = resolved[:-1]
            elif part not in ("", "."):
                resolved.append(part)
        return "/" + "/".join(resolved)

    def mount(self, readonly, mkfs):
        self.posix.mount(readonly, mkfs)

    def umount(self):
        self.posix.umount()

    def open(self, path, mode):
        return self.posix.open(self.absolute(path), mode)

    def chdir(self, path):
        path = self.absolute(path)
        if path != "/" and not self.posix.stat(path)[0] & 0x4000:
            raise OSError(20)
        self.directory = path

    def getcwd(self):
        return self.directory

    def ilistdir(self, path):
        path = self.absolute(path)
        prefix = path if path.endswith("/") else path + "/"
        # As on a board, the size is a fourth item; the POSIX file system returns only three.
        for entry in self.posix.ilistdir(path):
            try:
                size = 0 if entry[1] & 0x4000 else self.posix.stat(prefix + entry[0])[6]
            except OSError:
                size = 0  # A dangling link.
            yield entry[0], entry[1], entry[2], size

    def mkdir(self, path):
        self.posix.mkdir(self.absolute(path))

    def remove(self, path):
        self.posix.remove(self.absolute(path))

    def rename(self, old, new):
        self.posix.rename(self.absolute(old), self.absolute(new))

    def rmdir(self, path):
        path = self.absolute(path)
        if path == "/":
            raise OSError(22)
        self.posix.rmdir(path)

    def stat(self, path):
        return self.posix.stat(self.absolute(path))

    def used_blocks(self, path):
        count = 1
        for name, kind, _, size in self.ilistdir(path):
            if kind & 0x4000:
                count += self.used_blocks(path + "/" + name)
            else:
                count += (size + BLOCK_SIZE - 1) // BLOCK_SIZE
        return count

    def statvfs(self, path):
        # Report the size of a typical board, not that of the computer's disk.
        free = max(0, FLASH_BLOCKS - self.used_blocks("/"))
        return (BLOCK_SIZE, BLOCK_SIZE, FLASH_BLOCKS, free, free, 0, 0, 0, 0, 255)

    def __repr__(self):
        return "<Flash>"


def traceback_text(error):
    text = io.StringIO()
    sys.print_exception(error, text)
    own_frame = '  File "' + __file__ + '"'
    lines = [line for line in text.getvalue().split("\n") if not line.startswith(own_frame)]
    return "\n".join(lines)[-TRACEBACK_LIMIT:]


def source_and_name(mode, text):
    if mode != "F":
        return text, "<stdin>"
    name = str(text, "utf8")
    try:
        os.stat(name)
    except OSError:
        return b"", name
    with open(name, "rb") as file:
        return file.read(), name


def execute(mode, text, namespace):
    try:
        source, name = source_and_name(mode, text)
        exec(compile(source, name, "single" if mode == "S" else "exec"), namespace)
        return "N", ""
    except SystemExit:
        return "X", ""
    except BaseException as error:
        return "E", traceback_text(error)


def receive(channel, length):
    try:
        return channel.read(length)
    except MemoryError:
        while length > 0:  # Skip the source, so that the next request can be read.
            length -= len(channel.read(min(length, 4096)))
        return None


def serve(channel):
    namespace = {"__name__": "__main__"}
    # The sequence number of the request that has not been answered. The first answer, which has no
    # request, reports that from now on an interrupt is handled.
    sequence = 0
    status, text = "N", ""
    while True:
        try:
            if sequence is not None:
                # Sent again if an interrupt occurs here; the serial side ignores the second one.
                answer = text.encode()
                channel.write(b"%s%08d %08d" % (status, sequence, len(answer)) + answer)
                sequence = None
            header = channel.read(HEADER_SIZE)
            if len(header) < HEADER_SIZE:
                return
            status, text = "E", INTERRUPTED
            sequence = int(header[1:9])
            request = receive(channel, int(header[10:18]))
            if request is None:
                text = "MemoryError: the program is larger than the board's memory\n"
            else:
                status, text = execute(chr(header[0]), request, namespace)
        except KeyboardInterrupt:
            pass


def use_folder_as_file_system(folder):
    vfs.umount("/")
    vfs.mount(Flash(folder), "/")
    os.chdir("/")
    sys.path[:] = ["", ".frozen", "/lib"]
    sys.argv[:] = []


control = open(3, "r+b")
use_folder_as_file_system(sys.argv[1])
serve(control)
