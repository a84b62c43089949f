"""The programs that the benchmarks start: the editor, a virtual board, and mpremote itself."""

import os
import subprocess
import tempfile
import time

os.environ.pop("PYTHONDONTWRITEBYTECODE", None)  # Users' Pythons cache compiled modules.


class Build:
    """The programs of a build folder."""

    def __init__(self, folder):
        self.folder = os.path.abspath(folder)
        self.editor = os.path.join(self.folder, "bin", "quilp-editor")
        self.board = os.path.join(self.folder, "bin", "virtual-board")
        bundle = os.path.join(self.folder, "lib", "quilp", "Quilp.bundle")
        self.plugin = os.path.join(bundle, "quilp.so")
        self.tool = os.path.join(bundle, "Resources", "mpremote", "mpremote.py")

    def benchmark(self, name):
        return os.path.join(self.folder, "benchmarks", name)

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
        self.pins = os.path.join(self.folder.name, "pins")
        self.files = os.path.join(self.folder.name, "files")
        self.process = subprocess.Popen(
            [self.program, "--link", self.link, "--pins", self.pins, self.files],
            stdout=subprocess.PIPE,
        )
        if not self.process.stdout.readline().startswith(b"/dev/"):
            raise SystemExit("the virtual board did not start")
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait()
        self.folder.cleanup()


class RunningEditor:
    """The editor's window with a document, on the board, as a context manager. It appears on no screen."""

    def __init__(self, build, board, document):
        self.command = [build.benchmark("use_editor"), build.plugin, document]
        self.environment = dict(os.environ, QT_QPA_PLATFORM="offscreen", QUILP_VIRTUAL_BOARD=board.link)

    def __enter__(self):
        self.process = subprocess.Popen(
            self.command,
            env=self.environment,
            stdin=subprocess.PIPE,
            stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL,  # Messages of Qt's offscreen platform.
            text=True,
        )
        return self

    def __exit__(self, *_):
        self.process.communicate()

    def perform(self, *task):
        """Returns the figures that use_editor.cpp describes."""
        self.process.stdin.write("\t".join(task) + "\n")
        self.process.stdin.flush()
        figures = self.process.stdout.readline().split()
        if not figures:
            raise SystemExit(f"the editor did not perform {task}")
        return [float(figure) for figure in figures]


def seconds(command, is_right):
    """The run time of a program, whose output must be correct."""
    begin = time.perf_counter()
    output = subprocess.run(command, stdout=subprocess.PIPE, check=True).stdout
    elapsed = time.perf_counter() - begin
    if not is_right(output):
        raise SystemExit(f"{command[0]} printed {output[:200]!r}")
    return elapsed
