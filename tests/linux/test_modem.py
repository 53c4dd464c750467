"""The modem: what happens to it, and what the service answers then."""

import pytest

from lab.modem_manager import MODEM, STATE_CONNECTED, STATE_REGISTERED

# What only the modem tells.
TOLD_BY_MODEM = ("statusBarSimStatus", "statusBarNetwork", "statusBarSignalBars", "statusBarConnectionState")


@pytest.fixture
def board(lab):
    """A board whose modem is registered and whose service says so."""
    lab.start_modem()
    lab.start_service()
    lab.service.shows(statusBarSimStatus="Ready", statusBarNetwork="Lab Net", statusBarNetworkID="00101",
                      statusBarTechnology="LTE", statusBarSignalBars="5", statusBarConnectionState="Ready")
    lab.service.notifies()
    return lab


def test_the_sim_is_taken_out(board):
    board.modem.order("sim", "out")
    board.service.shows(statusBarSimStatus="Not Found", statusBarNetwork="", statusBarSignalBars="0")
    # ModemManager makes a new modem of it.
    assert board.modem_manager.appeared() != board.path
    board.service.notifies()


def test_a_sim_is_put_in(lab):
    lab.start_modem(sim="out")
    lab.start_service()
    lab.service.shows(statusBarSimStatus="Not Found")
    lab.modem.order("sim", "in")
    lab.service.shows(statusBarSimStatus="Ready")
    path = lab.modem_manager.appeared()
    assert path != lab.path
    lab.modem_manager.enable(path)
    lab.service.shows(statusBarNetwork="Lab Net", statusBarConnectionState="Ready")
    lab.service.notifies()


def test_the_network_rejects(board):
    board.modem.order("register", "denied")
    board.service.shows(statusBarConnectionState="No Service", statusBarNetwork="", statusBarSignalBars="0")
    board.service.notifies("noService")
    board.modem.order("register", "home")
    board.service.shows(statusBarConnectionState="Ready", statusBarNetwork="Lab Net")
    board.service.notifies()


def test_the_modem_is_in_another_network(board):
    board.modem.order("operator", "Far Net", "26299")
    board.service.shows(statusBarNetwork="Far Net", statusBarNetworkID="26299", statusBarConnectionState="Ready")
    board.modem.order("register", "roaming")
    board.service.notifies("roamingInternational")


def test_somebody_connects_and_disconnects_on_the_page(board):
    board.service.act("connect")
    board.service.shows(statusBarConnectionState="Connected")
    board.modem_manager.wait_for(board.path, MODEM, "State", STATE_CONNECTED)
    board.service.act("disconnect")
    board.service.shows(statusBarConnectionState="Ready", statusBarMobileDataEnabled=0)
    board.modem_manager.wait_for(board.path, MODEM, "State", STATE_REGISTERED)
    board.service.notifies("dataOff")


def test_the_network_refuses_the_data_connection(board):
    board.modem.order("refuse", 33)
    board.service.act("connect")
    board.service.shows(statusBarConnectionState="Ready")
    board.modem.order("refuse", "nothing")
    board.service.act("connect")
    board.service.shows(statusBarConnectionState="Connected")


def test_the_network_ends_the_data_connection(lab):
    lab.start_modem(on_usb=True)
    lab.start_service()
    lab.modem_manager.connect(lab.path)
    lab.service.shows(statusBarConnectionState="Connected")
    lab.modem.order("drop")
    lab.service.shows(statusBarConnectionState="Ready")


def test_the_sim_asks_for_its_pin(lab):
    lab.start_modem(sim="locked")
    lab.start_service()
    lab.service.shows(statusBarSimStatus="PIN Locked")
    lab.service.notifies("simPINLocked")
    sim = lab.modem_manager.property(lab.path, MODEM, "Sim")
    lab.modem_manager.call(sim, "org.freedesktop.ModemManager1.Sim.SendPin", "1234")
    lab.service.shows(statusBarSimStatus="Ready")


def test_the_daemon_is_killed_and_comes_back(board):
    board.modem_manager.kill()
    board.service.shows(*TOLD_BY_MODEM)
    board.modem_manager.start()
    board.add_modem()
    board.service.shows(statusBarSimStatus="Ready", statusBarNetwork="Lab Net", statusBarConnectionState="Ready")
    said = board.service.said()
    assert said["modem: lost: ModemManager is not on the bus"] == 1
    assert said["modem: is back"] == 1


def test_the_daemon_hangs(board):
    board.modem_manager.hang()
    # Answers keep coming; what it told before stands until it has been silent for too long.
    board.service.shows(*TOLD_BY_MODEM)
    board.modem_manager.resume()
    board.service.shows(statusBarSimStatus="Ready", statusBarNetwork="Lab Net", statusBarConnectionState="Ready")
    said = board.service.said()
    assert said["modem: lost: ModemManager does not answer"] == 1
    assert said["modem: is back"] == 1


def test_a_message_arrives(board):
    board.modem.order("sms", "+15550123", "Hello")
    board.service.shows(statusBarSmsUnreadCount="1")
    board.service.notifies("smsReceived")


def test_the_modem_hangs_while_somebody_connects(board):
    board.modem.hang()
    board.service.act("connect")
    # The answer comes although no command of the modem does.
    board.service.shows(statusBarConnectionState="Connecting")
    board.modem.resume()
    board.service.shows(statusBarConnectionState="Connected")


def test_somebody_disconnects_while_the_modem_still_connects(board):
    board.modem.hang()
    board.service.act("connect")
    board.service.shows(statusBarConnectionState="Connecting")
    board.service.act("disconnect")
    board.modem.resume()
    board.modem_manager.wait_for(board.path, MODEM, "State", STATE_REGISTERED)
    board.service.shows(statusBarConnectionState="Ready", statusBarMobileDataEnabled=0)


def test_an_operator_may_have_any_name(board):
    name = "'><script>alert(1)</script>"
    board.modem.order("operator", name, "26299")
    board.service.shows(statusBarNetwork=name)
