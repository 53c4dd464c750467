"""The modem's neighbours on a board: what they tell, and what the service answers then."""

import shutil

import pytest

from lab.network import ETHERNET, GUESTS, USB, WIFI
from support.namespaces import may_be_made
from support.waiting import wait_until

needs_root = pytest.mark.skipif(not may_be_made(), reason="networks and mounts need root")

# Values of StatusBarSoftwareUpdateStatus.
NO_UPDATE, INSTALLING, INSTALLED, FAILED = 0, 7, 8, 9

# The lab has no memory card.
CARD = {"sys": {"getSDCardInfo": {"totalCapacity": 1000, "freeSpace": 400}}}

# One that is killed when it has just been asked for a sign of life is not seen to go: it only never answers.
KILLED_HOSTAPD = ("hostapd is gone", "hostapd does not answer")

PHONE, GUEST, COMPUTER = "02:00:00:00:00:01", "02:00:00:00:00:02", "02:00:00:00:00:03"


@pytest.fixture
def network(lab):
    """A board with Wi-Fi and Ethernet that nobody is connected to."""
    lab.start_network()
    # Notifications of clients stay, however long a test takes.
    lab.start_service(clientNotificationSeconds=3600)
    lab.service.shows(statusBarWiFiEnabled=1, statusBarGuestWifiEnabled=1, statusBarMaxWiFiClientListSize="64",
                      statusBarClientListSize="0", statusBarEthernetPortEnabled="enabled")
    lab.service.notifies()
    return lab


@needs_root
def test_a_phone_joins_the_wifi_and_leaves(network):
    network.wifi.join(PHONE)
    network.network.lease(PHONE, "192.168.8.23", "phone")
    network.service.shows(statusBarWiFiClientListSize="1", statusBarClientListSize="1")
    network.service.notifies("deviceJoinWiFi")
    network.guests.join(GUEST)
    network.service.shows(statusBarGuestClientListSize="1", statusBarClientListSize="2")
    network.wifi.leave(PHONE)
    network.service.shows(statusBarWiFiClientListSize="0", statusBarClientListSize="1")
    network.service.notifies("deviceJoinWiFi", "deviceLeave")


@needs_root
def test_a_computer_is_plugged_in(network):
    network.network.plug()
    network.service.shows(statusBarEthernetPortEnabled="connected")
    network.network.attach(COMPUTER)
    network.network.lease(COMPUTER, "192.168.8.24", "computer")
    network.service.shows(statusBarClientListSize="1", statusBarWiFiClientListSize="0")
    network.service.notifies("deviceJoinEthernet")
    network.network.unplug()
    network.service.shows(statusBarEthernetPortEnabled="enabled", statusBarClientListSize="0")
    network.service.notifies("deviceJoinEthernet", "deviceLeave")


@needs_root
def test_a_computer_is_connected_without_a_bridge(network):
    network.network.separate(ETHERNET)
    network.network.plug()
    network.network.see(COMPUTER, "192.168.9.24", ETHERNET)
    network.network.see(PHONE, "192.168.10.23", USB)
    network.service.shows(statusBarClientListSize="2", statusBarWiFiClientListSize="0")
    network.service.notifies("deviceJoinEthernet", "deviceJoinUSB")
    network.network.see(COMPUTER, "192.168.9.24", ETHERNET, "stale")
    network.network.see(PHONE, "192.168.10.23", USB, "failed")
    # One is quiet for a moment, the other one does not answer.
    network.service.shows(statusBarClientListSize="1", statusBarWiFiClientListSize="0")
    network.network.unplug()
    network.service.shows(statusBarClientListSize="0", statusBarEthernetPortEnabled="enabled")
    network.service.notifies("deviceJoinEthernet", "deviceJoinUSB", "deviceLeave")
    assert network.service.said() == {}


@needs_root
def test_a_computer_gets_its_address_from_the_board(network):
    if shutil.which("busybox") is None:
        pytest.skip("busybox is not installed")
    network.start_leases()
    network.network.plug()
    network.network.ask_for_address("study")
    network.service.shows(statusBarClientListSize="1", statusBarWiFiClientListSize="0")
    network.service.notifies("deviceJoinEthernet")

    def named():
        return [(client["name"], client["address"][:10]) for client in network.service.told("clients")]

    wait_until(lambda: named() == [("study", "192.168.8.")], "the name of the computer is known")


@needs_root
def test_the_access_point_is_killed_and_comes_back(network):
    network.network.attach(GUEST, GUESTS)
    network.guests.join(GUEST)
    network.service.shows(statusBarGuestClientListSize="1")
    network.wifi.kill()
    network.service.shows("statusBarWiFiEnabled", statusBarGuestClientListSize="1", statusBarClientListSize="1")
    # The bridge still remembers the guest, but the guests' own access point knows better.
    network.guests.leave(GUEST)
    network.service.shows(statusBarClientListSize="0")
    network.wifi.start()
    network.service.shows(statusBarWiFiEnabled=1)
    network.service.notifies("deviceJoinWiFi", "deviceLeave")
    assert network.service.said() in [{f"wifi: lost: {why}": 1, "wifi: is back": 1} for why in KILLED_HOSTAPD]


@needs_root
def test_only_the_access_point_of_the_guests_is_killed(network):
    for access_point, mac in ((network.wifi, PHONE), (network.guests, GUEST)):
        network.network.attach(mac, access_point.interface)
        access_point.join(mac)
    network.service.shows(statusBarWiFiClientListSize="1", statusBarGuestClientListSize="1")
    network.guests.kill()
    # The bridge still sees the guest, who stays.
    network.service.shows(statusBarGuestWifiEnabled=0, statusBarWiFiClientListSize="1",
                          statusBarGuestClientListSize="1")
    network.network.detach(GUEST, GUESTS)
    network.service.shows(statusBarWiFiClientListSize="1", statusBarGuestClientListSize="0")
    assert network.service.said() in [{f"guest-wifi: lost: {why}": 1} for why in KILLED_HOSTAPD]


@needs_root
@pytest.mark.usefixtures("impatient")
def test_the_access_point_hangs(network):
    network.network.attach(PHONE, WIFI)
    network.wifi.join(PHONE)
    network.service.shows(statusBarWiFiClientListSize="1")
    network.wifi.hang()
    # The bridge still sees the phone, which has not left.
    network.service.shows("statusBarWiFiEnabled", statusBarWiFiClientListSize="1")
    network.wifi.resume()
    network.service.shows(statusBarWiFiEnabled=1, statusBarWiFiClientListSize="1")
    network.service.notifies("deviceJoinWiFi")
    assert network.service.said() == {"wifi: lost: hostapd does not answer": 1, "wifi: is back": 1}


def test_the_battery_falls_to_nine_percent(lab):
    lab.start_power()
    lab.start_service()
    lab.service.shows(statusBarBatteryDetection="Present", statusBarBatteryPercent="80",
                      statusBarBatteryChargingState="false", statusBarBatteryChargingSource="ChargingSourceNone")
    lab.power.battery(9)
    lab.service.shows(statusBarBatteryPercent="9")
    lab.service.notifies()
    lab.power.battery(10, "charging")
    lab.service.shows(statusBarBatteryPercent="10", statusBarBatteryChargingState="true",
                      statusBarBatteryChargingSource="ChargingSourceUSB")
    lab.power.battery(100, "full")
    lab.service.shows(statusBarBatteryPercent="100", statusBarBatteryChargingState="false",
                      statusBarBatteryChargingSource="ChargingSourceUSB")
    lab.power.take_out_battery()
    lab.service.shows(statusBarBatteryDetection="Notpresent")
    lab.power.battery(70)
    lab.service.shows(statusBarBatteryDetection="Present", statusBarBatteryPercent="70")
    lab.power.remove_battery()
    lab.service.shows(statusBarBatteryDetection="Notpresent")


def test_the_kernel_tells_of_the_battery_while_upower_is_gone(lab):
    lab.start_power()
    lab.start_service()
    lab.service.shows(statusBarBatteryPercent="80")
    lab.power.kill()
    lab.power.battery(9)
    lab.service.shows(statusBarBatteryPercent="9")
    lab.power.start()
    lab.power.battery(10)
    lab.service.shows(statusBarBatteryPercent="10")
    assert lab.service.said() == {}


def test_a_battery_that_only_upower_knows_is_silent_without_it(lab):
    lab.start_power()
    lab.start_service(powerSupplies=str(lab.folder / "none"))
    lab.service.shows(statusBarBatteryPercent="80")
    lab.power.kill()
    lab.service.shows("statusBarBatteryPercent")
    lab.service.notifies()
    lab.power.start()
    lab.service.shows(statusBarBatteryPercent="80")
    said = lab.service.said()
    assert said["power: lost: UPower is gone"] == 1
    assert said["power: is back"] == 1


def test_what_the_document_says_stands_in_place_of_a_daemon(lab):
    lab.start_power()
    lab.start_service()
    lab.service.shows(statusBarBatteryPercent="80")
    lab.service.answers = {"sys": {"getBatteryStatus": {"error": 5}}}
    lab.service.write()
    lab.service.shows("statusBarBatteryPercent")
    lab.service.answers = {}
    lab.service.write()
    lab.service.shows(statusBarBatteryPercent="80")


def test_the_position_is_found_and_lost(lab):
    lab.start_position()
    lab.start_service()
    lab.service.shows(statusBarGpsStatus="Searching")
    lab.position.find()
    lab.service.shows(statusBarGpsStatus="GotFix")
    lab.position.lose()
    lab.service.shows(statusBarGpsStatus="Searching")
    lab.service.notifies()


def installs_and_fails(lab, update):
    lab.start_service()
    lab.service.shows(StatusBarSoftwareUpdateStatus=NO_UPDATE)
    lab.service.notifies()
    update.hold()
    update.install(update.bundle())
    lab.service.shows(StatusBarSoftwareUpdateStatus=INSTALLING)
    lab.service.notifies("softwareUpdate")
    update.let_go()
    lab.service.shows(StatusBarSoftwareUpdateStatus=INSTALLED)
    lab.service.notifies("softwareUpdateSuccess")
    update.install(update.unfit_bundle())
    lab.service.shows(StatusBarSoftwareUpdateStatus=FAILED)
    lab.service.notifies("softwareUpdateFailure")


@needs_root
def test_rauc_installs_an_update_and_another_fails(lab):
    lab.start_update()
    installs_and_fails(lab, lab.update)


@needs_root
def test_an_update_during_which_rauc_is_killed_has_failed(lab):
    lab.start_update()
    lab.start_service()
    lab.update.hold()
    lab.update.install(lab.update.bundle())
    lab.service.shows(StatusBarSoftwareUpdateStatus=INSTALLING)
    lab.update.kill()
    wait_until(lambda: lab.service.said()["rauc: lost: RAUC is gone"] == 1, "the service has noticed")
    lab.update.let_go()
    lab.update.start()
    lab.service.shows(StatusBarSoftwareUpdateStatus=FAILED)
    lab.service.notifies("softwareUpdateFailure")


@needs_root
def test_swupdate_installs_an_update_and_another_fails(lab):
    lab.start_swupdate()
    installs_and_fails(lab, lab.swupdate)
    assert lab.service.told("swupdate")["version"] == f"{lab.swupdate.version}.0"


def test_files_are_shared(lab):
    lab.start_sharing()
    lab.start_service()
    lab.service.answers = CARD
    lab.service.write()
    lab.service.shows(statusBarSdCardStatus="SmbOff")
    lab.sharing.share()
    lab.service.shows(statusBarSdCardStatus="SmbOn")
    lab.sharing.share(False)
    lab.service.shows(statusBarSdCardStatus="SmbOff")
    lab.sharing.share()
    lab.service.shows(statusBarSdCardStatus="SmbOn")
    lab.sharing.crash()
    lab.service.shows(statusBarSdCardStatus="SmbOff")
    lab.service.notifies()


@needs_root
def test_everything_goes_when_the_bus_goes_and_comes_back(lab):
    lab.start_modem()
    lab.start_power()
    lab.start_sharing()
    lab.sharing.share()
    lab.start_update()
    lab.start_service(powerSupplies=str(lab.folder / "none"))
    lab.service.answers = CARD
    lab.service.write()

    def shows_all():
        lab.service.shows(statusBarSimStatus="Ready", statusBarConnectionState="Ready", statusBarBatteryPercent="80",
                          statusBarSdCardStatus="SmbOn", StatusBarSoftwareUpdateStatus=NO_UPDATE)

    shows_all()
    lab.bus.kill()
    lab.service.shows("statusBarSimStatus", "statusBarConnectionState", "statusBarBatteryPercent",
                      statusBarSdCardStatus="")
    lab.service.notifies()
    daemons = [lab.authority, lab.modem_manager, lab.power, lab.sharing, lab.update]
    for daemon in daemons:
        daemon.kill()
    lab.bus.start()
    for daemon in daemons:
        daemon.start()
    lab.add_modem()
    shows_all()
    lab.service.notifies()
    names = {"modem": "ModemManager is not on the bus", "power": "UPower is gone", "rauc": "RAUC is gone",
             "sharing": "the service manager is gone"}
    # A call to the modem may have been under way.
    changes = {text: count for text, count in lab.service.said().items() if "lost" in text or "back" in text}
    assert changes == {
        "system bus: connection lost": 1,
        **{f"{name}: lost: {why}": 1 for name, why in names.items()},
        **{f"{name}: is back": 1 for name in names},
    }


def test_a_board_without_any_daemon_answers(lab):
    lab.start_service()
    lab.service.shows(statusBarBatteryDetection="Notpresent", statusBarWiFiEnabled=0, statusBarGpsStatus="GpsOff",
                      statusBarConnectionState="No Service")
    lab.service.notifies()
    assert lab.service.said() == {}
