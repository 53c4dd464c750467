"""Recording a device, and playing what has been recorded."""

import json
import os
import re
import signal
import stat
import subprocess

from support import paths, processes
from support.waiting import wait_until

RECORDER = paths.SIM.with_name("kestal-record")
SIM_RECORD = (str(paths.SIM), "record")
NOTIFICATIONS = "zelt.ans.notifications"
STOPPING = (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)
# Texts of the device that hold identities, and values that are at the ends of what there can be.
IMSI = "310480123456789"
NUMBER = "+1 555 867-5309"
MAC = "a4:83:e7:12:9F:0b"
ODD = {
    "sys": {
        "getSubscriberInfo": {"identity": IMSI},
        "getSIMStatus": -3,
        "getGPSStatus": 99,
        "getSMSUnreadCount": 2**31 - 1,
        "getActiveSimSlot": -(2**31),
        "getWiFiMaxClients": 2**32 - 1,
        "getCellularServiceStats": {
            "technology": 77,
            "roaming": 9,
            "networkName": {"bytes": "4f7276c3a9ff20fe"},
            "networkId": {"bytes": "31" * 99},
        },
        "getAllSimSlotsInfo": {"count": 7, "slots": [{"networkName": "a\"b\\\u0007\u00e9"}, {"active": 2**31 - 1}]},
        "getGpioPin1CustomSettings": {"name": {"bytes": "ff" * 64}, "lowState": " ", "highState": "\U0001f4f6"},
        "getSIMCarrierGID": {"0": [], "1": list(range(255))},
        "getConnectedDeviceList": [{"connectionKind": 12345}, {"connectionKind": "guest_wifi"}],
        "getBatteryStatus": {"error": -(2**31)},
    },
    "webui": {
        "commonConfigurations": {
            "ShowRoamingIndicator": {"bytes": "31ff"},
            "WifiSSID": "Anna's Wi-Fi",
            "WifiPassword": "correct horse",
            "SSIDBroadcast": "1",
        },
        "softwareUpdateStatus": {"status": 5, "version": "1.2.3.4"},
        "softwareUpdateCustomMsgs": {
            "en_US": {"description": f"Call {NUMBER} for Anna's Wi-Fi ({IMSI}, {MAC}). "}
        },
    },
    "msgbus": {
        NOTIFICATIONS: [
            {"id": "softwareUpdate", "category": "software", "severity": 77,
             "textId": "notification_software_update_text"},
            {"id": {"bytes": "ff" * 30}, "titleId": f"From {MAC.upper()}", "textId": f"Call {NUMBER} now"},
            {"id": "gpioPin1StateChangeToHigh", "active": False},
        ]
    },
}


def call(program, file, *arguments, environment=None, code=0):
    """Records; returns what is said."""
    run = subprocess.run(
        [*program, *arguments, str(file)],
        env={**paths.CLEAN_ENVIRONMENT, **(environment or {})},
        capture_output=True,
        text=True,
        timeout=120,
    )
    assert run.returncode == code, run.stderr
    assert run.stdout == ""
    return run.stderr


def answers(make_responder, name, document):
    """What a fresh service answers, byte for byte: the first answers may differ from later ones."""
    responder = make_responder(name)
    responder.device.write(document)
    responder.start()
    bodies = [responder.ask(f"/srv/{each}").body for each in ("status", "status", "notification", "status")]
    responder.stop()
    return bodies


def mode(file):
    return stat.S_IMODE(file.stat().st_mode)


def write(work, document):
    device = work / "original.json"
    device.write_bytes(document)
    return {"KESTAL_DEVICE": str(device)}


def bytes_read(process):
    with open(f"/proc/{process.pid}/io") as counters:
        return int(re.search(r"rchar: (\d+)", counters.read())[1])


def has_signal(process, field, signo):
    return bool(int(processes.field(process.pid, field), 16) >> (signo - 1) & 1)


def catches(process, signo):
    return has_signal(process, "SigCgt", signo)


class Recorder:
    """A recording that is under way."""

    def __init__(self, work, *options, document=None, ignored=None):
        self.device = work / "device.json"
        self.device.write_text(json.dumps(document) if document else paths.DEFAULT_DEVICE.read_text())
        self.file = work / "afternoon.json"
        self.scenario = work / "afternoon-scenario.json"
        self.environment = {**paths.CLEAN_ENVIRONMENT, "KESTAL_DEVICE": str(self.device)}
        self.process = subprocess.Popen(
            [*SIM_RECORD, "--every", "100ms", *options, str(self.file)],
            env=self.environment,
            stderr=subprocess.PIPE,
            text=True,
            # A shell in the background lets its programs ignore SIGINT.
            preexec_fn=lambda: [signal.signal(each, signal.SIG_IGN if each == ignored else signal.SIG_DFL)
                                for each in STOPPING],
        )
        # Before that, the program itself is being read.
        wait_until(lambda: catches(self.process, signal.SIGINT), "the recording has begun")
        self._wait_for_look()

    def _wait_for_look(self):
        """Waits until it has read the document as it is now."""
        before = bytes_read(self.process)
        # It reads a file that has not changed only for some time.
        os.utime(self.device)
        size = self.device.stat().st_size
        wait_until(lambda: self.process.poll() is not None or bytes_read(self.process) >= before + size,
                   "the recorder has read the device, or has ended")

    def write(self, document):
        temporary = self.device.with_name("temporary.json")
        temporary.write_text(json.dumps(document))
        temporary.rename(self.device)
        self._wait_for_look()

    def sim(self, *arguments):
        subprocess.run([str(paths.SIM), *arguments], env=self.environment, check=True, timeout=60)
        self._wait_for_look()

    def stop(self, signo=signal.SIGINT):
        self.process.send_signal(signo)
        said = self.process.communicate(timeout=60)[1]
        return self.process.returncode, said


def values(work, device):
    """All that a device answers."""
    file = work / "values.json"
    call(SIM_RECORD, file, "--force", "--keep-identities", environment={"KESTAL_DEVICE": str(device)})
    return json.loads(file.read_bytes())


def play(device, scenario):
    subprocess.run(
        [str(paths.SIM), "--device", device, "play", "--quiet", "--speed", "10000", scenario],
        env=paths.CLEAN_ENVIRONMENT,
        check=True,
        timeout=60,
    )
