"""A modem with two SIM slots that tells its cells: MBIM, found by ModemManager's own scan."""

import dbus
import pytest

from lab.modem_manager import MODEM
from support.namespaces import may_be_made

pytestmark = pytest.mark.skipif(not may_be_made(), reason="networks and process namespaces need root")


def start(lab, *orders):
    lab.start_mbim_modem(*orders)
    lab.start_service()
    lab.service.shows(statusBarSimStatus="Ready", statusBarNetwork="Lab Net", statusBarTechnology="LTE",
                      statusBarSignalBars="4", statusBarConnectionState="Ready", statusBarActiveSimSlot=1,
                      statusBarSimSlotsCount=2)


def test_the_other_sim_is_chosen(lab):
    start(lab)
    lab.service.shows(statusBarNumSims=2, statusBarSim2Status="Ready", statusBarSim2Network="")
    lab.modem_manager.call(lab.path, f"{MODEM}.SetPrimarySimSlot", dbus.UInt32(2))
    # ModemManager makes a new modem of it.
    lab.path = lab.modem_manager.appeared(before=lab.path)
    lab.modem_manager.wait_until_known(lab.path)
    lab.modem_manager.enable(lab.path)
    lab.service.shows(statusBarActiveSimSlot=2, statusBarSim2Status="Ready", statusBarSim2Network="Second Net",
                      statusBarSim2Technology="LTE", statusBarSim2ConnectionState="Ready", statusBarNetwork="")
    lab.service.notifies()
    lab.service.act("connect")
    lab.service.shows(statusBarSim2ConnectionState="Connected")


def test_the_other_slot_is_empty(lab):
    start(lab, ("slot", "2", "out"))
    lab.service.shows(statusBarNumSims=1, statusBarSim2Status="Not Found")


def test_the_modem_goes_to_another_cell(lab):
    start(lab)
    cells = lab.modem_manager.call(lab.path, f"{MODEM}.GetCellInfo")
    assert sorted((bool(cell["serving"]), int(cell["earfcn"])) for cell in cells) == [(False, 6300), (True, 1850)]
    # Of the serving cell, whose neighbour is no second carrier, which would make it LTE+.
    lab.service.shows(statusBarBand="B3", statusBarTechnology="LTE")
    lab.modem.order("register", "searching")
    lab.service.shows(statusBarConnectionState="No Service", statusBarBand="-")
    lab.modem.order("cell", 3350, 9)
    lab.modem.order("register", "home")
    lab.service.shows(statusBarBand="B7", statusBarTechnology="LTE", statusBarConnectionState="Ready")
