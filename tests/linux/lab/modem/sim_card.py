"""The SIM card of the emulated modem: files, PIN and PUK."""

from lab.modem.sms import swapped

READ_BINARY = 176
# Status words of 3GPP TS 31.101.
DONE = (0x90, 0x00)
NO_SUCH_FILE = (0x6A, 0x82)
# Numbers of elementary files, 3GPP TS 31.102.
EF_ICCID = 0x2FE2
EF_AD = 0x6FAD
EF_SPN = 0x6F46
NAME_SIZE = 16


class SimCard:
    PIN = "1234"
    PUK = "12345678"

    def __init__(self, iccid="8949011200000000017", imsi="001010123456789", name="Lab SIM"):
        self.iccid = iccid
        self.imsi = imsi
        self.name = name
        self.pin = self.PIN
        self.asks_pin = False
        self.is_open = True
        self.pin_tries = 3
        self.puk_tries = 10

    def lock(self):
        """As after power-on with the question for the PIN switched on."""
        self.asks_pin = True
        self.is_open = False

    def state(self):
        """As +CPIN? tells it."""
        if self.pin_tries == 0:
            return "SIM PUK"
        return "READY" if self.is_open else "SIM PIN"

    def enter(self, pin):
        if self.pin_tries == 0:
            return False
        if pin != self.pin:
            self.pin_tries -= 1
            return False
        self.pin_tries = 3
        self.is_open = True
        return True

    def unblock(self, puk, pin):
        if puk != self.PUK:
            self.puk_tries = max(self.puk_tries - 1, 0)
            return False
        self.pin, self.pin_tries, self.puk_tries = pin, 3, 10
        self.is_open = True
        return True

    def access(self, command, file):
        """What +CRSM answers: status words and contents."""
        contents = {
            EF_ICCID: swapped(self.iccid),
            EF_AD: "00000002",  # the network's code has two digits
            EF_SPN: "00" + self.name.encode()[:NAME_SIZE].ljust(NAME_SIZE, b"\xff").hex().upper(),
        }.get(file)
        if command != READ_BINARY or contents is None:
            return NO_SUCH_FILE, ""
        return DONE, contents
