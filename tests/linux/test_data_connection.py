"""The data connection: who starts and ends it, and what the service answers then."""

import pytest

from lab.modem_manager import MODEM, STATE_CONNECTED, STATE_REGISTERED
from support.namespaces import may_be_made

needs_root = pytest.mark.skipif(not may_be_made(), reason="networks need root")


def test_somebody_connects_and_disconnects_on_the_page(board):
    board.service.act("connect")
    board.service.shows(statusBarConnectionState="Connected")
    board.service.notifies()
    board.modem_manager.wait_for(board.path, MODEM, "State", STATE_CONNECTED)
    board.service.act("disconnect")
    board.service.shows(statusBarConnectionState="Ready", statusBarMobileDataEnabled=0)
    board.modem_manager.wait_for(board.path, MODEM, "State", STATE_REGISTERED)
    board.service.notifies("dataOff")


def test_the_page_polls_right_after_a_button_was_pressed(board):
    for _ in range(3):
        board.service.act("connect")
        assert board.service.status()["statusBarConnectionState"] in ("Connecting", "Connected")
        board.service.shows(statusBarConnectionState="Connected")
        board.service.act("disconnect")
        assert board.service.status()["statusBarConnectionState"] != "Connected"
        board.service.shows(statusBarConnectionState="Ready")


def test_the_network_refuses_the_data_connection(board):
    board.modem.order("refuse", 33)
    board.service.act("connect")
    board.service.shows(statusBarConnectionState="Ready")
    board.service.notifies()
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
    lab.service.notifies()


def test_the_modem_takes_its_time_while_somebody_connects(board):
    board.modem.order("hold")
    board.service.act("connect")
    # The answer comes although that of the modem does not.
    board.service.shows(statusBarConnectionState="Connecting")
    board.service.notifies()
    board.modem.order("let-go")
    board.service.shows(statusBarConnectionState="Connected")
    board.service.notifies()


def test_somebody_disconnects_while_the_modem_still_connects(board):
    board.modem.hang()
    board.service.act("connect")
    board.service.shows(statusBarConnectionState="Connecting")
    board.service.act("disconnect")
    board.modem.resume()
    board.modem_manager.wait_for(board.path, MODEM, "State", STATE_REGISTERED)
    board.service.shows(statusBarConnectionState="Ready", statusBarMobileDataEnabled=0)
    board.service.notifies("dataOff")


@needs_root
def test_the_data_connection_uses_the_plan_up(lab):
    lab.start_network()
    lab.start_modem(on_usb=True)
    lab.start_service(planBytes=100_000)
    lab.service.act("connect")
    lab.service.shows(statusBarConnectionState="Connected", statusBarBytesReceived="0")
    lab.network.carry(0, 95_000)
    lab.service.shows(statusBarBytesReceived="95000")
    lab.service.notifies("data90")
    lab.network.carry(0, 5_000)
    lab.service.shows(statusBarBytesReceived="100000")
    lab.service.notifies("data100")
