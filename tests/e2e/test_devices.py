"""The answers for each shipped device: the whole status, compared with the stored one, and the active
notifications.

answers/NAME.json holds the status answers that a fresh service gives one after the other for
devices/NAME.json.
"""

import json

import pytest

from support import paths

DEVICES = sorted(path.stem for path in paths.DEVICES.glob("*.json"))
ANSWERS = paths.ROOT / "tests" / "e2e" / "answers"


def unique(pairs):
    keys = [key for key, _ in pairs]
    assert len(keys) == len(set(keys)), f"duplicate keys: {keys}"
    return dict(pairs)


def parse(text):
    return json.loads(text, object_pairs_hook=unique)


def ask(responder, uri="/srv/status"):
    answer = responder.ask(uri)
    assert answer.complete
    assert answer.status == 200
    assert answer.header["content-type"] == "application/json"
    return parse(answer.body)


def start(make_responder, name):
    responder = make_responder()
    responder.device.write((paths.DEVICES / f"{name}.json").read_bytes())
    return responder.start()


def test_each_device_has_stored_answers():
    assert sorted(path.stem for path in ANSWERS.iterdir()) == DEVICES


@pytest.mark.parametrize("name", DEVICES)
def test_the_answers_for_a_shipped_device(make_responder, name):
    responder = start(make_responder, name)
    stored = parse((ANSWERS / f"{name}.json").read_text())
    assert len(stored) >= 2
    for expected in stored:
        answer = ask(responder)
        assert list(answer) == list(expected)
        assert list(answer["statusData"]) == list(expected["statusData"])
        assert answer == expected
        assert all(
            type(value) is type(expected["statusData"][key])
            for key, value in answer["statusData"].items()
        )
    assert ask(responder) == stored[-1], "later answers are the same as the last stored one"


def test_a_sim_that_becomes_active_shows_in_technology_and_signal_one_request_late(make_responder):
    responder = start(make_responder, "dual-sim-slot-2")
    early, late = ask(responder)["statusData"], ask(responder)["statusData"]
    assert early["statusBarActiveSimSlot"] == late["statusBarActiveSimSlot"] == 2
    assert {key for key in late if early[key] != late[key]} == {
        "statusBarSignalBars",
        "statusBarSim2SignalBars",
        "statusBarSim2Technology",
        "statusBarTechnology",
    }


@pytest.mark.parametrize("name", DEVICES)
def test_the_notifications_of_a_shipped_device(make_responder, name):
    document = json.loads((paths.DEVICES / f"{name}.json").read_text())
    published = document["msgbus"]["zelt.ans.notifications"]
    failing = published == {"error": 151}
    active = [] if failing else [entry for entry in published if entry.get("active", True)]
    listed = ask(start(make_responder, name), "/srv/notification")["notificationsList"]
    assert [[shown[key] for key in ("id", "category", "severity")] for shown in listed] == [
        [entry[key] for key in ("id", "category", "severity")] for entry in active
    ]
    for shown in listed:
        for key in ("title", "text", "label"):
            assert shown[key].strip() and "notification_" not in shown[key]
            assert "%" not in shown["text"].replace("90%", "")


@pytest.mark.parametrize(
    ("name", "texts"),
    [
        (
            "gpio-unnamed",
            [
                "GPIO pin 1 has changed to low. ",
                "GPIO pin 1 has changed to high. ",
                "GPIO pin 2 has changed to low. ",
                "GPIO pin 2 has changed to high. ",
            ],
        ),
        (
            "gpio-named",
            [
                "Door has changed to low. ",
                "Door has changed to high. ",
                "GPIO pin 2 has changed to Off. ",
                "GPIO pin 2 has changed to On. ",
            ],
        ),
        ("all-notifications", ["Door Closed. ", "Door Open. ", "Lamp Off. ", "Lamp On. "]),
    ],
)
def test_pins_have_the_names_that_the_user_gave_them(make_responder, name, texts):
    listed = ask(start(make_responder, name), "/srv/notification")["notificationsList"]
    assert [shown["text"] for shown in listed[-4:]] == texts


@pytest.mark.parametrize(
    ("name", "key"),
    [
        ("software-update-4", "description"),
        ("software-update-5", "description"),
        ("software-update-6", "description"),
        ("software-update-8", "installSuccess"),
        ("software-update-9-2", "installFail"),
    ],
)
def test_a_notification_of_an_update_shows_the_text_of_the_carrier(make_responder, name, key):
    responder = start(make_responder, name)
    languages = responder.device.document()["webui"]["softwareUpdateCustomMsgs"]
    for language, messages in languages.items():
        responder.device.speak(language)
        shown = ask(responder, "/srv/notification")["notificationsList"][-1]
        assert messages[key] and shown["text"].startswith(messages[key])
        assert "<a " in shown["text"] or shown["text"] == messages[key]


def test_a_notification_of_an_update_without_a_text_of_the_carrier_has_that_of_the_catalogue(
    make_responder,
):
    responder = start(make_responder, "software-update-10")
    (shown,) = ask(responder, "/srv/notification")["notificationsList"]
    assert shown["text"] == "The software of Orvane Hotspot (OH-5) could not be updated. "
