"""The orders that people and tests give to the emulated MBIM modem."""

HELP = """\
register home|roaming|searching|denied
cell CHANNEL IDENTITY              the LTE cell: EARFCN, physical cell identity; told when it registers again
signal 0..31|99                    strength as in +CSQ
slot 1|2 in|out                    whether there is a SIM card in it, before ModemManager looks
"""


def _slot(modem, number, state):
    if number not in ("1", "2") or state not in ("in", "out"):
        raise ValueError("slot 1 or 2, in or out")
    modem.put(int(number) - 1, state == "in")


ORDERS = {
    "register": lambda modem, value: modem.register(value),
    "cell": lambda modem, channel, identity: modem.move(int(channel), int(identity)),
    "signal": lambda modem, value: modem.change_signal(int(value)),
    "slot": _slot,
}
