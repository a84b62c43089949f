"""Functions of the board's hardware. Its classes are loaded when they are used for the first time."""

import _board
import time
from _board import soft_reset, time_pulse_us

PWRON_RESET, HARD_RESET, WDT_RESET, DEEPSLEEP_RESET, SOFT_RESET = 1, 2, 3, 4, 5

# The commands of the serial side know the board by the same number.
_UNIQUE_ID = b"\x01\x23\x45\x67\x89\xab"
_MIN_FREQUENCY, _MAX_FREQUENCY = 10_000_000, 300_000_000
_MODULES = {
    "Pin": "pin",
    "Signal": "pin",
    "ADC": "analog",
    "PWM": "analog",
    "Timer": "timers",
    "WDT": "timers",
    "RTC": "rtc",
    "I2C": "i2c",
    "SoftI2C": "i2c",
    "SPI": "spi",
    "SoftSPI": "spi",
    "UART": "uart",
    "mem8": "memory",
    "mem16": "memory",
    "mem32": "memory",
    "bitstream": "pixels",
}
_frequency = 125_000_000


def __getattr__(name):
    if name not in _MODULES:
        raise AttributeError("module 'machine' has no attribute '" + name + "'")
    module = __import__("machine." + _MODULES[name], None, None, (name,))
    globals()[name] = getattr(module, name)
    return globals()[name]


def unique_id():
    return _UNIQUE_ID


def freq(hertz=None):
    global _frequency
    if hertz is None:
        return _frequency
    if not _MIN_FREQUENCY <= hertz <= _MAX_FREQUENCY:
        raise ValueError("cannot change frequency")
    _frequency = hertz


def reset():
    _board.board.reset(HARD_RESET)


def reset_cause():
    return _board.block[_board.RESET_CAUSE]


def disable_irq():
    return _board.board.enable(False)


def enable_irq(state=True):
    _board.board.enable(state)


def idle():
    time.sleep_ms(1)


def lightsleep(milliseconds=None):
    """Without a time, waits for an interrupt or a timer."""
    if milliseconds is not None:
        return time.sleep_ms(milliseconds)
    calls = _board.board.calls
    while _board.board.calls == calls:
        time.sleep_ms(10)


def deepsleep(milliseconds=None):
    """Without a time, sleeps until something resets the board."""
    _board.board.power_on()
    while milliseconds is None:
        time.sleep(1)
    time.sleep_ms(milliseconds)
    _board.board.reset(DEEPSLEEP_RESET)
