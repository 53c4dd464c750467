"""What the emulated modem is and does: its state, and how each AT command reads or changes it."""

import re

from lab.modem.sim_card import SimCard
from lab.modem.sms import delivered

# +CME ERROR codes of 3GPP TS 27.007.
NO_SIM = 10
SIM_PIN = 11
SIM_PUK = 12
WRONG_PASSWORD = 16
INVALID_INDEX = 21
NO_NETWORK = 30
NOT_ALLOWED = 32
SERVICE_OPTION_NOT_SUBSCRIBED = 33

REGISTRATIONS = {"idle": 0, "home": 1, "searching": 2, "denied": 3, "unknown": 4, "roaming": 5}
REGISTERED = ("home", "roaming")
# The access technology in +COPS and +CREG.
TECHNOLOGIES = {"gsm": 0, "umts": 2, "hsdpa": 4, "hspa": 6, "lte": 7}
UNKNOWN_SIGNAL = 99
REPORTS = ("CREG", "CGREG", "CEREG")
SLOTS_FOR_MESSAGES = 50
# In radio mode "off" (+CFUN=4) there is no network.
RADIO_ON = 1


class Failed(Exception):
    """A command fails with a +CME ERROR."""


class Modem:
    """`send(line)` is called with each unsolicited line."""

    def __init__(self, send):
        self.send = send
        self.sim = SimCard()
        self.has_sim = True
        self.registration = "home"
        self.operator = ("Lab Net", "00101")
        self.technology = "lte"
        self.signal = 23
        self.functionality = RADIO_ON
        self.operator_format = 0
        self.reports = dict.fromkeys(REPORTS, 0)
        self.indicators_reported = False
        self.contexts = {1: ("IP", "internet")}
        self.active = set()
        self.traffic = (0, 0)
        self.dial_error = None
        self.is_held = False
        self.messages = {}

    # What people and tests do to the modem.

    def register(self, registration):
        if registration not in REGISTRATIONS:
            raise ValueError(f"one of {', '.join(REGISTRATIONS)}")
        self.registration = registration
        self._report_registration()
        if registration not in REGISTERED:
            self.drop()

    def change_operator(self, name, code):
        if not re.fullmatch(r"\d{5,6}", code):
            raise ValueError("the code of an operator has five or six digits")
        self.operator = (name, code)
        # On its way to another network a modem is registered nowhere; hosts ask for the operator only then.
        now, self.registration = self.registration, "searching"
        self._report_registration()
        self.registration = now
        self._report_registration()

    def change_technology(self, technology):
        if technology not in TECHNOLOGIES:
            raise ValueError(f"one of {', '.join(TECHNOLOGIES)}")
        self.technology = technology
        self._report_registration()

    def change_signal(self, signal):
        if not 0 <= signal <= 31 and signal != UNKNOWN_SIGNAL:
            raise ValueError("0 to 31, or 99 for unknown")
        self.signal = signal
        self._indicate("signal", self._signal_bars())

    def receive(self, sender, text):
        place = next((n for n in range(SLOTS_FOR_MESSAGES) if n not in self.messages), None)
        if place is None:
            raise ValueError("no room for another message")
        self.messages[place] = [0, *delivered(sender, text)]
        self.send(f'+CMTI: "ME",{place}')

    def drop(self):
        """The network ends all data connections."""
        for context in sorted(self.active):
            self.send(f"+CGEV: NW PDN DEACT {context}")
        self.active.clear()

    def hold(self, is_held):
        """While it is held, it takes its time for data connections; a host waits for them for minutes."""
        self.is_held = is_held

    def take_sim(self):
        self.has_sim = False
        self.drop()
        self._indicate("simind", 0)

    def insert_sim(self, sim=None):
        self.sim = sim or SimCard()
        self.has_sim = True
        self._indicate("simind", 1)

    def _report_registration(self):
        for report in REPORTS:
            if self.reports[report]:
                self.send(f"+{report}: {self._registration(report)}")
        self._indicate("service", int(self._current_registration() in REGISTERED))

    def _indicate(self, name, value):
        if self.indicators_reported:
            self.send(f"+CIEV: {[each for each, _ in self._indicators()].index(name) + 1},{value}")

    # What the modem tells.

    def _current_registration(self):
        usable = self.has_sim and self.sim.state() == "READY" and self.functionality == RADIO_ON
        return self.registration if usable else "idle"

    def _registration(self, report):
        current = self._current_registration()
        text = str(REGISTRATIONS[current])
        if self.reports[report] >= 2 and current in REGISTERED:
            text += f',"0001","0100ABCD",{TECHNOLOGIES[self.technology]}'
        return text

    def _signal_bars(self):
        return 0 if self.signal == UNKNOWN_SIGNAL else (self.signal + 5) // 6

    def _indicators(self):
        registered = self._current_registration() in REGISTERED
        return [("signal", self._signal_bars()), ("service", int(registered)), ("simind", int(self.has_sim))]

    def _need_sim(self):
        if not self.has_sim:
            raise Failed(NO_SIM)
        if self.sim.state() != "READY":
            raise Failed(SIM_PUK if self.sim.state() == "SIM PUK" else SIM_PIN)

    # Commands, by the names that the table at the end gives them.

    def nothing(self, *_):
        return []

    def pin_state(self):
        if not self.has_sim:
            raise Failed(NO_SIM)
        return [f"+CPIN: {self.sim.state()}"]

    def enter_pin(self, first, second=""):
        if not self.has_sim:
            raise Failed(NO_SIM)
        done = self.sim.unblock(first, second) if second else self.sim.enter(first)
        if not done:
            raise Failed(SIM_PUK if self.sim.state() == "SIM PUK" else WRONG_PASSWORD)
        self._report_registration()
        return []

    def tries_left(self):
        return [f"+UPINCNT: {self.sim.pin_tries},3,{self.sim.puk_tries},10"]

    def facility_lock(self, facility):
        self._need_sim()
        return [f"+CLCK: {int(self.sim.asks_pin and facility == 'SC')}"]

    def subscriber(self):
        self._need_sim()
        return [self.sim.imsi]

    def card_number(self):
        if not self.has_sim:
            raise Failed(NO_SIM)
        return [f"+CCID: {self.sim.iccid}"]

    def sim_file(self, command, file):
        if not self.has_sim:
            raise Failed(NO_SIM)
        words, contents = self.sim.access(int(command), int(file))
        return [f'+CRSM: {words[0]},{words[1]},"{contents}"']

    def tell_registration(self, report):
        return [f"+{report}: {self.reports[report]},{self._registration(report)}"]

    def report_registration(self, report, mode):
        self.reports[report] = int(mode)
        return []

    def report_indicators(self, mode):
        # The fourth number says whether indicators are reported.
        self.indicators_reported = mode.split(",")[3:4] == ["1"]
        return []

    def tell_indicators(self):
        return ["+CIND: " + ",".join(str(value) for _, value in self._indicators())]

    def format_operator(self, number):
        self.operator_format = int(number)
        return []

    def tell_operator(self):
        if self._current_registration() not in REGISTERED:
            return ["+COPS: 0"]
        name = self.operator[1] if self.operator_format == 2 else self.operator[0]
        return [f'+COPS: 0,{self.operator_format},"{name}",{TECHNOLOGIES[self.technology]}']

    def find_operators(self):
        name, code = self.operator
        return [f'+COPS: (2,"{name}","{name}","{code}",{TECHNOLOGIES[self.technology]}),,(0-4),(0-2)']

    def choose_operator(self):
        self._need_sim()
        self._report_registration()
        return []

    def tell_signal(self):
        registered = self._current_registration() in REGISTERED
        return [f"+CSQ: {self.signal if registered else UNKNOWN_SIGNAL},99"]

    def tell_signal_of_lte(self):
        """RSRQ and RSRP in steps of 0.5 and 1 dB from -20 and -141; they follow the one signal there is."""
        if self._current_registration() not in REGISTERED or self.technology != "lte":
            return ["+CESQ: 99,99,255,255,255,255"]
        return [f"+CESQ: 99,99,255,255,{self.signal},{self.signal * 3}"]

    def tell_functionality(self):
        return [f"+CFUN: {self.functionality}"]

    def change_functionality(self, number):
        self.functionality = int(number)
        self._report_registration()
        if self.functionality != RADIO_ON:
            self.drop()
        return []

    def tell_contexts(self):
        return [f'+CGDCONT: {n},"{kind}","{name}","",0,0' for n, (kind, name) in sorted(self.contexts.items())]

    def define_context(self, number, kind, name=""):
        self.contexts[int(number)] = (kind, name)
        return []

    def tell_active(self):
        return [f"+CGACT: {number},{int(number in self.active)}" for number in sorted(self.contexts)]

    def activate(self, wanted, number=None):
        if wanted == "0":
            self.active -= {int(number)} if number else self.active.copy()
            return []
        self._need_sim()
        if self.dial_error is not None:
            raise Failed(self.dial_error)
        if self._current_registration() not in REGISTERED:
            raise Failed(NO_NETWORK)
        self.active.add(int(number or 1))
        return []

    def tell_address(self, number):
        return [f'+CGPADDR: {number},"10.11.12.13"' if int(number) in self.active else f"+CGPADDR: {number}"]

    def tell_gateway(self, number):
        return [f'+UIPADDR: {number},"ueth0:0","10.11.12.1","255.255.255.0","",""']

    def tell_connection(self, number):
        name = self.contexts[int(number)][1]
        return [f'+CGCONTRDP: {number},5,"{name}","10.11.12.13.255.255.255.0","10.11.12.1","10.11.12.2"']

    def tell_traffic(self):
        sent, received = self.traffic
        return [f"+UGCNTRD: {number},{sent},{received},{sent},{received}" for number in sorted(self.active)]

    def dial(self, number):
        self.activate("1", number)
        return ["CONNECT 150000000"]

    def list_messages(self, kind):
        shown = [(n, m) for n, m in sorted(self.messages.items()) if kind in ("4", str(m[0]))]
        lines = []
        for number, (state, pdu, length) in shown:
            lines += [f"+CMGL: {number},{state},,{length}", pdu]
            self.messages[number][0] = 1
        return lines

    def read_message(self, number):
        message = self.messages.get(int(number))
        if message is None:
            raise Failed(INVALID_INDEX)
        state, pdu, length = message
        message[0] = 1
        return [f"+CMGR: {state},,{length}", pdu]

    def delete_message(self, number):
        if self.messages.pop(int(number), None) is None:
            raise Failed(INVALID_INDEX)
        return []
