"""Measures each operation through lighttpd, and for comparison simpler responders and a static file."""

import json
import socket
import subprocess
import time

import measuring
from support import fastcgi, paths, processes
from support.notifications import CHANNEL, notification
from support.responder import Responder
from support.server import Server
from support.waiting import wait_until

# Name, target, number of records in the list of notifications.
OPERATIONS = [
    ("status", "/srv/status", 0),
    ("notification, 0 records", "/srv/notification", 0),
    ("notification, 10 records", "/srv/notification", 10),
    ("notification, 100 records", "/srv/notification", 100),
    ("notification, 1,000 records", "/srv/notification", 1000),
    ("connect", "/srv/connect", 0),
]
CONNECTIONS = [1, 8, 32]
# With more foreign load than this, the subjects of a row are measured once more.
FOREIGN_LIMIT = 0.05
ATTEMPTS = 3
# Variables that the service must not inherit: as on a device, it uses its own defaults, so that it
# writes no debug lines.
NOT_ON_A_DEVICE = ("KESTAL_LOG_LEVEL",)


def as_on_a_device(environment):
    return {name: value for name, value in environment.items() if name not in NOT_ON_A_DEVICE}


class Subject:
    """A responder behind a web server of its own with the shipped configuration."""

    def __init__(self, work, name, program, device, **environment):
        self.server = Server(work, name)
        # The launcher passes on only the variables of the service. So for the other responders,
        # KESTAL_DEVICE names the file with the body that they answer.
        self.server.environment = {
            **as_on_a_device(self.server.environment),
            "KESTAL_RESPONDER": str(program),
            "KESTAL_DEVICE": str(device),
            "KESTAL_DOCUMENT_ROOT": str(work),
            **environment,
        }
        self.server.process = self.server.launch()
        wait_until(self.server.is_up, f"the web server of {name} has started")
        children = wait_until(lambda: processes.children(self.server.process.pid), f"{name} runs")
        self.pid = children[0]

    def load(self, target, connections, seconds):
        return measuring.send(self.pid, self.server.port, target, connections, seconds)


class Row:
    """One operation: the service, the responders that it is compared with, and the static file."""

    def __init__(self, work, build, name, target, records):
        self.name, self.target = name, target
        label = name.replace(" ", "").replace(",", "")
        device = work / f"{label}.json"
        document = json.loads(paths.DEFAULT_DEVICE.read_text())
        document["msgbus"][CHANNEL] = [notification()] * records
        device.write_text(json.dumps(document))
        service = Subject(work, f"{label}-s", build / "service" / "kestal.cgi", device)
        answer = service.server.ask(target)
        assert answer.status == 200, answer
        body = work / f"{label}.html"
        body.write_bytes(answer.body)
        self.bytes = len(answer.body)
        floor = Subject(work, f"{label}-f", build / "bench" / "kestal-bench-floor", body)
        bare = Subject(work, f"{label}-b", build / "bench" / "kestal-bench-bare", body)
        assert floor.server.ask(target).body == bare.server.ask(target).body == answer.body
        self.subjects = {
            "service": (service, target),
            "floor": (floor, target),
            "bare": (bare, target),
            "file": (service, f"/{body.name}"),
        }
        self.samples = {}
        self.refused = 0

    def measure(self, connections, seconds):
        """Measures all subjects one after another. While other processes disturb that, does it again; if
        they always do, this round has no samples."""
        for _ in range(ATTEMPTS):
            samples = {
                kind: subject.load(target, connections, seconds)
                for kind, (subject, target) in self.subjects.items()
            }
            if all(sample["foreign"] <= FOREIGN_LIMIT for sample in samples.values()):
                for kind, sample in samples.items():
                    self.samples.setdefault(str(connections), {}).setdefault(kind, []).append(sample)
                return
            self.refused += 1

    def result(self):
        memories = {kind: measuring.memory(subject.pid) for kind, (subject, _) in self.subjects.items()}
        del memories["file"]
        return {
            "name": self.name,
            "bytes": self.bytes,
            "samples": self.samples,
            "refused": self.refused,
            "memory": memories,
        }

    def close(self):
        for kind, (subject, _) in self.subjects.items():
            if kind != "file":
                subject.server.close()


def growth(row, requests):
    """Memory after few and after many requests, in KiB."""
    result = {}
    for kind in ("service", "floor"):
        subject, target = row.subjects[kind]
        subject.load(target, 8, 1)
        result[kind] = {"before": measuring.memory(subject.pid)}
        answered = 0
        while answered < requests:
            answered += subject.load(target, 8, 10)["requests"]
        result[kind] |= {"after": measuring.memory(subject.pid), "requests": answered}
    return result


def start_to_first_answer(work, build, rounds):
    """Milliseconds from the start of the process to its first answer."""
    programs = {
        "service": build / "service" / "kestal.cgi",
        "floor": build / "bench" / "kestal-bench-floor",
    }
    environment = as_on_a_device(Responder(work, "alone").environment)
    samples = {kind: [] for kind in programs}
    for _ in range(rounds):
        for kind, program in programs.items():
            samples[kind].append(time_to_first_answer(work / "alone.sock", [program], environment))
    return samples


def time_to_first_answer(path, command, environment):
    path.unlink(missing_ok=True)
    with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as listener:
        listener.bind(str(path))
        listener.listen()
        begin = time.perf_counter()
        process = subprocess.Popen(command, stdin=listener, env=environment)
        try:
            assert fastcgi.ask(path, fastcgi.STATUS).complete
            return (time.perf_counter() - begin) * 1000
        finally:
            process.kill()
            process.wait()


def measure(work, build, rounds, seconds, million, say):
    rows = []
    try:
        for name, target, records in OPERATIONS:
            rows.append(Row(work, build, name, target, records))
        # For a moment, the service reads files again that have just been written.
        time.sleep(3)
        for number in range(rounds):
            say(f"whole stack, round {number + 1} of {rounds}")
            for connections in CONNECTIONS:
                for row in rows:
                    row.measure(connections, seconds)
        results = [row.result() for row in rows]
        memory_growth = None
        if million:
            say("memory after a million requests")
            memory_growth = growth(rows[0], 1_000_000)
    finally:
        for row in rows:
            row.close()
    say("start to first answer")
    return {
        "operations": results,
        "growth": memory_growth,
        "start": start_to_first_answer(work, build, max(5, rounds * 4)),
    }
