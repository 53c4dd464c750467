"""What bash offers as completion after the names of the tools."""

import re
import shutil
import subprocess

import pytest

import surroundings

# Calls the completion as bash does when the tab key is pressed at the end of the words.
DRIVER = """
source "$1"
shift
registered=$(complete -p -- "$1") || exit 1
COMP_WORDS=("$@")
COMP_CWORD=$(($# - 1))
set -- $registered
"$3" "${COMP_WORDS[0]}" "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
printf '%s\\n' "${COMPREPLY[@]}"
"""

BASH = shutil.which("bash")
pytestmark = pytest.mark.skipif(BASH is None, reason="there is no bash")


def offered(*words, script=None):
    file = surroundings.ROOT / "tools" / "completion" / f"{script or words[0]}.bash"
    done = subprocess.run(
        [BASH, "--norc", "-c", DRIVER, "driver", file, *words],
        env=surroundings.environment(),
        capture_output=True,
        text=True,
        timeout=60,
    )
    assert (done.returncode, done.stderr) == (0, "")
    return done.stdout.split()


@pytest.mark.parametrize("tool", ["sysintcli", "webui_cli", "msgbus_cli"])
def test_all_commands_are_offered(tool):
    assert offered(tool, "") == ["--help", "--commands", "--version", *surroundings.commands(tool)]


def test_commands_are_completed():
    assert offered("sysintcli", "getCellular5G") == ["getCellular5GBand", "getCellular5GMode"]
    assert offered("webui_cli", "get_ext") == ["get_external_uri_data"]
    assert offered("msgbus_cli", "Msg") == ["MsgBusGet"]
    assert offered("sysintcli", "nothing") == []


def test_the_other_name_of_sysintcli_is_completed():
    assert offered("sysinicli", "getNumS", script="sysintcli") == ["getNumSims"]


def test_arguments_with_few_values_are_offered():
    assert offered("sysintcli", "getWiFiGuestProfileEnabled", "") == ["--help", "1", "2"]
    assert offered("msgbus_cli", "MsgBusGet", "z") == ["zelt.ans.notifications"]
    assert offered("msgbus_cli", "MsgBusGet", "--raw", "z") == ["zelt.ans.notifications"]
    assert offered("msgbus_cli", "MsgBusGet", "--r") == ["--raw"]


def test_options_and_files_of_the_recorder_are_offered(tmp_path):
    (tmp_path / "afternoon.json").touch()
    assert offered("kestal-record", "--na") == ["--names"]
    assert offered("kestal-sim", "record", "--bu") == ["--bundle"]
    for words in (["kestal-record"], ["kestal-sim", "record"]):
        assert offered(*words, f"{tmp_path}/aft") == [f"{tmp_path}/afternoon.json"]


@pytest.mark.parametrize("tool", ["kestal-sources", "kestal-messages"])
def test_options_of_the_tools_of_a_board_are_offered(tool):
    assert offered(tool, "--") == ["--help", "--commands", "--version", "--socket"]


def test_the_recorder_offers_the_options_that_it_has():
    told = surroundings.run("kestal-record", "--help").stdout.decode()
    assert set(offered("kestal-record", "-")) == set(re.findall(r"(?m)^ .*?(--[a-z-]+)", told))


def test_other_commands_offer_only_help():
    assert offered("sysintcli", "getSIMStatus", "") == ["--help"]
    assert offered("sysintcli", "getWiFiGuestProfileEnabled", "1", "") == ["--help"]
    assert offered("webui_cli", "get_uri_data", "--h") == ["--help"]
