"""The orders that people and tests give to the emulated modem."""

from lab.modem.sim_card import SimCard

HELP = """\
signal 0..31|99                    strength as in +CSQ
register home|roaming|searching|denied|idle|unknown
operator NAME CODE                 for instance: operator "Lab Net" 00101
technology lte|hspa|hsdpa|umts|gsm
sms FROM TEXT                      a message arrives
drop                               the network ends the data connection
traffic SENT RECEIVED              so many more bytes pass the data connection
refuse CODE|nothing                data connections are refused with a +CME ERROR
hold, let-go                       data connections are neither made nor ended until they are let go
sim out|in|locked|blocked          a card is taken out or put in: open, asking for the PIN 1234, or the PUK
"""


def _sim(modem, state):
    if state == "out":
        modem.take_sim()
        return
    sim = SimCard()
    if state in ("locked", "blocked"):
        sim.lock()
        sim.pin_tries = 3 if state == "locked" else 0
    elif state != "in":
        raise ValueError("one of out, in, locked, blocked")
    modem.insert_sim(sim)


def _traffic(modem, sent, received):
    more = (int(sent), int(received))
    if min(more) < 0:
        raise ValueError("no fewer bytes than none")
    modem.traffic = tuple(map(sum, zip(modem.traffic, more)))


def _refuse(modem, code):
    modem.dial_error = None if code == "nothing" else int(code)


ORDERS = {
    "signal": lambda modem, value: modem.change_signal(int(value)),
    "register": lambda modem, value: modem.register(value),
    "operator": lambda modem, name, code: modem.change_operator(name, code),
    "technology": lambda modem, value: modem.change_technology(value),
    "sms": lambda modem, sender, text: modem.receive(sender, text),
    "drop": lambda modem: modem.drop(),
    "traffic": _traffic,
    "refuse": _refuse,
    "hold": lambda modem: modem.hold(True),
    "let-go": lambda modem: modem.hold(False),
    "sim": _sim,
}
