"""The time from opening the Device window to its last row, of a directory of 5,000 files, against
the bare tool's ls of the same directory; the longest stall of the user-interface thread meanwhile;
the cost of a row of the table.

Usage: measure_window.py BUILD_FOLDER [PAIRS]
"""

import os
import statistics
import subprocess
import sys

from programs import Build, VirtualBoard, seconds

FILES = 5000
ROWS = 100000


def main():
    build = Build(sys.argv[1])
    pairs = int(sys.argv[2]) if len(sys.argv) > 2 else 10
    program = os.path.join(build.folder, "benchmarks", "open_window")
    with VirtualBoard(build) as board:
        environment = dict(board.environment, QT_QPA_PLATFORM="offscreen")
        for number in range(FILES):
            with open(os.path.join(board.files, f"file_{number:04}.txt"), "w") as file:
                file.write("x" * (number % 100))

        def numbers(*words):
            command = [program, build.plugin, *words]
            output = subprocess.run(command, env=environment, stdout=subprocess.PIPE, check=True)
            return [float(word) for word in output.stdout.split()]

        def bare():
            is_right = lambda output: output.count(b"\n") == FILES + 1
            return 1000 * seconds([build.tool, "ls"], environment, is_right)

        numbers(str(FILES)), bare()  # Does not count.
        results = [(numbers(str(FILES)), bare()) for _ in range(pairs)]
        ratio = statistics.median(ours[0] / other for ours, other in results)
        print(
            f"window until its last of {FILES} rows: "
            f"{statistics.median(ours[0] for ours, _ in results):.1f} ms, the bare tool "
            f"{statistics.median(other for _, other in results):.1f} ms, "
            f"median ratio {ratio:.3f} of {pairs} pairs; longest stall "
            f"{statistics.median(ours[1] for ours, _ in results):.1f} ms median, "
            f"{max(ours[1] for ours, _ in results):.1f} ms at most"
        )
        rows = [numbers(str(ROWS), "rows") for _ in range(5)]
        print(
            f"{ROWS} rows: {statistics.median(row[0] for row in rows):.1f} ms of the "
            f"user-interface thread, {statistics.median(row[1] for row in rows):.0f} bytes a row"
        )


main()
