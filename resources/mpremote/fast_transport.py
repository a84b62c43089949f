"""Makes mpremote's conversation with the board faster.

mpremote reads one byte at a time, sleeps while there is none, and copies files in small pieces. Each
replacement checks that this version of mpremote has the function that it replaces, with the same
parameters. Otherwise it leaves mpremote as it is.
"""

import contextlib
import errno
import select
import time

import serial

PIECE_OF_MPREMOTE = 256  # Bytes that mpremote copies at once.
PIECE = 1024


class ReturningPort(serial.Serial):
    returned = b""  # Bytes that were read too early. They are read again.

    @property
    def in_waiting(self):
        return len(self.returned) + super().in_waiting

    def read(self, size=1):
        data, self.returned = self.returned[:size], self.returned[size:]
        return data + super().read(size - len(data)) if len(data) < size else data


def has_parameters(function, *names):
    code = getattr(function, "__code__", None)
    return bool(code) and code.co_varnames[: code.co_argcount] == names


def read_port(port, seconds):
    """Returns what has arrived, at least one byte. Returns nothing after this time (None: never).
    Raises OSError if the board is unplugged."""
    if not port.inWaiting() and not select.select([port.fd], [], [], seconds)[0]:
        return b""
    return port.read(port.inWaiting() or 1)


def seconds_left(*deadlines):
    """Until the first of the deadlines, of which some or all may be None."""
    given = [deadline for deadline in deadlines if deadline is not None]
    return max(0, min(given) - time.monotonic()) if given else None


def read_when_bytes_arrive(transport):
    names = ("self", "min_num_bytes", "ending", "timeout", "data_consumer", "timeout_overall")
    read_until_of_mpremote = getattr(transport, "read_until", None)
    if not has_parameters(read_until_of_mpremote, *names):
        return

    def read_until(
        self, min_num_bytes, ending, timeout=10, data_consumer=None, timeout_overall=None
    ):
        port = self.serial
        if not isinstance(port, ReturningPort):  # A folder is mounted, or the port is not a local one.
            return read_until_of_mpremote(
                self, min_num_bytes, ending, timeout, data_consumer, timeout_overall
            )
        last = timeout_overall and time.monotonic() + timeout_overall
        data = b""
        while not data.endswith(ending):
            next_byte = None if timeout is None else time.monotonic() + timeout
            new = read_port(port, seconds_left(next_byte, last))
            if not new:
                break
            # The end mark may begin in what was received before.
            begin = 0 if data_consumer else max(0, len(data) - len(ending) + 1)
            data = new if data_consumer else data + new
            found = data.find(ending, begin)
            if found >= 0:
                end = found + len(ending)
                data, port.returned = data[:end], data[end:] + port.returned
            if data_consumer:
                data_consumer(data)
        return data

    transport.read_until = read_until


def show_returned_bytes_at_prompt(console):
    """The prompt waits for the port's descriptor, which does not tell of bytes that were returned."""
    wait_for_descriptor = getattr(console, "waitchar", None)
    if not has_parameters(wait_for_descriptor, "self", "pyb_serial"):
        return

    def waitchar(self, pyb_serial):
        if not getattr(pyb_serial, "returned", b""):
            wait_for_descriptor(self, pyb_serial)

    console.waitchar = waitchar


class PieceSize:
    """The size of the pieces in which files are copied to and from a board."""

    def __init__(self, error):
        self.transport_error = error
        self.size = PIECE

    def copy(self, copy_by_mpremote, transport, *args):
        """Calls copy_by_mpremote(transport, *args, size of pieces)."""
        try:
            return copy_by_mpremote(transport, *args, self.size)
        except self.transport_error as error:
            output = getattr(error, "error_output", None)
            is_timeout = output is None and "timeout" in str(error)
            if self.size == PIECE_OF_MPREMOTE or not (is_timeout or "MemoryError" in (output or "")):
                raise
        self.size = PIECE_OF_MPREMOTE
        if is_timeout:
            transport.enter_raw_repl(soft_reset=False)
        with contextlib.suppress(self.transport_error):
            # Two open files of one name could damage each other.
            transport.exec("f.close()")
        return copy_by_mpremote(transport, *args, self.size)


def copy_in_larger_pieces(transport, pieces):
    read_by_mpremote = getattr(transport, "fs_readfile", None)
    write_by_mpremote = getattr(transport, "fs_writefile", None)
    sizes = "chunk_size", "progress_callback"
    if not (
        all(hasattr(transport, name) for name in ("fs_stat", "exec", "enter_raw_repl"))
        and has_parameters(read_by_mpremote, "self", "src", *sizes)
        and has_parameters(write_by_mpremote, "self", "dest", "data", *sizes)
        and read_by_mpremote.__defaults__ == write_by_mpremote.__defaults__
        and read_by_mpremote.__defaults__ == (PIECE_OF_MPREMOTE, None)
    ):
        return

    def check_size(self, path, *sizes):
        if self.fs_stat(path).st_size not in sizes:
            raise OSError(errno.EIO, path)

    def fs_readfile(self, src, chunk_size=PIECE_OF_MPREMOTE, progress_callback=None):
        def read(self, chunk_size):
            return read_by_mpremote(self, src, chunk_size, progress_callback)

        if chunk_size != PIECE_OF_MPREMOTE:
            return read(self, chunk_size)
        data = pieces.copy(read, self)
        check_size(self, src, len(data), 0)  # Special files have no size.
        return data

    def fs_writefile(self, dest, data, chunk_size=PIECE_OF_MPREMOTE, progress_callback=None):
        def write(self, chunk_size):
            write_by_mpremote(self, dest, data, chunk_size, progress_callback)

        if chunk_size != PIECE_OF_MPREMOTE:
            return write(self, chunk_size)
        pieces.copy(write, self)
        check_size(self, dest, len(data))

    transport.fs_readfile, transport.fs_writefile = fs_readfile, fs_writefile


def replace_slow_functions(transport_module):
    transport = transport_module.SerialTransport
    read_when_bytes_arrive(transport)
    copy_in_larger_pieces(transport, PieceSize(transport_module.TransportError))
