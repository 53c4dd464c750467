"""How MBIM messages are put together and taken apart: Mobile Broadband Interface Model, revision 1.0, chapter 9."""

import struct
import uuid

OPEN, CLOSE, COMMAND = 1, 2, 3
OPEN_DONE, CLOSE_DONE, COMMAND_DONE, INDICATE_STATUS = 0x80000001, 0x80000002, 0x80000003, 0x80000007
HEADER = struct.Struct("<III")
# All messages here fit into one fragment.
FRAGMENT = struct.pack("<II", 1, 0)


class Fields:
    """The fields of an information buffer in their order. What has no fixed length comes after all fields."""

    def __init__(self):
        self.fixed = []
        self.late = []

    def numbers(self, *values):
        """Of 32 bits each."""
        return self.raw(b"".join(struct.pack("<I", value & 0xFFFFFFFF) for value in values))

    def long(self, value):
        return self.raw(struct.pack("<Q", value))

    def raw(self, octets):
        self.fixed.append(octets)
        return self

    def text(self, text):
        return self.block(text.encode("utf-16-le"))

    def block(self, octets):
        """Where it begins and how long it is."""
        self.fixed.append(None)
        self.late.append(octets)
        return self

    def places(self, blocks):
        """Only where each begins."""
        for octets in blocks:
            self.fixed.append(0)
            self.late.append(octets)
        return self

    def octets(self):
        end = sum({None: 8, 0: 4}[each] if each in (None, 0) else len(each) for each in self.fixed)
        fixed, late, waiting = b"", b"", list(self.late)
        for each in self.fixed:
            if each not in (None, 0):
                fixed += each
                continue
            octets = waiting.pop(0)
            begin = end + len(late) if octets else 0
            fixed += struct.pack("<I", begin) + (struct.pack("<I", len(octets)) if each is None else b"")
            late += octets + b"\0" * (-len(octets) % 4)
        return fixed + late


def split(octets):
    """The whole messages at the beginning, as (kind, transaction, body), and the rest."""
    messages = []
    while len(octets) >= HEADER.size:
        kind, length, transaction = HEADER.unpack_from(octets)
        if len(octets) < length:
            break
        messages.append((kind, transaction, octets[HEADER.size : length]))
        octets = octets[length:]
    return messages, octets


def _message(kind, transaction, body):
    return HEADER.pack(kind, HEADER.size + len(body), transaction) + body


def done(kind, transaction):
    """The answer to OPEN or CLOSE: success."""
    return _message(kind, transaction, struct.pack("<I", 0))


def taken_apart(body):
    """A command: service, number, whether it sets something, information buffer."""
    service, number, sets, size = struct.unpack_from("<16sIII", body, len(FRAGMENT))
    begin = len(FRAGMENT) + struct.calcsize("<16sIII")
    return uuid.UUID(bytes=service), number, sets == 1, body[begin : begin + size]


def answer(transaction, service, number, status, octets):
    head = FRAGMENT + service.bytes + struct.pack("<III", number, status, len(octets))
    return _message(COMMAND_DONE, transaction, head + octets)


def indication(service, number, octets):
    return _message(INDICATE_STATUS, 0, FRAGMENT + service.bytes + struct.pack("<II", number, len(octets)) + octets)
