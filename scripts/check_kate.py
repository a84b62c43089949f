"""Starts the installed Kate with the plug-in, runs a program on the virtual board by the shortcut, and
waits until the accessibility tree shows a text that contains the expected output. Ends Kate, and
fails if a process is left. Needs a display, a session bus, xdotool and pyatspi.

Usage: check_kate.py DOCUMENT EXPECTED
"""

import os
import subprocess
import sys
import tempfile
import time

import pyatspi

TIMEOUT = 60  # seconds
PROGRAMS = ("kate", "virtual-board", "micropython", "mpremote")


def wait_for(condition, title):
    end = time.monotonic() + TIMEOUT
    while not (result := condition()):
        if time.monotonic() > end:
            sys.exit(f"timed out waiting for {title}")
        time.sleep(0.2)
    return result


def texts(node):
    """The texts of the accessible objects below one; objects may disappear meanwhile."""
    try:
        yield node.name
        yield node.queryText().getText(0, -1)
    except Exception:
        pass
    for index in range(node.childCount):
        try:
            yield from texts(node.getChildAtIndex(index))
        except Exception:
            pass


def shown_texts():
    desktop = pyatspi.Registry.getDesktop(0)
    return [text for text in texts(desktop) if text]


def enable_plugin():
    folder = os.path.expanduser("~/.local/share/kate")
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, "anonymous.katesession"), "w") as file:
        file.write("[Kate Plugins]\nkatequilpplugin=true\n")


def start_board(folder):
    link = os.path.join(folder, "port")
    board = subprocess.Popen(
        ["virtual-board", "--link", link, os.path.join(folder, "files")], stdout=subprocess.PIPE
    )
    if not board.stdout.readline().startswith(b"/dev/"):
        sys.exit("the virtual board did not start")
    os.environ["QUILP_VIRTUAL_BOARD"] = link
    return board


def press(window, keys):
    subprocess.run(["xdotool", "windowfocus", "--sync", window, "key", keys], check=True)


def find_window(name):
    command = ["xdotool", "search", "--onlyvisible", "--name", name]
    return subprocess.run(command, capture_output=True, text=True).stdout.split()


def left_processes():
    """The command lines of this user's processes of the programs."""
    found = []
    for number in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{number}/cmdline") as file:
                words = file.read().split("\0")
            is_own = os.stat(f"/proc/{number}").st_uid == os.getuid()
        except OSError:
            continue  # It has ended.
        if is_own and int(number) != os.getpid() and any(
            os.path.basename(word).startswith(PROGRAMS) for word in words[:2]
        ):
            found.append(" ".join(words))
    return found


def run_in_kate(document, expected):
    kate = subprocess.Popen(["kate", "-n", document])
    try:
        name = os.path.basename(document)
        window = wait_for(lambda: find_window(name), "the window of Kate")[0]
        press(window, "ctrl+alt+r")
        wait_for(lambda: any(expected in text for text in shown_texts()), "the output")
        press(window, "ctrl+q")
        if status := kate.wait(TIMEOUT):
            sys.exit(f"Kate ended with the status {status}")
    finally:
        kate.kill()


def main():
    enable_plugin()
    pyatspi.Registry.getDesktop(0).childCount  # Starts the accessibility bus before Kate.
    with tempfile.TemporaryDirectory() as folder:
        board = start_board(folder)
        try:
            run_in_kate(*sys.argv[1:])
        finally:
            board.terminate()
            board.wait()
    wait_for(lambda: not left_processes(), f"the end of {left_processes()}")


main()
