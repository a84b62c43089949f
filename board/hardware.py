"""The board's hardware: the state of its pins, interrupts, timers and the watchdog.

The state is in memory that is shared with the serial side, whose pin_block.h
describes it. So a program changes a pin without a system call.

A signal, SIGALRM, reports that a timer is due or that a pin has changed. It also
ends a wait, so callbacks run while the program sleeps. Its handler may run at
any time, also during a garbage collection: it allocates nothing, and lets the
interpreter call `dispatch` when that is possible.
"""
import ffi
import micropython
import struct
import uctypes
from machine import PinBase, soft_reset, time_pulse_us
from time import sleep, ticks_add, ticks_diff, ticks_us

# The header of the block.
INTERRUPT, HAS_EVENTS, RESETS, RESET_CAUSE = 0, 1, 2, 3
# The records of the pins, and the offsets in each.
PINS, PIN_SIZE, PIN_COUNT = 64, 20, 50
MODE, OUT, DRIVE, PULL, RISING, FALLING, PIXEL_SIZE = 0, 1, 2, 3, 4, 5, 6
DUTY, ANALOG, FREQUENCY, PIXELS = 8, 10, 12, 16
# The colours of the pixels that are connected to a pin.
STRIPS, STRIP_SIZE = 2048, 4096
BLOCK_SIZE = STRIPS + PIN_COUNT * STRIP_SIZE

SIGINT, SIGALRM = 2, 14
RETRY_MICROSECONDS = 5000
MIN_DELAY_MICROSECONDS = 200  # Leaves some time to the program, whatever its timers do.
# An interrupt waits so often for the end of a callback before it interrupts that.
MAX_DEFERRALS = 40

_libc = ffi.open(None)
_tgkill = _libc.func("i", "tgkill", "iii")
_setitimer = _libc.func("i", "setitimer", "ipp")
_pid = _libc.func("i", "getpid", "")()


def map_block(descriptor):
    map_memory = _libc.func("P", "mmap", "PLiiil")
    address = map_memory(0, BLOCK_SIZE, 3, 1, descriptor, 0)  # Readable, writable, shared.
    _libc.func("i", "close", "i")(descriptor)
    return uctypes.bytearray_at(address, BLOCK_SIZE)


def _on_alarm(function):
    """Returns what must be kept: a C function that calls this one with the heap locked."""
    handler = ffi.callback("v", function, "i", lock=True)
    action = bytearray(152)  # struct sigaction: the handler, the blocked signals, flags.
    struct.pack_into("P", action, 0, handler.cfun())
    for i in range(8, 136):
        action[i] = 0xFF  # An interrupt waits for the end of the handler.
    _libc.func("i", "sigaction", "ipp")(SIGALRM, action, None)
    return handler


block = None
board = None  # The only object of the following class.


class Hardware:
    def __init__(self, request_reset, report):
        self.request_reset = request_reset
        self.report = report  # Prints an exception.
        self.schedule = micropython.schedule
        self.timers = []
        self.irqs = {}
        self.calls = 0  # The number of callbacks that were called.
        self.watchdog_due = None
        self.is_enabled = True
        self.is_scheduled = False
        self.is_dispatching = False
        self.runs_again = False
        self.deferrals = 0
        self.dispatch_method = self.dispatch
        self.interval = bytearray(32)
        self.retry = struct.pack("llll", 0, RETRY_MICROSECONDS, 0, RETRY_MICROSECONDS)
        self.handler = _on_alarm(self.on_alarm)

    # In a signal handler.
    def on_alarm(self, _number):
        try:
            self.react()
        except KeyboardInterrupt:  # Was meant for the program, which had not noticed it yet.
            block[INTERRUPT] = 1
            _setitimer(0, self.retry, None)

    def react(self):
        if block[INTERRUPT]:
            return self.interrupt()
        if self.watchdog_due is not None and ticks_diff(ticks_us(), self.watchdog_due) >= 0:
            self.watchdog_due = None
            self.request_reset(3)
        if self.is_scheduled or not self.is_enabled:
            self.runs_again = True
            return
        try:
            self.is_scheduled = True
            self.schedule(self.dispatch_method, None)
        except RuntimeError:  # The queue is full.
            self.is_scheduled = False
            _setitimer(0, self.retry, None)

    # The interpreter ignores an exception that leaves a callback, so an interrupt waits for it.
    def interrupt(self):
        _setitimer(0, self.retry, None)
        is_in_callback = self.is_scheduled or self.is_dispatching
        if is_in_callback and self.deferrals < MAX_DEFERRALS:
            self.deferrals += 1
        else:
            self.deferrals = block[INTERRUPT] = 0
            _tgkill(_pid, _pid, SIGINT)

    def dispatch(self, _):
        self.is_dispatching = True
        self.runs_again = False
        try:
            self.deliver_edges()
            self.run_timers()
        except KeyboardInterrupt:
            block[INTERRUPT] = 1  # For the program.
        finally:
            self.arm()
            self.is_scheduled = False
            if self.runs_again:
                # Later, since a handler that interrupted this function would lose an interrupt.
                _setitimer(0, self.retry, None)
            # At the end: an interrupt that is sent from now on is raised in the program.
            self.is_dispatching = False

    def call(self, function, argument):
        self.calls += 1
        try:
            function(argument)
        except KeyboardInterrupt:
            block[INTERRUPT] = 1  # For the program.
        except BaseException as error:
            self.report(error)

    def deliver_edges(self):
        for irq in list(self.irqs.values()):
            while not block[INTERRUPT] and irq.take_edge():
                self.call(irq.handler, irq.pin)

    def run_timers(self):
        for timer in list(self.timers):
            late = ticks_diff(ticks_us(), timer.due)
            if late < 0 or block[INTERRUPT] or timer not in self.timers:
                continue
            if timer.period:
                # Calls that a slow callback has missed are not made up for.
                timer.due = ticks_add(timer.due, timer.period * (late // timer.period + 1))
            else:
                self.timers.remove(timer)
            self.call(timer.callback, timer)

    def arm(self):
        """Sets the time of the next alarm."""
        dues = [timer.due for timer in self.timers]
        if self.watchdog_due is not None:
            dues.append(self.watchdog_due)
        now = ticks_us()
        delays = [ticks_diff(due, now) for due in dues] + [RETRY_MICROSECONDS] * block[INTERRUPT]
        block[HAS_EVENTS] = bool(dues or self.irqs)
        delay = max(MIN_DELAY_MICROSECONDS, min(delays)) if delays else 0
        repeat = RETRY_MICROSECONDS if delays else 0
        struct.pack_into(
            "llll", self.interval, 0, 0, repeat, delay // 1_000_000, delay % 1_000_000
        )
        _setitimer(0, self.interval, None)

    def start_timer(self, timer):
        timer.due = ticks_add(ticks_us(), timer.period or timer.delay)
        if timer not in self.timers:
            self.timers.append(timer)
        self.arm()

    def stop_timer(self, timer):
        if timer in self.timers:
            self.timers.remove(timer)
            self.arm()

    def set_irq(self, index, irq):
        if irq is None:
            self.irqs.pop(index, None)
        else:
            self.irqs[index] = irq
        self.arm()

    def feed_watchdog(self, microseconds):
        is_new = self.watchdog_due is None
        self.watchdog_due = ticks_add(ticks_us(), microseconds)
        if is_new:
            self.arm()

    def enable(self, is_enabled):
        """Returns whether callbacks were enabled."""
        was_enabled = self.is_enabled
        self.is_enabled = is_enabled
        if is_enabled and not was_enabled:
            _tgkill(_pid, _pid, SIGALRM)
        return was_enabled

    def power_on(self):
        """Puts everything back to its state at power-on; levels from outside remain."""
        self.timers.clear()
        self.irqs.clear()
        self.watchdog_due = None
        self.is_enabled = True
        self.is_scheduled = self.is_dispatching = False
        block[INTERRUPT] = 0
        self.arm()
        for pin in range(PINS, PINS + PIN_COUNT * PIN_SIZE, PIN_SIZE):
            block[pin + MODE] = block[pin + OUT] = block[pin + PULL] = 0
            struct.pack_into("H", block, pin + DUTY, 0)
            struct.pack_into("IH", block, pin + FREQUENCY, 0, 0)
        block[RESETS] = (block[RESETS] + 1) & 0xFF

    def reset(self, cause):
        self.request_reset(cause)
        while True:
            sleep(1)  # This process is being ended.
