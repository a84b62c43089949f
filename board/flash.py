"""The board's file system: a folder of the computer. Paths cannot refer to anything outside.

The files of the folder take as much space as on a board. How much that is becomes known when a program
first writes, and is kept up to date from then on, since looking at all files takes a while.
"""

import io
import vfs

BLOCK_SIZE = 4096
FLASH_BLOCKS = 4096
DIRECTORY = 0x4000
LINK = 0xA000
NO_SPACE = 28
INVALID = 22
STREAM_FLUSH = 1
STREAM_CLOSE = 4

# The board's own modules are importable, but neither listed nor writable.
MODULES = "/.modules"


def blocks(size):
    return max(1, (size + BLOCK_SIZE - 1) // BLOCK_SIZE)


def byte_count(data):
    if isinstance(data, (bytes, bytearray)):
        return len(data)
    return len(data.encode() if isinstance(data, str) else bytes(data))


class WrittenFile(io.IOBase):
    """A file open for writing, which takes its space from the flash."""

    def __init__(self, file, flash, size, appends):
        self.file = file
        self.flash = flash
        self.size = size
        self.appends = appends

    # Of a stream, with an optional length, or offset and length.
    def write(self, data, *limits):
        length = byte_count(data)
        if limits:
            length = min(length, limits[-1])
        end = length + (self.size if self.appends else self.file.tell())
        if end > self.size:
            self.flash.take(blocks(end) - blocks(self.size))
            self.size = end
        return self.file.write(data, *limits)

    def readinto(self, *arguments):
        return self.file.readinto(*arguments)

    # What the interpreter's own functions call.
    def ioctl(self, request, _argument):
        if request == STREAM_FLUSH:
            self.file.flush()
        elif request == STREAM_CLOSE:
            self.file.close()
        else:
            return -INVALID
        return 0

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.file.close()

    def __iter__(self):
        return self.file

    def __getattr__(self, name):
        return getattr(self.file, name)


class Flash:
    def __init__(self, folder, modules):
        # Without a root, because renaming fails with one: paths are joined here.
        self.posix = vfs.VfsPosix()
        self.folder = folder
        self.modules = modules
        self.directory = "/"
        self.used = None  # Blocks.

    def absolute(self, path):
        parts = [] if path.startswith("/") else self.directory.split("/")
        resolved = []
        for part in parts + path.split("/"):
            if part == "..":
                resolved = resolved[:-1]
            elif part not in ("", "."):
                resolved.append(part)
        return "/" + "/".join(resolved)

    def host_path(self, path):
        return self.folder + self.absolute(path)

    def readable_path(self, path):
        path = self.absolute(path)
        if path.startswith(MODULES + "/"):
            return self.modules + path[len(MODULES) :]
        return self.folder + path

    def mount(self, readonly, mkfs):
        self.posix.mount(readonly, mkfs)

    def umount(self):
        self.posix.umount()

    def open(self, path, mode):
        if mode in ("r", "rb", "rt"):
            return self.posix.open(self.readable_path(path), mode)
        path = self.host_path(path)
        size = self.size(path)
        if size is None:
            self.take(1)
        try:
            file = self.posix.open(path, mode)
        except OSError:
            if size is None:
                self.take(-1)
            raise
        if size and "w" in mode:
            self.take(1 - blocks(size))
            size = 0
        return WrittenFile(file, self, size or 0, "a" in mode)

    def size(self, host_path):
        """Returns None if there is no such file."""
        try:
            return self.posix.stat(host_path)[6]
        except OSError:
            return None

    def take(self, count):
        if self.used is None:
            self.used = self.used_blocks(self.folder.encode())
        if count > 0 and self.used + count > FLASH_BLOCKS:
            raise OSError(NO_SPACE)
        self.used += count

    # Calls a function that removes what is at the path.
    def release(self, host_path, function, *arguments):
        size = self.size(host_path)
        function(*arguments)
        if size is not None and self.used is not None:
            self.used -= blocks(size)

    def chdir(self, path):
        path = self.absolute(path)
        if path != "/" and not self.posix.stat(self.folder + path)[0] & DIRECTORY:
            raise OSError(20)
        self.directory = path

    def getcwd(self):
        return self.directory

    def ilistdir(self, path):
        folder = self.host_path(path).encode()
        for name, kind, inode in self.posix.ilistdir(folder):
            try:
                text = str(name, "utf8")
            except UnicodeError:
                continue  # No program could name this file.
            size = 0
            try:
                mode, _, _, _, _, _, size = self.posix.stat(folder + b"/" + name)[:7]
                kind = mode & 0xF000  # Of what a link refers to.
            except OSError:
                pass  # A dangling link.
            # As on a board, the size is a fourth item; the POSIX file system returns only three.
            yield text, kind, inode, 0 if kind == DIRECTORY else size

    def mkdir(self, path):
        self.take(1)
        try:
            self.posix.mkdir(self.host_path(path))
        except OSError:
            self.take(-1)
            raise

    def remove(self, path):
        path = self.host_path(path)
        self.release(path, self.posix.remove, path)

    def rename(self, old, new):
        old = self.host_path(old)
        new = self.host_path(new)
        if old == new:
            self.posix.rename(old, new)
        else:
            self.release(new, self.posix.rename, old, new)

    def rmdir(self, path):
        path = self.absolute(path)
        if path == "/":
            raise OSError(INVALID)
        self.posix.rmdir(self.folder + path)
        if self.used is not None:
            self.used -= 1

    def stat(self, path):
        return self.posix.stat(self.readable_path(path))

    def used_blocks(self, folder):
        count = 0
        folders = [folder]  # One at a time is open, since few files may be, however deep they lie.
        while folders:
            folder = folders.pop()
            count += 1
            for name, kind, _ in self.posix.ilistdir(folder):
                path = folder + b"/" + name
                if kind == DIRECTORY:
                    folders.append(path)
                elif kind != LINK:  # A link could lead back to this folder.
                    count += blocks(self.posix.stat(path)[6])
        return count

    def statvfs(self, path):
        # Report the size of a typical board, not that of the computer's disk.
        self.used = self.used_blocks(self.folder.encode())
        free = max(0, FLASH_BLOCKS - self.used)
        return (BLOCK_SIZE, BLOCK_SIZE, FLASH_BLOCKS, free, free, 0, 0, 0, 0, 255)

    def __repr__(self):
        return "<Flash>"
