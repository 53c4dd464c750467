"""A device that has been recorded answers as the one that it was recorded from."""

import json
import os
import re
import signal
import stat
import subprocess

import pytest

from support import paths, processes
from support.waiting import wait_until

DEVICES = sorted(path.stem for path in paths.DEVICES.glob("*.json"))
RECORDER = paths.SIM.with_name("kestal-record")
SIM_RECORD = (str(paths.SIM), "record")
NOTIFICATIONS = "zelt.ans.notifications"

# Texts of the device that hold identities, and values that are at the ends of what there can be.
IMSI = "310480123456789"
NUMBER = "+1 555 867-5309"
MAC = "a4:83:e7:12:9F:0b"
ODD = {
    "sys": {
        "getSubscriberInfo": {"identity": IMSI},
        "getSIMStatus": -3,
        "getGPSStatus": 99,
        "getSMSUnreadCount": 2**31 - 1,
        "getActiveSimSlot": -(2**31),
        "getWiFiMaxClients": 2**32 - 1,
        "getCellularServiceStats": {
            "technology": 77,
            "roaming": 9,
            "networkName": {"bytes": "4f7276c3a9ff20fe"},
            "networkId": {"bytes": "31" * 99},
        },
        "getAllSimSlotsInfo": {"count": 7, "slots": [{"networkName": "a\"b\\\u0007\u00e9"}, {"active": 2**31 - 1}]},
        "getGpioPin1CustomSettings": {"name": {"bytes": "ff" * 64}, "lowState": " ", "highState": "\U0001f4f6"},
        "getSIMCarrierGID": {"0": [], "1": list(range(255))},
        "getConnectedDeviceList": [{"connectionKind": 12345}, {"connectionKind": "guest_wifi"}],
        "getBatteryStatus": {"error": -(2**31)},
    },
    "webui": {
        "commonConfigurations": {
            "ShowRoamingIndicator": {"bytes": "31ff"},
            "WifiSSID": "Anna's Wi-Fi",
            "WifiPassword": "correct horse",
            "SSIDBroadcast": "1",
        },
        "softwareUpdateStatus": {"status": 5, "version": "1.2.3.4"},
        "softwareUpdateCustomMsgs": {
            "en_US": {"description": f"Call {NUMBER} for Anna's Wi-Fi ({IMSI}, {MAC}). "}
        },
    },
    "msgbus": {
        NOTIFICATIONS: [
            {"id": "softwareUpdate", "category": "software", "severity": 77,
             "textId": "notification_software_update_text"},
            {"id": {"bytes": "ff" * 30}, "titleId": f"From {MAC.upper()}", "textId": f"Call {NUMBER} now"},
            {"id": "gpioPin1StateChangeToHigh", "active": False},
        ]
    },
}


def call(program, file, *arguments, environment=None, code=0):
    """Records; returns what is said."""
    run = subprocess.run(
        [*program, *arguments, str(file)],
        env={**paths.CLEAN_ENVIRONMENT, **(environment or {})},
        capture_output=True,
        text=True,
        timeout=120,
    )
    assert run.returncode == code, run.stderr
    assert run.stdout == ""
    return run.stderr


def answers(make_responder, name, document):
    """What a fresh service answers, byte for byte: the first answers may differ from later ones."""
    responder = make_responder(name)
    responder.device.write(document)
    responder.start()
    bodies = [responder.ask(f"/srv/{each}").body for each in ("status", "status", "notification", "status")]
    responder.stop()
    return bodies


def write(work, document):
    device = work / "original.json"
    device.write_bytes(document)
    return {"KESTAL_DEVICE": str(device)}


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


def test_identities_are_replaced_by_the_same_everywhere(make_responder, work):
    original = json.loads(paths.DEFAULT_DEVICE.read_bytes())
    original["sys"]["getSubscriberInfo"] = ODD["sys"]["getSubscriberInfo"]
    original["sys"]["getSIMCarrierGID"] = {"1": [1]}
    original["webui"].update(ODD["webui"])
    original["msgbus"] = ODD["msgbus"]
    document = json.dumps(original).encode()
    environment = write(work, document)
    recorded = work / "recorded.json"
    call(SIM_RECORD, recorded, environment=environment)
    text = recorded.read_text()
    for identity in (IMSI, NUMBER, MAC, MAC.upper(), "Anna", "correct", "horse", "5309"):
        assert identity not in text
    told = json.loads(text)
    settings = told["webui"]["commonConfigurations"]
    imsi = told["sys"]["getSubscriberInfo"]["identity"]
    replaced = {
        IMSI: imsi,
        NUMBER: "+5 550 000-0001",
        MAC: "02:00:5e:00:00:01".upper(),
        MAC.upper(): "02:00:5E:00:00:01",
        "Anna's Wi-Fi": settings["WifiSSID"],
        "correct horse": settings["WifiPassword"],
    }
    assert imsi == "001010000000001"
    assert all(len(before) == len(after) for before, after in replaced.items())
    assert settings["SSIDBroadcast"] == "1" and told["webui"]["softwareUpdateStatus"]["version"] == "1.2.3.4"

    def known(body):
        for before, after in replaced.items():
            body = body.replace(before.encode(), after.encode())
        return body

    # The answers differ in the identities only, and in each by what it was replaced with.
    before = answers(make_responder, "a", document)
    after = answers(make_responder, "b", recorded.read_bytes())
    assert IMSI.encode() in b"".join(before)
    assert after == [known(body) for body in before]
    # The same device is recorded in the same way again.
    call(SIM_RECORD, work / "again.json", environment=environment)
    assert (work / "again.json").read_text() == text


def test_what_programs_know_stays_whatever_it_is_equal_to(make_responder, work):
    original = json.loads(paths.DEFAULT_DEVICE.read_bytes())
    network = original["sys"]["getCellularServiceStats"]["networkName"]
    page = original["webui"]["uriData"]["sms"]
    names = {"UserInterfaceLanguage": "fr_FR", "AdminUser": "de_DE", "WifiSSID": network, "GuestSSID": page["titleId"],
             "HostName": "messaging", "ApnUser": "smsReceived", "PhoneHost": page["address"]}
    original["webui"]["i18nSettings"]["language"] = "de_DE"
    original["webui"]["commonConfigurations"].update(names)
    original["webui"]["softwareUpdateCustomMsgs"] = {"de_DE": {"description": f"For {network}. "}}
    original["msgbus"][NOTIFICATIONS] = [
        {"id": "smsReceived", "category": "messaging", "labelId": "notification_category_messaging_label",
         "titleId": "notification_sms_received_title", "textId": f"From messaging at {network}"}]
    document = json.dumps(original).encode()
    recorded = work / "recorded.json"
    call(SIM_RECORD, recorded, environment=write(work, document))
    told = json.loads(recorded.read_bytes())
    assert told["sys"]["getCellularServiceStats"]["networkName"] == network
    assert told["webui"]["i18nSettings"]["language"] == "de_DE"
    assert told["webui"]["uriData"]["sms"] == page
    settings = told["webui"]["commonConfigurations"]
    assert [name for name in names if settings[name] == names[name]] == ["UserInterfaceLanguage"]
    # Texts for people do not keep them.
    description = told["webui"]["softwareUpdateCustomMsgs"]["de_DE"]["description"]
    assert description == f"For {settings['WifiSSID']}. "
    [notification] = told["msgbus"][NOTIFICATIONS]
    assert (notification["id"], notification["category"]) == ("smsReceived", "messaging")
    assert notification["textId"] == f"From {settings['HostName']} at {settings['WifiSSID']}"


def test_identities_are_known_by_the_names_of_their_configurations(work):
    document = json.loads(paths.DEFAULT_DEVICE.read_bytes())
    mac = "A483E7129F0B"
    replaced = {
        "WifiSSID": "ab", "GuestSsid2": "off", "SSID_5GHz": "x", "wifiPassword": "12", "AdminPassword": "enabled",
        "wpaKey": "hunter22", "key": "ab", "pin": "4711", "SimPinCode": "12345678", "WlanName": "Anna at home",
        "BSSID": mac, "ClientMacAddress": mac.lower(), "MacFilter": f"{mac},a483e7129f0c", "MachinePassword": "secret",
    }
    stays = {
        "SSIDBroadcast": "1", "HideSSID": "0", "ShowPassword": "false", "PasswordLength": "128", "GpioPin1": "1",
        "GpioPinMode": "output", "Serial": "", "Switch": "off", "Other": "ab", "Checksum": "123456789abc", "Old": "1",
    }
    document["webui"]["commonConfigurations"] = {**replaced, **stays}
    document["webui"]["softwareUpdateCustomMsgs"] = {"de": {"description": f"Turned off by {mac}, hunter22. "}}
    recorded = work / "recorded.json"
    call(SIM_RECORD, recorded, environment=write(work, json.dumps(document).encode()))
    told = json.loads(recorded.read_bytes())["webui"]
    settings = told["commonConfigurations"]
    assert {name: settings[name] for name in stays} == stays
    assert {name for name in replaced if settings[name] == replaced[name]} == set()
    assert all(len(settings[name]) == len(replaced[name]) for name in replaced)
    assert (settings["BSSID"], settings["ClientMacAddress"]) == ("02005E000001", "02005e000001")
    assert settings["MacFilter"] == "02005E000001,02005e000002"
    description = told["softwareUpdateCustomMsgs"]["de"]["description"]
    assert description == f"Turned off by 02005E000001, {settings['wpaKey']}. "


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
    mode = stat.S_IMODE((work / "recorded.json").stat().st_mode)
    mask = os.umask(0)
    os.umask(mask)
    assert mode == 0o666 & ~mask


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
        (["."], 1, ".: is a directory"),
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


def test_a_log_that_cannot_be_read_is_told_before_the_recording(work):
    environment = {**write(work, paths.DEFAULT_DEVICE.read_bytes()), "KESTAL_LOG": str(work / "none.log")}
    said = call(SIM_RECORD, work / "a.json", "--bundle", "--for", "1000s", environment=environment, code=1)
    assert said == f"kestal-sim: {work}/none.log: No such file or directory\n"


def test_a_device_that_cannot_be_read_is_not_recorded(work):
    (work / "damaged.json").write_text("{")
    for name, said in (("none.json", "No such file or directory"), ("damaged.json", ":1:1: syntax error")):
        environment = {"KESTAL_DEVICE": str(work / name)}
        assert said in call(SIM_RECORD, work / "recorded.json", environment=environment, code=1)
        assert not (work / "recorded.json").exists()


def bytes_read(process):
    with open(f"/proc/{process.pid}/io") as counters:
        return int(re.search(r"rchar: (\d+)", counters.read())[1])


def catches(process, signo):
    caught = int(processes.field(process.pid, "SigCgt"), 16)
    return bool(caught >> (signo - 1) & 1)


class Recorder:
    """A recording that is under way."""

    def __init__(self, work, *options, document=None):
        self.device = work / "device.json"
        self.device.write_text(json.dumps(document) if document else paths.DEFAULT_DEVICE.read_text())
        self.file = work / "afternoon.json"
        self.scenario = work / "afternoon-scenario.json"
        self.environment = {**paths.CLEAN_ENVIRONMENT, "KESTAL_DEVICE": str(self.device)}
        self.process = subprocess.Popen(
            [*SIM_RECORD, "--every", "100ms", *options, str(self.file)],
            env=self.environment,
            stderr=subprocess.PIPE,
            text=True,
        )
        # Before that, the program itself is being read.
        wait_until(lambda: catches(self.process, signal.SIGINT), "the recording has begun")
        self._wait_for_look()

    def _wait_for_look(self):
        """Waits until it has read the document as it is now."""
        before = bytes_read(self.process)
        # It reads a file that has not changed only for some time.
        os.utime(self.device)
        size = self.device.stat().st_size
        wait_until(lambda: self.process.poll() is not None or bytes_read(self.process) >= before + size,
                   "the recorder has read the device, or has ended")

    def write(self, document):
        temporary = self.device.with_name("temporary.json")
        temporary.write_text(json.dumps(document))
        temporary.rename(self.device)
        self._wait_for_look()

    def sim(self, *arguments):
        subprocess.run([str(paths.SIM), *arguments], env=self.environment, check=True, timeout=60)
        self._wait_for_look()

    def stop(self, signo=signal.SIGINT):
        self.process.send_signal(signo)
        said = self.process.communicate(timeout=60)[1]
        return self.process.returncode, said


def values(work, device):
    """All that a device answers."""
    file = work / "values.json"
    call(SIM_RECORD, file, "--force", "--keep-identities", environment={"KESTAL_DEVICE": str(device)})
    return json.loads(file.read_bytes())


def play(device, scenario):
    subprocess.run(
        [str(paths.SIM), "--device", device, "play", "--quiet", "--speed", "10000", scenario],
        env=paths.CLEAN_ENVIRONMENT,
        check=True,
        timeout=60,
    )


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


@pytest.mark.parametrize("signo", [signal.SIGINT, signal.SIGTERM, signal.SIGHUP])
def test_a_signal_ends_the_recording_which_is_written(work, signo):
    recorder = Recorder(work, "--for", "1000s")
    recorder.sim("set", "sys.getSMSUnreadCount", "77")
    assert recorder.stop(signo) == (0, "")
    assert json.loads(recorder.scenario.read_text())["events"][-1]["set"] == {"sys.getSMSUnreadCount": 77}


def test_a_second_signal_ends_a_recording_whose_call_hangs(work):
    recorder = Recorder(work, "--for", "1000s")
    recorder.sim("fail", "sys.getGPSStatus", "--hang")
    recorder.process.send_signal(signal.SIGINT)
    wait_until(lambda: not catches(recorder.process, signal.SIGINT), "the first signal has been taken")
    assert recorder.stop()[0] == -signal.SIGINT
    assert not recorder.file.exists() and not recorder.scenario.exists()
    assert sorted(path.name for path in work.iterdir()) == ["device.json"]


def test_identities_are_the_same_in_document_and_scenario(work):
    recorder = Recorder(work, "--for", "1000s")
    identity = json.loads(recorder.device.read_text())["sys"]["getSubscriberInfo"]["identity"]
    recorder.sim("set", "sys.getSubscriberInfo.identity", '"262019876543210"')
    recorder.sim("set", "sys.getGpioPin1CustomSettings", json.dumps({"name": f"SIM {identity}"}))
    recorder.sim("set", "sys.getSubscriberInfo.identity", json.dumps(identity))
    assert recorder.stop() == (0, "")
    device, scenario = recorder.file.read_text(), recorder.scenario.read_text()
    assert identity not in device + scenario and "262019876543210" not in scenario
    first = json.loads(device)["sys"]["getSubscriberInfo"]["identity"]
    sets = [event.get("set", {}) for event in json.loads(scenario)["events"]]

    def changes(path):
        return [each[path] for each in sets if path in each]

    assert changes("sys.getSubscriberInfo.identity") == [first, "001010000000002", first]
    assert changes("sys.getGpioPin1CustomSettings.name")[1:] == [f"SIM {first}"]


def test_a_bundle_is_one_file_for_a_report(work):
    log = work / "kestal.log"
    lines = [f"line {number}" for number in range(300)]
    lines[-1] = f"sms from {NUMBER}, SIM {IMSI}, client {MAC} 192.168.8.23 at 12:00:00.123Z"
    log.write_bytes("\n".join(lines).encode() + b"\xff\n")
    original = json.loads(paths.DEFAULT_DEVICE.read_bytes())
    original["sys"]["getSubscriberInfo"]["identity"] = IMSI
    environment = write(work, json.dumps(original).encode())
    for options in (["--log", str(log)], []):
        file = work / "report.json"
        call(SIM_RECORD, file, "--force", "--bundle", *options, environment={**environment, "KESTAL_LOG": str(log)})
        report = json.loads(file.read_text())
        assert list(report) == ["recorded", "versions", "identities", "device", "sources", "log"]
        assert report["sources"] == "no sources: the simulator binding has none"
        assert list(report["versions"]) == ["kestal", "binding", "system", "kernel"]
        assert report["versions"]["binding"] == "simulator"
        assert os.uname().nodename not in json.dumps(report["versions"])
        assert len(report["log"]) == 200 and report["log"][:2] == ["line 100", "line 101"]
        assert report["log"][-1] == ("sms from +5 550 000-0001, SIM 001010000000001, client 02:00:5E:00:00:01 "
                                     "100.100.0.11 at 12:00:00.123Z\ufffd")
    device = work / "device.json"
    device.write_text(json.dumps(report["device"]))
    assert values(work, device)["sys"]["getSubscriberInfo"]["identity"] == "001010000000001"
    file = work / "report.json"
    options = ["--bundle", "--keep-identities", "--for", "200ms", "--log", str(log)]
    call(SIM_RECORD, file, "--force", *options, environment=environment)
    report = json.loads(file.read_text())
    assert NUMBER in report["log"][-1] and report["identities"] == "kept"
    assert report["scenario"]["duration"] == 0.2
    assert not (work / "report-scenario.json").exists()


@pytest.mark.parametrize(
    ("journal", "said"),
    [
        ("#!/bin/sh\nexit 0\n", "no log: the journal has nothing of kestal; --log names a file"),
        ("#!/bin/sh\nexit 1\n", "no log: journalctl has failed; --log names a file"),
        (None, "no log: journalctl has failed; --log names a file"),
        ("#!/bin/sh\necho one; echo two\n", ["one", "two"]),
    ],
)
def test_a_bundle_says_why_it_has_no_log(work, journal, said):
    if journal:
        (work / "journalctl").write_text(journal)
        (work / "journalctl").chmod(0o755)
    environment = {**write(work, paths.DEFAULT_DEVICE.read_bytes()), "PATH": str(work)}
    call(SIM_RECORD, work / "report.json", "--bundle", environment=environment)
    assert json.loads((work / "report.json").read_text())["log"] == said


def test_a_log_that_vanishes_does_not_cost_the_recording(work):
    log = work / "kestal.log"
    log.write_text("line\n")
    recorder = Recorder(work, "--for", "1000s", "--bundle", "--log", str(log))
    log.unlink()
    assert recorder.stop() == (0, "")
    assert json.loads(recorder.file.read_text())["log"] == f"no log: {log}: No such file or directory"
