"""What the service says of each shipped device: the whole answer, compared with the stored one.

answers/NAME.json holds the answers that a fresh service gives one after the other for
devices/NAME.json.
"""

import json

import pytest

from support import paths

DEVICES = sorted(path.stem for path in paths.DEVICES.glob("*.json"))
ANSWERS = paths.ROOT / "tests" / "e2e" / "answers"


def unique(pairs):
    keys = [key for key, _ in pairs]
    assert len(keys) == len(set(keys)), f"a key stands twice: {keys}"
    return dict(pairs)


def parse(text):
    return json.loads(text, object_pairs_hook=unique)


def ask(responder):
    answer = responder.ask()
    assert answer.complete
    assert answer.status == 200
    assert answer.header["content-type"] == "application/json"
    return parse(answer.body)


def test_each_device_has_its_answers():
    assert sorted(path.stem for path in ANSWERS.iterdir()) == DEVICES


@pytest.mark.parametrize("name", DEVICES)
def test_the_answers_for_a_shipped_device(make_responder, name):
    responder = make_responder()
    responder.device.write((paths.DEVICES / f"{name}.json").read_bytes())
    responder.start()
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
    assert ask(responder) == stored[-1], "the last stored answer is the lasting one"


def test_a_sim_that_becomes_active_shows_in_technology_and_signal_one_request_late(make_responder):
    responder = make_responder()
    responder.device.write((paths.DEVICES / "dual-sim-slot-2.json").read_bytes())
    responder.start()
    early, late = ask(responder)["statusData"], ask(responder)["statusData"]
    assert early["statusBarActiveSimSlot"] == late["statusBarActiveSimSlot"] == 2
    assert {key for key in late if early[key] != late[key]} == {
        "statusBarSignalBars",
        "statusBarSim2SignalBars",
        "statusBarSim2Technology",
        "statusBarTechnology",
    }
