"""What the contract, docs/api/openapi.yaml, refuses: wrong answers, each wrong in one way."""

import json

import pytest

from support.contract import (
    ACTION_ANSWER,
    DEVICES,
    FIRST_OF_TWO,
    NOTHING_OF_ONE_SIM,
    NOTHING_OF_TWO_SIMS,
    NOTIFICATION_ANSWER,
    ONE_SIM,
    STATUS,
    STATUS_ANSWER,
    TWO_SIMS,
    asker,
    is_within,
    shown,
)

# What else may be missing, each alone. The rest of an answer comes in groups, or always.
ALONE = {
    ONE_SIM: {
        "statusBarGpsStatus",
        "statusBarGuestWifiEnabled",
        "statusBarMaxWiFiClientListSize",
        "statusBarMobileDataEnabled",
        "statusBarPreferredTechnology",
        "statusBarRoaming",
        "statusBarSdCardInUse",
        "statusBarSimMMCode",
        "statusBarSmsUnreadCount",
        "statusBarWiFiEnabled",
    },
    TWO_SIMS: {
        "statusBarActiveSimSlot",
        "statusBarGpsStatus",
        "statusBarGuestWifiEnabled",
        "statusBarMaxWiFiClientListSize",
        "statusBarMobileDataEnabled",
        "statusBarNumSims",
        "statusBarPreferredTechnology",
        "statusBarRoaming",
        "statusBarSdCardInUse",
        "statusBarSmsUnreadCount",
        "statusBarWiFiEnabled",
    },
}


@pytest.mark.parametrize("name", ALONE)
def test_only_what_may_be_missing_alone_may_be_missing(shown, name):
    state = shown(name)[0][1]
    assert is_within(state)
    without = {key: {other: value for other, value in state.items() if other != key} for key in state}
    assert {key for key in state if is_within(without[key])} == ALONE[name]


# What a device that tells nothing else can tell.
ON_ITS_OWN = {
    "statusBarGpsStatus",
    "statusBarGuestWifiEnabled",
    "statusBarMaxWiFiClientListSize",
    "statusBarMobileDataEnabled",
    "statusBarSdCardStatus",
    "statusBarSmsUnreadCount",
    "statusBarWiFiEnabled",
}


@pytest.mark.parametrize(
    ("name", "more"),
    [
        (NOTHING_OF_ONE_SIM, {"statusBarSimStatus"}),
        (NOTHING_OF_TWO_SIMS, {"statusBarActiveSimSlot", "statusBarNumSims"}),
    ],
)
def test_only_what_may_come_on_its_own_comes_on_its_own(shown, name, more):
    bare = {key: value for key, value in shown(name)[0][1].items() if key not in ON_ITS_OWN | more}
    assert is_within(bare)
    # A value that some device shows may be one that asks for others.
    accepted = {
        key
        for device in DEVICES
        for state in shown(device)[0]
        for key, value in state.items()
        if key not in bare and is_within({**bare, key: value})
    }
    assert accepted == ON_ITS_OWN | more


@pytest.mark.parametrize("name", DEVICES)
def test_a_number_is_not_a_text_and_a_text_is_not_a_number(shown, name):
    state = shown(name)[0][1]
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
NO_FIRST_SIM = {"statusBarSimStatus": "Not Found", "statusBarConnectionState": "Not Found"}
NO_SECOND_SIM = {"statusBarSim2Status": "Not Found", "statusBarSim2ConnectionState": "Not Found"}

# device whose second answer is changed, what is changed in it
WRONG = {
    "SINR beside SNR": (ONE_SIM, {"statusBarSINR": "3"}),
    "SINR with 5G": (ONE_SIM, {"statusBarSINR": "3", "statusBarSNR": GONE}),
    "SNR with 3G": ("3g-old-sim", {"statusBarSNR": "3", "statusBarSINR": GONE}),
    "SNR beside SINR": ("3g-old-sim", {"statusBarSNR": "3"}),
    "3G without its ratio": ("3g-old-sim", {"statusBarSINR": GONE}),
    "SNR with 3G of the second SIM": (TWO_SIMS, {"statusBarSim2Technology": "HSPA+"}),
    "a connection without its ratio": (ONE_SIM, {"statusBarSNR": GONE}),
    "a connection in parts": (ONE_SIM, dict.fromkeys(OF_THE_CONNECTION, GONE)),
    "traffic without a connection": (NOTHING_OF_ONE_SIM, {"statusBarTrafficStatus": "None"}),
    "roaming without a connection": (NOTHING_OF_ONE_SIM, {"statusBarRoaming": "None"}),
    "operator without a connection": (NOTHING_OF_ONE_SIM, {"statusBarNetwork": "Orvane"}),
    "an account that lets the connection stand": (
        "out-of-credit",
        {"statusBarConnectionState": "Connected"},
    ),
    "a blocked account that hides the connection": (
        "out-of-credit",
        {"pcoInitiatedConnectionStatus": GONE},
    ),
    "an account without its limit": (ONE_SIM, {"pcoInitiatedConnectionStatus": "Connected"}),
    "a state of the SIM in place of the connection's": (
        ONE_SIM,
        {"statusBarConnectionState": "PIN Locked"},
    ),
    "no signal at all": (ONE_SIM, {"statusBarSignalBars": ""}),
    "signal of a second SIM that does not exist": (ONE_SIM, {"statusBarSim2SignalBars": "4"}),
    "a second SIM that does not exist": (ONE_SIM, {"statusBarSim2Status": "Not Found"}),
    "slots on a device with one SIM": (ONE_SIM, {"statusBarSimSlotsCount": 1}),
    "an active slot on a device with one SIM": (ONE_SIM, {"statusBarActiveSimSlot": 1}),
    "two SIMs that are not supported": (TWO_SIMS, {"isDualSimSupported": 0}),
    "one SIM where two are supported": (ONE_SIM, {"isDualSimSupported": 1}),
    "more than two kinds of devices": (TWO_SIMS, {"isDualSimSupported": 2}),
    "a code of a missing SIM": (
        "no-sim",
        {"statusBarSimMMCode": "0", "statusBarSimCarrierBlockedStatus": "0"},
    ),
    "a lock of a missing SIM": ("no-sim", {"statusBarSimCarrierBlockedStatus": "0"}),
    "an empty code on a device with one SIM": (ONE_SIM, {"statusBarSimMMCode": ""}),
    "signal of both SIMs": (TWO_SIMS, {"statusBarSignalBars": "4"}),
    "signal of both SIMs with the first in use": (FIRST_OF_TWO, {"statusBarSim2SignalBars": "4"}),
    "signal of neither SIM": (TWO_SIMS, {"statusBarSim2SignalBars": ""}),
    "signal of neither SIM with the first in use": (FIRST_OF_TWO, {"statusBarSignalBars": ""}),
    "technology of the first SIM not in use": (TWO_SIMS, {"statusBarTechnology": "LTE"}),
    "technology of the second SIM not in use": (FIRST_OF_TWO, {"statusBarSim2Technology": "LTE"}),
    "a second slot that is not counted": (TWO_SIMS, {"statusBarSimSlotsCount": 1}),
    "a second slot that is counted and not there": (TWO_SIMS, OF_THE_SECOND_SLOT | CODES_OF_THE_SECOND_SLOT),
    "slots where there are none": (TWO_SIMS, {"statusBarSimSlotsCount": 0}),
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
    "codes of the second SIM with the first in use": (TWO_SIMS, {"statusBarActiveSimSlot": 1}),
    "no codes of the second SIM in use": (
        TWO_SIMS,
        {**CODES_OF_THE_SECOND_SLOT, "statusBarSimMMCode": "", "statusBarSimCarrierBlockedStatus": ""},
    ),
    "a code of the first SIM with none of the second": (FIRST_OF_TWO, {"statusBarSimMMCode": "0"}),
    "a lock of the first SIM with none of the second": (
        FIRST_OF_TWO,
        {"statusBarSimCarrierBlockedStatus": "0"},
    ),
    "a code of an empty first slot": (
        TWO_SIMS,
        {**NO_FIRST_SIM, "statusBarSimCarrierBlockedStatus": ""},
    ),
    "a lock of an empty first slot": (TWO_SIMS, {**NO_FIRST_SIM, "statusBarSimMMCode": ""}),
    "a code of an empty second slot": (
        TWO_SIMS,
        {**NO_SECOND_SIM, "statusBarSim2CarrierBlockedStatus": ""},
    ),
    "a lock of an empty second slot": (TWO_SIMS, {**NO_SECOND_SIM, "statusBarSim2MMCode": ""}),
    "a connection of a locked SIM": (
        TWO_SIMS,
        {"statusBarSimStatus": "PIN Locked", "statusBarConnectionState": "Connected"},
    ),
    "a connection of a locked second SIM": (TWO_SIMS, {"statusBarSim2Status": "PIN Locked"}),
    "a locked SIM that is ready": (TWO_SIMS, {"statusBarConnectionState": "PIN Locked"}),
    "a locked second SIM that is ready": (TWO_SIMS, {"statusBarSim2ConnectionState": "PIN Locked"}),
    "free space without a card": ("lte-plus-one-sim", {"statusBarSdCardFreeSpace": "1"}),
    "used space without a card": ("lte-plus-one-sim", {"statusBarSdCardUsedSpace": "1"}),
    "a card without space": (
        ONE_SIM,
        {"statusBarSdCardUsedSpace": GONE, "statusBarSdCardFreeSpace": GONE},
    ),
    "a card in a slot that is not read": (NOTHING_OF_ONE_SIM, {"statusBarSdCardInUse": 0}),
    **{
        f"words of the carrier out of season: {key}": ("lte-plus-one-sim", {key: "Soon!"})
        for key in STATUS
        if key.startswith("StatusBarSoftwareUpdateCustom")
    },
    "words of the carrier with the value of another state": (
        "lte-plus-one-sim",
        {"StatusBarSoftwareUpdateValue": 2, "StatusBarSoftwareUpdateCustomDesc": "Soon!"},
    ),
    "words of the carrier with another value": (
        "software-update-9-2",
        {"StatusBarSoftwareUpdateValue": 1},
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
    "a negative number beyond 32 bits": (ONE_SIM, {"statusBarMnsScan": -(2**31) - 1}),
    "a card in use beyond 32 bits": (ONE_SIM, {"statusBarSdCardInUse": 2**32}),
    "a card in negative use": (ONE_SIM, {"statusBarSdCardInUse": -1}),
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
