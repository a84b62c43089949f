"""The classes Pin and Signal."""

import _board
from _board import PinBase, DRIVE, MODE, OUT, PINS, PIN_COUNT, PIN_SIZE, PULL, RISING, FALLING, block

_LED = PIN_COUNT - 1
_LED_NAMES = ("LED", "WL_GPIO0")
_NAME_STARTS = ("GP", "GPIO")  # With a number: names of the board and of its processor.
_NAMED_COUNT = 30


def _index(name):
    if isinstance(name, Pin):
        return name._index
    if isinstance(name, int):
        if 0 <= name < _LED:
            return name
        raise ValueError("invalid pin")
    if name in _LED_NAMES:
        return _LED
    for start in _NAME_STARTS:
        number = name[len(start) :] if isinstance(name, str) else ""
        if number.isdigit() and int(number) < _NAMED_COUNT and name == start + str(int(number)):
            return int(number)
    raise ValueError('unknown named pin "%s"' % name)


class _Names:
    def __getattr__(self, name):
        try:
            return Pin(name)
        except ValueError:
            raise AttributeError(name)


class _Irq:
    def __init__(self, pin, handler, trigger):
        self.pin, self.handler = pin, handler
        self._trigger = trigger
        self._flags = 0
        self._rising = block[pin._record + RISING]
        self._falling = block[pin._record + FALLING]

    def trigger(self, trigger=None):
        before = self._trigger
        if trigger is not None:
            self._trigger = trigger
        return before

    def flags(self):
        return self._flags

    def take_edge(self):
        """Whether the handler must be called for an edge that it has not seen."""
        record = self.pin._record
        while True:
            rising = (block[record + RISING] - self._rising) & 0xFF
            falling = (block[record + FALLING] - self._falling) & 0xFF
            if not rising and not falling:
                return False
            # They alternate, and the last one has led to the present level.
            is_rising = rising > falling or rising == falling and not self.pin.value()
            if is_rising:
                self._rising = (self._rising + 1) & 0xFF
            else:
                self._falling = (self._falling + 1) & 0xFF
            self._flags = Pin.IRQ_RISING if is_rising else Pin.IRQ_FALLING
            if self._flags & self._trigger:
                return True


class Pin(PinBase):
    IN, OUT, OPEN_DRAIN, ALT, ANALOG = 0, 1, 2, 3, 4
    PULL_UP, PULL_DOWN = 1, 2
    IRQ_FALLING, IRQ_RISING = 4, 8
    DRIVE_0, DRIVE_1, DRIVE_2, DRIVE_3 = 0, 1, 2, 3
    board = cpu = _Names()

    def __init__(self, id, mode=-1, pull=-1, *, value=None, drive=DRIVE_1, alt=-1):
        self._index = _index(id)
        self._record = PINS + self._index * PIN_SIZE
        self._out = self._record + OUT
        self._drive = drive
        if mode != -1 or pull != -1 or value is not None:
            self.init(mode, pull, value=value, drive=drive, alt=alt)

    def init(self, mode=-1, pull=-1, *, value=None, drive=DRIVE_1, alt=-1):
        if mode not in (-1, None, 0, 1, 2, 3, 4):
            raise ValueError("invalid pin mode")
        if pull not in (-1, None, 0, 1, 2):
            raise ValueError("invalid pin pull")
        self._drive = drive
        if value is not None:
            block[self._out] = 1 if value else 0
        if pull != -1:
            block[self._record + PULL] = pull or 0
        if mode not in (-1, None):
            block[self._record + MODE] = mode + 1 if mode < self.ALT else 1

    def value(self, level=None):
        if level is None:
            return self._level()
        block[self._out] = 1 if level else 0

    def _level(self):
        record = self._record
        mode = block[record + MODE] - 1
        if mode == 1 or mode == 2 and not block[self._out]:
            return block[self._out]
        if block[record + DRIVE]:
            return block[record + DRIVE] - 1
        return 1 if mode == 2 or block[record + PULL] == 1 else 0

    __call__ = value

    def on(self):
        block[self._out] = 1

    def off(self):
        block[self._out] = 0

    high, low = on, off

    def toggle(self):
        block[self._out] ^= 1

    def mode(self, mode=-1):
        if mode == -1:
            return max(0, block[self._record + MODE] - 1)
        self.init(mode)

    def pull(self, pull=-1):
        if pull == -1:
            return block[self._record + PULL] or None
        self.init(pull=pull)

    def drive(self, drive=None):
        if drive is None:
            return self._drive
        self._drive = drive

    def irq(
        self,
        handler=None,
        trigger=IRQ_FALLING | IRQ_RISING,
        *,
        priority=1,
        wake=None,
        hard=False
    ):
        if not trigger & 12 or trigger & ~12:
            raise ValueError("invalid trigger")
        irq = _Irq(self, handler, trigger)
        _board.board.set_irq(self._index, irq if handler else None)
        return irq

    def __repr__(self):
        name = '"LED"' if self._index == _LED else "GPIO%d" % self._index
        mode = ("IN", "OUT", "OPEN_DRAIN", "ALT", "ANALOG")[self.mode()]
        pull = ("", ", pull=PULL_UP", ", pull=PULL_DOWN")[self.pull() or 0]
        return "Pin(%s, mode=%s%s)" % (name, mode, pull)


class Signal:
    """A pin with a logical value; or the arguments of one."""

    def __init__(self, pin, *arguments, invert=False, **options):
        self._pin = pin if hasattr(pin, "value") else Pin(pin, *arguments, **options)
        self._invert = bool(invert)

    def value(self, level=None):
        if level is None:
            return self._pin.value() ^ self._invert
        self._pin.value(bool(level) ^ self._invert)

    __call__ = value

    def on(self):
        self.value(1)

    def off(self):
        self.value(0)
