"""What a typed character costs the user-interface thread, and the longest stall while 200 of them are
typed: in a small document, in a large one, and in a small one while a program floods the worksheet.

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
    """A Python file of that size; returns the number of its lines."""
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

        def show(what, path, line, *words):
            command = [program, build.plugin, path, str(line), *words]
            rounds = []
            for _ in range(ROUNDS):
                # Qt says of its platform without a screen what that cannot do.
                done = subprocess.run(command, env=environment, check=True, capture_output=True, timeout=60)
                rounds.append([float(word) for word in done.stdout.split()])
            each, stalls = (sorted(side) for side in zip(*rounds))
            print(
                f"typing into {what}: {each[ROUNDS // 2]:.2f} ms a character, longest stall "
                f"{stalls[ROUNDS // 2]:.1f} ms median, {stalls[-1]:.1f} ms at most of {ROUNDS}",
                flush=True,
            )

        small, large = (os.path.join(folder, name) for name in ("small.py", "large.py"))
        lines_of_small = write_functions(small, 2000)
        lines = write_functions(large, LARGE)
        show("a small document", small, lines_of_small)
        show("5 MB, at the start", large, 1)
        show("5 MB, in the middle", large, lines // 2)
        show("5 MB, at the end", large, lines)
        show("a small document during a flood", small, lines_of_small, "flood")


main()
