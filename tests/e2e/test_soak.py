"""Thousands of mixed requests while the device changes: every answer is right, and no resource use grows."""

import json
import os
import pathlib
import signal
import subprocess
import sys

import pytest

from support import paths
from support.memory import Memory
from support.program import service_with

SOAK = paths.ROOT / "tests" / "soak" / "soak.py"
LEAK = pathlib.Path(os.environ.get("KESTAL_LEAK", paths.BUILD / "tests" / "soak" / "libkestal_leak.so"))
# Smallest growth that the soak must notice in a service that leaks 300 bytes with each request.
LEAST_SEEN = 250_000


def soak(work, *options, **environment):
    file = work / "report.json"
    run = subprocess.Popen(
        [sys.executable, str(SOAK), "--json", str(file), *options],
        env={**os.environ, **environment},
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        text=True,
    )
    try:
        output, _ = run.communicate(timeout=200)
    except subprocess.TimeoutExpired:
        # On this signal, the soak ends its clients, the web server and the service.
        run.send_signal(signal.SIGINT)
        output, _ = run.communicate(timeout=60)
    assert file.exists(), output
    report = json.loads(file.read_text())
    assert run.returncode == (0 if report["good"] else 1)
    return report


@pytest.fixture
def leaking(work):
    """A service that leaks 300 bytes with each request."""
    return {"KESTAL_SOAK_RESPONDER": str(service_with(work / "leaking", LD_PRELOAD=LEAK))}


def count_blocks(work, *libraries, options=(), **variables):
    """A soak with a device that does not change, because the C library would keep memory for each text that
    appears for the first time. Memory pages are not judged: after so short a warm-up, the web server may
    still need more."""
    memory = Memory(work)
    program = memory.program(*libraries, **variables)
    return soak(
        work, "--requests", "2000", "--warm-up", "300", "--changes", "0", "--tolerance", "1000", *options,
        KESTAL_SOAK_RESPONDER=str(program), KESTAL_SOAK_MEMORY=str(memory.path),
    )


@pytest.mark.skipif(bool(paths.SANITIZERS), reason="sanitizers replace malloc")
def test_thousands_of_requests_leave_not_one_block_of_memory_behind(work):
    report = count_blocks(work)
    assert report["failures"] == []
    assert report["requests"] == 2000
    assert report["newBlocks"] == 0


@pytest.mark.skipif(bool(paths.SANITIZERS), reason="sanitizers replace malloc")
def test_a_leak_in_few_requests_is_noticed(work):
    report = count_blocks(work, str(LEAK), KESTAL_LEAK_EVERY="500")
    assert report["errors"] == 0
    assert 0 < report["newBlocks"] < 20
    assert report["failures"] == [f"service: holds {report['newBlocks']} more blocks of memory"]


LONG = ("--long", "--legs", "5", "--web-servers")
OF_REQUESTS, OF_SERVERS = "million requests", "hundred killed web servers"


def blocks(report, per):
    """How many blocks the service held again and again during a long soak."""
    return [count for _, count in report["series"][per]["service: blocks of memory"]["samples"]]


@pytest.mark.skipif(bool(paths.SANITIZERS), reason="sanitizers replace malloc")
def test_neither_requests_nor_killed_web_servers_leave_blocks_of_memory_behind(work):
    report = count_blocks(work, options=(*LONG, "3"))
    assert [failure for failure in report["failures"] if not failure.startswith("grows: ")] == []
    assert report["requests"] >= 2000 + 3 * 500
    assert report["killedWebServers"] == 3
    for per, samples in ((OF_REQUESTS, 5), (OF_SERVERS, 3)):
        assert len(blocks(report, per)) == samples
        assert len(set(blocks(report, per))) == 1
        assert {count for _, count in report["series"][per]["processes"]["samples"]} == {2}


@pytest.mark.skipif(bool(paths.SANITIZERS), reason="sanitizers replace malloc")
def test_a_leak_in_few_requests_is_noticed_by_a_long_soak(work):
    report = count_blocks(work, str(LEAK), options=(*LONG, "0"), KESTAL_LEAK_EVERY="50")
    held = blocks(report, OF_REQUESTS)
    assert held == sorted(set(held))
    assert [failure for failure in report["failures"] if failure.startswith("grows: service: blocks of memory")]


@pytest.mark.skipif(bool(paths.SANITIZERS), reason="sanitizers do not reuse freed memory")
def test_thousands_of_requests_are_answered_and_leave_nothing_behind(work):
    report = soak(work, "--requests", "3000", "--warm-up", "500", "--changes", "0.005")
    assert report["failures"] == []
    assert report["requests"] == 3000
    assert report["errors"] == 0
    assert not report["restarted"]
    for process in report["processes"].values():
        assert process["bytesPerThousandRequests"] <= process["limit"]
        assert process["start"]["descriptors"] == process["end"]["descriptors"]
        assert process["start"]["threads"] == process["end"]["threads"]


@pytest.mark.skipif(bool(paths.SANITIZERS), reason="no library can be preloaded before the sanitizers")
def test_a_leak_of_300_bytes_per_request_is_noticed(work, leaking):
    report = soak(work, "--requests", "1500", "--warm-up", "300", "--changes", "0.005", **leaking)
    service = report["processes"]["service"]
    assert report["errors"] == 0
    assert service["bytesPerThousandRequests"] > LEAST_SEEN > service["limit"]
    assert [failure for failure in report["failures"] if failure.startswith("service: grows by ")]
    assert not report["good"]


def test_a_wrong_answer_is_noticed(work):
    """A service that answers every request wrongly."""
    program = work / "wrong"
    program.write_text(
        "#!/usr/bin/python3\n"
        "import os, socket, sys\n"
        f"sys.path.insert(0, {str(paths.ROOT / 'tests' / 'e2e')!r})\n"
        "from support import fastcgi\n"
        "with open('/proc/self/comm', 'w') as name:\n"
        "    name.write('kestal.cgi')\n"
        "listener = socket.socket(fileno=0)\n"
        "while True:\n"
        "    try:\n"
        "        with listener.accept()[0] as connection:\n"
        "            connection.recv(65536)\n"
        "            body = b'Content-Type: application/json\\r\\n\\r\\n{\"loginStatus\":0'\n"
        "            connection.sendall(fastcgi.stream(fastcgi.STDOUT, body)\n"
        "                               + fastcgi.record(fastcgi.END_REQUEST, bytes(8)))\n"
        "    except OSError:\n"
        "        pass\n"
    )
    program.chmod(0o755)
    report = soak(
        work, "--requests", "200", "--warm-up", "10", "--changes", "0.001", KESTAL_SOAK_RESPONDER=str(program)
    )
    assert not report["good"]
    assert report["errors"] > 100
    assert any("status: no JSON" in failure for failure in report["failures"])


def test_a_service_that_is_killed_under_load_is_back_soon_and_answers_the_same(work):
    report = soak(work, "--kill", "2", "--outage", "20")
    assert report["failures"] == []
    assert len(report["kills"]) == 2
    assert report["answers"] > 200


def test_a_long_outage_is_noticed(work):
    """A service that starts at once only the first time. While it starts later, the web server lets requests
    wait, or refuses them."""
    program = work / "slow"
    program.write_text(
        f'#!/bin/sh\n[ ! -e "{work}/started" ] || sleep 3\n: > "{work}/started"\nexec "{paths.SERVICE}"\n'
    )
    program.chmod(0o755)
    report = soak(work, "--kill", "1", "--outage", "1", KESTAL_SOAK_RESPONDER=str(program))
    assert report["failures"] != []
    assert not report["good"]
