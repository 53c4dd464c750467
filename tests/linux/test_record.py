"""A board that has been recorded answers on a simulated device as it did itself."""

import json
import os
import pathlib
import socket
import subprocess

import pytest

from lab import scenarios
from lab.service import SERVICE, write_program
from support import paths
from support.namespaces import may_be_made
from support.server import Server
from support.waiting import wait_until

RECORDER = SERVICE.with_name("kestal-record")
SIMULATED = pathlib.Path(os.environ.get("KESTAL_SIMULATED_SERVICE", paths.BUILD / "service" / "kestal.cgi"))

pytestmark = pytest.mark.skipif(not SIMULATED.exists(), reason="this build has no simulated device")

SENDER, TEXT = "+15550123456", "Meet me at the harbour"
PHONE, ADDRESS, HOST = "a4:83:e7:12:9f:0b", "192.168.8.23", "annas-phone"
# IMSI, and the SSIDs of both access points.
IMSI, NETWORKS = "001010123456789", ("Lab Box", "Lab Guests")

# Each process that listens to the board remembers for itself who has come and gone.
SETTINGS = {"mutedNotifications": ["deviceJoinWiFi", "deviceLeave"]}


def bodies(server):
    return [server.ask(f"/srv/{name}").body for name in ("status", "notification")]


def record(lab, file, *arguments, says="", **variables):
    """Records the board as its service sees it."""
    script = lab.folder / "record.run"
    write_program(script, lab, lab.folder, [str(RECORDER)])
    environment = {**paths.CLEAN_ENVIRONMENT, "KESTAL_DEVICE": str(lab.service.device.path), **variables}
    run = subprocess.run([script, "--force", *arguments, file], env=environment, stdin=subprocess.DEVNULL,
                         capture_output=True, text=True, timeout=120)
    assert (run.returncode, run.stdout) == (0, ""), run.stderr
    assert says in run.stderr and ("does not answer" in run.stderr) == bool(says)
    return json.loads(pathlib.Path(file).read_text())


@pytest.fixture
def simulated(work):
    """The service on a simulated device, behind a web server of its own."""
    server = Server(work, "simulated")
    server.environment["KESTAL_RESPONDER"] = str(SIMULATED)
    yield server
    server.close()


def all_daemons(lab):
    lab.start_modem(on_usb=True)
    lab.start_power()
    lab.start_sharing()
    if may_be_made():
        lab.start_network()
    lab.start_position()
    lab.start_service(**SETTINGS)
    lab.service.shows(statusBarSimStatus="Ready", statusBarNetwork="Lab Net", statusBarBatteryPercent="80")
    lab.modem.order("register", "roaming")
    lab.modem.order("sms", SENDER, TEXT)
    lab.service.shows(statusBarSmsUnreadCount="1")
    if may_be_made():
        lab.wifi.join(PHONE)
        lab.network.lease(PHONE, ADDRESS, HOST)
        lab.service.shows(statusBarWiFiClientListSize="1")
        wait_until(lambda: HOST in json.dumps(lab.service.told("clients")), "the lease has been read")
    lab.service.notifies("roamingDomestic", "smsReceived")
    # ModemManager asks a modem that has just registered for this one after the other.
    lab.service.shows(statusBarNetworkID="00101", statusBarTechnology="LTE", statusBarSignalBars="5",
                      statusBarConnectionState="Ready", statusBarGpsStatus="Searching")


@pytest.mark.parametrize("options", [["--keep-identities"], []])
def test_a_recorded_board_answers_byte_for_byte(lab, simulated, options):
    all_daemons(lab)
    before = bodies(lab.service)
    recorded = lab.folder / "recorded.json"
    document = record(lab, recorded, *options)
    assert bodies(lab.service) == before, "the board has stayed as it was"
    simulated.device.write(recorded.read_bytes())
    simulated.start()
    assert bodies(simulated) == before
    assert (document["sys"]["getSubscriberInfo"]["identity"] == IMSI) == bool(options)


def test_a_board_without_daemons_is_recorded(lab, simulated):
    lab.start_service()
    before = bodies(lab.service)
    record(lab, lab.folder / "recorded.json")
    simulated.device.write((lab.folder / "recorded.json").read_bytes())
    simulated.start()
    assert bodies(simulated) == before


def test_a_board_whose_bus_is_silent_is_waited_for_and_the_recording_says_so(lab):
    lab.silence = 2
    with socket.socket(socket.AF_UNIX) as silent:
        silent.bind(str(lab.bus.socket))
        silent.listen()
        lab.make_service().write()
        record(lab, lab.folder / "recorded.json",
               says="the system bus or a daemon does not answer; what it would tell counts as absent\n")


def test_a_board_with_a_locked_sim_is_recorded(lab, simulated):
    lab.start_modem()
    lab.start_power()
    lab.start_service()
    lab.service.shows(statusBarSimStatus="Ready", statusBarBatteryPercent="80")
    lab.modem.order("sim", "locked")
    # ModemManager makes a new modem of it.
    path = lab.modem_manager.appeared(before=lab.path)
    lab.modem_manager.wait_until_known(path)
    lab.service.shows(statusBarSimStatus="PIN Locked")
    lab.service.notifies("simPINLocked")
    scenarios.settled(lab.service)
    before = bodies(lab.service)
    record(lab, lab.folder / "recorded.json")
    simulated.device.write((lab.folder / "recorded.json").read_bytes())
    simulated.start()
    assert bodies(simulated) == before


def test_a_bundle_has_what_the_sources_tell_without_identities(lab):
    all_daemons(lab)
    report = record(lab, lab.folder / "report.json", "--bundle", "--socket", str(lab.service.sources),
                    "--log", str(lab.service.log.path))
    said = {source["name"]: source["said"] for source in report["sources"]}
    assert {"modem", "power", "messages", "position"} <= set(said)
    message = said["messages"][0]
    assert (len(message["sender"]), len(message["text"])) == (len(SENDER), len(TEXT))
    if may_be_made():
        client = said["clients"][0]
        assert (client["mac"], len(client["address"]), len(client["name"])) == (
            "02:00:5e:00:00:01", len(ADDRESS), len(HOST))
    assert len(report["log"]) == 200
    text = json.dumps(report)
    for identity in (IMSI, SENDER, TEXT, PHONE, ADDRESS, HOST, *NETWORKS):
        assert identity not in text, identity
    kept = json.dumps(record(lab, lab.folder / "report.json", "--bundle", "--keep-identities",
                             "--socket", str(lab.service.sources), "--log", str(lab.service.log.path)))
    assert SENDER in kept and TEXT in kept and IMSI in kept


def test_a_bundle_without_a_service_says_so(lab):
    lab.make_service().write()
    lab.start_bus()
    log = lab.folder / "log"
    log.write_text("")
    # The recorder itself does not tell at the place where the service would.
    report = record(lab, lab.folder / "report.json", "--bundle", "--log", str(log),
                    KESTAL_SOURCES=str(lab.folder / "none"))
    assert report["sources"] == f"{lab.folder}/none: No such file or directory (does the service run?)"
    assert report["log"] == []
