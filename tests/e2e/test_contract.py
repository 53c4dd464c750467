"""The contract for web developers, docs/api/openapi.yaml, against what the service really answers.

In both directions: no answer lies outside its schema, and the schema allows nothing that no answer
shows: no key that no shipped device has, no value of an enumeration that no state of a device gives.
"""

import concurrent.futures
import copy
import json
import os
import pathlib
import shutil
import signal
import tempfile

import jsonschema
import pytest
import yaml

from support import paths
from support.responder import Responder
from support.sessions import open_session
from support.waiting import wait_until


class UniqueKeys(yaml.SafeLoader):
    """YAML itself lets the later of two keys win."""

    def construct_mapping(self, node, deep=False):
        keys = [self.construct_object(key, deep) for key, _ in node.value]
        assert len(keys) == len(set(keys)), f"a key stands twice: {node.start_mark}"
        return super().construct_mapping(node, deep)


CONTRACT = yaml.load((paths.ROOT / "docs" / "api" / "openapi.yaml").read_text(), UniqueKeys)
SCHEMAS = CONTRACT["components"]["schemas"]
STATUS = SCHEMAS["StatusData"]["properties"]
NOTIFICATION = SCHEMAS["Notification"]["properties"]

DEVICES = sorted(path.stem for path in paths.DEVICES.glob("*.json"))
ONE_SIM = "default"
TWO_SIMS = "dual-sim-slot-2"
FIRST_OF_TWO = "dual-sim-empty-slot"
NOTHING_OF_ONE_SIM = "everything-failing"
NOTHING_OF_TWO_SIMS = "every-group-failing"


def validator(schema):
    # A schema of its own that the references find their targets in.
    return jsonschema.Draft202012Validator({**schema, "components": CONTRACT["components"]})


def reference(name):
    return {"$ref": f"#/components/schemas/{name}"}


STATUS_ANSWER = validator(reference("StatusAnswer"))
NOTIFICATION_ANSWER = validator(reference("NotificationAnswer"))
ACTION_ANSWER = validator(reference("ActionAnswer"))


def violations(schema, instance):
    found = []
    for error in schema.iter_errors(instance):
        found.append(f"{error.json_path}: {error.message} ({'/'.join(map(str, error.absolute_schema_path))})")
    return found


def unique(pairs):
    keys = [key for key, _ in pairs]
    assert len(keys) == len(set(keys)), f"a key stands twice: {keys}"
    return dict(pairs)


def parse(answer):
    assert answer.complete and answer.status == 200
    return json.loads(answer.body, object_pairs_hook=unique)


def shipped(name):
    return json.loads((paths.DEVICES / f"{name}.json").read_text())


class Asker:
    """A service of its own, each of whose answers is held against the contract."""

    def __init__(self, folder, document):
        self.responder = Responder(folder)
        self.write(document)
        self.responder.start()
        self.seen = {key: set() for key in STATUS}

    def write(self, document):
        self.responder.device.write(json.dumps(document).encode())

    def ask(self, target, schema, **parameters):
        answer = parse(self.responder.ask(target, **parameters))
        assert not violations(schema, answer), answer
        return answer

    def status(self, **parameters):
        data = self.ask("/srv/status", STATUS_ANSWER, **parameters)["statusData"]
        for key, value in data.items():
            self.seen[key].add(value)
        return data

    def notifications(self, **parameters):
        return self.ask("/srv/notification", NOTIFICATION_ANSWER, **parameters)["notificationsList"]

    def act(self, name, **parameters):
        return self.ask(f"/srv/{name}", ACTION_ANSWER, **parameters)


@pytest.fixture(scope="module")
def asker():
    """Makes services that end with the tests of this file."""
    folder = pathlib.Path(tempfile.mkdtemp(prefix="kestal-test-"))
    made = []

    def make(document):
        (folder / str(len(made))).mkdir()
        made.append(Asker(folder / str(len(made)), document))
        return made[-1]

    yield make
    for each in made:
        each.responder.stop()
    shutil.rmtree(folder)


@pytest.fixture(scope="module")
def shown(asker):
    """What each shipped device shows, asked for once: its states and its notifications."""
    answers = {}

    def show(name):
        if name not in answers:
            device = asker(shipped(name))
            session = {"HTTP_COOKIE": open_session(device.responder), "HTTP_USER_AGENT": "test"}
            states = [device.status(), device.status(), device.status(**session)]
            answers[name] = states, device.notifications() + device.notifications(**session)
            assert device.act("disconnect") == {"loginStatus": 0}
            assert device.act("connect", **session) == {"loginStatus": 1}
            device.responder.stop()
        return answers[name]

    return show


# The answers are within the contract.


@pytest.mark.parametrize("name", DEVICES)
def test_what_a_shipped_device_answers_is_within_the_contract(shown, name):
    states, _ = shown(name)
    assert all(is_within(state) for state in states)


def calls(document):
    for group in ("sys", "webui", "msgbus"):
        for call in document[group]:
            # Without this one there is no answer.
            if call != "getWebUICarrierEnabled":
                yield group, call


@pytest.mark.parametrize("name", [ONE_SIM, TWO_SIMS, "out-of-credit"])
def test_whichever_call_fails_the_answers_stay_within_the_contract(asker, name):
    device = asker(shipped(name))
    complete = device.status()
    for group, call in calls(shipped(name)):
        document = shipped(name)
        document[group][call] = {"error": 5}
        device.write(document)
        assert set(device.status()) <= set(complete)
        device.notifications()


CARRIER_SWITCHES = [call for call in shipped(ONE_SIM)["sys"] if call.endswith("CarrierEnabled")]


@pytest.mark.parametrize("call", [call for call in CARRIER_SWITCHES if "WebUI" not in call])
def test_whatever_the_carrier_leaves_out_the_answers_stay_within_the_contract(asker, call):
    for name in (ONE_SIM, TWO_SIMS):
        document = shipped(name)
        document["sys"][call] = 1 - document["sys"][call]
        asker(document).status()


@pytest.mark.parametrize("key", shipped(ONE_SIM)["webui"]["commonConfigurations"])
def test_however_the_device_is_configured_the_answers_stay_within_the_contract(asker, key):
    for value in ("0", "1", ""):
        document = shipped(ONE_SIM)
        document["webui"]["commonConfigurations"][key] = value
        asker(document).status()


def fields(value):
    """Paths of the integers in an entry of a document."""
    if isinstance(value, dict):
        for key, inner in value.items():
            for path in fields(inner):
                yield [key, *path]
    elif isinstance(value, list):
        for index, inner in enumerate(value):
            for path in fields(inner):
                yield [index, *path]
    elif isinstance(value, int):
        yield []


def put(document, path, value):
    for step in path[:-1]:
        document = document[step]
    document[path[-1]] = value


# Smallest and largest of a signed and an unsigned number of 32 bits, and the largest of 64 bits.
EXTREMES = [-(2**31), 2**31 - 1, 2**32 - 1, 2**64 - 1]
UNSIGNED_32 = {"getWiFiMaxClients", "cardInUse"}
UNSIGNED_64 = {
    "duration",
    "bytesReceived1",
    "bytesTransmitted1",
    "bytesReceived2",
    "bytesTransmitted2",
    "totalCapacity",
    "freeSpace",
}


def extremes(path):
    if UNSIGNED_64 & set(path):
        return EXTREMES[1:]
    return EXTREMES[1:3] if UNSIGNED_32 & set(path) else EXTREMES[:2]


@pytest.mark.parametrize("name", [ONE_SIM, TWO_SIMS])
def test_extreme_numbers_stay_within_the_contract(asker, name):
    device = asker(shipped(name))
    for call, value in shipped(name)["sys"].items():
        # Bytes of their own, and the switch without which there is no answer.
        if call in ("getSIMCarrierGID", "getWebUICarrierEnabled"):
            continue
        for path in fields(value):
            for extreme in extremes([call, *path]):
                document = shipped(name)
                put(document, ["sys", call, *path], extreme)
                device.write(document)
                device.status()


def test_the_texts_of_the_device_stay_within_the_contract(asker):
    hostile = '"</script>\\\t\r\n\x01 €'
    document = shipped(TWO_SIMS)
    document["sys"]["getCellularServiceStats"] |= {"networkName": hostile, "networkId": f" {hostile}"}
    document["sys"]["getAllSimSlotsInfo"]["slots"][1]["networkName"] = hostile
    document["msgbus"]["zelt.ans.notifications"] = [
        {"id": hostile[:20], "category": hostile[:10], "severity": 7, "textId": hostile},
        {"active": False},
        {},
    ]
    device = asker(document)
    state = device.status()
    assert state["statusBarSim2Network"] == hostile
    assert state["statusBarNetworkID"] == hostile.split()[0]
    assert [notification["text"] for notification in device.notifications()][0] == hostile


# The contract allows no more than the answers show.


def test_the_contract_has_no_key_that_no_shipped_device_shows(shown):
    states = {key for name in DEVICES for state in shown(name)[0] for key in state}
    assert states == set(STATUS)
    notifications = [notification for name in DEVICES for notification in shown(name)[1]]
    assert {key for notification in notifications for key in notification} == set(NOTIFICATION)


def values(schema):
    """The values that a schema enumerates; None when it is open."""
    if "$ref" in schema:
        return values(SCHEMAS[schema["$ref"].rpartition("/")[2]])
    if "const" in schema:
        return {schema["const"]}
    if "enum" in schema:
        return set(schema["enum"])
    if "anyOf" in schema:
        parts = [values(part) for part in schema["anyOf"]]
        return None if None in parts else set.union(*parts)
    return None


ENUMERATED = {key: values(schema) for key, schema in STATUS.items() if values(schema) is not None}


def variants(document, *path, span):
    """Copies of a document with one number varied beyond the values that have a meaning."""
    for value in span:
        copied = copy.deepcopy(document)
        put(copied, path, value)
        yield copied


def states_of_a_device(document):
    stats = ("sys", "getCellularServiceStats")
    yield from variants(document, *stats, "technology", span=range(-1, 19))
    yield from variants(document, *stats, "fiveGType", span=range(4))
    yield from variants(document, *stats, "roaming", span=range(-1, 5))
    yield from variants(document, *stats, "femtoCell", span=range(-1, 3))
    connection = ("sys", "getCellularDataConnectionStats")
    yield from variants(document, *connection, "trafficStatus", span=range(-1, 5))
    for account in (0, 2, 3, 5):
        document["sys"]["getCellularDataAccountStatus"] = account
        for service in range(-1, 4):
            document["sys"]["getCellularServiceStatus"] = service
            yield from variants(document, "sys", "getCellularDataConnectionStatus", span=range(-1, 9))
    yield from variants(document, "sys", "getRadioEnabled", span=range(-1, 3))
    yield from variants(document, "sys", "getSIMStatus", span=range(-1, 9))
    yield from variants(document, "sys", "getNetworkSIMLockStatus", "carrierBlocked", span=range(-1, 3))
    for field in ("chargingState", "detection", "chargingSource"):
        yield from variants(document, "sys", "getBatteryStatus", field, span=range(-1, 4))
    for call in ("getGPSStatus", "getEthernetEnabled", "getEthernetLinkStatus", "getSambaEnabled",
                 "getCellularDataEnabled", "getWiFiEnabled"):
        yield from variants(document, "sys", call, span=range(-1, 4))
    yield from variants(document, "sys", "getSDCardInfo", span=[{"error": 2001}, {"error": 5}])
    yield from variants(document, "sys", "getWiFiGuestProfileEnabled", span=[0, 1])
    yield from variants(document, "msgbus", "zelt.ans.notifications", span=[[], [{}], {"error": 5}])


def states_of_slots(document):
    slots = ("sys", "getAllSimSlotsInfo", "slots")
    for slot in (0, 1):
        put(document, ("sys", "getActiveSimSlot"), slot + 1)
        put(document, (*slots, 0, "active"), 1 - slot)
        put(document, (*slots, 1, "active"), slot)
        yield document
        stats = ("sys", "getCellularServiceStats")
        yield from variants(document, *stats, "technology", span=range(-1, 19))
        yield from variants(document, *stats, "fiveGType", span=range(4))
        for each in (0, 1):
            yield from variants(document, *slots, each, "simStatus", span=range(-1, 9))
        for account in (0, 2, 3, 5):
            put(document, ("sys", "getCellularDataAccountStatus"), account)
            for service in range(-1, 4):
                put(document, (*slots, slot, "serviceStatus"), service)
                yield from variants(document, *slots, slot, "dataConnectionStatus", span=range(-1, 9))
        yield from variants(document, "sys", "getNetworkSIMLockStatus", "carrierBlocked", span=range(-1, 3))
    yield from variants(document, "sys", "getActiveSimSlot", span=[-1, 0, 3])
    yield from variants(document, "sys", "getAllSimSlotsInfo", span=[
        {**document["sys"]["getAllSimSlotsInfo"], "count": count} for count in (-1, 0, 1, 2, 3)
    ])


def test_the_contract_enumerates_what_the_service_gives_and_nothing_else(asker):
    seen = {key: set() for key in STATUS}
    for name, states in ((ONE_SIM, states_of_a_device), (TWO_SIMS, states_of_slots)):
        document = shipped(name)
        document["sys"]["getPCOCarrierEnabled"] = 1
        device = asker(document)
        for state in states(document):
            device.write(state)
            device.status()
            # Technology and signal follow the SIM in use one request late.
            device.status()
        for key, given in device.seen.items():
            seen[key] |= given
    assert len(ENUMERATED) >= 25
    assert {key: seen[key] for key in ENUMERATED} == ENUMERATED


def test_the_contract_enumerates_the_severities_that_the_service_gives(asker):
    document = shipped(ONE_SIM)
    document["msgbus"]["zelt.ans.notifications"] = [{"severity": severity} for severity in range(6)]
    given = [notification["severity"] for notification in asker(document).notifications()]
    assert set(given) == values(NOTIFICATION["severity"])


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


def is_within(state):
    return STATUS_ANSWER.is_valid({"loginStatus": 0, "statusData": state})


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


# The document itself.


def walk(node, path=()):
    yield path, node
    children = node.items() if isinstance(node, dict) else enumerate(node) if isinstance(node, list) else ()
    for key, child in children:
        yield from walk(child, (*path, key))


def resolve(node):
    while "$ref" in node:
        target = CONTRACT
        for step in node["$ref"].removeprefix("#/").split("/"):
            target = target[step]
        node = target
    return node


def test_every_reference_has_a_target_and_every_component_a_use():
    references = {node["$ref"] for _, node in walk(CONTRACT) if isinstance(node, dict) and "$ref" in node}
    components = {
        f"#/components/{kind}/{name}"
        for kind, named in CONTRACT["components"].items()
        for name in named
        if kind != "securitySchemes"
    }
    assert references == components
    schemes = {name for requirement in CONTRACT["security"] for name in requirement}
    assert schemes == set(CONTRACT["components"]["securitySchemes"])


# Objects of an OpenAPI 3.1 document, the fields that this one uses, those that must be there.
OBJECTS = {
    "document": (
        {"openapi", "jsonSchemaDialect", "info", "servers", "security", "tags", "paths", "components"},
        {"openapi", "info", "paths"},
    ),
    "info": ({"title", "version", "summary", "description"}, {"title", "version"}),
    "server": ({"url", "description"}, {"url"}),
    "tag": ({"name", "description"}, {"name"}),
    "path": ({"description", "get", "post"}, set()),
    "operation": ({"operationId", "tags", "summary", "description", "responses"}, {"responses"}),
    "response": ({"description", "headers", "content"}, {"description"}),
    "header": ({"description", "required", "schema"}, {"schema"}),
    "media type": ({"schema", "example", "examples"}, set()),
    "example": ({"summary", "description", "value"}, {"value"}),
    "security scheme": ({"type", "in", "name", "description"}, {"type", "in", "name"}),
    "components": ({"securitySchemes", "headers", "responses", "schemas", "examples"}, set()),
}


def objects():
    """All objects of the document that are no schemas, with their kinds."""
    components = CONTRACT["components"]
    yield "document", CONTRACT
    yield "info", CONTRACT["info"]
    yield "components", components
    for kind, nodes in (
        ("server", CONTRACT["servers"]),
        ("tag", CONTRACT["tags"]),
        ("path", CONTRACT["paths"].values()),
        ("header", components["headers"].values()),
        ("security scheme", components["securitySchemes"].values()),
        ("example", components["examples"].values()),
    ):
        for node in nodes:
            yield kind, node
    responses = list(components["responses"].values())
    for _, _, operation in operations():
        yield "operation", operation
        responses += operation["responses"].values()
    for response in map(resolve, responses):
        yield "response", response
        for header in response.get("headers", {}).values():
            yield "header", resolve(header)
        for media_type in response.get("content", {}).values():
            yield "media type", media_type
            for example in media_type.get("examples", {}).values():
                yield "example", resolve(example)


def operations():
    for path, item in CONTRACT["paths"].items():
        for method in ("get", "post"):
            if method in item:
                yield path, method, item[method]


def media_types():
    for _, _, operation in operations():
        for status, response in operation["responses"].items():
            for name, media_type in resolve(response).get("content", {}).items():
                yield status, name, media_type


def test_the_document_is_well_formed():
    assert CONTRACT["openapi"] == "3.1.0"
    assert CONTRACT["jsonSchemaDialect"] == jsonschema.Draft202012Validator.META_SCHEMA["$id"]
    for kind, node in objects():
        known, needed = OBJECTS[kind]
        assert needed <= set(node) <= known, (kind, node)
    for _, node in walk(CONTRACT["paths"]):
        if isinstance(node, dict) and "$ref" in node:
            assert set(node) == {"$ref"}, "outside of schemas, nothing stands beside a reference"
    names = [operation["operationId"] for _, _, operation in operations()]
    assert len(names) == len(set(names)) == 6
    tags = {tag["name"] for tag in CONTRACT["tags"]}
    assert {tag for _, _, operation in operations() for tag in operation["tags"]} == tags
    assert all(status.isdecimal() for _, _, operation in operations() for status in operation["responses"])


def schemas():
    """Every schema and subschema, with its path."""
    roots = [*SCHEMAS.values(), *(header["schema"] for header in CONTRACT["components"]["headers"].values())]
    pending = roots + [media_type["schema"] for _, _, media_type in media_types() if "schema" in media_type]
    while pending:
        schema = pending.pop()
        if isinstance(schema, bool):
            continue
        yield schema
        for keyword in ("properties", "dependentSchemas"):
            pending += schema.get(keyword, {}).values()
        for keyword in ("allOf", "anyOf", "oneOf"):
            pending += schema.get(keyword, [])
        for keyword in ("if", "then", "else", "not", "items"):
            pending += [schema[keyword]] if keyword in schema else []


KEYWORDS = {
    "$ref", "additionalProperties", "allOf", "anyOf", "const", "contentMediaType", "dependentRequired",
    "description", "else", "enum", "examples", "if", "items", "maximum", "minimum", "not", "oneOf", "pattern",
    "properties", "required", "then", "type",
}


def test_every_schema_is_one():
    for schema in schemas():
        jsonschema.Draft202012Validator.check_schema(schema)
        # A misspelt keyword would be ignored.
        assert set(schema) <= KEYWORDS, schema


def test_no_rule_names_a_key_that_does_not_exist():
    for schema in schemas():
        if "additionalProperties" in schema:
            continue
        required = set(schema.get("required", []))
        for first, others in schema.get("dependentRequired", {}).items():
            required |= {first, *others}
        assert required | set(schema.get("properties", {})) <= set(STATUS), schema


def test_every_example_is_valid():
    count = 0
    for schema in schemas():
        for example in schema.get("examples", []):
            assert not violations(validator(schema), example)
            count += 1
    for _, _, media_type in media_types():
        examples = [resolve(example)["value"] for example in media_type.get("examples", {}).values()]
        examples += [media_type["example"]] if "example" in media_type else []
        for example in examples:
            assert not violations(validator(media_type["schema"]), example)
            count += 1
    assert count > 100


def test_every_key_tells_its_meaning_when_it_is_present_and_an_example():
    for key, schema in {**STATUS, **NOTIFICATION}.items():
        description = " ".join(schema["description"].split())
        assert any(words in description for words in ("Present ", "Always present")), key
        assert schema["examples"], key


def test_every_object_of_an_answer_is_closed():
    for name in ("StatusAnswer", "StatusData", "NotificationAnswer", "Notification", "ActionAnswer"):
        assert SCHEMAS[name]["additionalProperties"] is False


def test_the_contract_has_the_version_of_the_service():
    version = CONTRACT["info"]["version"]
    assert f"CMAKE_PROJECT_VERSION:STATIC={version}\n" in (paths.BUILD / "CMakeCache.txt").read_text()


# What the web server makes of it.

OTHER_SITE = ("Sec-Fetch-Site", "cross-site")


class WebServer:
    def __init__(self, server):
        self.server = server
        self.given = {(path, method): set() for path, method, _ in operations()}

    def ask(self, path, method, *headers, target=None, body=b""):
        """Asks as an operation is asked, and holds the answer against the contract."""
        headers = [*headers, *([("Content-Length", "0")] if method == "post" and not body else [])]
        answer = self.server.ask(target or path, headers, method=method.upper(), body=body)
        self.check(path, method, answer)
        return answer.status

    def check(self, path, method, answer):
        self.given[path, method].add(str(answer.status))
        response = resolve(CONTRACT["paths"][path][method]["responses"][str(answer.status)])
        (content_type, media_type), = response["content"].items()
        assert answer.headers["content-type"] == content_type
        for name, header in response.get("headers", {}).items():
            assert validator(resolve(header)["schema"]).is_valid(answer.headers[name.lower()])
        if answer.status == 200:
            assert not violations(validator(media_type["schema"]), answer.json())
        elif "schema" in media_type:
            assert validator(media_type["schema"]).is_valid(answer.body.decode())

    def all(self, *headers, **arguments):
        return {self.ask(path, method, *headers, **arguments) for path, method in self.given}

    def all_at_once(self, then):
        """Asks for everything, acts meanwhile, and returns the status codes."""
        with concurrent.futures.ThreadPoolExecutor(len(self.given)) as pool:
            asked = [pool.submit(self.ask, *operation) for operation in self.given]
            then()
            return {answer.result() for answer in asked}

    def all_while_the_service_dies(self):
        responder = self.server.responder()
        os.kill(responder, signal.SIGSTOP)

        def die():
            wait_until(lambda: self.connections() >= len(self.given), "all requests are on their way")
            os.kill(responder, signal.SIGKILL)

        return self.all_at_once(then=die)

    def connections(self):
        """How many connections to the service there are that it has not ended."""
        sockets = pathlib.Path("/proc/net/unix").read_text().splitlines()
        return sum(line.endswith(f" {self.server.run}/responder.sock-0") for line in sockets) - 1


def test_the_web_server_gives_the_errors_of_the_contract_and_no_others(make_server):
    server = make_server()
    server.environment["KESTAL_TIMEOUT"] = "1"
    server.start()
    web = WebServer(server)

    assert web.all() == {200}
    assert web.all(("Cookie", open_session(server)), ("User-Agent", "test")) == {200}
    assert {web.ask(path, method, target=f"{path}/../x") for path, method in web.given} == {400}
    for path, method in web.given:
        expected = 403 if "connect" in path else 200
        assert web.ask(path, method, OTHER_SITE) == expected
    for path, method in web.given:
        assert web.ask(path, method, body=b"a" * 65537) == (413 if method == "post" else 400)
    assert web.all(("X", "a" * 9000)) == {431}

    server.device.set(getWebUICarrierEnabled=0)
    assert web.all() == {501}
    server.device.set(getWebUICarrierEnabled=1)

    responder = server.responder()
    os.kill(responder, signal.SIGSTOP)
    assert web.all_at_once(then=lambda: None) == {504}
    os.kill(responder, signal.SIGCONT)
    wait_until(lambda: server.ask("/srv/status").status == 200, "the service answers again")

    # A request that has not reached the service when it dies is served by the next one.
    wait_until(lambda: web.all_while_the_service_dies() == {500}, "all requests die with the service")
    (server.run / "kestal.cgi").unlink()
    os.kill(server.responder(), signal.SIGKILL)
    wait_until(lambda: server.ask("/srv/status").status == 503, "the web server knows that it is gone")
    assert web.all() == {503}

    documented = {(path, method): set(operation["responses"]) for path, method, operation in operations()}
    assert web.given == documented
