"""The AT commands that the emulated modem knows, each with the method of Modem that answers it."""

import re

from lab.modem.modem import Failed, Modem

# Answers that never change. It names itself after a maker whose modems tell hosts when a SIM card is put
# in or taken out, and how many tries for its PIN are left.
FIXED = {
    "I": ["Lab Modem", "Revision: 1"],
    "+CGMI": ["u-blox"],
    "+GMI": ["Lab"],
    "+CGMM": ["LARA-R211"],
    "+GMM": ["Modem"],
    "+CGMR": ["1.0"],
    "+GMR": ["1.0"],
    "+CGSN": ["490154203237518"],
    "+GSN": ["490154203237518"],
    "+GCAP": ["+GCAP: +CGSM,+CLTE2"],
    "+CSCS=?": ['+CSCS: ("GSM","UCS2","IRA")'],
    "+CSCS?": ['+CSCS: "IRA"'],
    "+CIND=?": ['+CIND: ("signal",(0-5)),("service",(0-1)),("simind",(0-1))'],
    "+CMER=?": ["+CMER: (0-3),(0),(0),(0-1),(0)"],
    "+CREG=?": ["+CREG: (0-2)"],
    "+CGREG=?": ["+CGREG: (0-2)"],
    "+CEREG=?": ["+CEREG: (0-2)"],
    "+CESQ=?": ["+CESQ: (0-63,99),(0-7,99),(0-96,255),(0-49,255),(0-34,255),(0-97,255)"],
    "+WS46=?": ["+WS46: (12,22,25,28,29,30,31)"],
    "+WS46?": ["+WS46: 25"],
    "+CLCK=?": ['+CLCK: ("SC")'],
    "+CGDCONT=?": [f'+CGDCONT: (1-8),"{kind}",,,(0),(0)' for kind in ("IP", "IPV6", "IPV4V6")],
    "+CGACT=?": ["+CGACT: (0,1)"],
    "+CGEREP=?": ["+CGEREP: (0-2),(0-1)"],
    "+CNMI=?": ["+CNMI: (0-2),(0-3),(0-3),(0-2),(0-1)"],
    "+CPMS=?": ['+CPMS: ("ME"),("ME"),("ME")'],
    "+CPMS?": ['+CPMS: "ME",0,50,"ME",0,50,"ME",0,50'],
    "+CMGF=?": ["+CMGF: (0)"],
    "+CNUM": ['+CNUM: "","+15550100",145'],
    # These are u-blox's own: technologies, and bands of 900 and 1800 MHz (GSM) and 800 and 1800 MHz (LTE).
    "+URAT=?": ["+URAT: (0-6),(0,2,3)"],
    "+URAT?": ["+URAT: 5,3"],
    "+UBANDSEL?": ["+UBANDSEL: 900,1800,800"],
    # On USB it is a network interface that hands the address of the network on.
    "+UUSBCONF?": ['+UUSBCONF: 2,"ECM",,"0x110A"'],
    "+UBMCONF?": ["+UBMCONF: 2"],
    "+UGCNTRD=?": [],
    "+CFUN=?": ["+CFUN: (0,1,4),(0-1)"],
}

# These make and end data connections.
OF_CONNECTIONS = re.compile(r"D|\+CGACT=[01]")

NUMBER = r"(\d+)"
TEXT = r'"?([^",]*)"?'

TABLE = [
    (re.compile(pattern), method)
    for pattern, method in [
        (r"[EVZXQF&S].*|", Modem.nothing),
        (r"\+CPIN\?", Modem.pin_state),
        (rf"\+CPIN={TEXT}(?:,{TEXT})?", Modem.enter_pin),
        (r"\+UPINCNT", Modem.tries_left),
        (r"\+CCID", Modem.card_number),
        (rf"\+CLCK={TEXT},2", Modem.facility_lock),
        (r"\+CIMI", Modem.subscriber),
        (rf"\+CRSM={NUMBER},{NUMBER}(?:,.*)?", Modem.sim_file),
        (r"\+(CREG|CGREG|CEREG)\?", Modem.tell_registration),
        (rf"\+(CREG|CGREG|CEREG)={NUMBER}", Modem.report_registration),
        (r"\+CMER=(.*)", Modem.report_indicators),
        (r"\+CIND\?", Modem.tell_indicators),
        (rf"\+COPS=3,{NUMBER}", Modem.format_operator),
        (r"\+COPS\?", Modem.tell_operator),
        (r"\+COPS=\?", Modem.find_operators),
        (r"\+COPS=.*", Modem.choose_operator),
        (r"\+CSQ", Modem.tell_signal),
        (r"\+CESQ", Modem.tell_signal_of_lte),
        (r"\+CFUN\?", Modem.tell_functionality),
        (rf"\+CFUN={NUMBER}(?:,.*)?", Modem.change_functionality),
        (r"\+CGDCONT\?", Modem.tell_contexts),
        (rf"\+CGDCONT={NUMBER},{TEXT}(?:,{TEXT})?(?:,.*)?", Modem.define_context),
        (r"\+CGACT\?", Modem.tell_active),
        (rf"\+CGACT=([01])(?:,{NUMBER})?", Modem.activate),
        (rf"\+CGPADDR={NUMBER}", Modem.tell_address),
        (rf"\+UIPADDR={NUMBER}", Modem.tell_gateway),
        (rf"\+CGCONTRDP={NUMBER}", Modem.tell_connection),
        (r"\+UGCNTRD", Modem.tell_traffic),
        (rf"D\*99\*\*\*{NUMBER}#", Modem.dial),
        (r"\+CMGL=(\d)", Modem.list_messages),
        (rf"\+CMGR={NUMBER}", Modem.read_message),
        (rf"\+CMGD={NUMBER}(?:,.*)?", Modem.delete_message),
        (r"\+(?:CMEE|CGEREP|CNMI|CPMS|CMGF|CSCS|WS46|IFC|CRC|CCWA|CLIP|CUSD|COLP)=[^?]*", Modem.nothing),
        (r"H", Modem.nothing),
    ]
]


def parts(line):
    """The commands of a line, "+CMD1;+CMD2", without separators inside of quotes."""
    return [part.strip() for part in re.findall(r'(?:"[^"]*"|[^;"])+', line)] or [""]


def answer(modem, line):
    """All lines of the answer to a command line without its AT; the last is the result."""
    lines = []
    for command in parts(line):
        try:
            lines += _answer_one(modem, command)
        except Failed as failed:
            return [*lines, f"+CME ERROR: {failed}"]
        except LookupError:
            return [*lines, "ERROR"]
    if not (lines and lines[-1].startswith("CONNECT")):
        lines.append("OK")
    return lines


def _answer_one(modem, command):
    if command in FIXED:
        return FIXED[command]
    for pattern, method in TABLE:
        match = pattern.fullmatch(command)
        if match:
            return method(modem, *(group for group in match.groups() if group is not None))
    raise LookupError(command)
