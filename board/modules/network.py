"""A radio that finds no network."""

import errno

STA_IF, AP_IF = 0, 1
STAT_IDLE, STAT_CONNECTING, STAT_GOT_IP = 0, 1, 3
STAT_CONNECT_FAIL, STAT_NO_AP_FOUND, STAT_WRONG_PASSWORD = -1, -2, -3
AUTH_OPEN, AUTH_WPA_PSK, AUTH_WPA2_PSK, AUTH_WPA_WPA2_PSK = 0, 2, 3, 4

_names = {"hostname": "virtual-board", "country": "XX"}
_interfaces = {}


def _name(key, value):
    if value is None:
        return _names[key]
    if not isinstance(value, str):
        raise TypeError("a name must be a string")
    _names[key] = value


def hostname(name=None):
    return _name("hostname", name)


def country(code=None):
    return _name("country", code)


class WLAN:
    """An interface; all objects of the same interface share its state."""

    IF_STA, IF_AP = STA_IF, AP_IF
    PM_NONE, PM_PERFORMANCE, PM_POWERSAVE = 0, 1, 2

    def __init__(self, interface=STA_IF):
        if interface not in (STA_IF, AP_IF):
            raise ValueError("invalid interface")
        self._state = _interfaces.setdefault(
            interface,
            {
                "active": False,
                "status": STAT_IDLE,
                "mac": b"\x02\x23\x45\x67\x89" + bytes([interface]),
            },
        )

    def active(self, is_active=None):
        if is_active is None:
            return self._state["active"]
        self._state["active"] = bool(is_active)
        self._state["status"] = STAT_IDLE

    def _check_active(self):
        if not self._state["active"]:
            raise OSError(errno.EPERM)

    def scan(self):
        self._check_active()
        return []

    def connect(self, ssid=None, key=None, **options):
        self._check_active()
        self._state["status"] = STAT_NO_AP_FOUND

    def disconnect(self):
        self._state["status"] = STAT_IDLE

    def isconnected(self):
        return False

    def status(self, parameter=None):
        if parameter is None:
            return self._state["status"]
        raise ValueError("unknown status param")

    def ifconfig(self, configuration=None):
        if configuration is None:
            return ("0.0.0.0", "0.0.0.0", "0.0.0.0", "0.0.0.0")

    def ipconfig(self, parameter=None, **options):
        if parameter in ("addr4", "gw4"):
            return ("0.0.0.0", "0.0.0.0") if parameter == "addr4" else "0.0.0.0"
        if parameter is not None:
            raise ValueError("unknown config param")

    def config(self, parameter=None, **options):
        if parameter is None:
            self._state.update(options)
        elif parameter in self._state:
            return self._state[parameter]
        else:
            raise ValueError("unknown config param")
