"""The device's file is damaged, removed or replaced while the service runs."""

import contextlib
import json
import multiprocessing
import os
import time

import pytest

from support import fastcgi


def percent(responder):
    answer = responder.ask()
    assert answer.complete and answer.status == 200
    return json.loads(answer.body)["statusData"]["statusBarBatteryPercent"]


def set_percent(responder, value):
    battery = responder.device.get("getBatteryStatus") | {"chargePercent": value}
    responder.device.set(getBatteryStatus=battery)


def changed(responder, change):
    """The document as text, after change(document)."""
    document = responder.device.document()
    change(document["sys"])
    return json.dumps(document, indent=2).encode()


def line_of(text, key):
    return next(number for number, line in enumerate(text.split(b"\n"), 1) if key in line)


DAMAGED = {
    "empty": b"",
    "blank": b" \n\t\n",
    "truncated": b'{"sys": {"getBatteryStatus": {"chargePercent": 8',
    "binary": bytes(range(256)) * 16,
    "a list": b"[]",
    "a number": b"1",
    "no JSON": b"device",
    "deeply nested": b"[" * 100_000,
    "sys of another type": b'{"sys": 7}',
    "a call named twice": b'{"sys": {"getSIMStatus": 1, "getSIMStatus": 2}}',
}


@pytest.mark.parametrize("contents", DAMAGED.values(), ids=DAMAGED.keys())
def test_a_damaged_document_leaves_the_last_good_device_in_force(responder, contents):
    set_percent(responder, 55)
    assert percent(responder) == "55"
    whole = responder.device.path.read_bytes()

    responder.device.write(contents)
    assert percent(responder) == "55"
    responder.log.wait_for(f"[SIMULATOR]:[ERROR] - {responder.device.path}")

    responder.device.write(whole)
    set_percent(responder, 56)
    assert percent(responder) == "56"


WRONG = {
    "a text for a number": ("getSMSUnreadCount", "many"),
    "a number for a record": ("getBatteryStatus", 84),
    "a fraction": ("getSMSUnreadCount", 1.5),
    "beyond 32 bits": ("getSMSUnreadCount", 2**31),
    "below 32 bits": ("getSMSUnreadCount", -(2**31) - 1),
    "beyond 64 bits": ("getSMSUnreadCount", 2**70),
    "negative where there is no sign": ("getWiFiMaxClients", -1),
    "a list for a number": ("getGPSStatus", [2]),
    "null": ("getGPSStatus", None),
    "a failure that is not a number": ("getGPSStatus", {"error": "x"}),
    "an operator name that is too long": ("getCellularServiceStats", {"networkName": "n" * 65}),
    "a list of something else": ("getConnectedDeviceList", [1]),
}


@pytest.mark.parametrize(("call", "value"), WRONG.values(), ids=WRONG.keys())
def test_a_wrong_value_is_reported_with_file_line_and_key(responder, call, value):
    set_percent(responder, 55)
    assert percent(responder) == "55"
    text = changed(responder, lambda calls: calls.update({call: value}))
    responder.device.write(text)
    assert percent(responder) == "55"
    told = [line for line in responder.log.messages() if line.startswith("[SIMULATOR]:[ERROR]")]
    assert len(told) == 1
    assert str(responder.device.path) in told[0] and f"sys.{call}" in told[0]
    line = line_of(text, b'"%s"' % call.encode())
    numbers = [int(part) for part in told[0].split(":") if part.isdigit()]
    assert numbers and line <= numbers[0] <= line + 2


def test_an_error_in_the_document_is_logged_once_and_not_with_every_request(responder):
    percent(responder)
    responder.device.write(b"{")
    for _ in range(5):
        percent(responder)
    assert responder.log.count("[SIMULATOR]:[ERROR]") == 1


@pytest.mark.parametrize("contents", [b"", b"{}", b'{"sys": {}}', b"{", None])
def test_a_service_started_without_a_usable_device_says_so_and_recovers(make_responder, contents):
    responder = make_responder()
    whole = responder.device.path.read_bytes()
    if contents is None:
        responder.device.path.unlink()
    else:
        responder.device.write(contents)
    responder.start()
    answer = responder.ask()
    assert (answer.status, answer.body) == (501, b"WebUI feature disabled")

    responder.device.write(whole)
    assert responder.ask().status == 200


def test_a_vanished_document_leaves_the_last_good_device_in_force(responder):
    whole = responder.device.path.read_bytes()
    set_percent(responder, 55)
    assert percent(responder) == "55"
    responder.device.path.unlink()
    assert percent(responder) == "55"
    assert responder.ask("/srv/connect").body == b'{"loginStatus":0}'
    assert not responder.device.path.exists()
    responder.log.wait_for("PerformConnectAction(const string&) -system interface API failed")

    responder.device.write(whole)
    assert percent(responder) == "84"


def test_a_folder_or_pipe_in_place_of_the_document_leaves_the_last_good_device_in_force(responder):
    percent(responder)
    responder.device.path.unlink()
    responder.device.path.mkdir()
    assert percent(responder) == "84"
    responder.device.path.rmdir()
    os.mkfifo(responder.device.path)
    assert percent(responder) == "84"


def test_a_document_written_in_place_is_read_like_a_replaced_one(responder):
    for value in (1, 2, 3):
        document = responder.device.document()
        document["sys"]["getBatteryStatus"]["chargePercent"] = value
        responder.device.path.write_text(json.dumps(document))
        assert percent(responder) == str(value)


def test_an_action_changes_only_the_bytes_of_the_status(responder):
    text = responder.device.path.read_text().replace('"sys"', '\n\n   "sys"', 1)
    responder.device.path.write_text(text)
    responder.ask("/srv/disconnect")
    name = '"getCellularDataConnectionStatus": '
    assert name + '"connected"' in text
    assert responder.device.path.read_text() == text.replace(name + '"connected"', name + '"ready"')


def test_an_action_does_not_repair_a_damaged_document(responder):
    percent(responder)
    responder.device.write(b'{"sys": {')
    responder.ask("/srv/connect")
    assert responder.device.path.read_bytes() == b'{"sys": {'


def test_services_that_share_a_device_lose_no_action(make_responder):
    """Two writers replace the document hundreds of times; it must be complete at every moment."""
    first, second = make_responder("a"), make_responder("b")
    second.environment["KESTAL_DEVICE"] = str(first.device.path)
    first.start()
    second.start()
    for _ in range(50):
        connections = [(fastcgi.Connection(peer.socket), uri) for peer, uri in
                       ((first, "/srv/connect"), (second, "/srv/disconnect"))]
        for connection, uri in connections:
            connection.send(fastcgi.request({**fastcgi.STATUS, "REQUEST_URI": uri}))
        for connection, _ in connections:
            assert connection.receive().body == b'{"loginStatus":0}'
            connection.socket.close()
        assert first.device.get("getCellularDataConnectionStatus") in ("ready", "connected")
    for log in (first.log, second.log):
        assert log.count("[ERROR]") == 0


def marked(document, number):
    """Puts the device into a state that is visible in several places of an answer."""
    calls = document["sys"]
    calls["getBatteryStatus"]["chargePercent"] = number
    calls["getSMSUnreadCount"] = number
    calls["getCellularServiceStats"]["networkName"] = f"Network {number}"
    return json.dumps(document).encode()


def marks(answer):
    assert answer.complete and answer.status == 200
    status = json.loads(answer.body)["statusData"]
    return {
        str(status["statusBarBatteryPercent"]),
        str(status["statusBarSmsUnreadCount"]),
        status["statusBarNetwork"].removeprefix("Network "),
    }


def write_again_and_again(path, states, ended, count, torn):
    """A writer in a process of its own. A torn document is cut off somewhere; the next state is complete
    again."""
    new = path.with_name(f"{path.name}.{os.getpid()}")
    number = 0
    while not ended.value:
        state = states[number % len(states)]
        if torn:
            path.write_bytes(state[: 1 + number * 97 % (len(state) - 2)])
        new.write_bytes(state)
        os.replace(new, path)
        number += 1
        count.value += 1


@contextlib.contextmanager
def writers(device, states, torn=False):
    """Yields a function that returns how often the document has been replaced."""
    ended = multiprocessing.RawValue("b", 0)
    counts = [multiprocessing.RawValue("L", 0) for _ in states]
    processes = [
        multiprocessing.Process(target=write_again_and_again, args=(device.path, mine, ended, count, torn))
        for mine, count in zip(states, counts)
    ]
    for process in processes:
        process.start()
    try:
        yield lambda: [count.value for count in counts]
    finally:
        ended.value = 1
        for process in processes:
            process.join()


def states_seen(responder, replaced, least, enough):
    """Sends requests and checks that each answer shows a single state. Ends when enough() holds, more than
    three states have been seen, and the document was replaced often enough during each of 200 requests."""
    end = time.monotonic() + 200
    seen = set()
    requests = disturbed = 0
    while disturbed < 200 or len(seen) <= 3 or not enough():
        assert time.monotonic() < end, f"{requests} requests, {disturbed} disturbed ones, {len(seen)} states"
        before = sum(replaced())
        found = marks(responder.ask())
        disturbed += sum(replaced()) - before >= least
        assert len(found) == 1, found
        seen |= found
        requests += 1
    print(f"{requests} requests, {disturbed} of them with {least} replacements and more")
    return seen


def test_each_answer_shows_one_state_while_several_writers_replace_the_document(responder):
    documents = [[marked(responder.device.document(), 10 * writer + i) for i in range(10)] for writer in range(1, 4)]
    responder.device.write(documents[0][0])
    with writers(responder.device, documents) as replaced:
        begin = time.monotonic()
        seen = states_seen(responder, replaced, 5, lambda: min(replaced()) >= 300)
        # Only for information: the speed depends on the machine.
        print(f"{sum(replaced()) / (time.monotonic() - begin):.0f} replacements a second")
    assert seen <= {str(number) for number in range(10, 40)}
    assert responder.log.count("[ERROR]") == 0


def test_incomplete_documents_leave_the_last_complete_one_in_force(responder):
    documents = [[marked(responder.device.document(), number) for number in range(10, 40)]]
    responder.device.write(documents[0][0])
    assert marks(responder.ask()) == {"10"}
    with writers(responder.device, documents, torn=True) as replaced:
        seen = states_seen(
            responder,
            replaced,
            1,
            lambda: min(replaced()) >= 300 and "[SIMULATOR]:[ERROR]" in responder.log.text(),
        )
    assert seen <= {str(number) for number in range(10, 40)}
    errors = [line for line in responder.log.messages() if "[ERROR]" in line]
    assert all(line.startswith(f"[SIMULATOR]:[ERROR] - {responder.device.path}") for line in errors)
    responder.device.write(documents[0][5])
    assert marks(responder.ask()) == {"15"}
