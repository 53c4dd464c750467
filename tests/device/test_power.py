"""The box loses its power, or systemd itself hangs."""

import json

import changes
from box import DEVICE
from hotspot import PAGE

STATE = "/var/lib/private/kestal"
# The last of them is one of the box; of the others, only the disk is looked at.
CUTS = 12
# Seconds; the box has 60, because its systemd takes some for a reload in the emulator.
SHORT = 10


def power_goes_and_comes_back(box, hotspot):
    box.cut()
    box.start()
    hotspot.wait_until_ready()
    hotspot.shows(statusBarNetwork="Lab Net", statusBarSignalBars="5", statusBarConnectionState="Ready")


def check_modem(text):
    remembered = json.loads(text)
    assert remembered in ({"dataOff": True, "severalSlots": False}, {"dataOff": False, "severalSlots": False})
    return remembered["dataOff"]


def test_a_power_cut_while_it_connects_loses_nothing(box, phone):
    phone.shows(statusBarConnectionState="Ready")
    phone.act("connect")
    phone.shows(statusBarConnectionState="Connected")
    phone.act("disconnect")
    phone.shows(statusBarConnectionState="Ready")
    # That data is off is remembered when it is shown.
    assert check_modem(box.disk_after_a_cut().read(f"{STATE}/modem"))
    phone.hang_modem()
    phone.act("connect")
    phone.shows(statusBarConnectionState="Connecting")
    power_goes_and_comes_back(box, phone)
    # The service may have begun to connect, or not yet.
    check_modem(box.get(f"cat {STATE}/modem"))
    phone.phone_joins()
    phone.act("connect")
    phone.shows(statusBarConnectionState="Connected")
    phone.act("disconnect")
    phone.shows(statusBarConnectionState="Ready")


def last_of_each(told):
    """The number of the last change of each kind."""
    last = dict.fromkeys(changes.KINDS, 0)
    for line in told.splitlines():
        kind, _, number = line.partition(" ")
        last[kind] = int(number)
    return last


class Changes:
    """What was there before the changes of changes.py, and which of them the box has told."""

    def __init__(self, box, settings):
        self.box = box
        self.settings = settings
        self.known_messages = box.get(f"cat {changes.READ_MESSAGES}") + "\n"
        box.changes.write_text("")
        box.get(f"systemd-run --quiet --unit=changes {DEVICE}/changes.py /dev/virtio-ports/changes {PAGE}")

    def wait_for_more(self, kinds):
        before = last_of_each(self.box.changes.read_text())

        def has_more():
            now = last_of_each(self.box.changes.read_text())
            return all(now[kind] > before[kind] for kind in kinds)

        self.box.wait(has_more, f"more {', '.join(kinds)} have been changed")

    def check(self, read, told):
        """With `read`, which returns the text of a file; the number of the settings that it has. What has been told
        is there, the change after that is there as a whole or not at all."""
        made = last_of_each(told)
        candidates = {changes.settings(self.settings, number): number
                      for number in (made["settings"], made["settings"] + 1)}
        found = read(changes.SETTINGS)
        assert found in candidates, (found, made)
        messages = [self.known_messages + "".join(map(changes.key, range(1, made["messages"] + more)))
                    for more in (1, 2)]
        assert read(changes.READ_MESSAGES) in messages, made
        check_modem(read(f"{STATE}/modem"))
        return candidates[found]


def test_a_power_cut_in_the_middle_of_changes_loses_nothing(box, hotspot):
    hotspot.order("sms", "+15550123", "Hello")
    hotspot.shows(statusBarSmsUnreadCount="1")
    assert "Hello" in box.get("kestal-messages read unread")
    settings = json.loads(box.get(f"cat {changes.SETTINGS}"))
    made = Changes(box, settings)
    made.wait_for_more(changes.KINDS)
    # The first order asks for what the box does already.
    made.wait_for_more(("data",))
    for _ in range(CUTS - 1):
        # To connect takes many times as long as the other changes. It goes on meanwhile.
        made.wait_for_more(("settings", "messages"))
        disk = box.disk_after_a_cut()
        made.check(disk.read, disk.changes)
    power_goes_and_comes_back(box, hotspot)
    number = made.check(lambda path: box.get(f"cat {path}") + "\n", box.changes.read_text())
    hotspot.shows(statusBarBatteryPercent=str(changes.charge(number)))
    box.write(changes.SETTINGS, json.dumps(settings))
    hotspot.shows(statusBarBatteryPercent="0")


def test_a_box_whose_systemd_hangs_is_rebooted_by_the_watchdog(box, hotspot):
    before = box.boot()
    box.get("busctl set-property org.freedesktop.systemd1 /org/freedesktop/systemd1 org.freedesktop.systemd1.Manager "
            f"RuntimeWatchdogUSec t {SHORT}000000")
    box.get(f"setsid {DEVICE}/hang 1 > /dev/null 2>&1 &")
    box.wait(lambda: box.run("grep 'tracing stop' /proc/1/status").status == 0, "systemd hangs")
    box.wait_for_another_boot(before)
    hotspot.wait_until_ready()
    hotspot.shows(statusBarNetwork="Lab Net", statusBarSignalBars="5", statusBarConnectionState="Ready")
