"""Measures from outside how long programs with windows take to start: a separate Xvfb without a window
manager paints into a file, and every 8th row of its screen is compared about every 2 ms.

- First painted: the first time when the screen shows a window that is not of a single colour.
- Complete: the first time when the screen shows the final picture, which is that of 4 s later. Up to
  1 % of it may differ, such as a caret.

The memory is the sum of the proportional set sizes of all of the program's processes, 4 s after the
first painting.
"""

import mmap
import os
import signal
import statistics
import subprocess
import tempfile
import time

WIDTH, HEIGHT = 1400, 1000
ROW_STEP = 8
WATCH_TIME = 4  # seconds after the first painting
TIMEOUT = 60  # seconds


class Screen:
    """An Xvfb, as a context manager."""

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
            self.memory[at : at + row] for at in range(self.start, len(self.memory), row * ROW_STEP)
        )


def colours(picture):
    return set(memoryview(picture).cast("I"))


def difference(one, other):
    """The fraction of the pixels that differ."""
    pairs = zip(memoryview(one).cast("I"), memoryview(other).cast("I"))
    return sum(a != b for a, b in pairs) * 4 / len(one)


def process_tree(process):
    """The process and all of its descendants."""
    parents = {}
    for name in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{name}/stat") as file:
                parents[int(name)] = int(file.read().rpartition(")")[2].split()[1])
        except OSError:
            pass  # It has exited.
    found = [process]
    for one in found:
        found += [child for child, parent in parents.items() if parent == one]
    return found


def memory(process):
    """The memory of the process and its descendants in MiB."""
    total = 0
    for one in process_tree(process):
        with open(f"/proc/{one}/smaps_rollup") as file:
            total += sum(int(line.split()[1]) for line in file if line.startswith("Pss:"))
    return total / 1024


def watch(screen, begin):
    """The pictures that the screen shows, from the first one with a painted window, each with the
    seconds until it appeared."""
    background = colours(screen.picture())
    pictures = []
    until = begin + TIMEOUT
    while time.perf_counter() < until:
        picture = screen.picture()
        now = time.perf_counter()
        if pictures and picture != pictures[-1][1]:
            pictures.append((now - begin, picture))
        elif not pictures and len(colours(picture) - background) > 1:
            pictures.append((now - begin, picture))
            until = now + WATCH_TIME
        time.sleep(0.001)
    if not pictures:
        raise SystemExit("no window was painted")
    return pictures


def completion(pictures):
    """The seconds until the picture was the final one, except for a caret."""
    complete = 0
    for appeared, picture in reversed(pictures):
        if difference(picture, pictures[-1][1]) > 0.01:
            break
        complete = appeared
    if complete > pictures[0][0] + WATCH_TIME - 1:
        raise SystemExit("the window was not complete in time")
    return complete


def terminate(process):
    """Terminates the process and its descendants, which might outlive it."""
    for one in process_tree(process.pid):
        os.kill(one, signal.SIGTERM)
    process.wait(TIMEOUT)


def measure(screen, command, home, **variables):
    """Starts a program in a home folder of its own. Returns the seconds until first painted, the
    seconds until complete, and the memory in MiB."""
    inherited = {name: value for name, value in os.environ.items() if not name.startswith("XDG_")}
    environment = dict(inherited, HOME=home, XDG_RUNTIME_DIR=home, DISPLAY=screen.display)
    environment.update(variables, QT_QPA_PLATFORM="xcb")
    begin = time.perf_counter()
    process = subprocess.Popen(
        command, env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL
    )
    pictures = watch(screen, begin)
    size = memory(process.pid)
    terminate(process)
    return pictures[0][0], completion(pictures), size


def show(name, rounds):
    first, complete, size = (statistics.median(side) for side in zip(*rounds))
    print(
        f"{name}: first painted after {1000 * first:.0f} ms, complete after {1000 * complete:.0f} ms, "
        f"{size:.1f} MiB (medians of {len(rounds)})",
        flush=True,
    )
