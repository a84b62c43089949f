"""Measures how much longer Kate takes to start with the plug-in, with a small document and without a
board (see starting.py). It is started with and without the plug-in in alternating pairs, after one
start of each.

Usage: measure_kate.py BUILD_FOLDER [PAIRS]
"""

import glob
import os
import shutil
import statistics
import sys
import tempfile

from programs import Build
from starting import Screen, measure, show

DOCUMENT = os.path.abspath(os.path.join(os.path.dirname(__file__), "..", "examples", "hello.py"))
PROGRAMS = ["kate", "dbus-run-session", "Xvfb"]


def make_home(folder, is_enabled):
    """Creates a home folder in which Kate's last session has the plug-in or not."""
    home = os.path.join(folder, "with" if is_enabled else "without")
    sessions = os.path.join(home, ".local", "share", "kate")
    os.makedirs(sessions)
    os.chmod(home, 0o700)
    with open(os.path.join(sessions, "anonymous.katesession"), "w") as file:
        file.write(f"[Kate Plugins]\nkatequilpplugin={str(is_enabled).lower()}\n")
    return home


def main():
    libraries = os.path.join(Build(sys.argv[1]).folder, "lib")
    plugins = ":".join(os.path.join(libraries, qt, "plugins") for qt in ("qt5", "qt6"))
    pairs = int(sys.argv[2]) if len(sys.argv) > 2 else 10
    missing = [name for name in PROGRAMS if shutil.which(name) is None]
    if not glob.glob(os.path.join(libraries, "qt*", "**", "katequilpplugin.so"), recursive=True):
        missing.append("the plug-in")
    if missing:
        print(f"the start of Kate is not measured without {', '.join(missing)}")
        return
    # A separate session bus, so that no other Kate is asked to open the document.
    command = ["dbus-run-session", "--", "kate", "--block", "-n", DOCUMENT]
    with tempfile.TemporaryDirectory() as folder, Screen() as screen:
        homes = [make_home(folder, is_enabled) for is_enabled in (False, True)]
        rounds = [
            [measure(screen, command, home, QT_PLUGIN_PATH=plugins) for home in homes]
            for _ in range(1 + pairs)
        ][1:]
    for name, figures in zip(["Kate alone", "Kate with the plug-in"], zip(*rounds)):
        show(name, figures)
    for index, name in enumerate(["first painted", "complete"]):
        added = statistics.median(with_it[index] - alone[index] for alone, with_it in rounds)
        print(f"{name} later with the plug-in by {1000 * added:.0f} ms (median of {pairs} pairs)")


main()
