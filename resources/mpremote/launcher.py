"""Runs mpremote with additions.

mpremote finds one serial port only if an environment variable names it: QUILP_BOARD, the path of the
port or of a link to it, or else QUILP_VIRTUAL_BOARD, a link to a virtual board, which mpremote does not
find otherwise. This holds also while that board is in use or unplugged: a command never reaches another
board instead.

While a program runs on the board that "run" or "exec" has started, what arrives on standard input is
sent to it as it is. A line for the program ends with "\r", as from a terminal. The end of the input is
not sent; a program that reads with input() recognises "\x04".

If the environment variable QUILP_MOUNT names a folder, "run PATH" becomes "mount FOLDER run PATH".

If mpremote is terminated, its terminal is closed, or its output pipe is closed, it first interrupts
the program on the board. Without this, the program would keep running.

If the environment variable QUILP_PROGRESS is the number of an open descriptor, lines such as "1024 4096"
are written to it while files are copied: the bytes that were copied, and those of all files, as far as
that is known.

mpremote starts and communicates faster than by itself (lazy_imports.py, fast_transport.py). The
environment variable QUILP_PLAIN_MPREMOTE=1 turns this off.
"""

import os
import select
import signal
import sys


def open_standard_streams():
    """Opens those that are closed, so that no other file gets their descriptors."""
    for descriptor, name in enumerate(("stdin", "stdout", "stderr")):
        try:
            os.fstat(descriptor)
        except OSError:
            os.open(os.devnull, os.O_RDWR)
            setattr(sys, name, open(descriptor, "r" if name == "stdin" else "w"))


open_standard_streams()

import contextlib
import errno
import io
import termios
import threading
import time

# mpremote.py puts this folder first, where "mpremote" would be that file.
OWN_FOLDER = os.path.dirname(os.path.realpath(__file__))
sys.path[:] = [folder for folder in sys.path if os.path.realpath(folder) != OWN_FOLDER]
# A bundled mpremote is located next to the plug-in's bundle. Otherwise it is installed for Python.
BUNDLED_MPREMOTE = os.path.realpath(os.path.join(__file__, "../../../../mpremote"))
if os.path.isdir(BUNDLED_MPREMOTE):
    sys.path.insert(0, BUNDLED_MPREMOTE)
sys.path.insert(0, OWN_FOLDER)

import fast_transport
import lazy_imports

sys.path.remove(OWN_FOLDER)

import serial
import serial.tools.list_ports
from serial.tools.list_ports_common import ListPortInfo

INTERRUPT = b"\r\x03"
LEAVE_RAW_REPL = b"\r\x02"
END_OF_OUTPUT = b"\x04"  # Follows what a program prints.
INPUT_SIZE = 4096  # Bytes that are read at once. More are read when these have been sent.
OUTPUT_SIZE = 65536  # Bytes of output that may wait for their reader.
MOUNT_REQUEST = b"\x18"  # Begins a request of a board on which a folder is mounted.
IS_FOLDER = 0x4000  # In the mode of a file.
REPORT_INTERVAL = 0.05  # Seconds between two reports of progress.
QUIET_TIME = 0.3  # Seconds without such requests before input is sent.


class VirtualBoardPort(ListPortInfo):
    def __init__(self, device):
        super().__init__(device)
        self.vid, self.pid = 0xF055, 0x0001
        self.serial_number = "0123456789ab"
        self.manufacturer = "MicroPython"
        self.product = "Virtual board"


def is_same(port, path):
    return os.path.realpath(port.device) == os.path.realpath(path)


def list_one_port():
    find_ports = serial.tools.list_ports.comports
    chosen, virtual = os.environ.get("QUILP_BOARD"), os.environ.get("QUILP_VIRTUAL_BOARD")

    def list_ports(*_args, **_kwargs):
        if not os.path.exists(chosen or virtual):
            return []
        ports = [port for port in find_ports() if is_same(port, chosen)] if chosen else []
        for port in ports:
            # mpremote does not choose a port without these.
            port.vid, port.pid = port.vid or 0, port.pid or 0
        path = os.path.realpath(chosen or virtual)
        if not ports and (not chosen or path.startswith("/dev/pts/")):
            ports = [VirtualBoardPort(path)]
        return ports

    if chosen or virtual:
        serial.tools.list_ports.comports = list_ports


def send_interrupt(port):
    # Bypass the port object, which may be in the middle of a call. The output that the board has not
    # received no longer matters, and the board may not be ready to receive it.
    termios.tcflush(port.fd, termios.TCOFLUSH)
    os.write(port.fd, INTERRUPT + LEAVE_RAW_REPL)


def interrupt_board_on_termination():
    open_ports = []

    class Port(fast_transport.ReturningPort):
        def open(self):
            super().open()
            open_ports.append(self)

        def close(self):
            if self in open_ports:
                open_ports.remove(self)
            super().close()

    def terminate(number, _frame):
        signal.signal(number, signal.SIG_IGN)
        for port in open_ports:
            try:
                send_interrupt(port)
            except (OSError, termios.error):
                pass  # Unplugged.
        os._exit(128 + number)

    serial.Serial = Port
    signal.signal(signal.SIGTERM, terminate)
    if signal.getsignal(signal.SIGHUP) != signal.SIG_IGN:  # Not with nohup.
        signal.signal(signal.SIGHUP, terminate)


def terminate_when_output_is_closed():
    output = select.poll()
    output.register(sys.stdout.fileno(), 0)  # Errors and hang-ups are always reported.

    def watch():
        output.poll()
        signal.pthread_kill(threading.main_thread().ident, signal.SIGTERM)

    threading.Thread(target=watch, daemon=True).start()


def read_output(port, serial_port):
    """Reads what serial_port has returned. `port` may be the object that performs requests: it reads
    single bytes, so it is only given what follows the beginning of a request."""
    if port is not serial_port and getattr(port, "buf", None) == b"":
        output = serial_port.returned.partition(MOUNT_REQUEST)[0]
        if output:
            return serial_port.read(len(output))
    return port.read(port.inWaiting())


class ProgramStreams:
    """Connects the program that runs on the board with standard input and output."""

    def __init__(self):
        self.takes_input = False  # Whether the next program does.
        self.has_sent_input = False  # To this program.
        self.is_input_open = True
        self.input = b""  # To be sent.
        self.quiet_since = 0.0  # The time of the last request for a mounted folder.
        self.output = bytearray()  # To be printed.

    def follow(self, port):
        """Returns at the end of the program's output."""
        sys.stdout.flush()
        self.has_sent_input = False
        self.quiet_since = time.monotonic()
        has_ended = self.receive(port)
        while self.output or not has_ended:
            readable, writable = self.wait(port, has_ended)
            if sys.stdout.fileno() in writable:
                # So many bytes do not block.
                del self.output[: os.write(sys.stdout.fileno(), self.output[: select.PIPE_BUF])]
            if sys.stdin.fileno() in readable:
                self.input = os.read(sys.stdin.fileno(), INPUT_SIZE)
                self.is_input_open = bool(self.input)
            has_ended = has_ended or self.receive(port)
            if port.fd in writable and not has_ended:
                self.send(port)

    def receive(self, port):
        """Reads what has arrived. Returns whether that includes the end."""
        # If a folder is mounted, the port is an object that performs the board's requests.
        serial_port = getattr(port, "orig_serial", port)
        serial_port.returned = serial_port.read(serial_port.in_waiting)
        if MOUNT_REQUEST in serial_port.returned:
            self.quiet_since = time.monotonic()
        while serial_port.returned and len(self.output) < OUTPUT_SIZE:
            data, end, rest = read_output(port, serial_port).partition(END_OF_OUTPUT)
            self.output += data
            if end:
                serial_port.returned = rest + serial_port.returned
                return True
        return False

    def send(self, port):
        with contextlib.suppress(BlockingIOError):
            self.input = self.input[os.write(port.fd, self.input) :]
            self.has_sent_input = True

    def time_to_wait(self, port):
        """How long input is held back: a board that waits for a reply drops what comes before it."""
        is_mounted = hasattr(port, "orig_serial")
        return max(0, self.quiet_since + QUIET_TIME - time.monotonic()) if is_mounted else 0

    def wait(self, port, has_ended):
        reading, writing, timeout = [], [], None
        if self.output:
            writing.append(sys.stdout.fileno())
        if not has_ended and len(self.output) < OUTPUT_SIZE:
            reading.append(port.fd)
        if self.takes_input and not has_ended:
            if self.input:
                timeout = self.time_to_wait(port) or None
                if timeout is None:
                    writing.append(port.fd)
            elif self.is_input_open:
                reading.append(sys.stdin.fileno())
        readable, writable, _ = select.select(reading, writing, [], timeout)
        return readable, writable


def connect_programs_with_standard_streams(tool, transport):
    streams = ProgramStreams()

    def with_input(perform):
        def perform_with_input(state, args):
            # The code of commands such as df is not the user's.
            streams.takes_input = (getattr(args, "expr", None) or args.path)[0] in sys.argv
            perform(state, args)
            streams.takes_input = False

        return perform_with_input

    follow_other = transport.follow

    def follow(self, timeout, data_consumer=None):
        if timeout is not None:
            return follow_other(self, timeout, data_consumer)
        streams.follow(self.serial)
        traceback = self.read_until(1, END_OF_OUTPUT, timeout=None)[:-1]
        if streams.has_sent_input:
            # The board takes what the program has not read for its own input, and may even reset, so
            # that its prompt appears several times.
            self.enter_raw_repl(soft_reset=False)
            mark = os.urandom(8).hex().encode()
            self.serial.write(b"print('" + mark + b"')\x04")
            self.read_until(1, mark + b"\r\n\x04\x04")
        return b"", traceback

    transport.follow = follow
    for name in ("run", "exec"):
        perform, parser = tool._COMMANDS[name]
        tool._COMMANDS[name] = with_input(perform), parser


def improve_mount(tool, transport_module):
    # The length of a name is that of its bytes.
    transport_module.fs_hook_code = transport_module.fs_hook_code.replace(
        " wstr = wbytes", " def wstr(self, s):\n  self.wbytes(s.encode())"
    )
    transport = transport_module.SerialTransport
    unmount = transport.umount_local

    def unmount_unless_reset(self):
        # A program that calls sys.exit resets the board, which unmounts the folder.
        with contextlib.suppress(transport_module.TransportExecError):
            unmount(self)

    transport.umount_local = unmount_unless_reset


def mount_folder_for_run(tool, folder):
    mount, parser = tool._COMMANDS["mount"]

    def mount_silently(state, args):
        with contextlib.redirect_stdout(io.StringIO()):
            mount(state, args)

    tool._COMMANDS["mount"] = mount_silently, parser
    sys.argv[1:1] = ["mount", folder]


def size_of(path):
    """The bytes of a file."""
    with contextlib.suppress(OSError):  # mpremote reports it.
        return os.path.getsize(path)
    return 0


def size_of_all(path):
    """The bytes of a file, or of all files in a folder but those in linked ones, which may lead back."""
    if not os.path.isdir(path):
        return size_of(path)
    return sum(
        size_of(os.path.join(folder, name)) for folder, _, names in os.walk(path) for name in names
    )


class CopyProgress:
    """Reports how much of all files of a command has been copied."""

    def __init__(self, descriptor):
        self.descriptor = descriptor
        self.total = 0  # As far as it is known.
        self.copied = 0  # The files that are finished.
        self.file_size = 0  # Of the present one.
        self.next_report = 0.0

    def report(self, size):
        done = self.copied + size
        total = max(self.total, self.copied + self.file_size)
        now = time.monotonic()
        if now >= self.next_report or done >= total:
            self.next_report = now + REPORT_INTERVAL
            with contextlib.suppress(OSError):  # Nobody reads it.
                os.write(self.descriptor, b"%d %d\n" % (done, total))

    def begin(self, transport, args):
        sources = args.path[:-1] if args.command[0] == "cp" else []
        measure = size_of_all if args.recursive else size_of
        self.total = sum(measure(path) for path in sources if not path.startswith(":"))
        self.copied = self.file_size = 0
        if sources and args.recursive:
            transport.fs_listdir = lambda *path: self.list_board(transport, *path)

    def list_board(self, transport, *path):
        """Of a folder on the board, all files are listed before the first one is copied."""
        entries = type(transport).fs_listdir(transport, *path)
        self.total += sum(entry.st_size for entry in entries if not entry.st_mode & IS_FOLDER)
        return entries

    def show(self, size, total_size):
        self.file_size = total_size
        self.report(size)

    def copy(self, copy_by_mpremote, state, source, *args, **kwargs):
        self.file_size = 0 if source.startswith(":") else size_of(source)
        copy_by_mpremote(state, source, *args, **kwargs)
        self.copied += self.file_size  # Also if the board has the same file already.
        self.file_size = 0
        self.report(0)


def report_progress(tool, commands):
    number = os.environ.pop("QUILP_PROGRESS", "")
    show = getattr(commands, "show_progress_bar", None)
    copy = getattr(commands, "do_filesystem_cp", None)
    if not number.isdigit() or not show or not copy:
        return
    try:
        os.set_blocking(int(number), False)
    except OSError:  # It is not open.
        return
    progress = CopyProgress(int(number))
    perform, parser = tool._COMMANDS["fs"]

    def perform_with_progress(state, args):
        state.ensure_raw_repl()
        progress.begin(state.transport, args)
        perform(state, args)

    def show_and_report(size, total_size, *args, **kwargs):
        show(size, total_size, *args, **kwargs)
        progress.show(size, total_size)

    tool._COMMANDS["fs"] = perform_with_progress, parser
    commands.show_progress_bar = show_and_report
    commands.do_filesystem_cp = lambda *args, **kwargs: progress.copy(copy, *args, **kwargs)


def load_tool():
    """Loads mpremote with the additions. Returns its main module."""
    is_plain = os.environ.get("QUILP_PLAIN_MPREMOTE") == "1"
    with contextlib.nullcontext() if is_plain else lazy_imports.deferred():
        from mpremote import commands, console, transport_serial
        from mpremote import main as tool

    if not is_plain:
        fast_transport.replace_slow_functions(transport_serial)
        fast_transport.show_returned_bytes_at_prompt(console.Console)
    connect_programs_with_standard_streams(tool, transport_serial.SerialTransport)
    improve_mount(tool, transport_serial)
    report_progress(tool, commands)
    return tool


def main():
    list_one_port()
    interrupt_board_on_termination()
    terminate_when_output_is_closed()
    tool = load_tool()
    if os.environ.get("QUILP_MOUNT") and sys.argv[1:2] == ["run"]:
        mount_folder_for_run(tool, os.environ["QUILP_MOUNT"])
    try:
        sys.exit(tool.main())
    except OSError as error:
        gone = (errno.EIO, errno.ENXIO, errno.ENODEV)
        if error.errno not in gone and not isinstance(error, serial.SerialException):
            raise
        # The tool would print where in its code it noticed.
        sys.exit("mpremote: the board was unplugged")
