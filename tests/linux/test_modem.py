"""The modem: what happens to it, and what the service answers then."""

import pytest

from lab.modem_manager import MODEM

# What only the modem tells.
TOLD_BY_MODEM = ("statusBarSimStatus", "statusBarNetwork", "statusBarSignalBars", "statusBarConnectionState")


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


def test_the_sim_asks_for_its_pin(lab):
    lab.start_modem(sim="locked")
    lab.start_service()
    lab.service.shows(statusBarSimStatus="PIN Locked")
    lab.service.notifies("simPINLocked")
    sim = lab.modem_manager.property(lab.path, MODEM, "Sim")
    lab.modem_manager.call(sim, "org.freedesktop.ModemManager1.Sim.SendPin", "1234")
    lab.service.shows(statusBarSimStatus="Ready")
    # Nobody has enabled the modem yet.
    lab.service.notifies("noService")


def test_the_daemon_is_killed_and_comes_back(board):
    board.modem_manager.kill()
    board.service.shows(*TOLD_BY_MODEM)
    board.service.notifies()
    board.modem_manager.start()
    board.add_modem()
    board.service.shows(statusBarSimStatus="Ready", statusBarNetwork="Lab Net", statusBarConnectionState="Ready")
    board.service.notifies()
    said = board.service.said()
    assert said["modem: lost: ModemManager is not on the bus"] == 1
    assert said["modem: is back"] == 1


@pytest.mark.usefixtures("impatient")
def test_the_daemon_hangs(board):
    board.modem_manager.hang()
    # Answers keep coming; what it told before stands until it has been silent for too long.
    board.service.shows(*TOLD_BY_MODEM)
    board.service.notifies()
    board.modem_manager.resume()
    board.service.shows(statusBarSimStatus="Ready", statusBarNetwork="Lab Net", statusBarConnectionState="Ready")
    board.service.notifies()
    said = board.service.said()
    assert said["modem: lost: ModemManager does not answer"] == 1
    assert said["modem: is back"] == 1


def test_a_message_arrives(board):
    board.modem.order("sms", "+15550123", "Hello")
    board.service.shows(statusBarSmsUnreadCount="1")
    board.service.notifies("smsReceived")
    assert b"Hello" in board.messages("read", "unread")
    board.service.shows(statusBarSmsUnreadCount="0")
    board.service.notifies()


def test_an_operator_may_have_any_name(board):
    name = "'><script>alert(1)</script>"
    board.modem.order("operator", name, "26299")
    board.service.shows(statusBarNetwork=name)
