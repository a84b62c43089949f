"""Measures how often a program on the virtual board toggles a pin in a second, without and with a client
that reads the state of the pins, in alternating pairs. The client must not slow the program down.

Usage: measure_pins.py BUILD_FOLDER [PAIRS]
"""

import os
import socket
import statistics
import subprocess
import sys
import threading

from programs import Build, VirtualBoard

PAIRS = 15
AIM = 0.9  # of the rate without a reader
PROGRAM = """
import time
from machine import Pin
pin = Pin('LED', Pin.OUT)
count, end = 0, time.ticks_add(time.ticks_us(), 1_000_000)
while time.ticks_diff(end, time.ticks_us()) > 0:
    for _ in range(100):
        pin.toggle()
    count += 100
print(count)
"""


class Reader:
    """A client that counts what it receives, as a context manager."""

    def __init__(self, path):
        self.path = path
        self.lines = 0

    def __enter__(self):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect(self.path)
        self.thread = threading.Thread(target=self.read)
        self.thread.start()
        return self

    def __exit__(self, *_):
        self.socket.shutdown(socket.SHUT_RDWR)
        self.thread.join()
        self.socket.close()

    def read(self):
        while data := self.socket.recv(65536):
            self.lines += data.count(b"\n")


def toggles(tool, environment):
    """The toggles in a second."""
    command = [tool, "exec", PROGRAM]
    return int(subprocess.run(command, env=environment, stdout=subprocess.PIPE, check=True).stdout)


def main():
    build = Build(sys.argv[1])
    count = int(sys.argv[2]) if len(sys.argv) > 2 else PAIRS
    pairs, lines = [], []
    with VirtualBoard(build) as board:
        environment = dict(os.environ, QUILP_VIRTUAL_BOARD=board.link)
        toggles(build.tool, environment)  # Warm-up.
        for _ in range(count):
            alone = toggles(build.tool, environment)
            with Reader(board.pins) as reader:
                pairs.append((alone, toggles(build.tool, environment)))
            lines.append(reader.lines)
    alone, read = (statistics.median(side) for side in zip(*pairs))
    ratio = statistics.median(with_reader / without for without, with_reader in pairs)
    print(
        f"toggles in a second: {alone:.0f}, with a reader {read:.0f} in {statistics.median(lines):.0f} "
        f"lines, median ratio {ratio:.3f} of {count} pairs, aim {AIM}{'' if ratio > AIM else ' missed'}"
    )


main()
