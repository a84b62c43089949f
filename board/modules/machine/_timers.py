"""The classes Timer and WDT."""

from _board import board

_TIMER_IDS = range(-1, 15)  # The virtual timers, and hardware timers of usual boards.
_hardware_timers = {}


class Timer:
    ONE_SHOT, PERIODIC = 0, 1

    def __init__(self, id=-1, **options):
        if id not in _TIMER_IDS:
            raise ValueError("Timer doesn't exist")
        self._id = id
        self.period = self.delay = self.due = 0  # Microseconds.
        self.callback = None
        if options:
            self.init(**options)

    def init(self, *, mode=PERIODIC, period=-1, freq=-1, tick_hz=1000, callback=None, hard=False):
        if mode not in (self.ONE_SHOT, self.PERIODIC):
            raise ValueError("invalid mode")
        if freq != -1:
            if freq <= 0:
                raise ValueError("freq must be positive")
            delay = int(1_000_000 / freq)
        else:
            delay = int(period * 1_000_000 / tick_hz)
            if period < 0:
                raise ValueError("period must not be negative")
        self.deinit()
        self.delay = max(1, delay)
        self.period = self.delay if mode == self.PERIODIC else 0
        self.callback = callback
        if self._id >= 0:
            if self._id in _hardware_timers:
                _hardware_timers[self._id].deinit()
            _hardware_timers[self._id] = self
        if callback:
            board.start_timer(self)

    def deinit(self):
        board.stop_timer(self)

    def __repr__(self):
        return "Timer(%d)" % self._id


class WDT:
    """Resets the board when it is not fed; a soft reset or stopping the program ends that."""

    def __init__(self, id=0, timeout=5000):
        if id != 0:
            raise ValueError("WDT(%s) doesn't exist" % id)
        if timeout < 1:
            raise ValueError("timeout too small")
        self._microseconds = timeout * 1000
        self.feed()

    def feed(self):
        board.feed_watchdog(self._microseconds)
