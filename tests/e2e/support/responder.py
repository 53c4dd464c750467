"""The service alone, started as a web server starts it, with its listening socket as standard input."""

import signal
import socket
import subprocess

from support import fastcgi, paths, sanitizers
from support.device import Device
from support.logs import IN_LOOP, Log
from support.waiting import DEADLINE


class Responder:
    def __init__(self, work, name="responder"):
        self.work = work
        self.socket = work / f"{name}.sock"
        self.device = Device(work / f"{name}.json")
        self.sessions = work / f"{name}.sessions"
        self.log = Log(work / f"{name}.log")
        self.environment = {
            **paths.CLEAN_ENVIRONMENT,
            **sanitizers.OPTIONS,
            "KESTAL_DEVICE": str(self.device.path),
            "KESTAL_SESSIONS": str(self.sessions),
            "KESTAL_LOG": str(self.log.path),
            "KESTAL_LOG_LEVEL": "7",
            "KESTAL_LOCALEDIR": str(paths.CATALOGUE),
            "LOCPATH": str(paths.LOCALES),
        }
        self.process = None

    def start(self, arguments=None):
        """Starts the service and waits until it serves; the socket is replaced by a new one."""
        self.socket.unlink(missing_ok=True)
        loops = self.log.text().count(IN_LOOP)
        with socket.socket(socket.AF_UNIX, socket.SOCK_STREAM) as listener:
            listener.bind(str(self.socket))
            listener.listen(128)
            self.process = subprocess.Popen(
                arguments or [str(paths.SERVICE)],
                executable=str(paths.SERVICE),
                stdin=listener,
                stdout=subprocess.DEVNULL,
                stderr=(self.work / "stderr").open("ab"),
                env=self.environment,
                start_new_session=True,
            )
        if self.environment["KESTAL_LOG_LEVEL"] == "7":
            self.log.wait_for(IN_LOOP, loops + 1)
        else:
            assert self.ask().complete
        return self

    @property
    def pid(self):
        return self.process.pid

    def connect(self):
        return fastcgi.Connection(self.socket)

    def ask(self, uri="/srv/status", body=b"", **parameters):
        return fastcgi.ask(self.socket, {**fastcgi.STATUS, "REQUEST_URI": uri, **parameters}, body)

    def end(self, signo=signal.SIGTERM, deadline=DEADLINE):
        """Sends a signal and returns the exit status."""
        self.process.send_signal(signo)
        return self.process.wait(deadline)

    def stop(self):
        if self.process is not None and self.process.poll() is None:
            self.process.send_signal(signal.SIGCONT)
            if paths.SANITIZERS:
                # End it in an orderly way, because only then the sanitizer looks for leaks.
                self.process.terminate()
                self.process.wait(DEADLINE)
            self.process.kill()
            self.process.wait()
