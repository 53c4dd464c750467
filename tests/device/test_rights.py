"""What the unit lets the service do, and what not."""

import json
import pathlib

import pytest

from hotspot import Hotspot

TRIED = "/run/kestal/tried"
INTRUDER = "/usr/local/libexec/intruder"
# A program of the box with which everybody is root.
WHO_AM_I = "/usr/local/libexec/whoami"
ALLOWED = {
    "write /run/kestal/new", "write /var/lib/kestal/new", "open a netlink socket", "use hostapd",
    "set up signal reports",
    # A folder of the unit's own, which nobody else sees.
    "write /tmp/intruder",
}


def test_server_and_service_get_no_new_privileges_and_are_filtered(box, hotspot):
    # The number of CAP_NET_BIND_SERVICE is 10. The web server hands it on to nobody.
    for process, capabilities in ((box.property("MainPID"), 1 << 10), (hotspot.responder(), 0)):
        lines = box.get(f"cat /proc/{process}/status").splitlines()
        status = {name: value.strip() for name, _, value in (line.partition(":") for line in lines)}
        assert status["NoNewPrivs"] == "1"
        # The filter of system calls is in force.
        assert status["Seccomp"] == "2"
        assert [int(status[name], 16) for name in ("CapEff", "CapPrm", "CapBnd")] == [capabilities] * 2 + [1 << 10]
        assert box.get(f"stat -c %U /proc/{process}") == "kestal"


@pytest.fixture(scope="module")
def tried(box):
    """What a program could do that runs in place of the service."""
    hotspot = Hotspot(box)
    hotspot.wait_until_ready()
    box.write(INTRUDER, (pathlib.Path(__file__).parent / "intruder").read_text())
    box.get(f"chmod 755 {INTRUDER} && cp /usr/bin/id {WHO_AM_I} && chmod 4755 {WHO_AM_I}")
    hotspot.shows(statusBarNetwork="Lab Net")
    hotspot.change_unit("intruder", f"Environment=KESTAL_RESPONDER={INTRUDER}")
    try:
        yield json.loads(box.get(f"cat {TRIED}"))
    finally:
        hotspot.restore_unit("intruder")
        box.get("rm -f /var/lib/kestal/new")


def test_a_service_that_tries_can_do_only_what_it_needs(box, tried):
    assert {name for name, result in tried.items() if result == "done"} == ALLOWED


def test_a_service_that_tries_writes_nothing_outside_of_its_folders(box, tried):
    assert box.get("find / -xdev \\( -name new -o -name intruder \\) -newer /run/kestal/owner "
                   "-not -path '/run/*' -not -path '/proc/*'").splitlines() == ["/var/lib/private/kestal/new"]
    assert box.get("find /run /tmp /dev -name new -o -name intruder | grep -v systemd-private").splitlines() == [
        "/run/kestal/new"]


def test_the_rights_on_the_bus_end_at_what_the_service_calls(box, tried):
    refused = ("reset the modem", "reset the modem to factory settings", "switch the modem off", "write a message",
               "switch the receiver on", "switch the network off", "add a profile", "reload NetworkManager")
    for name in refused:
        assert "Access denied" in tried[name], name
    assert tried["set up signal reports"] == "done"
    assert "hostapd" in box.get("systemctl list-units --state=active --plain --no-legend hostapd.service")
