"""The contract, docs/api/openapi.yaml, refuses wrong answers; each one here is wrong in one way."""

import json

import pytest

from support.contract import (
    ACTION_ANSWER,
    NOTHING_OF_ONE_SIM,
    NOTHING_OF_TWO_SIMS,
    NOTIFICATION_ANSWER,
    ONE_SIM,
    STATUS_ANSWER,
    TWO_SIMS,
    asker,
    is_within,
    shown,
)


def test_a_number_is_not_a_text_and_a_text_is_not_a_number(shown):
    state = shown(ONE_SIM)[0][1]
    for key, value in state.items():
        for other in ([str(value), value + 0.5, bool(value)] if isinstance(value, int) else [0, 1.5]):
            assert not is_within({**state, key: other}), (key, other)
        assert not is_within({**state, key: None}), key
        assert not is_within({**state, key: [value]}), key


def test_a_key_that_does_not_exist_is_refused(shown):
    state = shown(ONE_SIM)[0][1]
    assert not is_within({**state, "statusBarVoltage": "4"})
    assert not is_within({**state, "statusBarsignalBars": "4"})


GONE = object()
OF_THE_CONNECTION = ["statusBarNetworkID", "statusBarTechnology", "statusBarSignalBars", "statusBarBand"]

OF_THE_FIRST_SLOT = dict.fromkeys(
    [
        "statusBarSimStatus",
        "statusBarNetwork",
        "statusBarConnectionState",
        "statusBarSimMMCode",
        "statusBarSimCarrierBlockedStatus",
    ],
    GONE,
)
OF_THE_SECOND_SLOT = dict.fromkeys(
    ["statusBarSim2Status", "statusBarSim2Network", "statusBarSim2ConnectionState"], GONE
)
CODES_OF_THE_SECOND_SLOT = dict.fromkeys(
    ["statusBarSim2MMCode", "statusBarSim2CarrierBlockedStatus"], GONE
)

# One case for each kind of rule: the device whose second answer is changed, and the change
WRONG = {
    "SINR beside SNR": (ONE_SIM, {"statusBarSINR": "3"}),
    "a connection without its ratio": (ONE_SIM, {"statusBarSNR": GONE}),
    "a connection in parts": (ONE_SIM, dict.fromkeys(OF_THE_CONNECTION, GONE)),
    "traffic without a connection": (NOTHING_OF_ONE_SIM, {"statusBarTrafficStatus": "None"}),
    "an account that lets the connection stand": (
        "out-of-credit",
        {"statusBarConnectionState": "Connected"},
    ),
    "a blocked account that hides the connection": (
        "out-of-credit",
        {"pcoInitiatedConnectionStatus": GONE},
    ),
    "no signal at all": (ONE_SIM, {"statusBarSignalBars": ""}),
    "a second SIM that does not exist": (ONE_SIM, {"statusBarSim2Status": "Not Found"}),
    "slots on a device with one SIM": (ONE_SIM, {"statusBarSimSlotsCount": 1}),
    "two SIMs that are not supported": (TWO_SIMS, {"isDualSimSupported": 0}),
    "a code of a missing SIM": (
        "no-sim",
        {"statusBarSimMMCode": "0", "statusBarSimCarrierBlockedStatus": "0"},
    ),
    "signal of both SIMs": (TWO_SIMS, {"statusBarSignalBars": "4"}),
    "signal of neither SIM": (TWO_SIMS, {"statusBarSim2SignalBars": ""}),
    "technology of the first SIM not in use": (TWO_SIMS, {"statusBarTechnology": "LTE"}),
    "a second slot that is not counted": (TWO_SIMS, {"statusBarSimSlotsCount": 1}),
    "a second slot that is counted and not there": (TWO_SIMS, OF_THE_SECOND_SLOT | CODES_OF_THE_SECOND_SLOT),
    "a second slot without a first": (TWO_SIMS, OF_THE_FIRST_SLOT),
    "codes without their slot": (
        TWO_SIMS,
        {
            **OF_THE_SECOND_SLOT,
            "statusBarSimSlotsCount": 1,
            "statusBarSim2MMCode": "",
            "statusBarSim2CarrierBlockedStatus": "",
        },
    ),
    "a lock without its code": (
        TWO_SIMS,
        {
            "statusBarSim2MMCode": GONE,
            "statusBarActiveSimSlot": GONE,
            "statusBarSimMMCode": "",
            "statusBarSimCarrierBlockedStatus": "",
        },
    ),
    "slots that are not counted": (NOTHING_OF_TWO_SIMS, {"statusBarSimSlotsCount": GONE}),
    "no codes of the second SIM in use": (
        TWO_SIMS,
        {**CODES_OF_THE_SECOND_SLOT, "statusBarSimMMCode": "", "statusBarSimCarrierBlockedStatus": ""},
    ),
    "a connection of a locked SIM": (
        TWO_SIMS,
        {"statusBarSimStatus": "PIN Locked", "statusBarConnectionState": "Connected"},
    ),
    "a locked SIM that is ready": (TWO_SIMS, {"statusBarConnectionState": "PIN Locked"}),
    "free space without a card": ("lte-plus-one-sim", {"statusBarSdCardFreeSpace": "1"}),
    "a card without space": (
        ONE_SIM,
        {"statusBarSdCardUsedSpace": GONE, "statusBarSdCardFreeSpace": GONE},
    ),
    "a card in a slot that is not read": (NOTHING_OF_ONE_SIM, {"statusBarSdCardInUse": 0}),
    "words of the carrier out of season": ("lte-plus-one-sim", {"StatusBarSoftwareUpdateCustomDesc": "Soon!"}),
    "words of the carrier with the value of another state": (
        "lte-plus-one-sim",
        {"StatusBarSoftwareUpdateValue": 2, "StatusBarSoftwareUpdateCustomDesc": "Soon!"},
    ),
    "a battery in parts": (
        ONE_SIM,
        {"statusBarBatteryDetection": GONE, "statusBarBatteryChargingSource": GONE},
    ),
    "guests without clients": (NOTHING_OF_ONE_SIM, {"statusBarGuestClientListSize": "0"}),
    "a negative number of clients": (ONE_SIM, {"statusBarClientListSize": "-1"}),
    "bytes in groups of digits": (ONE_SIM, {"statusBarBytesTotal": "1,000"}),
    "bytes that overflow": (ONE_SIM, {"statusBarBytesTotal": "1" * 21}),
    "percent with its sign": (ONE_SIM, {"statusBarBatteryPercent": "84%"}),
    "a truth in another spelling": (ONE_SIM, {"statusBarBatteryChargingState": "True"}),
    "a band without its letter": (ONE_SIM, {"statusBarBand": "66"}),
    "a bandwidth without its unit": (ONE_SIM, {"statusBarBandwidth": "40"}),
    "an identifier of two words": (ONE_SIM, {"statusBarNetworkID": "310 48"}),
    "a switch beyond on": (ONE_SIM, {"statusBarMobileDataEnabled": 2}),
    "a number beyond 32 bits": (ONE_SIM, {"statusBarMnsScan": 2**31}),
    "a card in use beyond 32 bits": (ONE_SIM, {"statusBarSdCardInUse": 2**32}),
    "a technology that has no name": (ONE_SIM, {"statusBarTechnology": "6G"}),
    "a flag that is empty": (ONE_SIM, {"statusBarNotificationFlag": ""}),
    "words for a technology": (ONE_SIM, {"statusBarTechnologyText": "5G"}),
}


@pytest.mark.parametrize("what", WRONG)
def test_a_wrong_state_is_refused(shown, what):
    name, change = WRONG[what]
    state = shown(name)[0][1]
    assert is_within(state)
    changed = {key: value for key, value in {**state, **change}.items() if value is not GONE}
    assert changed != state
    assert not is_within(changed)


def test_a_wrong_notification_is_refused(shown):
    right = {"id": "x", "category": "y", "severity": "info", "title": "", "text": " ", "label": "l"}

    def accepts(notification):
        return NOTIFICATION_ANSWER.is_valid({"loginStatus": 1, "notificationsList": [right, notification]})

    assert accepts(right)
    for key in right:
        assert not accepts({other: value for other, value in right.items() if other != key}), key
        assert not accepts({**right, key: 1}), key
        assert not accepts({**right, key: None}), key
    assert not accepts({**right, "severity": "fatal"})
    assert not accepts({**right, "url": "/messages"})
    assert not accepts([])


@pytest.mark.parametrize(
    "answer",
    [
        {},
        [],
        {"loginStatus": "0"},
        {"loginStatus": 2},
        {"loginStatus": True},
        {"loginStatus": 0, "errorDesc": "x"},
        {"loginStatus": 0, "statusData": [], "notificationsList": {}},
        {"statusData": {}},
        {"notificationsList": []},
    ],
    ids=json.dumps,
)
def test_a_wrong_answer_is_refused_by_every_operation(answer):
    for schema in (STATUS_ANSWER, NOTIFICATION_ANSWER, ACTION_ANSWER):
        assert not schema.is_valid(answer)


def test_each_operation_has_its_own_answer(shown):
    status = {"loginStatus": 0, "statusData": shown(ONE_SIM)[0][1]}
    notification = {"loginStatus": 0, "notificationsList": []}
    assert STATUS_ANSWER.is_valid(status) and NOTIFICATION_ANSWER.is_valid(notification)
    assert not ACTION_ANSWER.is_valid(status) and not NOTIFICATION_ANSWER.is_valid(status)
    assert not ACTION_ANSWER.is_valid(notification) and not STATUS_ANSWER.is_valid(notification)
