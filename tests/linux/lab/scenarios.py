"""scripts/lab scenarios: what happens to a board, one thing after the other, and what the service makes of it.

Each step is an order as of scripts/lab, or a button of the page. It says which daemon tells of it and when, what the
status and the notifications then have to be, and which is printed with the time in between.
"""

import statistics
import time

from lab import play
from lab.modem_manager import MODEM, STATE_CONNECTED, STATE_FAILED, STATE_REGISTERED
from lab.update import INSTALLER
from support.waiting import DEADLINE, wait_until

# Seconds for which the answer stays as it is after a step.
SETTLED = 0.3
# Milliseconds within which a change that a daemon tells is to stand in the answer. One that takes longer counts as
# late, not as wrong.
IN_TIME = 250.0
# These change by themselves.
COUNTING = ("statusBarConnectionDuration",)
# The notifications of clients, each of which is there for a while.
OF_CLIENTS = ("deviceJoinWiFi", "deviceJoinEthernet", "deviceJoinUSB", "deviceLeave")

NETWORK = f"{MODEM}.Modem3gpp"
MESSAGING = f"{MODEM}.Messaging"
READY = {"statusBarSimStatus": "Ready", "statusBarNetwork": "Lab Net", "statusBarConnectionState": "Ready"}
TOLD_BY_MODEM = ("statusBarSimStatus", "statusBarNetwork", "statusBarSignalBars", "statusBarConnectionState")


class Unexpected(Exception):
    """The service does not show what has happened."""


class Step:
    def __init__(self, words, act, shows=(), without=(), notifies=(), told=None, by=None):
        """`words`: what is done, as people read it. `act()` does it, and `told()` holds once the daemon `by` has said
        so; a daemon that does not say what happens to it, because it is hung or killed, has none. `shows`, `without`:
        values and missing keys of the status then. `notifies`: the notifications then, where those of clients that the
        step does not bring may also be older."""
        self.words = words
        self.act = act
        self.shows = dict(shows)
        self.without = set(without)
        self.notifies = set(notifies)
        self.told = told
        self.by = by

    def holds(self, status, types):
        return (self.shows.items() <= status.items() and not self.without & set(status)
                and self.notifies <= types and types - set(OF_CLIENTS) <= self.notifies)


def ordered(lab, words, **expected):
    """A step that is an order of scripts/lab."""

    def act():
        answer = play.obey(lab, words.split())
        if answer:
            raise Unexpected(answer.strip())

    return Step(words, act, **expected)


def pressed(lab, button, **expected):
    """A step that is a button of the page."""
    return Step(f'"{button}" on the page', lambda: lab.service.act(button), **expected)


def _is(lab, interface, name, value):
    return lambda: lab.modem_manager.property(lab.path, interface, name) == value


def _has_new_modem(lab, awaited):
    """ModemManager makes another modem of one whose SIM card has changed; NetworkManager enables it."""
    before = lab.path

    def holds():
        for path, state in lab.modem_manager.modems().items():
            if path != before and state == awaited:
                lab.path = path
                return True
        return False

    return holds


def sim(lab):
    """The SIM is taken out, and put in again; the modem comes back under another path"""
    yield ordered(lab, "sim out", shows={"statusBarSimStatus": "Not Found", "statusBarNetwork": ""},
                  told=_has_new_modem(lab, STATE_FAILED), by="ModemManager")
    yield ordered(lab, "sim in", shows=READY, told=_has_new_modem(lab, STATE_REGISTERED), by="ModemManager")


def network(lab):
    """The network rejects, and lets the modem roam"""
    for words, state, shows, notifies in (
        ("register denied", 3, {"statusBarConnectionState": "No Service", "statusBarNetwork": ""}, ["noService"]),
        ("register roaming", 5, READY, ["roamingDomestic"]),
        ("register home", 1, READY, []),
    ):
        yield ordered(lab, words, shows=shows, notifies=notifies, told=_is(lab, NETWORK, "RegistrationState", state),
                      by="ModemManager")


def connection(lab):
    """Somebody connects and disconnects on the page"""
    yield pressed(lab, "connect", shows={"statusBarConnectionState": "Connected"},
                  told=_is(lab, MODEM, "State", STATE_CONNECTED), by="ModemManager")
    yield pressed(lab, "disconnect", shows={"statusBarConnectionState": "Ready", "statusBarMobileDataEnabled": 0},
                  notifies=["dataOff"], told=_is(lab, MODEM, "State", STATE_REGISTERED), by="ModemManager")
    yield pressed(lab, "connect", shows={"statusBarConnectionState": "Connected", "statusBarMobileDataEnabled": 1},
                  told=_is(lab, MODEM, "State", STATE_CONNECTED), by="ModemManager")


def hang(lab):
    """The daemon hangs (SIGSTOP) and goes on"""
    name = lab.modem_manager.name
    yield ordered(lab, f"hang {name}", without=TOLD_BY_MODEM)
    yield ordered(lab, f"resume {name}", shows={**READY, "statusBarConnectionState": "Connected"})


def kill(lab):
    """The daemon is killed and comes back"""
    name = lab.modem_manager.name
    yield ordered(lab, f"kill {name}", without=TOLD_BY_MODEM, told=lambda: True, by="the bus")
    yield ordered(lab, f"start {name}", shows=READY, told=_is(lab, MODEM, "State", STATE_REGISTERED),
                  by="ModemManager")


def sms(lab):
    """An SMS arrives"""
    yield ordered(lab, "sms +15550123 Hello", shows={"statusBarSmsUnreadCount": "1"}, notifies=["smsReceived"],
                  told=lambda: len(lab.modem_manager.property(lab.path, MESSAGING, "Messages")) == 1,
                  by="ModemManager")
    yield Step("kestal-messages read unread", lambda: lab.messages("read", "unread"),
               shows={"statusBarSmsUnreadCount": "0"})


def battery(lab):
    """The battery falls to nine percent"""
    for percent in (9, 80):
        yield ordered(lab, f"battery {percent}", shows={"statusBarBatteryPercent": str(percent)},
                      told=lambda: lab.power.percentage() == percent, by="UPower")


def phone(lab):
    """A phone joins the Wi-Fi and leaves"""
    # hostapd has told it when it answers.
    yield Step("a phone joins", lambda: lab.wifi.join(play.PHONE), shows={"statusBarWiFiClientListSize": "1"},
               notifies=["deviceJoinWiFi"], told=lambda: True, by="hostapd")
    yield Step("it leaves", lambda: lab.wifi.leave(play.PHONE), shows={"statusBarWiFiClientListSize": "0"},
               notifies=["deviceLeave"], told=lambda: True, by="hostapd")


def computer(lab):
    """A computer is plugged in and out"""
    yield ordered(lab, "cable in", shows={"statusBarEthernetPortEnabled": "connected"}, told=lambda: True,
                  by="the kernel")
    yield Step("the bridge sees a computer", lambda: lab.network.attach(play.COMPUTER),
               shows={"statusBarClientListSize": "1"}, notifies=["deviceJoinEthernet"], told=lambda: True,
               by="the kernel")
    yield ordered(lab, "cable out", shows={"statusBarEthernetPortEnabled": "enabled", "statusBarClientListSize": "0"},
                  notifies=["deviceLeave"], told=lambda: True, by="the kernel")


def access_point(lab):
    """The access point is killed and comes back"""
    name = lab.wifi.name
    yield ordered(lab, f"kill {name}", without=["statusBarWiFiEnabled"])
    yield ordered(lab, f"start {name}", shows={"statusBarWiFiEnabled": 1})


def position(lab):
    """The position is found and lost"""
    def located(send, mode):
        with lab.position.watch() as reports:
            send()
            while next(reports)["mode"] != mode:
                pass

    yield Step("position found", lambda: located(lab.position.find, 3), shows={"statusBarGpsStatus": "GotFix"},
               told=lambda: True, by="gpsd")
    yield Step("position lost", lambda: located(lab.position.lose, 1), shows={"statusBarGpsStatus": "Searching"},
               told=lambda: True, by="gpsd")


def update(lab):
    """An update installs and another one fails"""
    lab.update.hold()
    yield ordered(lab, "update installs", shows={"StatusBarSoftwareUpdateStatus": 7}, notifies=["softwareUpdate"],
                  told=lambda: lab.update.property("/", INSTALLER, "Operation") == "installing", by="RAUC")

    def is_idle():
        return lab.update.property("/", INSTALLER, "Operation") == "idle"

    yield Step("the update comes to its end", lab.update.let_go, shows={"StatusBarSoftwareUpdateStatus": 8},
               notifies=["softwareUpdateSuccess"], told=is_idle, by="RAUC")
    yield ordered(lab, "update fails", shows={"StatusBarSoftwareUpdateStatus": 9}, notifies=["softwareUpdateFailure"],
                  told=lambda: is_idle() and lab.update.property("/", INSTALLER, "LastError") != "", by="RAUC")


def bus(lab):
    """The bus goes away"""
    yield ordered(lab, f"kill {lab.bus.name}", without=TOLD_BY_MODEM, told=lambda: True, by="the bus")


#: In this order, because a computer that leaves is told as a phone is, and that has to have ended meanwhile, because an
#: installed update is shown from then on, and because no daemon comes back without the bus.
SCENARIOS = {scenario.__name__: scenario for scenario in (
    phone, sim, network, connection, hang, kill, sms, battery, position, access_point, computer, update, bus)}


class Shown:
    """What the service shows at one moment."""

    def __init__(self, service):
        self.status = service.status()
        self.types = {each["id"] for each in service.ask("/srv/notification").json()["notificationsList"]}
        for key in COUNTING:
            self.status.pop(key, None)

    def __eq__(self, other):
        return (self.status, self.types) == (other.status, other.types)


def settled(service):
    """What the service shows once that stays as it is for a moment."""
    shown, since = Shown(service), time.monotonic()
    end = since + DEADLINE
    while time.monotonic() < min(since + SETTLED, end):
        newer = Shown(service)
        if newer != shown:
            shown, since = newer, time.monotonic()
    return shown


def changes(before, after):
    """Lines about what differs."""
    for key in sorted(set(before.status) | set(after.status)):
        old, new = (shown.status.get(key, "(none)") for shown in (before, after))
        if old != new:
            yield f"{key:32} {old!r} -> {new!r}"
    for sign, types in (("+", after.types - before.types), ("-", before.types - after.types)):
        for name in sorted(types):
            yield f"{'notification':32} {sign} {name}"


def take(lab, step):
    """Carries a step out; returns the milliseconds until the service shows it."""
    step.act()
    if step.told is not None:
        wait_until(step.told, f"{step.by} tells of it")
    begin = time.monotonic()
    while True:
        shown = Shown(lab.service)
        taken = 1000 * (time.monotonic() - begin)
        if step.holds(shown.status, shown.types):
            return taken
        if taken > 1000 * DEADLINE:
            values = {key: shown.status.get(key) for key in (*step.shows, *step.without)}
            raise Unexpected(f"{step.words}: {values} and {sorted(shown.types)}; it should be {step.shows}, "
                             f"without {sorted(step.without)}, and {sorted(step.notifies)}")


def without_older(lab, step, before):
    """What is shown before the step, once no client's notification that it brings is left of an earlier one."""
    older = step.notifies & before.types & set(OF_CLIENTS)
    if not older:
        return before
    wait_until(lambda: not older & Shown(lab.service).types, f"{sorted(older)} ended")
    return settled(lab.service)


def play_all(lab, names, write=print):
    """Plays scenarios on a lab whose service runs; returns the milliseconds after the words of daemons."""
    figures = []
    before = settled(lab.service)
    for name in names:
        write(f"\n{SCENARIOS[name].__doc__}  ({name})")
        for step in SCENARIOS[name](lab):
            before = without_older(lab, step, before)
            said = lab.service.said()
            taken = take(lab, step)
            after = settled(lab.service)
            since = "its order" if step.told is None else f"the word of {step.by}"
            write(f"  {step.words:36} {taken:7.0f} ms after {since}")
            for line in changes(before, after):
                write(f"      {line}")
            if step.told is not None:
                figures.append(taken)
            before = after
            for line, count in (lab.service.said() - said).items():
                write(f"      {'log':32} {line}")
                if count > 1:
                    raise Unexpected(f"logged {count} times: {line}")
    return figures


def summary(figures):
    if not figures:
        return "No changes that daemons told"
    in_time = sum(taken <= IN_TIME for taken in figures)
    return (f"{len(figures)} changes that daemons told: {in_time} stood within {IN_TIME:.0f} ms, "
            f"median {statistics.median(figures):.0f} ms, worst {max(figures):.0f} ms")
