"""What each operation answers, through the web server."""

import json

import pytest

CONNECTED = "connected"
DISCONNECTED = "ready"


def test_status_has_the_login_status_first_and_then_the_status_data(server):
    answer = server.ask("/srv/status")
    assert answer.status == 200
    assert answer.headers["content-type"] == "application/json"
    assert answer.body.startswith(b'{"loginStatus":0,"statusData":{')
    assert list(answer.json()) == ["loginStatus", "statusData"]


def test_status_shows_what_the_device_says(server):
    server.device.set(
        getBatteryStatus={"chargePercent": 37, "chargingState": 0, "detection": 2, "chargingSource": 0},
        getConnectedDeviceList=[{"connectionKind": 0}, {"connectionKind": 3}],
        getSDCardInfo={"totalCapacity": 1000, "freeSpace": 250},
        getSMSUnreadCount=2,
        getGPSStatus=1,
    )
    expected = {
        "isDualSimSupported": 0,
        "statusBarBatteryChargingState": "false",
        "statusBarBatteryDetection": "Present",
        "statusBarBatteryPercent": "37",
        "statusBarClientListSize": "2",
        "statusBarEthernetPortEnabled": "connected",
        "statusBarFotaInstallStatus": 0,
        "statusBarGpsStatus": "Searching",
        "statusBarGuestClientListSize": "1",
        "statusBarGuestWifiEnabled": 1,
        "statusBarMaxWiFiClientListSize": "32",
        "statusBarMobileDataEnabled": 1,
        "statusBarPrimaryClientListSize": "1",
        "statusBarSdCardFreeSpace": "250",
        "statusBarSdCardInUse": 0,
        "statusBarSdCardStatus": "SmbOn",
        "statusBarSdCardUsedSpace": "750",
        "statusBarSmsUnreadCount": "2",
        "statusBarWiFiClientListSize": "1",
        "statusBarWiFiEnabled": 1,
    }
    assert expected.items() <= server.status().items()


def test_editing_the_device_changes_the_next_answer(server):
    for percent in (12, 13, 100):
        battery = server.device.get("getBatteryStatus") | {"chargePercent": percent}
        server.device.set(getBatteryStatus=battery)
        assert server.status()["statusBarBatteryPercent"] == str(percent)


def test_connect_and_disconnect_act_on_the_device_and_answer_the_login_status_alone(server):
    for target, status in (
        ("/srv/disconnect", DISCONNECTED),
        ("/srv/connect", CONNECTED),
        ("/srv/disconnect", DISCONNECTED),
    ):
        answer = server.ask(target)
        assert (answer.status, answer.body) == (200, b'{"loginStatus":0}')
        assert answer.headers["content-type"] == "application/json"
        assert server.device.get("getCellularDataConnectionStatus") == status


def test_an_action_changes_nothing_else_of_the_device(server):
    before = server.device.document()
    server.ask("/srv/disconnect")
    after = server.device.document()
    before["sys"]["getCellularDataConnectionStatus"] = DISCONNECTED
    assert after == before


def test_a_failing_action_is_answered_like_a_working_one(server):
    server.device.set(cellularDataConnect={"error": 42}, getCellularDataConnectionStatus=DISCONNECTED)
    answer = server.ask("/srv/connect")
    assert (answer.status, answer.body) == (200, b'{"loginStatus":0}')
    assert server.device.get("getCellularDataConnectionStatus") == DISCONNECTED
    assert server.log.count(
        "PageError SystemServiceComponent::PerformConnectAction(const string&) -system interface API "
        "failed returning [42]. Try sysintcli cellularDataConnect on the command line"
    )


@pytest.mark.parametrize("target", ["/srv/nothing", "/srv/passcoderecovery", "/srv/"])
def test_an_unknown_operation_is_answered_with_the_login_status_alone(server, target):
    answer = server.ask(target)
    assert (answer.status, answer.body) == (200, b'{"loginStatus":0}')


def test_notification_is_answered_without_status_data(server):
    answer = server.ask("/srv/notification")
    assert answer.status == 200
    assert answer.json()["loginStatus"] == 0
    assert "statusData" not in answer.json()


def test_a_web_ui_that_the_carrier_has_switched_off_answers_nothing_else(server):
    server.device.set(getWebUICarrierEnabled=0)
    for target in ("/srv/status", "/srv/notification", "/srv/disconnect", "/srv/nothing"):
        answer = server.ask(target)
        assert (answer.status, answer.body) == (501, b"WebUI feature disabled")
        assert answer.headers["content-type"] == "application/json"
    assert server.device.get("getCellularDataConnectionStatus") == CONNECTED

    server.device.set(getWebUICarrierEnabled=1)
    assert server.ask("/srv/status").status == 200


def test_a_carrier_switch_that_cannot_be_read_counts_as_off(server):
    server.device.set(getWebUICarrierEnabled={"error": 7})
    assert server.ask("/srv/status").status == 501


def test_the_calls_are_made_even_if_the_sdk_does_not_start(server):
    server.device.set(sdkInitialize={"error": 5})
    answer = server.ask("/srv/status")
    assert answer.status == 200
    assert "statusBarBatteryPercent" in answer.json()["statusData"]
    assert server.log.count("system interface api failed returning [5].")
    assert server.log.count("sysinterface initialization failed by returning [0]")


def test_if_a_call_fails_only_its_own_keys_are_missing(server):
    complete = set(server.status())
    server.device.set(getBatteryStatus={"error": 3})
    without_battery = set(server.status())
    assert without_battery < complete
    assert all("Battery" in key for key in complete - without_battery)


def test_the_language_of_the_settings_is_applied_and_may_be_missing(server):
    document = server.device.document()
    document["webui"]["i18nSettings"] = {"language": "de_DE"}
    server.device.write(json.dumps(document).encode())
    server.ask("/srv/status")
    server.log.wait_for("int fastcgi_main_loop() - current language is de_DE")

    document["webui"]["i18nSettings"] = {"error": 983041}
    server.device.write(json.dumps(document).encode())
    assert server.ask("/srv/status").status == 200
    server.log.wait_for("int fastcgi_main_loop() - current language is en_US")
    assert server.log.count("webui_get_i18n_settings API failed returning [983041]")


def test_every_method_is_answered_alike(responder):
    """The service ignores the method. (The web server lets only three methods through.)"""
    for method in ("GET", "HEAD", "POST", "PUT", "DELETE", "PATCH"):
        answer = responder.ask("/srv/status", REQUEST_METHOD=method)
        assert (answer.status, answer.complete) == (200, True)


def test_an_answer_to_head_has_no_body(server):
    answer = server.ask("/srv/status", method="HEAD")
    assert (answer.status, answer.body) == (200, b"")
