"""The whole time of the editor's batch run of a one-line script, its own start included, against the
bare tool's run of the same script on the same virtual board, in alternating pairs.

Usage: measure_run.py BUILD_FOLDER [PAIRS]
"""

import os
import statistics
import sys
import tempfile

from programs import VirtualBoard, seconds


def main():
    build = sys.argv[1]
    pairs = int(sys.argv[2]) if len(sys.argv) > 2 else 20
    editor = os.path.join(build, "bin", "quilp-editor")
    tool = os.path.join(build, "lib", "quilp", "Quilp.bundle", "Resources", "mpremote", "mpremote.py")
    with tempfile.TemporaryDirectory() as folder, VirtualBoard(build) as board:
        script = os.path.join(folder, "one_line.py")
        with open(script, "w") as file:
            file.write("print('one line')\n")
        commands = {
            "editor": [editor, "--document", script, "--batch", "run"],
            "tool": [tool, "run", script],
        }
        expected = b"one line\r\n"
        times = {name: [] for name in commands}
        for name, command in commands.items():
            seconds(command, board.environment, expected)  # Warm caches.
        for _ in range(pairs):
            for name, command in commands.items():
                times[name].append(seconds(command, board.environment, expected))
    ratios = [one / other for one, other in zip(times["editor"], times["tool"])]
    for name, values in times.items():
        print(f"run of one line, {name}: median {1000 * statistics.median(values):.1f} ms")
    print(f"run of one line, editor / tool: median ratio {statistics.median(ratios):.3f} of {pairs} pairs")


main()
