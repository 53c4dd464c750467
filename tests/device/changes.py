#!/usr/bin/python3
"""Changes what the box remembers, without a pause until its power goes: the owner's settings, which messages have been
read, and whether data is on. Runs on the box; the tests know from it what a change leaves.

usage: changes.py PORT PAGE     PORT is told each change that has been made
"""

import itertools
import json
import os
import pathlib
import socket
import subprocess
import sys
import threading
import time
import urllib.request

SETTINGS = "/etc/kestal/device.json"
READ_MESSAGES = "/var/lib/private/kestal/read-messages"
REPORT = "/run/changes.report"
KINDS = ("settings", "messages", "data")
# After each order, what the page shows when it has been carried out.
ORDERS = {"disconnect": "Ready", "connect": "Connected"}
# Seconds.
PAUSE = 0.1
PATIENCE = 30


def charge(number):
    """The percentage that the settings of this number tell of the battery."""
    return number % 101


def settings(original, number):
    """The owner's settings with a value at the beginning and one at the end that belong together."""
    battery = {"chargePercent": charge(number), "chargingState": 1, "detection": "present", "chargingSource": "usb"}
    address = {"address": f"/messages/{number}", "titleId": "webui_sms_title"}
    changed = {
        "sys": {"getBatteryStatus": battery, **original["sys"]},
        **{name: value for name, value in original.items() if name not in ("sys", "webui")},
        "webui": {**original["webui"], "uriData": {**original["webui"]["uriData"], "sms": address}},
    }
    # Larger than a block of the disk.
    return json.dumps(changed, indent=24) + "\n"


def key(number):
    """The line by which it is remembered that a message has been read."""
    return f"{number:064x}\n"


def change_settings(original):
    """As a careful editor does it."""
    path = pathlib.Path(SETTINGS)
    new = path.with_suffix(".new")
    folder = os.open(path.parent, os.O_RDONLY)
    for number in itertools.count(1):
        with new.open("w") as file:
            file.write(settings(original, number))
            file.flush()
            os.fsync(file.fileno())
        new.rename(path)
        os.fsync(folder)
        yield number


def read_messages():
    """By the box's own program, which gets its list here: the modem has not as many messages."""
    pathlib.Path(REPORT).unlink(missing_ok=True)
    listener = socket.socket(socket.AF_UNIX)
    listener.bind(REPORT)
    listener.listen()
    for number in itertools.count(1):
        program = subprocess.Popen(["kestal-messages", "--socket", REPORT, "read", "unread"],
                                   stdout=subprocess.DEVNULL)
        message = {"key": key(number).strip(), "sender": "+1", "time": "", "text": "Hello", "read": False}
        with listener.accept()[0] as connection:
            connection.sendall(json.dumps([{"name": "messages", "said": [message]}]).encode())
        assert program.wait() == 0
        yield number


def switch_data(page):
    """As the page does it."""
    def ask(path, data=None):
        request = urllib.request.Request(page + path, data=data, headers={"Origin": page})
        with urllib.request.urlopen(request, timeout=60) as answer:
            return json.load(answer)

    def shows(state):
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            if ask("/srv/status")["statusData"]["statusBarConnectionState"] == state:
                return True
            time.sleep(PAUSE)
        return False

    for number, (order, state) in enumerate(itertools.cycle(ORDERS.items()), 1):
        reached = False
        while not reached:
            assert ask(f"/srv/{order}", b"") == {"loginStatus": 0}
            # The network may refuse, as when the box has stood still meanwhile. Users try it again, too.
            reached = shows(state)
        yield number


def main(port, page):
    told = os.open(port, os.O_WRONLY)
    original = json.loads(pathlib.Path(SETTINGS).read_text())

    def go_on(kind, changes):
        for number in changes:
            os.write(told, f"{kind} {number}\n".encode())

    makers = (change_settings(original), read_messages(), switch_data(page))
    for maker in zip(KINDS, makers):
        threading.Thread(target=go_on, args=maker).start()


if __name__ == "__main__":
    main(*sys.argv[1:])
