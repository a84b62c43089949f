"""The board's file system: a folder of the computer. Paths cannot refer to anything outside."""

import vfs

BLOCK_SIZE = 4096
FLASH_BLOCKS = 4096
DIRECTORY = 0x4000
LINK = 0xA000

# The board's own modules are importable, but neither listed nor writable.
MODULES = "/.modules"


class Flash:
    def __init__(self, folder, modules):
        # Without a root, because renaming fails with one: paths are joined here.
        self.posix = vfs.VfsPosix()
        self.folder = folder
        self.modules = modules
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
        return self.posix.open(self.host_path(path), mode)

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
        self.posix.mkdir(self.host_path(path))

    def remove(self, path):
        self.posix.remove(self.host_path(path))

    def rename(self, old, new):
        self.posix.rename(self.host_path(old), self.host_path(new))

    def rmdir(self, path):
        path = self.absolute(path)
        if path == "/":
            raise OSError(22)
        self.posix.rmdir(self.folder + path)

    def stat(self, path):
        return self.posix.stat(self.readable_path(path))

    def used_blocks(self, folder):
        count = 1
        for name, kind, _ in self.posix.ilistdir(folder):
            path = folder + b"/" + name
            if kind == DIRECTORY:
                count += self.used_blocks(path)
            elif kind != LINK:  # A link could lead back to this folder.
                count += (self.posix.stat(path)[6] + BLOCK_SIZE - 1) // BLOCK_SIZE
        return count

    def statvfs(self, path):
        # Report the size of a typical board, not that of the computer's disk.
        free = max(0, FLASH_BLOCKS - self.used_blocks(self.folder.encode()))
        return (BLOCK_SIZE, BLOCK_SIZE, FLASH_BLOCKS, free, free, 0, 0, 0, 0, 255)

    def __repr__(self):
        return "<Flash>"
