"""Measures the total time of running a one-line script with the editor in batch mode, including its
start, and compares it with mpremote's own run of the same script on the same virtual board.

Usage: measure_run.py BUILD_FOLDER [PAIRS]
"""

import os
import sys
import tempfile

from programs import Build, VirtualBoard, compare


def main():
    build = Build(sys.argv[1])
    pairs = int(sys.argv[2]) if len(sys.argv) > 2 else 20
    with tempfile.TemporaryDirectory() as folder, VirtualBoard(build) as board:
        script = os.path.join(folder, "one_line.py")
        with open(script, "w") as file:
            file.write("print('one line')\n")

        def is_right(output):
            return output == b"one line\r\n"

        compare(
            "running a one-line script",
            board.environment,
            ([build.editor, "--document", script, "--batch", "run"], is_right),
            (build.bare_tool(board) + ["run", script], is_right),
            pairs,
        )


main()
