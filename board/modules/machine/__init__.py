"""The board's hardware."""

import _board
import time as _time
from _board import soft_reset, time_pulse_us
from machine._analog import ADC, PWM
from machine._i2c import I2C, SoftI2C
from machine._memory import mem8, mem16, mem32
from machine._pin import Pin, Signal
from machine._pixels import bitstream
from machine._rtc import RTC
from machine._spi import SPI, SoftSPI
from machine._timers import WDT, Timer
from machine._uart import UART

PWRON_RESET, HARD_RESET, WDT_RESET, DEEPSLEEP_RESET, SOFT_RESET = 1, 2, 3, 4, 5

# The commands of the serial side know the board by the same number.
_UNIQUE_ID = b"\x01\x23\x45\x67\x89\xab"
_MIN_FREQUENCY, _MAX_FREQUENCY = 10_000_000, 300_000_000
_frequency = 125_000_000


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
    _time.sleep_ms(1)


def lightsleep(milliseconds=None):
    """Without a time, waits for an interrupt or a timer."""
    if milliseconds is not None:
        return _time.sleep_ms(milliseconds)
    calls = _board.board.calls
    while _board.board.calls == calls:
        _time.sleep_ms(10)


def deepsleep(milliseconds=None):
    """Without a time, sleeps until something resets the board."""
    _board.board.power_on()
    while milliseconds is None:
        _time.sleep(1)
    _time.sleep_ms(milliseconds)
    _board.board.reset(DEEPSLEEP_RESET)
