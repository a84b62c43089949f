"""Measures the total time of listing and parsing a directory of 5,000 files, and compares it with
mpremote's own ls of the same directory on the same virtual board.

Usage: measure_listing.py BUILD_FOLDER [PAIRS]
"""

import os
import sys

from programs import Build, VirtualBoard, compare

FILES = 5000


def main():
    build = Build(sys.argv[1])
    pairs = int(sys.argv[2]) if len(sys.argv) > 2 else 10
    with VirtualBoard(build) as board:
        os.mkdir(os.path.join(board.files, "many"))
        for number in range(FILES):
            with open(os.path.join(board.files, "many", f"file_{number:04}.txt"), "w") as file:
                file.write("x" * (number % 100))
        compare(
            f"listing {FILES} files",
            board.environment,
            (
                [os.path.join(build.folder, "benchmarks", "list_directory"), build.plugin, "/many"],
                lambda output: output == b"%d\n" % FILES,
            ),
            (
                build.bare_tool(board) + ["ls", "/many"],
                lambda output: output.count(b"\n") == FILES + 1,
            ),
            pairs,
        )


main()
