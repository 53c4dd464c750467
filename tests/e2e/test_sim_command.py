"""kestal-sim while the service runs: a change is visible in the next answer."""

import json
import os
import pty
import signal
import subprocess
import threading

import pytest

from support import fastcgi, paths
from support.load import Load
from support.waiting import wait_until


def sim(peer, *arguments, code=0):
    """Runs the command on the device of a Server or Responder; returns what it prints."""
    run = subprocess.run(
        [str(paths.SIM), *arguments],
        env={**paths.CLEAN_ENVIRONMENT, **peer.environment},
        capture_output=True,
        text=True,
        timeout=60,
    )
    assert run.returncode == code, run.stderr
    return run.stdout.strip() if code == 0 else run.stderr.strip()


def status(responder):
    answer = responder.ask()
    assert answer.complete and answer.status == 200
    return json.loads(answer.body)["statusData"]


def value_at(document, path):
    for step in path.replace("[", ".[").split("."):
        document = document[int(step[1:-1])] if step.startswith("[") else document[step]
    return document


def test_a_change_shows_in_the_next_answer(responder):
    for percent in ("9", "10", "100"):
        sim(responder, "set", "sys.getBatteryStatus.chargePercent", percent)
        assert status(responder)["statusBarBatteryPercent"] == percent
    sim(responder, "set", "sys.getCellularServiceStats.networkName", "Velta Mobil")
    assert status(responder)["statusBarNetwork"] == "Velta Mobil"


def test_a_call_fails_and_is_healed(responder):
    before = responder.device.path.read_bytes()
    healthy = status(responder)
    sim(responder, "fail", "sys.getBatteryStatus", "77")
    assert "statusBarBatteryPercent" not in status(responder)
    responder.log.wait_for("77")
    sim(responder, "heal", "sys.getBatteryStatus")
    assert status(responder) == healthy
    assert json.loads(responder.device.path.read_bytes()) == json.loads(before)


def test_another_device_is_loaded(responder):
    sim(responder, "load", str(paths.DEVICES / "lte-plus-one-sim.json"))
    assert responder.device.path.read_bytes() == (paths.DEVICES / "lte-plus-one-sim.json").read_bytes()
    responder.device.set(getSMSUnreadCount=5)
    assert status(responder)["statusBarTechnology"] != "5G UWB"


def answer_of(make_responder, document):
    """What a service answers that has been started on a document."""
    fresh = make_responder("fresh")
    fresh.device.write(document)
    answer = status(fresh.start())
    fresh.stop()
    return answer


@pytest.mark.parametrize("name", sorted(path.stem for path in paths.DEVICES.glob("*.json")))
def test_loading_tells_if_a_running_service_does_not_see_all_of_a_device(responder, make_responder, name):
    status(responder)
    run = subprocess.run(
        [str(paths.SIM), "load", name],
        env={**paths.CLEAN_ENVIRONMENT, **responder.environment},
        capture_output=True,
        text=True,
        timeout=60,
        check=True,
    )
    fresh = answer_of(make_responder, responder.device.path.read_bytes())
    # The first answer may still have the technology and the signal of the device before.
    status(responder)
    sees_all = status(responder) == fresh
    assert sees_all or "does not see their changes: " in run.stderr
    if name == "3g-old-sim":
        assert not sees_all


def test_loading_starts_the_service_anew_if_asked(server, make_responder):
    before = server.responder()
    server.status()
    sim(server, "load", "--restart", "3g-old-sim")
    assert server.responder() != before
    assert server.status() == answer_of(make_responder, server.device.path.read_bytes())


def test_only_the_service_of_the_device_is_started_anew(make_server):
    first, second = make_server("a").start(), make_server("b").start()
    before = first.responder(), second.responder()
    sim(first, "reset", "--restart")
    assert (first.responder() != before[0], second.responder()) == (True, before[1])


@pytest.mark.parametrize(
    ("arguments", "message"),
    [
        (("set", "sys.getSMSUnreadCnt", "1"), "did you mean sys.getSMSUnreadCount?"),
        (("set", "sys.getSMSUnreadCount", "many"), "expected a 32-bit integer"),
        (("set", "sys.getBatteryStatus.chargePercent", "1.5"), "expected a 32-bit integer"),
        (("fail", "getBateryStatus", "5"), "did you mean getBatteryStatus?"),
        (("heal", "sys.getBateryStatus"), "did you mean sys.getBatteryStatus?"),
        (("notify", "dataOf"), "did you mean dataOff?"),
        (("load", str(paths.SCENARIOS / "battery.json")), "found an unknown name"),
        (("play", str(paths.DEFAULT_DEVICE)), "expected an object with \"events\""),
    ],
)
def test_a_refusal_tells_why_and_writes_nothing(responder, arguments, message):
    before = responder.device.path.read_bytes(), responder.device.path.stat().st_ino
    assert message in sim(responder, *arguments, code=1)
    assert (responder.device.path.read_bytes(), responder.device.path.stat().st_ino) == before


def test_a_session_logs_its_caller_in_until_it_is_closed(responder):
    def login_status(cookie):
        answer = fastcgi.ask(
            responder.socket,
            {
                "REQUEST_METHOD": "GET",
                "REQUEST_URI": "/srv/nothing",
                "REMOTE_ADDR": "10.0.0.7",
                "HTTP_USER_AGENT": "me",
                "HTTP_COOKIE": cookie,
            },
        )
        return json.loads(answer.body)["loginStatus"]

    cookie = sim(responder, "session", "open", "--address", "10.0.0.7", "--user-agent", "me")
    other = sim(responder, "session", "open", "--address", "10.0.0.7", "--user-agent", "me")
    assert (login_status(cookie), login_status(other)) == (1, 1)
    sim(responder, "session", "close", cookie)
    assert (login_status(cookie), login_status(other)) == (0, 1)
    sim(responder, "session", "close", "--all")
    assert login_status(other) == 0


def test_a_thousand_changes_by_several_writers_lose_nothing(responder):
    """Each writer counts up its own entry while the service gets requests without pause."""
    writers = [
        "sys.getSMSUnreadCount",
        "sys.getCellularServiceStats.pci",
        "sys.getBatteryStatus.chargePercent",
        "webui.softwareUpdateStatus.value",
    ]
    seen = []

    def count(path):
        for number in range(1, 251):
            sim(responder, "set", path, str(number))
            seen.append(sim(responder, "show", path) == str(number))

    threads = [threading.Thread(target=count, args=(path,)) for path in writers]
    with Load(responder, callers=2) as load:
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
    assert len(seen) == 1000 and all(seen)
    document = responder.device.document()
    assert [value_at(document, path) for path in writers] == [250] * 4
    assert load.complete() == len(load.answers) > 0
    for answer in load.answers:
        assert answer.status == 200
        assert json.loads(answer.body)["statusData"]
    assert responder.log.count("[SIMULATOR]:[ERROR]") == 0


# What the document and the service contain in the end.
ENDS = {
    "battery": (
        {"sys.getBatteryStatus.chargePercent": 100, "sys.getBatteryStatus.chargingSource": "ac"},
        {"statusBarBatteryPercent": "100"},
    ),
    "commute": (
        {"sys.getCellularServiceStats.technology": "5g", "sys.getGPSStatus": "got_fix"},
        {"statusBarTechnology": "5G UWB", "statusBarSignalBars": "5"},
    ),
    "gentle": (
        {"sys.getCellularDataConnectionStats.bytesReceived1": 734003200 + 268435456},
        {"statusBarBatteryPercent": "84", "statusBarTechnology": "5G UWB"},
    ),
    "sim-swap": (
        {"sys.getSIMStatus": "ready", "sys.getAllSimSlotsInfo.slots[0].networkName": "Velta Mobil"},
        {"statusBarNetwork": "Velta Mobil", "statusBarSimStatus": "Ready"},
    ),
    "update": (
        {
            "webui.softwareUpdateStatus.status": 10,
            "webui.softwareUpdateStatus.version": "2.16.0",
        },
        {},
    ),
}


def test_each_shipped_scenario_has_an_expected_end():
    assert sorted(path.stem for path in paths.SCENARIOS.glob("*.json")) == sorted(ENDS)


@pytest.mark.parametrize("name", ENDS)
def test_a_shipped_scenario_plays_through(responder, name):
    """The service never sees a document that it cannot use."""
    document, shown = ENDS[name]
    with Load(responder, callers=1) as load:
        wait_until(lambda: load.answers, "an answer before")
        sim(responder, "play", "--speed", "1000000", str(paths.SCENARIOS / f"{name}.json"))
    end = responder.device.document()
    assert {path: value_at(end, path) for path in document} == document
    answer = status(responder)
    assert {key: answer[key] for key in shown} == shown
    assert all(answer.complete and json.loads(answer.body)["statusData"] for answer in load.answers)
    assert responder.log.count("[SIMULATOR]:[ERROR]") == 0
    assert [path for path in responder.work.iterdir() if path.name.startswith(".")] == []


def start(responder, *arguments, **streams):
    return subprocess.Popen(
        [str(paths.SIM), "play", *arguments],
        env={**paths.CLEAN_ENVIRONMENT, **responder.environment},
        start_new_session=True,
        **streams,
    )


@pytest.mark.parametrize("signo", [signal.SIGINT, signal.SIGTERM])
def test_a_player_that_loops_ends_cleanly_at_a_signal(responder, signo):
    player = start(
        responder, "--loop", "--speed", "1000000", str(paths.SCENARIOS / "battery.json"),
        stderr=subprocess.DEVNULL,
    )
    wait_until(
        lambda: responder.device.get("getBatteryStatus")["chargingSource"] == "ac", "the charger is in"
    )
    wait_until(
        lambda: responder.device.get("getBatteryStatus")["chargingSource"] == "none", "the next round"
    )
    player.send_signal(signo)
    assert player.wait(20) == 0
    assert status(responder)
    assert [path for path in responder.work.iterdir() if path.name.startswith(".")] == []


def test_a_player_waits_and_shows_the_time_on_a_terminal(responder, work):
    scenario = work / "wait.json"
    scenario.write_text('{"events": [{"at": 0, "say": "now"}, {"at": 1000, "say": "later"}]}')
    terminal, theirs = pty.openpty()
    player = start(responder, str(scenario), stderr=theirs)
    os.close(theirs)
    shown = ""
    while "of 1000.0 s" not in shown.partition("now")[2]:
        shown += os.read(terminal, 4096).decode()
    player.send_signal(signal.SIGINT)
    assert player.wait(20) == 0
    assert "later" not in shown
    os.close(terminal)


# Calls the completion as bash does when the tab key is pressed at the end of the words.
COMPLETE = """
source "$1"
shift
COMP_WORDS=("$@")
COMP_CWORD=$(($# - 1))
_kestal_sim "$1" "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
printf '%s\\n' "${COMPREPLY[@]}"
"""


@pytest.mark.parametrize(
    ("words", "expected"),
    [
        (["sh"], ["show"]),
        (["--v"], ["--version"]),
        (["se"], ["set", "session"]),
        (["load", "roa"], ["roaming"]),
        (["play", "comm"], ["commute"]),
        (["reset", ""], ["--restart", "--help"]),
        (["session", ""], ["open", "renew", "close", "list", "--help"]),
        (["session", "open", "--u"], ["--user-agent"]),
        (["session", "close", "--"], ["--all", "--help"]),
        (
            ["set", "sys.getBatteryStatus.charging"],
            ["sys.getBatteryStatus.chargingState", "sys.getBatteryStatus.chargingSource"],
        ),
        (["--device", "{device}", "fail", "sys.getGPSS"], ["sys.getGPSStatus"]),
        (["notify", "PCO"], ["PCO3", "PCO5"]),
        (["notify", "PCO3", "--severity", "w"], ["warning"]),
        (["play", "--sp"], ["--speed"]),
        (["play", str(paths.SCENARIOS) + "/com"], [str(paths.SCENARIOS / "commute.json")]),
        (["play", "--nothing"], [""]),
    ],
)
def test_bash_completes_it(make_responder, words, expected):
    responder = make_responder()
    assert completed(responder, words) == expected


def completed(responder, words):
    words = [word.format(device=responder.device.path) for word in words]
    done = subprocess.run(
        ["/bin/bash", "--norc", "-c", COMPLETE, "driver",
         str(paths.ROOT / "tools" / "completion" / "kestal-sim.bash"), str(paths.SIM), *words],
        env={**paths.CLEAN_ENVIRONMENT, **responder.environment},
        capture_output=True,
        text=True,
        timeout=20,
    )
    assert (done.returncode, done.stderr) == (0, "")
    return done.stdout.split("\n")[:-1]


def test_completion_runs_nothing_that_a_document_says(responder, work):
    """Names of channels may contain any text, which the completion must not run."""
    ran = work / "ran"
    document = responder.device.document()
    document["msgbus"] = {f"x$(touch {ran})": {"bytes": "00"}, "y`touch z`": {"bytes": "00"}}
    responder.device.path.write_text(json.dumps(document))
    name = f"msgbus.x\\$\\(touch\\ {ran}\\)"
    assert completed(responder, ["show", "msgbus.x"]) == [name, name + ".bytes"]
    assert completed(responder, ["set", "msgbus.x\\$"]) == [name, name + ".bytes"]
    assert completed(responder, ["set", "msgbus.y"])[0] == "msgbus.y\\`touch\\ z\\`"
    assert not ran.exists()
    assert not (work / "z").exists() and not os.path.exists("z")


def test_completion_quotes_positions_of_lists(responder):
    name = "sys.getAllSimSlotsInfo.slots\\[0\\]"
    for typed in ("sys.getAllSimSlotsInfo.slots[0", "sys.getAllSimSlotsInfo.slots\\[0"):
        assert completed(responder, ["show", typed])[0] == name
