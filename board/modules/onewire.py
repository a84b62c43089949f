"""The 1-Wire bus. No device is connected, so none announces itself."""


class OneWireError(Exception):
    pass


class OneWire:
    SEARCH_ROM, MATCH_ROM, SKIP_ROM = 0xF0, 0x55, 0xCC

    def __init__(self, pin):
        self.pin = pin
        self.pin.init(pin.OPEN_DRAIN, pin.PULL_UP, value=1)

    def reset(self, required=False):
        if required:
            raise OneWireError
        return False

    def readbit(self):
        return 1

    def readbyte(self):
        return 0xFF

    def readinto(self, buffer):
        for i in range(len(buffer)):
            buffer[i] = 0xFF

    def writebit(self, value):
        pass

    def writebyte(self, value):
        pass

    def write(self, buffer):
        pass

    def select_rom(self, rom):
        self.reset()

    def scan(self):
        return []

    def crc8(self, data):
        crc = 0
        for byte in data:
            crc ^= byte
            for _ in range(8):
                crc = crc >> 1 ^ (0x8C if crc & 1 else 0)
        return crc
