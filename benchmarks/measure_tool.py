"""Measures the total time of single commands of the launcher of mpremote, and compares it with that of
mpremote itself on the same virtual board.

Usage: measure_tool.py BUILD_FOLDER [PAIRS]
"""

import os
import sys
import tempfile

from programs import Build, VirtualBoard, compare

LINES = 20_000
SIZE = 128 * 1024


def read(path):
    with open(path, "rb") as file:
        return file.read()


def write(path, data):
    with open(path, "wb") as file:
        file.write(data)


def main():
    build = Build(sys.argv[1])
    pairs = int(sys.argv[2]) if len(sys.argv) > 2 else 10
    with tempfile.TemporaryDirectory() as folder, VirtualBoard(build) as board:
        data = os.urandom(SIZE)
        local, remote = os.path.join(folder, "local"), os.path.join(board.files, "remote")
        received, sent = os.path.join(folder, "received"), os.path.join(board.files, "sent")
        write(local, data)
        write(remote, data)
        os.mkdir(os.path.join(board.files, "few"))
        for number in range(20):
            write(os.path.join(board.files, "few", f"file_{number}.txt"), b"x" * number)
        for title, words, is_right in (
            (
                "running a line",
                ["exec", "print('one line')"],
                lambda output: output == b"one line\r\n",
            ),
            ("listing 20 files", ["ls", "/few"], lambda output: output.count(b"\n") == 21),
            (
                f"printing {LINES} lines",
                ["exec", f"for i in range({LINES}): print('line', i, 'of output')"],
                lambda output: output.count(b"of output\r\n") == LINES,
            ),
            (
                f"copying {SIZE} bytes to the board",
                ["cp", "-f", local, ":sent"],
                lambda _: read(sent) == data,
            ),
            (
                f"copying {SIZE} bytes from the board",
                ["cp", ":remote", received],
                lambda _: read(received) == data,
            ),
        ):
            ours, bare = [build.tool] + words, build.bare_tool(board) + words
            compare(title, board.environment, (ours, is_right), (bare, is_right), pairs)


main()
