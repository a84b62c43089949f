"""The class UART. Nothing is connected, so nothing is received."""

import io
import time
from machine.pin import Pin

_POLL_REQUEST, _WRITABLE, _ERROR = 3, 4, -1


class UART(io.IOBase):
    INV_TX, INV_RX = 1, 2
    RTS, CTS = 1, 2
    IRQ_RXIDLE, IRQ_TXIDLE, IRQ_BREAK = 1, 2, 4
    _DEFAULT_PINS = ((0, 1), (4, 5), (8, 9))  # TX and RX

    def __init__(self, id, *arguments, tx=None, rx=None, **options):
        if id not in (0, 1, 2):
            raise ValueError("UART(%s) doesn't exist" % id)
        self._timeout = 0
        default_tx, default_rx = self._DEFAULT_PINS[id]
        self.init(
            *arguments,
            tx=default_tx if tx is None else tx,
            rx=default_rx if rx is None else rx,
            **options
        )

    def init(
        self, baudrate=9600, bits=8, parity=None, stop=1, *, tx=None, rx=None, timeout=0, **options
    ):
        if baudrate <= 0 or bits not in (5, 6, 7, 8, 9) or stop not in (1, 1.5, 2):
            raise ValueError("invalid baudrate, bits or stop")
        if tx is not None:
            Pin(tx).init(Pin.OUT, value=1)
        if rx is not None:
            Pin(rx).init(Pin.IN, Pin.PULL_UP)
        self._timeout = timeout

    def deinit(self):
        pass

    def any(self):
        return 0

    def _receive(self, *arguments):
        time.sleep_ms(self._timeout)

    read = readinto = readline = _receive

    def write(self, buffer):
        return len(buffer)

    def sendbreak(self):
        pass

    def flush(self):
        pass

    def txdone(self):
        return True

    def irq(self, handler=None, trigger=0, hard=False):
        pass

    def ioctl(self, request, argument):
        return argument & _WRITABLE if request == _POLL_REQUEST else _ERROR
