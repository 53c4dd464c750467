"""Boards to measure on, and the simulated device that they are compared with."""

import contextlib
import pathlib
import tempfile
import threading
import time

from lab.board import Lab
from support import paths
from support.server import Server

SIMULATOR = paths.ROOT / "build" / "release" / "service" / "kestal.cgi"
# Settings that the lab shortens for tests.
ON_A_BOARD = {"checkSeconds": 60, "silenceSeconds": 10}
# What the service has told once each source has been heard.
WHOLE = {
    "statusBarSimStatus": "Ready",
    "statusBarConnectionState": "Ready",
    "statusBarBatteryPercent": "80",
    "statusBarWiFiClientListSize": "0",
    "statusBarGpsStatus": "Searching",
}


def missing(text):
    raise SystemExit(f"figures: {text}")


@contextlib.contextmanager
def lab():
    """A board without any daemon."""
    with tempfile.TemporaryDirectory(prefix="kestal-lab-") as folder:
        made = Lab(pathlib.Path(folder), missing)
        try:
            yield made
        finally:
            made.close()


def serve(board, answers=(), **settings):
    """Starts the service at the log level of a device."""
    service = board.make_service()
    service.answers |= dict(answers)
    service.settings |= settings
    service.environment.pop("KESTAL_LOG_LEVEL")
    service.start()
    return service


@contextlib.contextmanager
def empty():
    """A board without any daemon, and the service."""
    with lab() as board:
        serve(board, **ON_A_BOARD)
        yield board


@contextlib.contextmanager
def daemons():
    """A board with all its daemons, and without the service."""
    with lab() as board:
        board.start_modem()
        board.start_power()
        board.start_sharing()
        board.start_update()
        board.start_network()
        board.start_position()
        yield board


@contextlib.contextmanager
def whole(answers=()):
    """A board with all its daemons and the service; the document tells the answers in place of the daemons."""
    with daemons() as board:
        service = serve(board, answers, **ON_A_BOARD)
        if not answers:
            service.shows(**WHOLE)
        yield board


@contextlib.contextmanager
def simulated():
    """The service on a simulated device."""
    with tempfile.TemporaryDirectory(prefix="kestal-lab-") as folder:
        server = Server(pathlib.Path(folder))
        server.environment["KESTAL_RESPONDER"] = str(SIMULATOR)
        server.environment.pop("KESTAL_LOG_LEVEL")
        try:
            yield server.start()
        finally:
            server.close()


class Unrest:
    """All sources of a board change all the time, some 50 times a second together."""

    def __init__(self, lab):
        self.lab = lab
        self.ending = threading.Event()
        self.count = 0
        self.thread = threading.Thread(target=self._run)

    def __enter__(self):
        self.thread.start()
        return self

    def __exit__(self, *_):
        self.ending.set()
        self.thread.join()

    def _run(self):
        phone = "02:00:00:00:00:01"
        while not self.ending.is_set():
            number = self.count // 8
            for change in (
                lambda: self.lab.power.battery(10 + number % 80),
                self.lab.position.find,
                self.lab.network.plug,
                lambda: self.lab.wifi.join(phone) if number % 2 else self.lab.wifi.leave(phone),
                lambda: self.lab.modem.order("signal", 10 + number % 20),
                self.lab.position.lose,
                self.lab.network.unplug,
                lambda: self.lab.modem.order("register", "roaming" if number % 2 else "home"),
            ):
                change()
                self.count += 1
                time.sleep(0.01)
