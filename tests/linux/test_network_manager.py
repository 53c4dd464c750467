"""NetworkManager beside the service: its profile connects the modem, and it may come and go."""

import pytest

from lab.modem_manager import STATE_REGISTERED
from lab.network_manager import ACTIVATED, ACTIVATING, DEACTIVATING, PROFILE, SlowNetworkManager
from support.namespaces import may_be_made
from support.waiting import wait_until

needs_root = pytest.mark.skipif(not may_be_made(), reason="networks and mounts need root")


@pytest.fixture
def managed(lab):
    """A board whose modem has a network interface, and a profile at NetworkManager."""
    lab.start_modem(on_usb=True)
    lab.start_network()
    lab.start_network_manager()
    lab.start_service()
    lab.service.shows(statusBarSimStatus="Ready", statusBarConnectionState="Ready")
    knows_profile(lab)
    return lab


def knows_profile(lab):
    wait_until(lambda: lab.service.told("modem")["networkManager"], "the service knows the profile")


def is_at(lab, *states):
    """Waits until the profile has a connection in this state, or none."""
    expected = {PROFILE: state for state in states}
    wait_until(lambda: lab.network_manager.connections() == expected, f"the connections are {expected}")


def connect(lab):
    lab.service.act("connect")
    lab.service.shows(statusBarConnectionState="Connected")
    is_at(lab, ACTIVATED)


def addresses(lab):
    return lab.network.capture("ip", "address", "show", "wwan0")


@needs_root
def test_the_profile_connects_and_disconnects(managed):
    connect(managed)
    # Nobody but NetworkManager gives the interface the address that the network has told, which it may do last.
    wait_until(lambda: "inet 10.11.12.13/" in addresses(managed), "the interface has its address")
    managed.service.act("disconnect")
    managed.service.shows(statusBarConnectionState="Ready", statusBarMobileDataEnabled=0)
    managed.service.notifies("dataOff")
    is_at(managed)
    assert managed.modem_manager.state(managed.path) == STATE_REGISTERED
    wait_until(lambda: "inet " not in addresses(managed), "the interface has no address")
    assert managed.service.said() == {}


@needs_root
def test_the_modem_takes_its_time(managed):
    managed.modem.order("hold")
    managed.service.act("connect")
    managed.service.shows(statusBarConnectionState="Connecting")
    is_at(managed, ACTIVATING)
    # The same once more changes nothing.
    managed.service.act("connect")
    managed.modem.order("let-go")
    managed.service.shows(statusBarConnectionState="Connected")
    # NetworkManager may abort when a connection is ended that it is still setting up.
    is_at(managed, ACTIVATED)
    managed.modem.order("hold")
    managed.service.act("disconnect")
    managed.service.shows(statusBarConnectionState="Disconnecting")
    managed.modem.order("let-go")
    managed.service.shows(statusBarConnectionState="Ready")
    is_at(managed)


@needs_root
def test_somebody_disconnects_while_the_profile_still_connects(managed):
    managed.modem.hang()
    managed.service.act("connect")
    is_at(managed, ACTIVATING)
    # How long that takes depends on how far ModemManager was.
    managed.service.act("disconnect")
    managed.modem.resume()
    managed.service.shows(statusBarConnectionState="Ready", statusBarMobileDataEnabled=0)
    is_at(managed)
    assert managed.modem_manager.state(managed.path) == STATE_REGISTERED
    managed.service.notifies("dataOff")


@needs_root
def test_somebody_connects_while_the_profile_still_disconnects(managed):
    connect(managed)
    managed.modem.hang()
    managed.service.act("disconnect")
    # NetworkManager has answered, and the modem has not.
    is_at(managed, DEACTIVATING)
    managed.service.act("connect")
    managed.service.shows(statusBarConnectionState="Connecting")
    managed.modem.resume()
    managed.service.shows(statusBarConnectionState="Connected")
    is_at(managed, ACTIVATED)


@needs_root
def test_the_network_refuses_the_profile(managed):
    managed.modem.order("refuse", 33)
    managed.service.act("connect")
    # If it gives up before it is seen to begin, the service waits for a sign of it in vain.
    reasons = ("not connected: NetworkManager has given up", "not connected in time")
    wait_until(
        lambda: sum(managed.service.said()[f"data connection: {reason}"] for reason in reasons) == 1,
        "the service has logged it",
    )
    managed.service.shows(statusBarConnectionState="Ready")
    managed.service.notifies()
    is_at(managed)
    managed.modem.order("refuse", "nothing")
    connect(managed)


@needs_root
def test_the_daemon_is_killed_and_comes_back(managed):
    connect(managed)
    managed.network_manager.kill()
    # Without it, ModemManager itself connects and disconnects.
    wait_until(lambda: not managed.service.told("modem")["networkManager"], "the service has noticed")
    managed.service.shows(statusBarConnectionState="Connected")
    managed.service.notifies()
    managed.service.act("disconnect")
    managed.service.shows(statusBarConnectionState="Ready")
    managed.service.notifies("dataOff")
    managed.network_manager.start()
    managed.network_manager.wait_for_modem()
    knows_profile(managed)
    connect(managed)
    managed.service.act("disconnect")
    managed.service.shows(statusBarConnectionState="Ready")


@needs_root
def test_the_daemon_is_killed_while_it_connects(managed):
    managed.modem.order("hold")
    managed.service.act("connect")
    is_at(managed, ACTIVATING)
    managed.network_manager.kill()
    managed.modem.order("let-go")
    # ModemManager goes on although nobody waits for it any more.
    managed.service.shows(statusBarConnectionState="Connected")
    managed.network_manager.start()
    managed.network_manager.wait_for_modem()
    knows_profile(managed)
    managed.service.act("disconnect")
    managed.service.shows(statusBarConnectionState="Ready")
    connect(managed)


def test_the_daemon_has_its_name_before_its_objects(board):
    slow = SlowNetworkManager(board.folder, board.bus)
    board.start(slow)
    wait_until(slow.has_been_asked, "the service has asked")
    slow.go_on()
    knows_profile(board)
