"""kestal-conformance finds nothing in the binding, whatever daemons a board has."""

import re

from lab.service import SERVICE
from support.namespaces import may_be_made

CONFORMANCE = SERVICE.with_name("kestal-conformance")
NO_CARD = 2001


def examine(lab):
    """Makes all calls, those that act, too; returns what has been printed."""
    done = lab.run(CONFORMANCE, "--actions")
    findings = [line for line in done.stdout.splitlines() if line.startswith("FAIL")]
    assert (done.returncode, findings) == (0, []), done.stdout
    assert done.stdout.endswith("\nno findings\n")
    return done.stdout


def codes(told):
    """The codes that the queries of the system interface have returned."""
    return {name: int(code) for name, code in re.findall(r"(?m)^(sys_get\w+)\(\) -> (\d+)", told)}


def test_a_board_without_any_daemon_keeps_all_promises(lab):
    returned = codes(examine(lab))
    assert {name: code for name, code in returned.items() if code != 0} == {"sys_getSDCardInfo": NO_CARD}


def test_a_board_with_all_daemons_keeps_all_promises(lab):
    lab.start_modem(on_usb=True)
    lab.start_power()
    lab.start_sharing()
    if may_be_made():
        lab.start_network()
        lab.start_update()
        lab.start_swupdate()
    lab.start_position()
    told = examine(lab)
    # It is these daemons that have been asked.
    assert 'networkName "Lab Net"' in told
    assert "sys_getGPSStatus() -> 0, value 1" in told
    assert "sys_cellularDataConnect(0) -> 0" in told
