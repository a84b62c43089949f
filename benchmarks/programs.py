"""Functions shared by the benchmarks: a virtual board, and timing programs in alternating pairs."""

import os
import statistics
import subprocess
import tempfile
import time


class Build:
    """The programs of a build folder."""

    def __init__(self, folder):
        self.folder = os.path.abspath(folder)
        self.editor = os.path.join(self.folder, "bin", "quilp-editor")
        self.board = os.path.join(self.folder, "bin", "virtual-board")
        bundle = os.path.join(self.folder, "lib", "quilp", "Quilp.bundle")
        self.plugin = os.path.join(bundle, "quilp.so")
        self.tool = os.path.join(bundle, "Resources", "mpremote", "mpremote.py")

    def bare_tool(self, board):
        """The command line of mpremote itself, without our launcher."""
        with open(self.tool) as file:
            python = file.readline()[2:].strip()
        folder = os.path.join(self.folder, "lib", "quilp", "mpremote")
        start = (
            f"import sys; sys.path.insert(0, {folder!r}); "
            "from mpremote.main import main; sys.exit(main())"
        )
        return [python, "-c", start, "connect", board.link]


class VirtualBoard:
    """A virtual board with a temporary folder, as a context manager."""

    def __init__(self, build):
        self.program = build.board

    def __enter__(self):
        self.folder = tempfile.TemporaryDirectory()
        self.link = os.path.join(self.folder.name, "port")
        self.files = os.path.join(self.folder.name, "files")
        self.process = subprocess.Popen(
            [self.program, "--link", self.link, self.files], stdout=subprocess.PIPE
        )
        if not self.process.stdout.readline().startswith(b"/dev/"):
            raise SystemExit("the virtual board did not start")
        self.environment = dict(os.environ, QUILP_VIRTUAL_BOARD=self.link)
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait()
        self.folder.cleanup()


def seconds(command, environment, is_right):
    """The run time of a program, whose output must be correct."""
    begin = time.perf_counter()
    output = subprocess.run(command, env=environment, stdout=subprocess.PIPE, check=True).stdout
    elapsed = time.perf_counter() - begin
    if not is_right(output):
        raise SystemExit(f"{command[0]} printed {output[:200]!r}")
    return elapsed


def compare(title, environment, ours, bare, pairs):
    """Times two programs, given as (command, is_right), in alternating pairs after a warm-up, and
    prints the medians and the median ratio."""
    seconds(ours[0], environment, ours[1])
    seconds(bare[0], environment, bare[1])
    times = [
        (seconds(ours[0], environment, ours[1]), seconds(bare[0], environment, bare[1]))
        for _ in range(pairs)
    ]
    our_median, bare_median = (1000 * statistics.median(side) for side in zip(*times))
    ratio = statistics.median(one / other for one, other in times)
    print(
        f"{title}: {our_median:.1f} ms, mpremote alone {bare_median:.1f} ms, "
        f"median ratio {ratio:.3f} of {pairs} pairs",
        flush=True,
    )
