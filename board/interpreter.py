"""Runs in the board's MicroPython and executes the requests of the serial side.

Descriptor 3 is a socket to the serial side. All messages consist of a header of
18 bytes, "KIND SEQUENCE LENGTH", and a text. The kinds of requests are E
(statements), S (one interactive line) and F (the name of a file on the board).
The first request is P: its sequence number is a descriptor and its text a filter,
by which the process confines itself; its answer says what that could not forbid.
A request is answered by C as soon as it is compiled, since only then it may be
interrupted, and at its end by N (finished normally), E (failed with this
traceback) or X (called sys.exit). Meanwhile, B sends binary output, and L says
whether the text output that follows has the line ends of a serial line; the
serial side confirms both by B. K is the number of the character that interrupts
the program, and R resets the board for a cause. Standard input and output are used only by
the program.
"""
import builtins
import gc
import io
import micropython
import os
import sys
import time
import vfs

import hardware
from confinement import confine
from flash import MODULES, Flash
from stand_ins import hide_computer

HEADER_SIZE = 18
# A message must fit into the socket's buffer, so that an interrupt cannot split it.
TRACEBACK_LIMIT = 32000
OUTPUT_LIMIT = 16384
GET_FILENO = 10  # The request of poll to a stream.
INTERRUPTED = "Traceback (most recent call last):\nKeyboardInterrupt: \n"
OWN_FOLDER = sys.path[0]
OWN_FRAMES = ['  File "' + path for path in (__file__, OWN_FOLDER + "/", MODULES + "/")]

real_input = input
real_micropython = micropython
real_sys = sys


def message(kind, sequence, text=b""):
    return b"%s%08d %08d" % (kind, sequence, len(text)) + text


# Made in advance, since the watchdog sends one in a signal handler.
RESET_MESSAGES = [message("R", 0, b"%d" % cause) for cause in range(5)]


class SerialSide:
    """Sends messages and waits until they are confirmed."""

    def __init__(self, channel):
        self.channel = channel
        self.sequence = 0

    def tell(self, kind, text):
        self.sequence += 1
        self.channel.write(message(kind, self.sequence, text))
        # An interrupted call leaves its confirmation behind.
        while int(self.channel.read(HEADER_SIZE)[1:9]) != self.sequence:
            pass


class BinaryOutput(io.IOBase):
    """Standard output without the conversion of line ends, in order with the text."""

    def __init__(self, serial):
        self.serial = serial

    # Of a stream, with an optional length, or offset and length.
    def write(self, data, *limits):
        data = data.encode() if isinstance(data, str) else bytes(data)
        if limits:
            start = limits[0] if len(limits) > 1 else 0
            data = data[start : start + limits[-1]]
        for start in range(0, len(data), OUTPUT_LIMIT):
            self.serial.tell("B", data[start : start + OUTPUT_LIMIT])
        return len(data)

    def flush(self):
        pass


class TextOutput(io.IOBase):
    def __init__(self, buffer):
        self.buffer = buffer

    def write(self, *arguments):
        return real_sys.stdout.write(*arguments)

    def ioctl(self, request, _argument):
        return real_sys.stdout.fileno() if request == GET_FILENO else 0

    def __getattr__(self, name):
        return getattr(real_sys.stdout, name)


class TextInput(io.IOBase):
    """Standard input as on a board: CR is read as LF, and the input never ends."""

    def __init__(self, buffer):
        self.buffer = buffer

    def character(self):
        first = self.buffer.read(1)
        following = (first >= b"\xc0") + (first >= b"\xe0") + (first >= b"\xf0")
        return "\n" if first == b"\r" else str(first + self.buffer.read(following), "utf8")

    def read(self, size=-1):
        characters = []
        while len(characters) != size:
            characters.append(self.character())
        return "".join(characters)

    def readline(self, size=-1):
        characters = []
        while len(characters) != size and characters[-1:] != ["\n"]:
            characters.append(self.character())
        return "".join(characters)

    def readinto(self, target, *limit):
        count = self.buffer.readinto(target, *limit)
        for i in range(count):
            if target[i] == 13:
                target[i] = 10
        return count

    def ioctl(self, request, _argument):
        return self.buffer.fileno() if request == GET_FILENO else 0

    def __iter__(self):
        return self

    def __next__(self):
        return self.readline()

    def __getattr__(self, name):
        return getattr(real_sys.stdin, name)


def input_function(serial):
    # The interpreter's own function edits the line and echoes it with CR LF.
    def input(prompt=""):
        print(prompt, end="")
        serial.tell("L", b"1")
        try:
            return real_input()
        finally:
            serial.tell("L", b"0")

    return input


class System:
    """Stands in for the module sys, whose standard streams cannot be replaced."""

    # Attributes of the class, since those of an object are the module's.
    stdin = None
    stdout = None

    def __getattr__(self, name):
        return getattr(real_sys, name)

    def __setattr__(self, name, value):
        setattr(real_sys, name, value)


class Micropython:
    """Stands in for the module micropython: the serial side recognises the interrupts."""

    def __init__(self, channel):
        self.channel = channel

    # The interpreter's own emergency buffer always exists.
    def alloc_emergency_exception_buf(self, _size):
        pass

    def kbd_intr(self, character):
        self.channel.write(message("K", 0, b"%d" % character))

    def __getattr__(self, name):
        return getattr(real_micropython, name)


def traceback_text(error):
    text = io.StringIO()
    sys.print_exception(error, text)
    lines = text.getvalue().split("\n")
    lines = [line for line in lines if not any(line.startswith(frame) for frame in OWN_FRAMES)]
    return "\n".join(lines)[-TRACEBACK_LIMIT:]


def report(error):
    real_sys.stdout.write(traceback_text(error))


def source_and_name(mode, text):
    if mode != "F":
        return text, "<stdin>"
    name = str(text, "utf8")
    try:
        os.stat(name)
    except OSError:
        return b"", name
    with open(name, "rb") as file:
        return file.read(), name


def execute(channel, sequence, mode, length, namespace):
    try:
        code = receive_code(channel, mode, length)
        channel.write(message("C", sequence))
        exec(code, namespace)
        return "N", ""
    except SystemExit:
        return "X", ""
    except KeyboardInterrupt as error:
        # Whoever stops a program expects an idle board, except at the prompt.
        if mode != "S":
            board.power_on()
        return "E", traceback_text(error)
    except BaseException as error:
        return "E", traceback_text(error)


def receive(channel, length):
    try:
        return channel.read(length)
    except MemoryError:
        while length > 0:  # Skip the source, so that the next request can be read.
            length -= len(channel.read(min(length, 4096)))
        raise MemoryError("the program is larger than the board's memory")


# Returns the code alone, so that the source takes no memory while the program runs.
def receive_code(channel, mode, length):
    source, name = source_and_name(mode, receive(channel, length))
    return compile(source, name, "single" if mode == "S" else "exec")


def confined(channel):
    header = channel.read(HEADER_SIZE)
    return confine(int(header[1:9]), channel.read(int(header[10:18])))


def serve(channel, text):
    namespace = {"__name__": "__main__"}
    # The sequence number of the request that has not been answered, at first P.
    sequence = 0
    status = "N"
    while True:
        try:
            if sequence is not None:
                # Sent again if an interrupt occurs here; the serial side ignores the second one.
                channel.write(message(status, sequence, text.encode()))
                sequence = None
            header = channel.read(HEADER_SIZE)
            if len(header) < HEADER_SIZE:
                return
            if header[:1] == b"B":
                continue  # The confirmation of an interrupted message.
            status, text = "E", INTERRUPTED
            sequence = int(header[1:9])
            status, text = execute(
                channel, sequence, chr(header[0]), int(header[10:18]), namespace
            )
        except KeyboardInterrupt:
            pass


def use_folder_as_file_system(folder, modules):
    vfs.umount("/")
    vfs.mount(Flash(folder, modules), "/")
    os.chdir("/")
    # The board's own files take precedence over these modules, and these over the interpreter's.
    sys.path[:] = ["", ".frozen", "/lib", MODULES]
    sys.argv[:] = []


control = open(3, "r+b")
hardware.block = hardware.map_block(int(sys.argv[2]))
hide_computer()
use_folder_as_file_system(sys.argv[1], OWN_FOLDER + "/modules")
for name in ("confinement", "flash", "hardware", "stand_ins"):
    del sys.modules[name]
board = hardware.Hardware(lambda cause: control.write(RESET_MESSAGES[cause]), report)
hardware.board = board
sys.modules["_board"] = hardware
serial = SerialSide(control)
System.stdin = TextInput(real_sys.stdin.buffer)
System.stdout = TextOutput(BinaryOutput(serial))
builtins.input = input_function(serial)
sys.modules["sys"] = sys.modules["usys"] = System()
sys.modules["micropython"] = Micropython(control)
reachable = confined(control)
gc.collect()  # Leaves the whole heap to programs but for what this script needs.
try:
    serve(control, reachable)
except MemoryError:
    pass  # An interrupt has cut off a garbage collection, which leaves the heap locked.
