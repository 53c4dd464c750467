"""A device that has been recorded answers as the one that it was recorded from."""

import json
import os
import re
import stat
import subprocess

import pytest

from support import paths
from support.recorder import NOTIFICATIONS, ODD, RECORDER, SIM_RECORD, answers, call, mode, write

DEVICES = sorted(path.stem for path in paths.DEVICES.glob("*.json"))


@pytest.mark.parametrize("program, name", [(SIM_RECORD, name) for name in DEVICES] + [((str(RECORDER),), "default")])
def test_a_recorded_device_answers_byte_for_byte(make_responder, work, program, name):
    original = (paths.DEVICES / f"{name}.json").read_bytes()
    before = answers(make_responder, "a", original)
    for options in (["--keep-identities"], []):
        recorded = work / "recorded.json"
        assert call(program, recorded, "--force", *options, environment=write(work, original)) == ""
        assert answers(make_responder, "b", recorded.read_bytes()) == before, options


def test_odd_values_are_recorded(make_responder, work):
    original = json.loads(paths.DEFAULT_DEVICE.read_bytes())
    for part, entries in ODD.items():
        original[part].update(entries)
    document = json.dumps(original).encode()
    recorded = work / "recorded.json"
    call(SIM_RECORD, recorded, "--keep-identities", environment=write(work, document))
    assert answers(make_responder, "b", recorded.read_bytes()) == answers(make_responder, "a", document)
    # All of it, not only what shows in the answers.
    again = json.loads(recorded.read_bytes())
    for part, entries in ODD.items():
        for entry, value in entries.items():
            if entry not in ("getCellularServiceStats", "getAllSimSlotsInfo", "softwareUpdateStatus",
                             "softwareUpdateCustomMsgs", NOTIFICATIONS):
                assert again[part][entry] == value, entry
    assert again["sys"]["getCellularServiceStats"]["networkId"] == {"bytes": "31" * 99}


def test_other_blocks_and_channels_are_recorded(work):
    for block in ("", "00", "02000000" + "00" * 464, "ffffffff", "00000000aa"):
        document = {"msgbus": {NOTIFICATIONS: {"bytes": block}, "weather": {"bytes": "00ff"}}}
        recorded = work / "recorded.json"
        environment = write(work, json.dumps(document).encode())
        call(SIM_RECORD, recorded, "--force", "--channels", "weather,tides", environment=environment)
        told = json.loads(recorded.read_bytes())["msgbus"]
        assert told == {**document["msgbus"], "tides": {"error": "not_answered"}}


def test_names_of_the_device_are_asked_for(work):
    document = {
        "sys": {"getUIFieldShowEnabled": {"vpn": 1}, "getUIAppWriteEnabled": {"vpn": {"error": 5}}},
        "webui": {
            "appFeatures": {"vpn": {"IsSupported": 1}},
            "appConfigurations": {"vpn": {"Mode": "2"}},
            "uriData": {"vpn": {"address": "/vpn", "titleId": "t"}},
            "externalUriData": {"vpn": "https://vpn.example/"},
            "softwareUpdateCustomMsgs": {"it": {"description": "Aggiornamento. "}},
        },
    }
    recorded = work / "recorded.json"
    call(SIM_RECORD, recorded, "--names", "vpn,it", environment=write(work, json.dumps(document).encode()))
    told = json.loads(recorded.read_bytes())
    for part, entries in document.items():
        for entry, names in entries.items():
            for name, value in names.items():
                assert value == told[part][entry][name] or value.items() <= told[part][entry][name].items()


def test_a_file_that_exists_stays_unless_told_otherwise(work):
    environment = write(work, paths.DEFAULT_DEVICE.read_bytes())
    for name in ("recorded.json", "recorded-scenario.json"):
        file = work / name
        file.write_text("mine")
        said = call(SIM_RECORD, work / "recorded.json", "--for", "10s", environment=environment, code=1)
        assert said == f"kestal-sim: {file}: exists already; --force replaces it\n"
        assert file.read_text() == "mine"
        assert [path.name for path in work.glob("recorded*")] == [name]
        file.unlink()
    (work / "recorded.json").symlink_to(work / "elsewhere.json")
    assert "exists already" in call(SIM_RECORD, work / "recorded.json", environment=environment, code=1)
    call(SIM_RECORD, work / "recorded.json", "--force", environment=environment)
    assert not (work / "elsewhere.json").exists()
    mask = os.umask(0)
    os.umask(mask)
    assert mode(work / "recorded.json") == 0o666 & ~mask


def test_who_may_read_a_file_stays(work):
    environment = write(work, paths.DEFAULT_DEVICE.read_bytes())
    for kept in (0o600, 0o640):
        file = work / "recorded.json"
        file.write_text("mine")
        file.chmod(kept)
        call(SIM_RECORD, file, "--force", environment=environment)
        assert "sys" in json.loads(file.read_bytes())
        assert mode(file) == kept


def test_a_link_stays_and_its_file_is_replaced(work):
    environment = write(work, paths.DEFAULT_DEVICE.read_bytes())
    file, link = work / "file.json", work / "link.json"
    file.write_text("mine")
    link.symlink_to(file)
    call(SIM_RECORD, link, "--force", environment=environment)
    assert link.is_symlink()
    assert "sys" in json.loads(file.read_bytes())


def test_nothing_but_a_file_is_replaced(work):
    environment = write(work, paths.DEFAULT_DEVICE.read_bytes())
    pipe, folder, link = work / "pipe", work / "folder", work / "link"
    os.mkfifo(pipe)
    folder.mkdir()
    link.symlink_to(pipe)
    for path in (pipe, folder, link):
        said = call(SIM_RECORD, path, "--force", environment=environment, code=1)
        assert said == f"kestal-sim: {path}: is not a regular file\n"
    assert stat.S_ISFIFO(pipe.stat().st_mode)
    assert link.is_symlink()


@pytest.mark.parametrize(
    ("arguments", "code", "said"),
    [
        (["--for", "0", "a.json"], 2, "--for: '0' is not a time from 1ms to 604800s"),
        (["--for", "-1s", "a.json"], 2, "--for: '-1s' is not a time from 1ms to 604800s"),
        (["--for", "8d", "a.json"], 2, "--for: '8d' is not a time from 1ms to 604800s"),
        (["--for", "604801", "a.json"], 2, "--for: '604801' is not a time from 1ms to 604800s"),
        (["--for", "1e999", "a.json"], 2, "--for: '1e999' is not a time from 1ms to 604800s"),
        (["--for", "1s", "--every", "99ms", "a.json"], 2, "--every: '99ms' is not a time from 100ms to 604800s"),
        (["--every", "1s", "a.json"], 2, "--every requires --for"),
        (["--log", "x", "a.json"], 2, "--log requires --bundle"),
        (["--names", "a,,b", "a.json"], 2, "--names: '' is not a name"),
        (["--names", "error", "a.json"], 2, "--names: 'error' is not a name"),
        (["--channels", "", "a.json"], 2, "--channels: '' is not a name"),
        ([""], 2, "FILE: expected a name, found nothing"),
        ([], 2, "FILE is required"),
        (["no/folder/a.json"], 1, "no/folder/a.json: No such file or directory"),
        (["."], 1, ".: is not a regular file"),
        (["--bundle", "--for", "1000s", "--log", "nothing.log", "a.json"], 1, "nothing.log: No such file or directory"),
        (["--bundle", "--for", "1000s", "--log", "/", "a.json"], 1, "/: not a regular file"),
        (["--names", b"a,b\xff", "a.json"], 2, "--names: names are written in UTF-8"),
        (["--channels", b"\xfe", "a.json"], 2, "--channels: names are written in UTF-8"),
    ],
)
def test_bad_input_is_refused_in_one_line(work, arguments, code, said):
    folder = work / "folder"
    folder.mkdir()
    for program in (SIM_RECORD, (str(RECORDER),)):
        run = subprocess.run(
            [*program, *arguments],
            env={**paths.CLEAN_ENVIRONMENT, "KESTAL_DEVICE": str(paths.DEFAULT_DEVICE)},
            cwd=folder,
            capture_output=True,
            text=True,
            timeout=60,
        )
        tool = os.path.basename(program[0])
        hint = f"Try '{tool} --help'.\n" if code == 2 else ""
        assert (run.returncode, run.stdout, run.stderr) == (code, "", f"{tool}: {said}\n{hint}")
        assert list(folder.iterdir()) == []


def test_a_device_that_cannot_be_read_is_not_recorded(work):
    (work / "damaged.json").write_text("{")
    for name, said in (("none.json", "No such file or directory"), ("damaged.json", ":1:1: syntax error")):
        environment = {"KESTAL_DEVICE": str(work / name)}
        assert said in call(SIM_RECORD, work / "recorded.json", environment=environment, code=1)
        assert not (work / "recorded.json").exists()


def test_a_large_block_is_recorded(work):
    block = "00ff" * 750_000
    environment = write(work, json.dumps({"msgbus": {"weather": {"bytes": block}}}).encode())
    assert call(SIM_RECORD, work / "recorded.json", "--channels", "weather", environment=environment) == ""
    assert json.loads((work / "recorded.json").read_bytes())["msgbus"]["weather"]["bytes"] == block


def test_a_document_that_is_too_long_is_refused_before_the_recording(work):
    block = "00" * ((4 << 20) - 100 >> 1)
    environment = write(work, json.dumps({"msgbus": {"weather": {"bytes": block}}}).encode())
    said = call(SIM_RECORD, work / "a.json", "--for", "1000s", "--channels", "weather", environment=environment, code=1)
    assert re.fullmatch(rf"kestal-sim: {work}/a\.json: would have \d+ bytes, "
                        r"and a document has at most 4194304\n", said)
