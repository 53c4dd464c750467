"""What daemons and people may write, however wrong: answers stay valid, and nothing else is lost."""

import os
import signal

import dbus
import pytest

from lab.bus import Mock
from lab.network import BRIDGE, ETHERNET
from lab.power import DISPLAY, INTERFACE
from support.namespaces import may_be_made
from support.waiting import wait_until

needs_root = pytest.mark.skipif(not may_be_made(), reason="networks need root")

PHONE, TABLET = "02:00:00:00:00:01", "02:00:00:00:00:02"
# The most clients that are listed.
MOST_CLIENTS = 10_000
LATER = 4_000_000_000


@needs_root
@pytest.mark.usefixtures("impatient")
def test_an_access_point_never_answers(lab):
    lab.start_network()
    lab.wifi.hang()
    lab.start_service()
    lab.service.shows("statusBarWiFiEnabled", statusBarGuestWifiEnabled=1, statusBarEthernetPortEnabled="enabled",
                      statusBarClientListSize="0")
    assert lab.service.said() == {"wifi: lost: hostapd does not answer": 1}
    lab.wifi.resume()
    lab.service.shows(statusBarWiFiEnabled=1)
    assert lab.service.said() == {"wifi: lost: hostapd does not answer": 1, "wifi: is back": 1}


@needs_root
def test_a_file_of_leases_is_damaged_and_cut(lab):
    lab.start_network()
    lab.wifi.join(PHONE)
    lab.wifi.join(TABLET)
    cut = f"{LATER} {TABLET} 192.168.8.24 tab".encode()
    lab.network.leases.write_bytes(
        b"\0\xff\xfe" + b"9" * 10_000 + b"\n"
        + f"{LATER} {PHONE} 192.168.8.23 ".encode() + b"t\xe9l\xe9phone *\n"
        + f"-1 {PHONE} no-address \x1b[2J *\n".encode() + cut)
    lab.start_service()
    lab.service.shows(statusBarClientListSize="2", statusBarWiFiClientListSize="2")

    def names():
        return {client["mac"]: client["name"] for client in lab.service.told("clients")}

    wait_until(lambda: names() == {PHONE: "t?l?phone", TABLET: ""}, "what is whole is known")
    complaint = (f"clients: {lab.network.leases}: line 1: the time at which the lease ends is none "
                 "(4 lines are wrong)")
    lab.service.says(complaint)
    with lab.network.leases.open("ab") as leases:
        leases.write(b"let *\n")
    wait_until(lambda: names()[TABLET] == "tablet", "the rest is known")
    assert lab.service.said() == {complaint: 1}


@needs_root
def test_more_clients_come_than_are_listed(lab):
    lab.start_network()
    lab.network.plug()
    lab.start_service()
    lab.service.shows(statusBarClientListSize="0", statusBarEthernetPortEnabled="connected")
    numbers = [divmod(number, 256) for number in range(MOST_CLIENTS + 500)]
    crowd = [(f"02:01:00:00:{high:02x}:{low:02x}", f"10.1.{high}.{low}") for high, low in numbers]
    lab.network.leases.write_text("".join(f"{LATER} {mac} {address} * *\n" for mac, address in crowd))
    # The service cannot keep up, so the kernel drops most of what it tells.
    os.kill(lab.service.responder(), signal.SIGSTOP)
    lab.network.batch("bridge", [f"fdb replace {mac} dev {ETHERNET} master dynamic" for mac, _ in crowd])
    os.kill(lab.service.responder(), signal.SIGCONT)
    lab.network.batch("ip", [f"neigh replace {address} lladdr {mac} dev {BRIDGE} nud permanent"
                             for mac, address in crowd])
    lab.service.shows(statusBarClientListSize=str(MOST_CLIENTS))
    lab.service.says(f"clients: no more than {MOST_CLIENTS} are listed",
                     f"clients: {lab.network.leases}: line {MOST_CLIENTS + 1}: it and those after it are too many")
    lab.wifi.join(PHONE)
    lab.service.shows(statusBarWiFiClientListSize="1", statusBarClientListSize=str(MOST_CLIENTS))
    lab.network.unplug()
    lab.service.shows(statusBarClientListSize="1", statusBarEthernetPortEnabled="enabled")
    assert list(lab.service.said().values()) == [1, 1]


def test_the_document_contradicts_a_daemon_and_is_cut(lab):
    lab.start_power()
    lab.start_service()
    lab.service.shows(statusBarBatteryPercent="80", statusBarBatteryChargingState="false")
    lab.service.answers = {"sys": {"getBatteryStatus": {"chargePercent": 9, "chargingState": 1, "detection": 1}}}
    lab.service.write()
    lab.service.shows(statusBarBatteryPercent="9", statusBarBatteryChargingState="true")
    lab.power.battery(70)
    lab.power.wait_for_percentage(70)
    lab.service.shows(statusBarBatteryPercent="9", statusBarBatteryChargingState="true")
    lab.service.device.write(lab.service.device.path.read_bytes()[:-20])
    wait_until(lambda: "keeping the last good document" in "".join(lab.service.said()), "it is complained of")
    lab.service.shows(statusBarBatteryPercent="9", statusBarBatteryChargingState="true")
    lab.service.answers = {}
    lab.service.write()
    lab.service.shows(statusBarBatteryPercent="70", statusBarBatteryChargingState="false")
    assert list(lab.service.said().values()) == [1]


class OddPower(Mock):
    """Has UPower's name, and whatever values it is told to have."""

    service = "org.freedesktop.UPower"

    def __init__(self, lab):
        super().__init__(lab.folder, "odd-power", lab.bus)

    def command(self):
        return ["/usr/bin/python3", "-m", self.program, "--system", self.service, DISPLAY, INTERFACE]

    def tell(self, method="UpdateProperties", **values):
        self.call(DISPLAY, f"org.freedesktop.DBus.Mock.{method}", INTERFACE, dbus.Dictionary(values, signature="sv"))


def test_a_daemon_tells_values_of_wrong_types(lab):
    lab.start_bus()
    power = OddPower(lab)
    lab.start(power)
    odd = {"IsPresent": "yes", "Percentage": [1.0, 2.0], "State": dbus.Dictionary({"a": 1}, signature="sv")}
    power.tell("AddProperties", **odd)
    lab.start_service(powerSupplies=str(lab.folder / "none"))
    lab.service.shows(statusBarBatteryDetection="Notpresent")
    power.tell(IsPresent=True, Percentage=float("nan"), State="\x07")
    lab.service.shows(statusBarBatteryDetection="Invalid")
    power.tell(Percentage=1e300, State=dbus.UInt64(2**64 - 1))
    lab.service.shows(statusBarBatteryDetection="Present", statusBarBatteryPercent="100")
    power.tell(Percentage=42.0, State=dbus.UInt32(2))
    lab.service.shows(statusBarBatteryPercent="42", statusBarBatteryChargingState="false")
    power.tell(Percentage="42")

    def said(name, kind, expected):
        return f"{power.service}: {DISPLAY}: {INTERFACE}.{name} is {kind}, not {expected}"

    lines = [said("IsPresent", "a text", "a boolean"), said("Percentage", "another list", "a finite number"),
             said("Percentage", "a text", "a finite number"), said("State", "a dictionary", "an integer of 64 bits")]
    wait_until(lambda: lab.service.said() == dict.fromkeys(lines, 1), "each is said once until it is right again")
