"""Measures the time that the user-interface thread needs for a typed character, and its longest stall
while 200 characters are typed: in a small document, in a large one, and in a small one while a program
floods the worksheet.

Usage: measure_typing.py BUILD_FOLDER
"""

import os
import subprocess
import sys
import tempfile

from programs import Build

FUNCTION = """def function_{0}(first, second):
    '''Adds two numbers.'''
    if first > {0}:
        return first + second  # {0}
    return [first, "text {0}", second]


"""
LARGE = 5_000_000  # bytes
ROUNDS = 3


def write_functions(path, size):
    """Writes a Python file of this size; returns the number of its lines."""
    number = 0
    functions = []
    while size > 0:
        functions.append(FUNCTION.format(number))
        size -= len(functions[-1])
        number += 1
    with open(path, "w") as file:
        file.writelines(functions)
    return number * FUNCTION.count("\n")


def main():
    build = Build(sys.argv[1])
    program = os.path.join(build.folder, "benchmarks", "type_in_editor")
    with tempfile.TemporaryDirectory() as folder:
        environment = dict(os.environ, QT_QPA_PLATFORM="offscreen", XDG_RUNTIME_DIR=folder)

        def show(where, path, line, *words):
            command = [program, build.plugin, path, str(line), *words]
            rounds = []
            for _ in range(ROUNDS):
                # Standard error contains messages of Qt's offscreen platform.
                done = subprocess.run(command, env=environment, check=True, capture_output=True, timeout=60)
                rounds.append([float(word) for word in done.stdout.split()])
            each, stalls = (sorted(side) for side in zip(*rounds))
            print(
                f"typing into {where}: {each[ROUNDS // 2]:.2f} ms per character, longest stall "
                f"{stalls[ROUNDS // 2]:.1f} ms (median), {stalls[-1]:.1f} ms (maximum) of {ROUNDS} runs",
                flush=True,
            )

        small, large = (os.path.join(folder, name) for name in ("small.py", "large.py"))
        small_lines = write_functions(small, 2000)
        large_lines = write_functions(large, LARGE)
        show("a small document", small, small_lines)
        show("a 5 MB document, at the start", large, 1)
        show("a 5 MB document, in the middle", large, large_lines // 2)
        show("a 5 MB document, at the end", large, large_lines)
        show("a small document during a flood of output", small, small_lines, "flood")


main()
