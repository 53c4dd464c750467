"""Short messages as modems hand them on: the PDU of 3GPP TS 23.040."""

import datetime

# The most characters of one message in UCS-2.
LONGEST = 70
TYPE_INTERNATIONAL = 0x91
TYPE_UNKNOWN = 0x81
CODING_UCS2 = 0x08


def swapped(digits):
    """Digits as semi-octets: pairs in exchanged order, the last one filled up."""
    digits += "F" * (len(digits) % 2)
    return "".join(digits[place + 1] + digits[place] for place in range(0, len(digits), 2))


def delivered(sender, text, when=None):
    """A message that has arrived, in UCS-2, so that each text needs only one way to be written. Returns
    the PDU and its length without the part of the service centre, which is empty."""
    number = sender.lstrip("+")
    if not number.isdigit() or len(number) > 20:
        raise ValueError(f"not a number: {sender}")
    data = text.encode("utf-16-be")
    if not 0 < len(data) <= 2 * LONGEST:
        raise ValueError(f"a message has 1 to {LONGEST} characters")
    kind = TYPE_INTERNATIONAL if sender.startswith("+") else TYPE_UNKNOWN
    when = when or datetime.datetime.now(datetime.timezone.utc)
    pdu = "04"  # to the subscriber, no more messages waiting
    pdu += f"{len(number):02X}{kind:02X}{swapped(number)}"
    pdu += f"00{CODING_UCS2:02X}"
    pdu += swapped(when.strftime("%y%m%d%H%M%S")) + "00"  # UTC
    pdu += f"{len(data):02X}{data.hex().upper()}"
    return "00" + pdu, len(pdu) // 2
