"""The tools as programs, on a simulated device."""

import json
import re
import subprocess

import pytest

import surroundings


def examples():
    """The commands in docs/tools.md with what they print."""
    page = (surroundings.ROOT / "docs" / "tools.md").read_text()
    found = []
    for block in re.findall(r"^```console\n(.*?)^```", page, re.MULTILINE | re.DOTALL):
        found += re.findall(r"^\$ (.*)\n((?:(?!\$ ).*\n)*)", block, re.MULTILINE)
    return found


@pytest.mark.parametrize("tool", ["sysintcli", "webui_cli", "msgbus_cli"])
def test_the_documentation_has_an_example(tool):
    assert [command for command, _ in examples() if command.startswith(tool + " ")]


@pytest.mark.parametrize("command, output", examples())
def test_the_examples_of_the_documentation_are_true(command, output, tmp_path):
    done = subprocess.run(
        ["sh", "-c", command],
        env=surroundings.environment(),
        cwd=tmp_path,
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        text=True,
        timeout=60,
    )
    assert done.stdout == output


def documents():
    """The whole JSON documents that the pages show, by page: devices and scenarios."""
    found = []
    for name in ("man/kestal-device.5.scd", "man/kestal-scenario.5.scd", "simulator.md", "scenarios.md"):
        page = (surroundings.ROOT / "docs" / name).read_text()
        found += [(name, text) for text in re.findall(r"^```(?:json)?\n(\{.*?)^```", page, re.MULTILINE | re.DOTALL)]
    return found


@pytest.mark.parametrize("name", ["man/kestal-device.5.scd", "man/kestal-scenario.5.scd"])
def test_the_man_page_shows_a_document(name):
    assert name in [page for page, _ in documents()]


@pytest.mark.parametrize("text", [text for _, text in documents()], ids=[page for page, _ in documents()])
def test_the_documents_of_the_documentation_are_accepted(text, tmp_path):
    file = tmp_path / "document.json"
    file.write_text(text)
    if '"events"' in text:
        done = surroundings.run("kestal-sim", "play", "--check", file)
    else:
        done = surroundings.run("kestal-sim", "status", device=file)
    assert (done.returncode, done.stderr) == (0, b"")


@pytest.fixture
def device(tmp_path):
    """A copy of the default device, to be changed."""
    file = tmp_path / "device.json"
    file.write_bytes(surroundings.DEFAULT_DEVICE.read_bytes())
    return file


def write(device, **parts):
    device.write_text(json.dumps(parts))


def test_connecting_and_disconnecting_changes_the_device(device):
    status = {}
    for command in ("cellularDataDisconnect", "cellularDataConnect"):
        done = surroundings.run("sysintcli", command, device=device)
        assert (done.returncode, done.stdout, done.stderr) == (0, b"", b"")
        shown = surroundings.run("sysintcli", "getCellularDataConnectionStatus", device=device)
        status[command] = json.loads(shown.stdout)["status"]["name"]
    assert status == {"cellularDataDisconnect": "ready", "cellularDataConnect": "connected"}


def test_every_command_prints_json_or_the_code(device):
    """Whatever the device: the default one does not know all names."""
    argument = {"getWiFiGuestProfileEnabled": "1", "getSIMCarrierGID": "0", "MsgBusGet": "a"}
    by_name = re.compile(r"getUI|get_app|uri_data|custom_msgs")
    for tool in ("sysintcli", "webui_cli", "msgbus_cli"):
        for command in surroundings.commands(tool):
            if command.startswith("cellularData"):
                continue
            name = argument.get(command, "some" if by_name.search(command) else None)
            given = [command] if name is None else [command, name]
            done = surroundings.run(tool, *given, device=device)
            if done.returncode == 0:
                assert isinstance(json.loads(done.stdout), dict)
                assert done.stderr == b""
            else:
                assert done.returncode == 1
                assert re.search(rb" failed, returned error code \d+", done.stderr)
                assert done.stdout == b""


@pytest.mark.parametrize("name", ["default", "dual-sim-slot-2", "out-of-credit"])
def test_what_the_tools_print_is_accepted_as_values_of_a_document(device, tmp_path, name):
    source = surroundings.ROOT / "devices" / f"{name}.json"
    device.write_text("{}")
    taken = 0
    webui = {
        "get_common_features": "commonFeatures",
        "get_common_configurations": "commonConfigurations",
        "get_i18n_settings": "i18nSettings",
        "get_software_update_status": "softwareUpdateStatus",
        "get_software_installation_duration": "softwareInstallationDuration",
        "get_uri_data sms": "uriData.sms",
        "get_external_uri_data support": "externalUriData.support",
        "get_software_update_custom_msgs en_US": "softwareUpdateCustomMsgs.en_US",
    }
    arguments = {"getSIMCarrierGID": "0", "getWiFiGuestProfileEnabled": "1"}
    commands = [(["webui_cli", *command.split()], f"webui.{path}") for command, path in webui.items()]
    for command in surroundings.commands("sysintcli"):
        if command.startswith("get"):
            argument = "apn" if "Field" in command else "sms" if "UIApp" in command else arguments.get(command)
            given = [] if argument is None else [argument]
            path = ".".join([command.replace("Bandwidth", "BandWidth").replace("getMnsInfo", "getModemMnsInfo"), *given])
            commands.append((["sysintcli", command, *given], f"sys.{path}"))
    for command, path in commands:
        printed = surroundings.run(*command, device=source)
        if printed.returncode == 0:
            done = surroundings.run("kestal-sim", "set", path, printed.stdout.decode(), device=device)
            assert (done.returncode, done.stderr) == (0, b""), path
            assert surroundings.run(*command, device=device).stdout == printed.stdout
            taken += 1
    assert taken > 50


def test_a_failing_call_prints_its_code_on_the_error_stream(device):
    write(device, sys={"getSDCardInfo": {"error": 2001}})
    done = surroundings.run("sysintcli", "getSDCardInfo", device=device)
    assert (done.returncode, done.stdout) == (1, b"")
    assert done.stderr == (
        b"sysintcli: sys_getSDCardInfo failed, returned error code 2001 (error_no_sd_card)\n"
    )


def test_wrong_usage_exits_with_2():
    for arguments in ([], ["nothing"], ["getSIMStatus", "1"], ["getSIMCarrierGID"], ["--no"]):
        done = surroundings.run("sysintcli", *arguments)
        assert (done.returncode, done.stdout) == (2, b"")
        assert done.stderr.endswith(b"\nTry 'sysintcli --help'.\n")


def test_raw_bytes_are_those_of_the_channel(device):
    write(device, msgbus={"zelt.other": {"bytes": "000a80ff"}})
    done = surroundings.run("msgbus_cli", "MsgBusGet", "--raw", "zelt.other", device=device)
    assert (done.returncode, done.stdout) == (0, b"\x00\x0a\x80\xff")


def test_bytes_are_shown_as_a_device_document_has_them(device):
    write(device, msgbus={"zelt.other": {"bytes": "000a80ff"}})
    done = surroundings.run("msgbus_cli", "MsgBusGet", "zelt.other", device=device)
    assert json.loads(done.stdout) == {"size": 4, "bytes": "000a80ff"}


def test_an_empty_block_is_read(device):
    write(device, msgbus={"zelt.other": {"bytes": ""}})
    done = surroundings.run("msgbus_cli", "MsgBusGet", "zelt.other", device=device)
    assert json.loads(done.stdout) == {"size": 0, "bytes": ""}


def test_a_list_with_thousands_of_notifications_is_shown(device):
    write(device, msgbus={"zelt.ans.notifications": [{"id": f"n{n}"} for n in range(5000)]})
    done = surroundings.run("msgbus_cli", "MsgBusGet", "zelt.ans.notifications", device=device)
    shown = json.loads(done.stdout)
    assert shown["count"] == 5000
    assert [one["id"] for one in shown["notifications"]] == [f"n{n}" for n in range(5000)]


def test_a_full_disk_is_a_failure():
    with open("/dev/full", "wb") as full:
        done = surroundings.run(
            "sysintcli", "getNumSims", capture_output=False, stdout=full, stderr=subprocess.PIPE
        )
    assert (done.returncode, done.stderr) == (1, b"sysintcli: the output cannot be written\n")
