"""Measures what a user waits for in a running editor, and compares it with mpremote itself on the same
virtual board, or with cat. Prints one table.

- The time is the median of alternating pairs, and the ratio the median of their ratios.
- The stall is the longest time during which the user-interface thread did not return to its event
  loop, the median of three further runs.
- The memory is the growth of the editor during the task, the largest of all runs.

A line ends in "missed" when a figure is above its aim.

Usage: measure_speed.py BUILD_FOLDER [--quick] [WORD_OF_A_TITLE...]

--quick measures with a tenth of the data. Fixed costs then count more, so only full measurements tell
whether an aim is reached.
"""

import os
import statistics
import sys
import tempfile

from programs import Build, RunningEditor, VirtualBoard, seconds

STALL_AIM = 16  # milliseconds
MEMORY_AIM = 64  # MiB
STALL_RUNS = 3
FEW_PAIRS, MANY_PAIRS = 2, 10
MIB = 1 << 20
LINE = b"a line of 50 bytes that a program prints, No.%04d\n"


class Row:
    """One row of the table: what the editor and the other program do, and how much of it is right."""

    pairs = MANY_PAIRS
    code = ""  # The document.

    def __init__(self, scale, board, folder):
        """Prepares the board and the files."""
        self.scale, self.files = scale, board.files
        self.folder = folder
        self.document = self.local("document.py")
        write(self.document, self.code.encode())

    def local(self, name):
        return os.path.join(self.folder, name)

    def bare_command(self, tool):
        """The other program's command line; `tool` is that of mpremote."""
        return tool + self.words

    def is_right(self, output):
        """Whether the other program's output is."""
        return output.rstrip().endswith(self.end.encode())

    def check(self):
        """Fails if the last task of either side was not done."""


class RunOneLine(Row):
    title, aim = "Run of one line", 0.6
    code, end = "print('one line')\n", "one line"

    def __init__(self, *where):
        super().__init__(*where)
        self.task, self.words = ("run", ""), ["run", self.document]


class ListFiles(Row):
    title, aim = "list of 20 files", 0.6
    task, words, end = ("list", ""), ["ls"], ".txt"

    def __init__(self, *where):
        super().__init__(*where)
        write_files(self.files, 20)


class OpenWindow(Row):
    title, aim = "window to the last of 5,000 rows", 0.5
    words, end = ["ls"], ".txt"
    task = ("window", "5000")

    def __init__(self, *where):
        super().__init__(*where)
        write_files(self.files, 5000)


class Copy(Row):
    pairs, end = FEW_PAIRS, ""

    def copies(self, source, target, *words):
        self.data, self.target = os.urandom(MIB // self.scale), target
        write(source, self.data)
        self.words = ["cp", "-f", *words]
        self.task = ("tool", " ".join(self.words))

    def check(self):
        if read(self.target) != self.data:
            raise SystemExit(f"{self.title}: the copy differs")
        os.remove(self.target)


class CopyToBoard(Copy):
    title, aim = "1 MiB to the board", 0.04

    def __init__(self, *where):
        super().__init__(*where)
        local = self.local("source")
        self.copies(local, os.path.join(self.files, "target"), local, ":target")


class CopyFromBoard(Copy):
    title, aim = "1 MiB from the board", 0.04

    def __init__(self, *where):
        super().__init__(*where)
        local = self.local("target")
        self.copies(os.path.join(self.files, "source"), local, ":source", local)


class Print(Row):
    title, aim, pairs = "5 MB printed by a program", 0.06, FEW_PAIRS
    end = "the end"

    def __init__(self, *where):
        super().__init__(*where)
        lines = 100_000 // self.scale
        code = f"for number in range({lines}):\n    print({LINE.decode()[:-1]!r} % (number % 10000))\n"
        write(self.document, (code + "print('the end')\n").encode())
        self.task, self.words = ("run", ""), ["run", self.document]


class PrintLocally(Row):
    title, aim, pairs = "200 MB printed by a local program", 2.0, 5

    def __init__(self, *where):
        super().__init__(*where)
        self.path = self.local("lines")
        block = b"".join(LINE % number for number in range(10_000))
        with open(self.path, "wb") as file:
            for _ in range(200_000_000 // self.scale // len(block)):
                file.write(block)
        self.task = ("shell", f"cat {self.path}")
        self.end = (LINE % 9999).decode().strip()

    def bare_command(self, _):
        return ["cat", self.path]


ROWS = RunOneLine, ListFiles, OpenWindow, CopyToBoard, CopyFromBoard, Print, PrintLocally


def write(path, data):
    with open(path, "wb") as file:
        file.write(data)


def read(path):
    with open(path, "rb") as file:
        return file.read()


def write_files(folder, count):
    for number in range(count):
        write(os.path.join(folder, f"file_{number:04}.txt"), b"x" * (number % 100))


def measure(row, editor, bare_command):
    """The figures of the table: milliseconds of both, their ratio, the stall, and the memory."""
    memories = []

    def perform(*words):
        figure, memory = editor.perform(*row.task, row.end, *words)
        row.check()
        memories.append(memory)
        return figure

    def bare():
        elapsed = 1000 * seconds(bare_command, row.is_right)
        row.check()
        return elapsed

    perform()  # Warm-up.
    pairs = [(perform(), bare()) for _ in range(row.pairs)]
    ours, others = (statistics.median(side) for side in zip(*pairs))
    ratio = statistics.median(one / other for one, other in pairs)
    stall = statistics.median(perform("stalls") for _ in range(STALL_RUNS))
    return ours, others, ratio, stall, max(memories)


def show(row, figures):
    ours, others, ratio, stall, memory = figures
    limits = ((ratio, row.aim), (stall, STALL_AIM), (memory, MEMORY_AIM))
    verdict = "missed" if any(figure > aim for figure, aim in limits) else ""
    print(
        f"| {row.title:33} | {ours:9.1f} | {others:9.1f} | {ratio:6.3f} | {row.aim:5.2f} "
        f"| {stall:6.1f} | {memory:6.1f} | {verdict:6} |",
        flush=True,
    )


def main():
    build = Build(sys.argv[1])
    is_quick = "--quick" in sys.argv
    chosen = [word for word in sys.argv[2:] if word != "--quick"]
    print(f"| {'':33} | {'editor ms':>9} | {'bare ms':>9} | {'ratio':>6} | {'aim':>5} "
          f"| {'stall':>6} | {'MiB':>6} | {'':6} |")
    print("|---|--:|--:|--:|--:|--:|--:|---|")
    for kind in ROWS:
        if chosen and not any(word in kind.title for word in chosen):
            continue
        with tempfile.TemporaryDirectory() as folder, VirtualBoard(build) as board:
            row = kind(10 if is_quick else 1, board, folder)
            bare_command = row.bare_command(build.bare_tool(board))
            with RunningEditor(build, board, row.document) as editor:
                show(row, measure(row, editor, bare_command))
    print(f"aims for each: stall {STALL_AIM} ms, {MEMORY_AIM} MiB")


main()
