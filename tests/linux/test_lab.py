"""The lab itself: that its daemons are the real ones, and tell what is done to them."""

import json
import subprocess
from types import SimpleNamespace

import dbus
import pytest

from lab import scenarios
from lab.modem_manager import MODEM, STATE_CONNECTED, STATE_REGISTERED
from lab.update import INSTALLER
from support import processes
from support.namespaces import may_be_made
from support.waiting import DEADLINE, wait_until

needs_root = pytest.mark.skipif(not may_be_made(), reason="network namespaces need root")


def modem_manager_says(lab):
    run = subprocess.run(["mmcli", "--output-json", "-m", lab.path], capture_output=True, check=True, timeout=DEADLINE,
                         env={**lab.modem_manager.environment})
    return json.loads(run.stdout)["modem"]


def test_a_modem_registers_connects_and_receives_a_message(lab):
    lab.start_modem()
    wait_until(lambda: lab.modem_manager.property(lab.path, MODEM, "SignalQuality")[0] == 80, "there is a signal")
    said = modem_manager_says(lab)
    assert said["3gpp"]["registration-state"] == "home"
    assert said["3gpp"]["operator-name"] == "Lab Net" and said["3gpp"]["operator-code"] == "00101"
    assert said["generic"]["access-technologies"] == ["lte"]
    sim = lab.modem_manager.property(lab.path, MODEM, "Sim")
    assert lab.modem_manager.property(sim, "org.freedesktop.ModemManager1.Sim", "Imsi") == "001010123456789"

    lab.modem.order("sms", "+15550123", "Hello, world")
    messages = f"{MODEM}.Messaging"
    wait_until(lambda: lab.modem_manager.property(lab.path, messages, "Messages"), "the message has arrived")
    message = lab.modem_manager.property(lab.path, messages, "Messages")[0]
    assert lab.modem_manager.property(message, "org.freedesktop.ModemManager1.Sms", "Text") == "Hello, world"

    lab.modem_manager.connect(lab.path)
    assert lab.modem_manager.state(lab.path) == STATE_CONNECTED
    lab.modem.order("traffic", 400, 500)
    lab.modem.order("traffic", 0, 30)
    # ModemManager asks for it only every 30 seconds.
    counted = lab.modem_manager.call(lab.path, f"{MODEM}.Command", "+UGCNTRD", dbus.UInt32(5))
    assert counted == "+UGCNTRD: 1,400,530,400,530"
    lab.modem_manager.disconnect(lab.path)
    assert lab.modem_manager.state(lab.path) == STATE_REGISTERED


def test_the_network_changes_under_a_modem(lab):
    lab.start_modem()
    lab.modem.order("register", "roaming")
    network = f"{MODEM}.Modem3gpp"
    lab.modem_manager.wait_for(lab.path, network, "RegistrationState", 5)
    lab.modem.order("operator", "Other Net", "26299")
    lab.modem_manager.wait_for(lab.path, network, "OperatorName", "Other Net")
    lab.modem.order("register", "denied")
    lab.modem_manager.wait_for(lab.path, network, "RegistrationState", 3)
    lab.modem.order("signal", "9")
    lab.modem.order("register", "home")
    lab.modem_manager.wait_for(lab.path, network, "RegistrationState", 1)


@needs_root
def test_a_phone_joins_an_access_point_and_gets_an_address(lab):
    lab.start_network()
    lab.wifi.join("02:00:00:00:00:01")
    lab.network.lease("02:00:00:00:00:01", "192.168.8.23", "phone")
    assert lab.wifi.stations() == ["02:00:00:00:00:01"]
    assert lab.guests.stations() == []
    assert "02:00:00:00:00:01" in lab.network.capture("ip", "neigh", "show", "dev", "br0")
    lab.wifi.leave("02:00:00:00:00:01")
    assert lab.wifi.stations() == []


def test_a_receiver_finds_its_position(lab):
    lab.start_position()
    with lab.position.watch() as reports:
        lab.position.find()
        wait_until(lambda: next(reports)["mode"] == 3, "gpsd tells a fix in three dimensions")


@needs_root
def test_an_update_is_installed_and_another_is_refused(lab):
    lab.start_update()
    good, bad = lab.update.bundle(), lab.update.unfit_bundle()
    lab.update.hold()
    lab.update.install(good)
    lab.update.wait_for("/", INSTALLER, "Operation", "installing")
    lab.update.let_go()
    lab.update.wait_until_idle()
    assert lab.update.property("/", INSTALLER, "LastError") == ""
    lab.update.install(bad)
    wait_until(lambda: "Compatible mismatch" in lab.update.property("/", INSTALLER, "LastError"), "it is refused")


def test_a_step_whose_effect_is_not_shown_ends_the_scenarios(monkeypatch):
    monkeypatch.setattr(scenarios, "DEADLINE", 0.01)
    notifications = SimpleNamespace(json=lambda: {"notificationsList": []})
    service = SimpleNamespace(status=lambda: {"statusBarBatteryPercent": "80"}, ask=lambda _: notifications)
    lab = SimpleNamespace(service=service)
    for expected in ({"shows": {"statusBarBatteryPercent": "9"}}, {"without": ["statusBarBatteryPercent"]},
                     {"notifies": ["deviceLeave"]}):
        with pytest.raises(scenarios.Unexpected, match="'statusBarBatteryPercent': '80'|deviceLeave"):
            scenarios.take(lab, scenarios.Step("nothing", lambda: None, **expected))


def test_daemons_hang_die_and_come_back(lab):
    lab.start_power()
    lab.power.hang()
    wait_until(lambda: processes.field(lab.power.pid, "State").startswith("T"), "the daemon is stopped")
    lab.power.resume()
    lab.power.battery(50)
    lab.power.wait_for_percentage(50)
    lab.power.kill()
    assert not lab.bus.has(lab.power.service)
    lab.power.start()
    lab.close()
    assert processes.mentioning(str(lab.folder)) == []
