"""What the emulated MBIM modem is and does: its state, and how each command reads or changes it.

Numbers are those of the Mobile Broadband Interface Model, revision 1.0, and of Microsoft's extensions to it.
"""

import struct
import uuid

from lab.mbim.messages import Fields

BASIC = uuid.UUID("a289cc33-bcbb-8b4f-b6b0-133ec2aae6df")
EXTENSIONS = uuid.UUID("3d01dcc5-fef5-4d05-0d3a-bef7058e9aaf")
INTERNET = uuid.UUID("7e5e2a7e-4e6f-7272-736b-656e7e5e2a7e")

# Commands of BASIC.
DEVICE_CAPS, SUBSCRIBER_READY, RADIO_STATE, PIN, PIN_LIST, HOME_PROVIDER = 1, 2, 3, 4, 5, 6
REGISTER_STATE, PACKET_SERVICE, SIGNAL_STATE, CONNECT = 9, 10, 11, 12
IP_CONFIGURATION, DEVICE_SERVICES, SUBSCRIBE_LIST, PACKET_STATISTICS = 15, 16, 19, 20
# Commands of EXTENSIONS.
SYS_CAPS, DEVICE_CAPS_OF_SLOT, SLOT_MAPPINGS, SLOT_INFO, BASE_STATIONS = 5, 6, 7, 8, 11

DONE, SIM_NOT_INSERTED, NO_DEVICE_SUPPORT = 0, 3, 9
LTE = 1 << 5
REGISTRATIONS = {"searching": 2, "home": 3, "roaming": 4, "denied": 6}
REGISTERED = ("home", "roaming")
READY, NO_SIM = 1, 2
SLOT_EMPTY, SLOT_ACTIVE = 3, 5
ATTACHED, DETACHED = 2, 4
ACTIVATED, DEACTIVATED = 1, 3
PIN1, UNLOCKED = 2, 0
UNKNOWN = 0xFFFFFFFF


class Sim:
    def __init__(self, iccid, imsi, operator):
        self.iccid = iccid
        self.imsi = imsi
        self.operator = operator


SIMS = [
    Sim("8949011200000000017", "001010123456789", ("Lab Net", "00101")),
    Sim("8949021200000000025", "001020123456780", ("Second Net", "00102")),
]


class Modem:
    """`indicate(service, command, octets)` is called with what the modem tells by itself."""

    def __init__(self, indicate):
        self.indicate = indicate
        self.slots = SIMS.copy()
        self.active = 0
        self.registration = "home"
        self.radio = 1
        self.connected = False
        #: EARFCN and physical cell identity of the serving cell and of its neighbours. MBIM before version 3
        #: has only LTE and older ones.
        self.cell = (1850, 101)
        self.neighbours = [(6300, 7)]
        self.signal = 23

    # What people and tests do to the modem.

    def register(self, registration):
        if registration not in REGISTRATIONS:
            raise ValueError(f"one of {', '.join(REGISTRATIONS)}")
        self.registration = registration
        if registration not in REGISTERED:
            self.connected = False
        self._tell(BASIC, REGISTER_STATE, self.register_state())
        self._tell(BASIC, PACKET_SERVICE, self.packet_service())

    def move(self, channel, identity):
        """To another cell, of which the modem says nothing by itself."""
        self.cell = (channel, identity)

    def change_signal(self, signal):
        self.signal = signal
        self._tell(BASIC, SIGNAL_STATE, self.signal_state())

    def put(self, slot, present):
        self.slots[slot] = SIMS[slot] if present else None

    def _tell(self, service, number, fields):
        self.indicate(service, number, fields.octets())

    # What the modem tells.

    @property
    def sim(self):
        return self.slots[self.active]

    def _is_registered(self):
        return self.sim is not None and self.radio == 1 and self.registration in REGISTERED

    def device_caps(self, *_):
        # Embedded, GSM, no voice, removable SIM, LTE, no messages, radio off by software, one session.
        caps = Fields().numbers(1, 1, 1, 2, LTE, 0, 1, 1)
        return caps.text("").text("350000000000017").text("1.0").text("Lab MBIM")

    def device_caps_of_slot(self, *_):
        return self.device_caps().numbers(0)

    def subscriber_ready(self, *_):
        if self.sim is None:
            return Fields().numbers(NO_SIM).text("").text("").numbers(0, 0)
        return Fields().numbers(READY).text(self.sim.imsi).text(self.sim.iccid).numbers(0, 0)

    def radio_state(self, sets, octets):
        if sets:
            self.radio = struct.unpack("<I", octets)[0]
        return Fields().numbers(1, self.radio)

    def pin(self, *_):
        return Fields().numbers(PIN1, UNLOCKED, 3)

    def pin_list(self, *_):
        # The first PIN is not asked for; there are no others.
        return Fields().numbers(2, 1, 4, 8, *[0, 0, 0, 0] * 9)

    def home_provider(self, *_):
        name, code = self.sim.operator
        return Fields().text(code).numbers(1).text(name).numbers(1, self.signal, UNKNOWN)

    def register_state(self, *_):
        registered = self._is_registered()
        name, code = self.sim.operator if registered else ("", "")
        state = REGISTRATIONS[self.registration] if self.sim and self.radio else 1
        fields = Fields().numbers(0, state, 1, LTE if registered else 0, 1)
        return fields.text(code).text(name).text("").numbers(0)

    def packet_service(self, *_):
        registered = self._is_registered()
        return (Fields().numbers(0, ATTACHED if registered else DETACHED, LTE if registered else 0)
                .long(50_000_000).long(150_000_000))

    def signal_state(self, *_):
        return Fields().numbers(self.signal if self._is_registered() else 99, 99, 30, 5, UNKNOWN)

    def connect(self, sets, octets):
        if sets:
            self.connected = struct.unpack_from("<I", octets, 4)[0] == 1
        state = ACTIVATED if self.connected else DEACTIVATED
        return Fields().numbers(0, state, 0, 1).raw(INTERNET.bytes).numbers(0)

    def ip_configuration(self, *_):
        address = struct.pack("<I", 24) + bytes([10, 11, 12, 13])
        fields = Fields().numbers(0, 0b1111, 0, 1).places([address]).numbers(0, 0)
        fields.places([bytes([10, 11, 12, 1])]).numbers(0, 1).places([bytes([10, 11, 12, 2])])
        return fields.numbers(0, 0, 1500, 0)

    def device_services(self, *_):
        fields = Fields().numbers(2, 0)
        for service, commands in ((BASIC, _BASIC), (EXTENSIONS, _EXTENSIONS)):
            fields.block(Fields().raw(service.bytes).numbers(0, 0, len(commands), *commands).octets())
        return fields

    def subscribe_list(self, *_):
        return Fields().numbers(0)

    def packet_statistics(self, *_):
        return Fields().numbers(0, 0).long(5000).long(50).long(1000).long(10).numbers(0, 0)

    def sys_caps(self, *_):
        return Fields().numbers(1, len(self.slots), 1).long(0)

    def slot_mappings(self, sets, octets):
        if sets:
            begin = struct.unpack_from("<I", octets, 4)[0]
            self.active = struct.unpack_from("<I", octets, begin)[0]
        return Fields().numbers(1).block(Fields().numbers(self.active).octets())

    def slot_info(self, _, octets):
        slot = struct.unpack("<I", octets)[0]
        return Fields().numbers(slot, SLOT_ACTIVE if self.slots[slot] else SLOT_EMPTY)

    def base_stations(self, *_):
        channel, identity = self.cell
        code = self.sim.operator[1]
        serving = Fields().text(code).numbers(0x0100ABCD, channel, identity, 0x0001, -80, -9, UNKNOWN).octets()
        near = struct.pack("<I", len(self.neighbours))
        for channel, identity in self.neighbours:
            near += Fields().text("").numbers(UNKNOWN, channel, identity, 0x0001, -95, -14).octets()
        none = b""
        fields = Fields().numbers(LTE).block(none).block(none).block(none).block(serving)
        return fields.block(none).block(none).block(none).block(near).block(none)

    def answer(self, service, number, sets, octets):
        """Status and information buffer."""
        method = {BASIC: _BASIC, EXTENSIONS: _EXTENSIONS}.get(service, {}).get(number)
        if method is None:
            return NO_DEVICE_SUPPORT, b""
        if self.sim is None and number in (HOME_PROVIDER, PIN, PIN_LIST) and service == BASIC:
            return SIM_NOT_INSERTED, b""
        return DONE, method(self, sets, octets).octets()


_BASIC = {
    DEVICE_CAPS: Modem.device_caps,
    SUBSCRIBER_READY: Modem.subscriber_ready,
    RADIO_STATE: Modem.radio_state,
    PIN: Modem.pin,
    PIN_LIST: Modem.pin_list,
    HOME_PROVIDER: Modem.home_provider,
    REGISTER_STATE: Modem.register_state,
    PACKET_SERVICE: Modem.packet_service,
    SIGNAL_STATE: Modem.signal_state,
    CONNECT: Modem.connect,
    IP_CONFIGURATION: Modem.ip_configuration,
    DEVICE_SERVICES: Modem.device_services,
    SUBSCRIBE_LIST: Modem.subscribe_list,
    PACKET_STATISTICS: Modem.packet_statistics,
}
_EXTENSIONS = {
    SYS_CAPS: Modem.sys_caps,
    DEVICE_CAPS_OF_SLOT: Modem.device_caps_of_slot,
    SLOT_MAPPINGS: Modem.slot_mappings,
    SLOT_INFO: Modem.slot_info,
    BASE_STATIONS: Modem.base_stations,
}
