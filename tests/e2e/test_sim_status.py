"""kestal-sim status: the device, drawn in a terminal."""

import os
import pty
import re
import select
import shutil
import signal
import subprocess
import time

import pytest

from support import paths
from support.waiting import DEADLINE

SMALL = b"""{"sys": {
    "getRadioEnabled": 1, "getSIMStatus": "ready", "getGPSStatus": {"error": null, "hang": true, "healed": "got_fix"},
    "getBatteryStatus": {"error": null, "delay": 600, "healed": {"chargePercent": 84, "detection": "present"}},
    "getSDCardInfo": {"error": "error_no_sd_card"}, "getCellularServiceStatus": 9,
    "getCellularServiceStats": {"technology": "5g", "fiveGType": "other", "networkName": "A\\u001b[2JB"},
    "getCellularDataConnectionStats": {"bytesReceived1": 734003200, "bytesReceived2": 1, "bytesTransmitted1": 999},
    "getConnectedDeviceList": [{"connectionKind": "wifi"}, {"connectionKind": "wifi"}, {"connectionKind": 9}],
    "sdkInitialize": {"error": 3}}}"""

SHOWN = r"""
Device                         sys_sdkInitialize fails: 3
Modem          radio           on
               service         9
               network         A\u001b[2JB (-)
               technology      5g, other
               roaming         none
               femtocell       no
               5G mode         sys_getCellular5GMode fails: not_answered (9001)
""".lstrip()


@pytest.fixture
def device(work):
    path = work / "device.json"
    shutil.copy(paths.DEFAULT_DEVICE, path)
    return path


def command(device, *arguments):
    return [str(paths.SIM), "--device", str(device), "status", *arguments]


def status(device):
    run = subprocess.run(command(device), capture_output=True, text=True, timeout=20)
    assert (run.returncode, run.stderr) == (0, "")
    return run.stdout


def test_each_section_has_its_values_with_names_and_units(device):
    text = status(device)
    assert re.findall(r"(?m)^(\w[\w ]*?) {2,}", text) == [
        "Modem", "Signal", "SIM", "Connection", "Traffic", "Local network", "Clients", "Battery", "Storage", "More",
        "Notifications",
    ]  # fmt: skip
    for line in (
        "Modem          radio           on",
        "               technology      5g, ultra_wideband",
        "               5G bandwidth    100 MHz",
        "Signal         strength        4 bars",
        "               slot 1          ready, Orvane, service available, data connected",
        "               received        734.0 MB",
        "Clients        connected       5",
        "               guest_wifi      1",
        "Battery        charge          84 %",
        "More           GPS             got_fix",
        "Notifications  smsReceived     info",
    ):
        assert line in text.splitlines()
    assert "fails" not in text


def test_failing_calls_are_named_and_nothing_is_waited_for(device):
    device.write_bytes(SMALL)
    begin = time.monotonic()
    text = status(device)
    assert time.monotonic() - begin < 60
    assert text.startswith(SHOWN)
    for line in (
        "Traffic        direction       none",
        "               received        734.0 MB",
        "               sent            999 bytes",
        "Clients        connected       3",
        "               wifi            2",
        "               9               1",
        "Battery        charge          84 %",
        "Storage        card            sys_getSDCardInfo fails: error_no_sd_card (2001)",
        "More           GPS             sys_getGPSStatus fails: interrupted (9008)",
        "               language        webui_get_i18n_settings fails: not_answered (992041)",
        "Notifications  list            MsgbusHandler::GetData fails: not_answered (9001)",
        'Faults         sys.getGPSStatus     {"error": null, "hang": true}',
        '               sys.getBatteryStatus {"error": null, "delay": 600}',
    ):
        assert line in text.splitlines(), text


def read_until(file, text):
    """What comes from the file up to and including a text."""
    got = ""
    end = time.monotonic() + DEADLINE
    while text not in got:
        assert select.select([file], [], [], end - time.monotonic())[0], got
        got += os.read(file, 65536).decode()
    return got


def change(device, percent):
    subprocess.run(
        [str(paths.SIM), "--device", str(device), "set", "getBatteryStatus.chargePercent", str(percent)],
        check=True,
        timeout=20,
    )


def test_it_prints_the_device_anew_when_it_has_changed(device):
    follower = subprocess.Popen(command(device, "--follow"), stdout=subprocess.PIPE)
    file = follower.stdout.fileno()
    last = "Notifications  smsReceived     info\n               softwareUpdate  warning\n"
    first = read_until(file, last)
    assert "84 %" in first
    change(device, 9)
    assert read_until(file, last) == "\n" + first.replace("84 %", "9 %")
    follower.send_signal(signal.SIGINT)
    assert follower.wait(20) == 0
    assert follower.stdout.read() == b""


def test_in_a_terminal_the_picture_is_replaced_and_cut_to_the_window(device):
    controller, terminal = pty.openpty()
    subprocess.run(["stty", "rows", "12", "cols", "80"], stdin=terminal, check=True)
    follower = subprocess.Popen(command(device, "--follow"), stdout=terminal)
    end = "\033[J\033[?7h"
    first = read_until(controller, end)
    # The screen is cleared once; later pictures replace the lines, so that nothing flickers.
    assert first.startswith("\033[2J\033[H\033[?7lModem") and first.count("\r\n") == 11
    assert "... the window is too low for the rest\033[K" in first
    change(device, 9)
    subprocess.run([str(paths.SIM), "--device", str(device), "set", "getRadioEnabled", "0"], check=True, timeout=20)
    second = read_until(controller, end)
    assert "\033[2J" not in second
    assert second == first.removeprefix("\033[2J").replace("radio           on", "radio           off")
    follower.send_signal(signal.SIGTERM)
    assert follower.wait(20) == 0
    os.close(controller)
    os.close(terminal)


@pytest.mark.parametrize(
    ("contents", "message"),
    [(None, "No such file or directory"), ("{", "device.json:1"), ('{"sys": {"getSIMStatus": "redy"}}', "redy")],
)
def test_a_device_that_cannot_be_read_is_one_line(device, contents, message):
    device.unlink()
    if contents is not None:
        device.write_text(contents)
    for arguments in ((), ("--follow",)):
        run = subprocess.run(command(device, *arguments), capture_output=True, text=True, timeout=20)
        assert (run.returncode, run.stdout) == (1, "")
        assert run.stderr.startswith("kestal-sim: ") and message in run.stderr and run.stderr.count("\n") == 1
