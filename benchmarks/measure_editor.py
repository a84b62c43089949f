"""The time from the start of the editor, with a small document and no board, until its window is
painted, and its memory; beside those of Thonny, an editor for the same users, in alternating pairs.

Both are judged from outside: the screen is a file that an Xvfb of our own, without a window manager,
paints into. Every 8th of its rows is looked at about every 2 ms.

- First painted: the first time when the screen has something on it that is not of one colour.
- Complete: the first time when it shows what it shows 4 s later, but for 1 % of it, as for a caret.

Each program has a home of its own, and one start that does not count. The memory is the sum of the
proportional set sizes of all of the program's processes, 4 s after it was first painted.

Usage: measure_editor.py BUILD_FOLDER [PAIRS]
"""

import mmap
import os
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile
import time

from programs import Build

DOCUMENT = os.path.abspath(os.path.join(os.path.dirname(__file__), "..", "examples", "hello.py"))
WIDTH, HEIGHT = 1400, 1000
EVERY = 8  # rows
WATCH = 4  # seconds after the first picture
PATIENCE = 60  # seconds for it to come


class Screen:
    """An Xvfb, as a context."""

    def __enter__(self):
        self.folder = tempfile.TemporaryDirectory()
        reading, writing = os.pipe()
        self.process = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-fbdir", self.folder.name, "-noreset"]
            + ["-screen", "0", f"{WIDTH}x{HEIGHT}x24"],
            pass_fds=[writing],
            stderr=subprocess.DEVNULL,
        )
        os.close(writing)
        with os.fdopen(reading) as numbers:
            self.display = ":" + numbers.readline().strip()
        with open(os.path.join(self.folder.name, "Xvfb_screen0"), "rb") as file:
            self.memory = mmap.mmap(file.fileno(), 0, prot=mmap.PROT_READ)
        self.start = len(self.memory) - WIDTH * HEIGHT * 4
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait()
        self.folder.cleanup()

    def picture(self):
        row = WIDTH * 4
        return b"".join(
            self.memory[at : at + row] for at in range(self.start, len(self.memory), row * EVERY)
        )


def colours(picture):
    return set(memoryview(picture).cast("I"))


def changed(one, other):
    """The part of the picture that differs."""
    pairs = zip(memoryview(one).cast("I"), memoryview(other).cast("I"))
    return sum(a != b for a, b in pairs) * 4 / len(one)


def family(process):
    """The process and all that it started, and they started."""
    parents = {}
    for name in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{name}/stat") as file:
                parents[int(name)] = int(file.read().rpartition(")")[2].split()[1])
        except OSError:
            pass  # It has ended.
    found = [process]
    for one in found:
        found += [child for child, parent in parents.items() if parent == one]
    return found


def memory(process):
    """In MiB."""
    total = 0
    for one in family(process):
        with open(f"/proc/{one}/smaps_rollup") as file:
            total += sum(int(line.split()[1]) for line in file if line.startswith("Pss:"))
    return total / 1024


def watch(screen, begin):
    """The pictures that the screen shows, each with the seconds until it came: the first one with a
    painted window, and what comes in the time after it."""
    background = colours(screen.picture())
    pictures = []
    until = begin + PATIENCE
    while time.perf_counter() < until:
        picture = screen.picture()
        now = time.perf_counter()
        if pictures and picture != pictures[-1][1]:
            pictures.append((now - begin, picture))
        elif not pictures and len(colours(picture) - background) > 1:
            pictures.append((now - begin, picture))
            until = now + WATCH
        time.sleep(0.001)
    if not pictures:
        raise SystemExit("no window was painted")
    return pictures


def completion(pictures):
    """The seconds until the picture was, but for a caret, what it is in the end."""
    complete = 0
    for came, picture in reversed(pictures):
        if changed(picture, pictures[-1][1]) > 0.01:
            break
        complete = came
    if complete > pictures[0][0] + WATCH - 1:
        raise SystemExit("the window was not complete in time")
    return complete


def end(process):
    """All of it: a process that a program started may live on without it."""
    for one in family(process.pid):
        os.kill(one, signal.SIGTERM)
    process.wait(PATIENCE)


def measure(screen, program, home):
    """Seconds until first painted, seconds until complete, MiB."""
    kept = {name: value for name, value in os.environ.items() if not name.startswith("XDG_")}
    kept.pop("PYTHONDONTWRITEBYTECODE", None)  # It would have Thonny compile some of itself each time.
    environment = dict(kept, HOME=home, XDG_RUNTIME_DIR=home, DISPLAY=screen.display)
    environment["QT_QPA_PLATFORM"] = "xcb"
    begin = time.perf_counter()
    process = subprocess.Popen(
        [program, DOCUMENT], env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL
    )
    pictures = watch(screen, begin)
    size = memory(process.pid)
    end(process)
    return pictures[0][0], completion(pictures), size


def homes(folder):
    """One for each program. Thonny asks what it should look like unless it has a configuration."""
    names = [os.path.join(folder, name) for name in ("quilp", "thonny")]
    for name in names:
        os.mkdir(name, 0o700)
    thonny = os.path.join(names[1], ".config", "Thonny")
    os.makedirs(thonny)
    with open(os.path.join(thonny, "configuration.ini"), "w"):
        return names


def show(name, rounds):
    first, complete, size = (statistics.median(side) for side in zip(*rounds))
    print(
        f"{name}: first painted after {1000 * first:.0f} ms, complete after {1000 * complete:.0f} ms, "
        f"{size:.1f} MiB (medians of {len(rounds)})",
        flush=True,
    )


def main():
    build = Build(sys.argv[1])
    pairs = int(sys.argv[2]) if len(sys.argv) > 2 else 10
    if shutil.which("Xvfb") is None:
        print("the start of the editor is not measured: there is no Xvfb")
        return
    programs = [build.editor, shutil.which("thonny")]
    if programs[1] is None:
        print("there is no Thonny to compare with")
        programs.pop()
    with tempfile.TemporaryDirectory() as folder, Screen() as screen:
        starts = list(zip(programs, homes(folder)))
        rounds = [[measure(screen, *start) for start in starts] for _ in range(1 + pairs)][1:]
    for program, figures in zip(programs, zip(*rounds)):
        show(os.path.basename(program), figures)
    if len(programs) == 2:
        ratios = [[one / other for one, other in zip(*pair)] for pair in rounds]
        print("median ratios: " + ", ".join(f"{statistics.median(side):.3f}" for side in zip(*ratios)))


main()
