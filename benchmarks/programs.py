"""What the measurements share: a virtual board, and the time of a whole program."""

import os
import subprocess
import tempfile
import time


class VirtualBoard:
    """A virtual board with a folder of its own, as a context."""

    def __init__(self, build):
        self.program = os.path.join(build, "bin", "virtual-board")

    def __enter__(self):
        self.folder = tempfile.TemporaryDirectory()
        link = os.path.join(self.folder.name, "port")
        self.files = os.path.join(self.folder.name, "files")
        self.process = subprocess.Popen(
            [self.program, "--link", link, self.files], stdout=subprocess.PIPE
        )
        if not self.process.stdout.readline().startswith(b"/dev/"):
            raise SystemExit("the virtual board did not start")
        self.environment = dict(os.environ, QUILP_VIRTUAL_BOARD=link)
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait()
        self.folder.cleanup()


def seconds(command, environment, expected):
    """The time from start to end of a program that must print exactly this."""
    begin = time.perf_counter()
    output = subprocess.run(command, env=environment, stdout=subprocess.PIPE, check=True).stdout
    elapsed = time.perf_counter() - begin
    if output != expected:
        raise SystemExit(f"{command[0]} printed {output!r} instead of {expected!r}")
    return elapsed
