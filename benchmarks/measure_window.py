"""Measures the time from opening the Device window on a directory of 5,000 files until its last row
is painted, compared with mpremote's own ls of the same directory; the longest stall of the
user-interface thread during that time; and the cost of a row of the table.

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
            return 1000 * seconds(build.bare_tool(board) + ["ls"], environment, is_right)

        ours = lambda: numbers(str(FILES))[0]
        ours(), bare()  # Warm-up.
        times = [(ours(), bare()) for _ in range(pairs)]
        our_median, bare_median = (statistics.median(side) for side in zip(*times))
        print(
            f"opening the window until the last of {FILES} rows: {our_median:.1f} ms, mpremote alone "
            f"{bare_median:.1f} ms, median ratio "
            f"{statistics.median(one / other for one, other in times):.3f} of {pairs} pairs"
        )
        stalls = [numbers(str(FILES), "stalls")[0] for _ in range(5)]
        print(
            f"longest stall of the user-interface thread during that time: "
            f"{statistics.median(stalls):.1f} ms (median), {max(stalls):.1f} ms (maximum) of 5 runs"
        )
        rows = [numbers(str(ROWS), "rows") for _ in range(5)]
        print(
            f"{ROWS} rows: {statistics.median(row[0] for row in rows):.1f} ms of the "
            f"user-interface thread, {statistics.median(row[1] for row in rows):.0f} bytes per row"
        )


main()
