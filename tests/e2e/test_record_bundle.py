"""A bundle is one file for the report of an error."""

import json
import os

import pytest

from support import paths
from support.recorder import IMSI, MAC, NUMBER, SIM_RECORD, Recorder, call, values, write
from support.sessions import open_session


def test_a_log_that_cannot_be_read_is_told_before_the_recording(work):
    environment = {**write(work, paths.DEFAULT_DEVICE.read_bytes()), "KESTAL_LOG": str(work / "none.log")}
    said = call(SIM_RECORD, work / "a.json", "--bundle", "--for", "1000s", environment=environment, code=1)
    assert said == f"kestal-sim: {work}/none.log: No such file or directory\n"


def test_a_bundle_is_one_file_for_a_report(work):
    log = work / "kestal.log"
    lines = [f"line {number}" for number in range(300)]
    lines[-1] = f"sms from {NUMBER}, SIM {IMSI}, client {MAC} 192.168.8.23 at 12:00:00.123Z"
    log.write_bytes("\n".join(lines).encode() + b"\xff\n")
    original = json.loads(paths.DEFAULT_DEVICE.read_bytes())
    original["sys"]["getSubscriberInfo"]["identity"] = IMSI
    environment = write(work, json.dumps(original).encode())
    for options in (["--log", str(log)], []):
        file = work / "report.json"
        call(SIM_RECORD, file, "--force", "--bundle", *options, environment={**environment, "KESTAL_LOG": str(log)})
        report = json.loads(file.read_text())
        assert list(report) == ["recorded", "versions", "identities", "device", "sources", "log"]
        assert report["sources"] == "no sources: the simulator binding has none"
        assert list(report["versions"]) == ["kestal", "binding", "system", "kernel"]
        assert report["versions"]["binding"] == "simulator"
        assert os.uname().nodename not in json.dumps(report["versions"])
        assert len(report["log"]) == 200 and report["log"][:2] == ["line 100", "line 101"]
        assert report["log"][-1] == ("sms from +5 550 000-0001, SIM 001010000000001, client 02:00:5E:00:00:01 "
                                     "100.100.0.11 at 12:00:00.123Z\ufffd")
    device = work / "device.json"
    device.write_text(json.dumps(report["device"]))
    assert values(work, device)["sys"]["getSubscriberInfo"]["identity"] == "001010000000001"
    file = work / "report.json"
    options = ["--bundle", "--keep-identities", "--for", "200ms", "--log", str(log)]
    call(SIM_RECORD, file, "--force", *options, environment=environment)
    report = json.loads(file.read_text())
    assert NUMBER in report["log"][-1] and report["identities"] == "kept"
    assert report["scenario"]["duration"] == 0.2
    assert not (work / "report-scenario.json").exists()


def test_a_bundle_hands_no_session_on(make_responder, work):
    responder = make_responder().start()
    identifier = open_session(responder).partition("=")[2]
    responder.ask(HTTP_COOKIE=f"torusess={identifier}", HTTP_USER_AGENT="test")
    responder.log.wait_for(f"sessionId {identifier}")
    file = work / "report.json"
    call(SIM_RECORD, file, "--bundle", "--log", str(responder.log.path), environment=responder.environment)
    lines = [line for line in json.loads(file.read_text())["log"] if "sessionId" in line]
    assert len(lines) > 0 and identifier not in file.read_text()


@pytest.mark.parametrize(
    ("journal", "said"),
    [
        ("#!/bin/sh\nexit 0\n", "no log: the journal has nothing of kestal; --log names a file"),
        ("#!/bin/sh\nexit 1\n", "no log: journalctl has failed; --log names a file"),
        (None, "no log: journalctl has failed; --log names a file"),
        ("#!/bin/sh\necho one; echo two\n", ["one", "two"]),
    ],
)
def test_a_bundle_says_why_it_has_no_log(work, journal, said):
    if journal:
        (work / "journalctl").write_text(journal)
        (work / "journalctl").chmod(0o755)
    environment = {**write(work, paths.DEFAULT_DEVICE.read_bytes()), "PATH": str(work)}
    call(SIM_RECORD, work / "report.json", "--bundle", environment=environment)
    assert json.loads((work / "report.json").read_text())["log"] == said


def test_a_log_that_vanishes_does_not_cost_the_recording(work):
    log = work / "kestal.log"
    log.write_text("line\n")
    recorder = Recorder(work, "--for", "1000s", "--bundle", "--log", str(log))
    log.unlink()
    assert recorder.stop() == (0, "")
    assert json.loads(recorder.file.read_text())["log"] == f"no log: {log}: No such file or directory"
