"""The box loses its power, or systemd itself hangs."""

import json

from box import DEVICE

STATE = "/var/lib/private/kestal"
SETTINGS = "/etc/kestal/device.json"
ADDED = "owners-own"
# Seconds; the box has 60, because its systemd takes some for a reload in the emulator.
SHORT = 10


def power_goes_and_comes_back(box, hotspot):
    box.cut()
    box.start()
    hotspot.wait_until_ready()
    hotspot.shows(statusBarNetwork="Lab Net", statusBarSignalBars="5", statusBarConnectionState="Ready")


def notifications(hotspot):
    return {each["id"] for each in hotspot.get("/srv/notification").get("notificationsList", [])}


def test_a_power_cut_while_it_connects_loses_nothing(box, phone):
    phone.shows(statusBarConnectionState="Ready")
    # The service remembers that data is off, and now for long enough to be on the disk.
    phone.act("connect")
    phone.shows(statusBarConnectionState="Connected")
    phone.act("disconnect")
    phone.shows(statusBarConnectionState="Ready")
    assert json.loads(box.get(f"sync && cat {STATE}/modem")) == {"dataOff": True, "severalSlots": False}
    phone.hang_modem()
    phone.act("connect")
    phone.shows(statusBarConnectionState="Connecting")
    power_goes_and_comes_back(box, phone)
    # That data is on again may not have reached the disk, but what is there is whole.
    remembered = json.loads(box.get(f"cat {STATE}/modem"))
    assert remembered in ({"dataOff": True, "severalSlots": False}, {"dataOff": False, "severalSlots": False})
    phone.phone_joins()
    phone.act("connect")
    phone.shows(statusBarConnectionState="Connected")
    phone.act("disconnect")
    phone.shows(statusBarConnectionState="Ready")


def test_a_power_cut_just_after_settings_have_changed_loses_nothing(box, hotspot):
    hotspot.order("sms", "+15550123", "Hello")
    hotspot.shows(statusBarSmsUnreadCount="1")
    settings = json.loads(box.get(f"cat {SETTINGS}"))
    changed = {**settings, "linux": {**settings["linux"], "addedNotifications": [{"id": ADDED}]}}
    box.write(f"{SETTINGS}.new", json.dumps(changed))
    # As an editor does it.
    box.get(f"mv {SETTINGS}.new {SETTINGS}")
    box.wait(lambda: ADDED in notifications(hotspot), "the new settings are in force")
    assert "Hello" in box.get("kestal-messages read unread")
    # This is on the disk from the moment at which the program has ended.
    read = box.get(f"cat {STATE}/read-messages")
    power_goes_and_comes_back(box, hotspot)
    assert box.get(f"cat {STATE}/read-messages") == read
    found = json.loads(box.get(f"cat {SETTINGS}"))
    assert found in (settings, changed)
    assert (ADDED in notifications(hotspot)) == (found == changed)
    box.write(SETTINGS, json.dumps(settings))
    box.wait(lambda: ADDED not in notifications(hotspot), "the old settings are in force")


def test_a_box_whose_systemd_hangs_is_rebooted_by_the_watchdog(box, hotspot):
    before = box.boot()
    box.get("busctl set-property org.freedesktop.systemd1 /org/freedesktop/systemd1 org.freedesktop.systemd1.Manager "
            f"RuntimeWatchdogUSec t {SHORT}000000")
    box.get(f"setsid {DEVICE}/hang 1 > /dev/null 2>&1 &")
    box.wait(lambda: box.run("grep 'tracing stop' /proc/1/status").status == 0, "systemd hangs")
    box.wait_for_another_boot(before)
    hotspot.wait_until_ready()
    hotspot.shows(statusBarNetwork="Lab Net", statusBarSignalBars="5", statusBarConnectionState="Ready")
