"""Checks that what a board sends is received unchanged wherever the reads split it, and that only known
functions are replaced.

Usage: fast_transport_test.py FOLDER_OF_THE_LAUNCHER [SEED]
"""

import os
import random
import sys

sys.path.insert(0, sys.argv[1])
sys.dont_write_bytecode = True

import fast_transport

BANNER = b"raw REPL; CTRL-B to exit\r\n>"
OUTPUT = b"raw raw REPL; \xc3\xb6\x00\r\n" + bytes(range(5, 256)) + b"no line end: "
# What follows each other in a conversation, and what reads it: an end mark; an end mark with a
# consumer; or a number of bytes.
STREAM = (
    (b"\r\n>>> raw raw REPL; CTRL-B to exit\r\r\n>rraw REPL" + BANNER, "end", BANNER),
    (b"OK\r\nMPY: soft reboot\r\n", "end", b"soft reboot\r\n"),
    (BANNER[:-1], "end", BANNER[:-1]),
    (b">", "end", b">"),
    (b"R\x01", "count", 2),
    (b"\x20\x00", "count", 2),
    (b"\x01\x01\x04", "end", b"\x04"),
    (OUTPUT + b"\x04", "consumer", b"\x04"),
    (b"Traceback\r\n\x04", "end", b"\x04"),
    (b">", "end", b">"),
    (b"", "end", b""),
    (b"never ended", "end", b"\x04"),
)


class SplittingPort(fast_transport.ReturningPort):
    @property
    def in_waiting(self):
        count = super().in_waiting
        return random.randint(1, count) if count else 0


class Transport:
    def read_until(
        self, min_num_bytes, ending, timeout=10, data_consumer=None, timeout_overall=None
    ):
        raise NotImplementedError


class OtherTransport:
    def read_until(self, ending):
        raise NotImplementedError


def receive(transport, how, what):
    if how == "count":
        return transport.serial.read(what)
    consumed = []
    consumer = consumed.append if how == "consumer" else None
    data = transport.read_until(1, what, timeout=0, data_consumer=consumer)
    return b"".join(consumed) if consumer else data


def main():
    seed = int(sys.argv[2]) if len(sys.argv) > 2 else random.randrange(1 << 32)
    random.seed(seed)
    other = OtherTransport.read_until
    for transport in (Transport, OtherTransport):
        fast_transport.read_when_bytes_arrive(transport)
    if OtherTransport.read_until is not other:
        sys.exit("a function with other parameters was replaced")
    board, device = os.openpty()
    transport = Transport()
    transport.serial = SplittingPort(os.ttyname(device))
    for _ in range(300):
        os.write(board, b"".join(data for data, _, _ in STREAM))
        for wanted, how, what in STREAM:
            received = receive(transport, how, what)
            if received != wanted:
                sys.exit(f"seed {seed}: {how} {what}: {received!r} instead of {wanted!r}")


main()
