"""Measures the time from the start of the editor, with a small document and without a board, until
its window is painted, and its memory (see starting.py), and compares them with those of Thonny, an
editor for the same users. The programs are started in alternating pairs. Each has a separate home
folder and is started once before the measurement.

Usage: measure_editor.py BUILD_FOLDER [PAIRS]
"""

import os
import shutil
import statistics
import sys
import tempfile

from programs import Build
from starting import Screen, measure, show

DOCUMENT = os.path.abspath(os.path.join(os.path.dirname(__file__), "..", "examples", "hello.py"))


def homes(folder):
    """Creates a home folder for each program. Without a configuration, Thonny would show a dialog."""
    names = [os.path.join(folder, name) for name in ("quilp", "thonny")]
    for name in names:
        os.mkdir(name, 0o700)
    thonny = os.path.join(names[1], ".config", "Thonny")
    os.makedirs(thonny)
    with open(os.path.join(thonny, "configuration.ini"), "w"):
        return names


def main():
    build = Build(sys.argv[1])
    pairs = int(sys.argv[2]) if len(sys.argv) > 2 else 10
    if shutil.which("Xvfb") is None:
        print("Xvfb is not installed; the start of the editor is not measured")
        return
    programs = [build.editor, shutil.which("thonny")]
    if programs[1] is None:
        print("Thonny is not installed; only our editor is measured")
        programs.pop()
    with tempfile.TemporaryDirectory() as folder, Screen() as screen:
        starts = list(zip(programs, homes(folder)))
        rounds = [
            [measure(screen, [program, DOCUMENT], home) for program, home in starts]
            for _ in range(1 + pairs)
        ][1:]
    for program, figures in zip(programs, zip(*rounds)):
        show(os.path.basename(program), figures)
    if len(programs) == 2:
        ratios = [[one / other for one, other in zip(*pair)] for pair in rounds]
        print("median ratios: " + ", ".join(f"{statistics.median(side):.3f}" for side in zip(*ratios)))


main()
