"""What changes while a device is recorded is played back; a recording ends in good order."""

import json
import re
import signal
import subprocess

import pytest

from support import paths
from support.recorder import (
    NOTIFICATIONS,
    SIM_RECORD,
    STOPPING,
    Recorder,
    call,
    catches,
    has_signal,
    play,
    values,
    write,
)
from support.waiting import wait_until


def test_a_recorded_afternoon_is_played_back(work):
    recorder = Recorder(work, "--for", "1000s")
    first = values(work, recorder.device)
    recorder.sim("set", "sys.getBatteryStatus.chargePercent", "12")
    recorder.sim("fail", "sys.getBatteryStatus", "5")
    recorder.sim("set", "sys.getSIMStatus", "pin_locked")
    recorder.sim("notify", "noService")
    recorder.sim("set", "webui.i18nSettings.language", "it")
    recorder.sim("set", "webui.softwareUpdateCustomMsgs.it", '{"description": "Nuovo. "}')
    recorder.sim("set", "webui.commonFeatures", '{"a.b": 1, "c[0]": 2}')
    recorder.sim("set", "webui.commonFeatures", '{"a.b": 3, "c[0]": 2}')
    recorder.sim("fail", "webui.uriData", "7")
    recorder.sim("heal", "sys.getBatteryStatus")
    recorder.sim("fail", f"msgbus.{NOTIFICATIONS}", "9")
    last = values(work, recorder.device)
    assert recorder.stop() == (0, "")

    scenario = json.loads(recorder.scenario.read_text())
    assert scenario["events"][0]["say"] == "The recording begins"
    assert {"sys.getBatteryStatus": {"error": 5}} in [event.get("set") for event in scenario["events"]]
    played = work / "played.json"
    played.write_bytes(recorder.file.read_bytes())
    assert values(work, played)["sys"] | {"getSubscriberInfo": 0} == first["sys"] | {"getSubscriberInfo": 0}
    for _ in range(2):
        # The second time, it begins with the device as it was at the end.
        play(played, recorder.scenario)
        end = values(work, played)
        assert end["sys"] | {"getSubscriberInfo": 0} == last["sys"] | {"getSubscriberInfo": 0}
        assert end["webui"] == last["webui"] and end["msgbus"] == last["msgbus"]


@pytest.mark.parametrize("fails_first", [False, True])
def test_a_session_that_fails_for_a_while_is_played_back(work, fails_first):
    steps = [("fail", "sys.sdkInitialize", "101"), ("heal", "sys.sdkInitialize")]
    document = json.loads(paths.DEFAULT_DEVICE.read_bytes())
    if fails_first:
        document["sys"]["sdkInitialize"] = {"error": 101, "healed": None}
        steps.reverse()
    recorder = Recorder(work, "--for", "1000s", document=document)
    for step in steps:
        recorder.sim(*step)
    assert recorder.stop() == (0, "")
    events = json.loads(recorder.scenario.read_text())["events"]
    changes = [event.get("fail") or event.get("heal") for event in events]
    fails, works = {"sys.sdkInitialize": 101}, ["sys.sdkInitialize"]
    assert changes == ([fails, works, fails] if fails_first else [works, fails, works])
    for _ in range(2):
        play(recorder.file, recorder.scenario)
        assert ("sdkInitialize" in json.loads(recorder.file.read_text())["sys"]) == fails_first


def test_nothing_that_changes_makes_an_empty_scenario(work):
    device, file = work / "afternoon.json", work / "afternoon-scenario.json"
    environment = write(work, paths.DEFAULT_DEVICE.read_bytes())
    assert call(SIM_RECORD, device, "--for", "300ms", "--every", "100ms", environment=environment) == ""
    scenario = json.loads(file.read_text())
    assert scenario["events"] == [{"at": 0, "say": "The recording begins"}]
    assert scenario["duration"] == 0.3
    subprocess.run([str(paths.SIM), "--device", device, "play", "--quiet", file], check=True, timeout=60)


def test_a_recording_ends_before_its_scenario_is_too_long_to_be_played(work):
    recorder = Recorder(work, "--for", "1000s", "--channels", "weather")
    document = json.loads(recorder.device.read_text())
    for byte in ("00", "01", "02"):
        document["msgbus"]["weather"] = {"bytes": byte * 700_000}
        recorder.write(document)
    said = recorder.process.communicate(timeout=60)[1]
    assert recorder.process.returncode == 0
    assert re.fullmatch(r"the recording ended after \d+ s, because a scenario cannot hold more changes; "
                        r"--every makes the next one longer\n", said)
    assert recorder.scenario.stat().st_size > 2 << 20
    subprocess.run([str(paths.SIM), "--device", recorder.file, "play", "--check", recorder.scenario],
                   env=paths.CLEAN_ENVIRONMENT, check=True, timeout=60)


@pytest.mark.parametrize("signo", STOPPING)
def test_a_signal_ends_the_recording_which_is_written(work, signo):
    recorder = Recorder(work, "--for", "1000s")
    recorder.sim("set", "sys.getSMSUnreadCount", "77")
    assert recorder.stop(signo) == (0, "")
    assert json.loads(recorder.scenario.read_text())["events"][-1]["set"] == {"sys.getSMSUnreadCount": 77}


@pytest.mark.parametrize("second", STOPPING)
def test_a_second_signal_ends_a_recording_whose_call_hangs(work, second):
    recorder = Recorder(work, "--for", "1000s")
    recorder.sim("fail", "sys.getGPSStatus", "--hang")
    recorder.process.send_signal(signal.SIGINT)
    wait_until(lambda: not catches(recorder.process, second), "the first signal has been taken")
    assert recorder.stop(second)[0] == -second
    assert not recorder.file.exists() and not recorder.scenario.exists()
    assert sorted(path.name for path in work.iterdir()) == ["device.json"]


def test_a_recording_that_ignores_a_hang_up_goes_on(work):
    recorder = Recorder(work, "--for", "1000s", ignored=signal.SIGHUP)
    assert has_signal(recorder.process, "SigIgn", signal.SIGHUP)
    recorder.process.send_signal(signal.SIGHUP)
    recorder.sim("set", "sys.getSMSUnreadCount", "77")
    assert recorder.stop() == (0, "")
    assert json.loads(recorder.scenario.read_text())["events"][-1]["set"] == {"sys.getSMSUnreadCount": 77}
