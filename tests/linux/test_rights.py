"""Rights: the service as a user of its own, the real polkitd, and what the bus lets that user call."""

import subprocess

import pytest

from lab.modem_manager import MODEM, STATE_CONNECTED, STATE_REGISTERED
from lab.network_manager import PROFILE
from lab.rights import as_user
from support.namespaces import may_be_made
from support.waiting import DEADLINE, wait_until

pytestmark = pytest.mark.skipif(not may_be_made(), reason="another user and mounts need root")

UNAUTHORIZED = "org.freedesktop.ModemManager1.Error.Core.Unauthorized"
# Bars by the measured power are others than those by the mere quality.
MEASURED, UNMEASURED = "5", "4"


def start(lab, rule=True):
    lab.guard(rule)
    lab.start_modem()
    lab.start_service(as_user=True)
    shows_all(lab, rule)


def shows_all(lab, rule=True):
    bars = MEASURED if rule else UNMEASURED
    lab.service.shows(statusBarSimStatus="Ready", statusBarNetwork="Lab Net", statusBarTechnology="LTE",
                      statusBarSignalBars=bars, statusBarConnectionState="Ready")


def calls(lab, method, *arguments):
    """What becomes of a call that the service's user makes: "done", or the name of the error."""
    command = ["busctl", "--address", lab.bus.address, "call", lab.modem_manager.service, lab.path,
               *f"{MODEM}.{method}".rsplit(".", 1), *arguments]
    run = subprocess.run(as_user(command), capture_output=True, text=True, timeout=DEADLINE)
    return "done" if run.returncode == 0 else run.stderr.strip()


def test_the_user_of_the_service_connects_and_disconnects(lab):
    start(lab)
    lab.service.act("connect")
    lab.service.shows(statusBarConnectionState="Connected")
    assert lab.modem_manager.state(lab.path) == STATE_CONNECTED
    lab.service.act("disconnect")
    lab.service.shows(statusBarConnectionState="Ready")
    assert lab.modem_manager.state(lab.path) == STATE_REGISTERED
    # Nothing has been refused, nor has the question for the cells, which a modem of this kind cannot answer.
    assert lab.service.said() == {}


def test_the_user_of_the_service_connects_by_the_profile_of_networkmanager(lab):
    lab.guard()
    lab.start_modem(on_usb=True)
    lab.start_network()
    lab.start_network_manager()
    lab.start_service(as_user=True)
    shows_all(lab)
    wait_until(lambda: lab.service.told("modem")["networkManager"], "the service knows the profile")
    lab.service.act("connect")
    lab.service.shows(statusBarConnectionState="Connected")
    assert PROFILE in lab.network_manager.connections()
    lab.service.act("disconnect")
    lab.service.shows(statusBarConnectionState="Ready")
    assert lab.network_manager.connections() == {}


def test_the_user_of_the_service_may_do_nothing_else(lab):
    start(lab)
    for refused in (("Reset",), ("FactoryReset", "s", "000000"), ("SetPowerState", "u", "2"),
                    ("Messaging.Create", "a{sv}", "0"), ("Location.Setup", "ub", "1", "true")):
        assert "Access denied" in calls(lab, *refused), refused
    assert calls(lab, "Signal.Setup", "u", "5") == "done"


def refused(lab):
    """What the service has logged to be refused, how often, without ModemManager's own words."""
    return {text.partition(f": {UNAUTHORIZED}: ")[0]: count for text, count in lab.service.said().items()}


def test_without_the_rule_the_service_only_reads(lab):
    start(lab, rule=False)
    lab.service.act("connect")
    wait_until(lambda: "data connection: not connected" in refused(lab), "it is refused")
    shows_all(lab, rule=False)
    assert lab.modem_manager.state(lab.path) == STATE_REGISTERED
    assert refused(lab) == {
        "modem: signal is not measured, only its quality is told": 1,
        "modem: cells are not told": 1,
        "data connection: not connected": 1,
    }


def test_the_rule_is_installed_while_everything_runs(lab):
    start(lab, rule=False)
    lab.authority.install_rule()
    wait_until(lambda: calls(lab, "Signal.Setup", "u", "5") == "done", "polkitd has read the rule")
    lab.service.act("connect")
    lab.service.shows(statusBarConnectionState="Connected")


@pytest.mark.usefixtures("impatient")
def test_the_user_of_the_service_notices_that_the_daemon_hangs(lab):
    start(lab)
    lab.modem_manager.hang()
    lab.service.shows("statusBarSimStatus")
    lab.modem_manager.resume()
    shows_all(lab)
