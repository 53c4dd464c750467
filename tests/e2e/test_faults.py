"""Each call of the device fails, alone and all at once, and is requested through the web server."""

import json

import pytest

from support import paths

CODE = 4711
TARGETS = {"/srv/status": "statusData", "/srv/notification": "notificationsList"}

# If this call fails, the answer is a special one.
WEB_UI_SWITCH = ("sys", "getWebUICarrierEnabled")

# Calls whose failure is not logged, and why.
SWITCH = "a switch that cannot be read counts as off"
SILENT = {
    "getSambaCarrierEnabled": SWITCH,
    "getGPSCarrierEnabled": SWITCH,
    "getMTSMSCarrierEnabled": SWITCH,
    "getWiFiCarrierEnabled": SWITCH,
    "getWiFiGuestCarrierEnabled": SWITCH,
    "getPCOCarrierEnabled": SWITCH,
    "getNUACarrierEnabled": SWITCH,
    "getOmadmFumoCarrierEnabled": SWITCH,
    "getMultiSimEnabled": SWITCH,
    "getWDCPCarrierEnabled": "no request asks for the access to single fields",
    "getHalyardAgentCarrierEnabled": "no request asks for the access to single fields",
    "getUIFieldShowEnabled": "no request asks for the access to single fields",
    "getUIFieldLockEnabled": "no request asks for the access to single fields",
    "getUIAppDisplayEnabled": "no request asks for the access to single fields",
    "getUIAppWriteEnabled": "no request asks for the access to single fields",
    "appFeatures": "the service is no application of the web UI",
    "appConfigurations": "the service is no application of the web UI",
    "externalUriData": "notifications lead to pages of the web UI only",
    "getWatchdogInterval": "read when the process starts; 60 seconds stay",
    "getSIMCarrierGID": "read once for each SIM",
    "commonFeatures": "read once per process",
    "commonConfigurations": "read once per process",
    "getCellularDataAccountStatus": "an unknown account puts no limit on the connection",
    "getConnectedDeviceList": "the length of the list is read first, and only reading it all is logged",
    "uriData": "a page that is unknown has no link",
    "getCellular3GBand": "not asked for on 5G",
    "getActiveSimSlot": "asked for with two SIMs",
    "getNumSims": "asked for with two SIMs",
    "getAllSimSlotsInfo": "asked for with two SIMs",
    "cellularDataConnect": "no page has asked for it",
    "cellularDataDisconnect": "no page has asked for it",
}

# Calls whose failure is logged under another name.
NAMES = {
    "sdkInitialize": "system interface api failed",
    "getCABandWidth": "sys_getCABandwidth failed",
    "get5GBandWidth": "sys_getCABandwidth failed",
    "getCellularDataConnectionStatus": "sys_getCellularDataAccountStatus failed",
    "getSDCardInfo": "sys_getSDCardInfo/ sys_getSambaEnabled failed",
    "i18nSettings": "webui_get_i18n_settings",
    "softwareUpdateStatus": "webui_get_software_update_status failed",
    "softwareInstallationDuration": "webui_get_software_installation_duration failed",
    "softwareUpdateCustomMsgs": "webui_get_software_update_custom_msgs failed",
    "zelt.ans.notifications": "msgbus failed to read notification data",
}


def entries():
    """All calls that can fail: those in the document of the device on which everything fails."""
    document = json.loads((paths.DEVICES / "everything-failing.json").read_text())
    names = [(group, name) for group in ("sys", "webui", "msgbus") for name in document[group]]
    assert len(names) > 60
    return names


def answers(server):
    """The bodies of the two operations that only read, status and notification."""
    bodies = {}
    for target, member in TARGETS.items():
        answer = server.ask(target)
        assert answer.status == 200
        assert member in answer.json()
        bodies[target] = answer.body
    return bodies


@pytest.fixture
def busy(server):
    """A device on which the service makes as many calls as possible."""
    document = json.loads((paths.DEVICES / "software-update-5.json").read_text())
    everything = json.loads((paths.DEVICES / "all-notifications.json").read_text())
    everything["webui"]["softwareUpdateStatus"] = document["webui"]["softwareUpdateStatus"]
    everything["webui"]["softwareUpdateCustomMsgs"] = document["webui"]["softwareUpdateCustomMsgs"]
    server.device.write(json.dumps(everything).encode())
    server.healthy = everything
    return server


def test_a_single_failing_call_is_answered_and_logged_and_later_answers_are_as_before(busy):
    answers(busy)
    before = answers(busy)
    for group, name in entries():
        if (group, name) == WEB_UI_SWITCH:
            continue
        read = len(busy.log.text())
        calls = busy.healthy.get(group, {}) | {name: {"error": CODE}}
        busy.device.write(json.dumps(busy.healthy | {group: calls}).encode())
        answers(busy)
        lines = [line for line in busy.log.text()[read:].splitlines() if "]:[ERROR]" in line]
        named = [line for line in lines if NAMES.get(name, f"sys_{name} ") in line]
        if name not in SILENT:
            assert named, f"{name}: {lines}"
            assert group == "msgbus" or any(str(CODE) in line for line in named), named
        else:
            assert lines == [], name
        busy.device.write(json.dumps(busy.healthy).encode())
        assert answers(busy) == before, name


def test_with_all_calls_failing_there_is_an_answer_and_later_answers_are_as_before(busy):
    answers(busy)
    before = answers(busy)
    busy.device.write((paths.DEVICES / "everything-failing.json").read_bytes())
    for body in answers(busy).values():
        assert json.loads(body)["loginStatus"] == 0
    busy.device.write(json.dumps(busy.healthy).encode())
    answers(busy)
    assert answers(busy) == before


def test_a_web_ui_switch_that_cannot_be_read_is_off_until_it_can(busy):
    answers(busy)
    before = answers(busy)
    busy.device.set(getWebUICarrierEnabled={"error": CODE})
    for target in TARGETS:
        answer = busy.ask(target)
        assert (answer.status, answer.body) == (501, b"WebUI feature disabled")
    busy.device.set(getWebUICarrierEnabled=1)
    assert answers(busy) == before


def test_an_action_that_fails_is_answered_and_logged(busy):
    for target, call in (("/srv/connect", "cellularDataConnect"), ("/srv/disconnect", "cellularDataDisconnect")):
        busy.device.set(**{call: {"error": CODE}})
        answer = busy.ask(target)
        assert (answer.status, answer.body) == (200, b'{"loginStatus":0}')
        busy.log.wait_for(f"system interface API failed returning [{CODE}]. Try sysintcli {call}")
        busy.device.set(**{call: None})
        assert busy.ask(target).body == answer.body
