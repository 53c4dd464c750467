"""What identifies people, devices and networks is replaced in a recording."""

import json

from support import paths
from support.recorder import IMSI, MAC, NOTIFICATIONS, NUMBER, ODD, SIM_RECORD, Recorder, answers, call, mode, write


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


def test_a_recording_with_identities_is_for_its_owner_only(work):
    environment = write(work, paths.DEFAULT_DEVICE.read_bytes())
    call(SIM_RECORD, work / "a.json", "--keep-identities", "--for", "1ms", environment=environment)
    assert [mode(work / name) for name in ("a.json", "a-scenario.json")] == [0o600, 0o600]


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
