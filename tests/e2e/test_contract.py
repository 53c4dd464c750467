"""The contract for web developers, docs/api/openapi.yaml, against what the service really answers.

In both directions: no answer lies outside its schema, and the schema allows nothing that no answer
shows: no key that no shipped device has, no value of an enumeration that no state of a device gives.
"""

import copy

import pytest

from support.contract import (
    DEVICES,
    NOTIFICATION,
    ONE_SIM,
    SCHEMAS,
    STATUS,
    TWO_SIMS,
    asker,
    is_within,
    shipped,
    shown,
)


@pytest.mark.parametrize("name", DEVICES)
def test_the_answers_for_a_shipped_device_are_within_the_contract(shown, name):
    states, _ = shown(name)
    assert all(is_within(state) for state in states)


def calls(document):
    for group in ("sys", "webui", "msgbus"):
        for call in document[group]:
            # Without this call the service gives no answer.
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


# Calls and fields whose numbers the shipped documents give by name.
NAMED = {
    "chargingSource",
    "connectionKind",
    "dataConnectionStatus",
    "detection",
    "fiveGType",
    "getCellular5GMode",
    "getCellularDataConnectionStatus",
    "getCellularServiceStatus",
    "getGPSStatus",
    "getSIMStatus",
    "roaming",
    "serviceStatus",
    "simStatus",
    "technology",
    "trafficStatus",
}


def fields(name, value):
    """Paths of the numbers in an entry of a document, and of the names of numbers."""
    if isinstance(value, dict):
        for key, inner in value.items():
            for path in fields(key, inner):
                yield [key, *path]
    elif isinstance(value, list):
        for index, inner in enumerate(value):
            for path in fields(name, inner):
                yield [index, *path]
    elif isinstance(value, int) or name in NAMED:
        yield []


def put(document, path, value):
    for step in path[:-1]:
        document = document[step]
    document[path[-1]] = value


# Limits of signed and unsigned numbers of 32 bits, and the largest one of 64 bits.
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
        # Skip a call that answers bytes, and the switch without which the service gives no answer.
        if call in ("getSIMCarrierGID", "getWebUICarrierEnabled"):
            continue
        for path in fields(call, value):
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


# The tests below check that the contract allows nothing that no answer shows.


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
    """Copies of a document with one number varied, including values without a meaning."""
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
            # One request first: technology and signal follow a change of the SIM in use one request late.
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
