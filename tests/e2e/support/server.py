"""Web server and service as they are deployed: launcher, shipped configuration, real port."""

import contextlib
import os
import re
import signal
import subprocess

from support import paths, processes, web
from support.device import Device
from support.logs import IN_LOOP, Log
from support.ports import Port
from support.waiting import DEADLINE, wait_until


class Server:
    def __init__(self, work, name="server"):
        self.work = work
        self.launcher = paths.LAUNCHER
        self.run = work / f"{name}.run"
        self.device = Device(work / f"{name}.json")
        self.sessions = work / f"{name}.sessions"
        self.log = Log(work / f"{name}.log")
        self.messages = work / f"{name}.messages"
        self.claim = Port()
        self.port = self.claim.number
        self.environment = {
            **paths.CLEAN_ENVIRONMENT,
            "KESTAL_DEVICE": str(self.device.path),
            "KESTAL_SESSIONS": str(self.sessions),
            "KESTAL_LOG": str(self.log.path),
            "KESTAL_LOG_LEVEL": "7",
            "KESTAL_LOCALEDIR": str(paths.CATALOGUE),
            "LOCPATH": str(paths.LOCALES),
            "KESTAL_RUN_DIRECTORY": str(self.run),
            "KESTAL_PORT": str(self.port),
            "KESTAL_RESPONDER": str(paths.SERVICE),
            "KESTAL_SERVER_LOG": str(self.messages),
        }
        self.process = None

    def limit(self, **values):
        """Uses the shipped configuration with some settings changed, as in limit(max_read_idle=1)."""
        text = (paths.ROOT / "deploy" / "lighttpd.conf").read_text()
        for name, value in values.items():
            setting = "server." + name.replace("_", "-")
            text, replaced = re.subn(rf"(?m)^({setting} +=) .*$", rf"\g<1> {value}", text)
            assert replaced == 1, setting
        configuration = self.work / "lighttpd.conf"
        configuration.write_text(text)
        self.environment["KESTAL_CONFIGURATION"] = str(configuration)

    def launch(self, *arguments):
        """Starts the launcher and returns at once."""
        return subprocess.Popen(
            [str(self.launcher), *arguments],
            stdin=subprocess.DEVNULL,
            stderr=subprocess.PIPE,
            env=self.environment,
            start_new_session=True,
        )

    def start(self):
        """Starts web server and service and waits until both serve."""
        loops = self.log.text().count(IN_LOOP)
        self.process = self.launch()
        wait_until(self.is_up, "the web server has started")
        if self.environment.get("KESTAL_LOG_LEVEL") == "7":
            self.log.wait_for(IN_LOOP, loops + 1)
        else:
            assert self.ask("/srv/status").status == 200
        return self

    def is_up(self):
        assert self.process.poll() is None, self.process.stderr.read().decode() + self.server_messages()
        try:
            return (self.run / "server.pid").read_text().strip() == str(self.process.pid)
        except OSError:
            return False

    def server_messages(self):
        return self.messages.read_text() if self.messages.exists() else ""

    def responder(self):
        """Waits until the service runs and returns its process id."""
        return wait_until(
            lambda: processes.children(self.process.pid, "kestal.cgi"), "the service runs"
        )[0]

    def ask(self, target, headers=(), **arguments):
        return web.ask(self.port, target, headers, **arguments)

    def status(self):
        return self.ask("/srv/status").json()["statusData"]

    def close(self):
        self.stop()
        self.claim.close()

    def stop(self):
        if self.process is None:
            return
        if self.process.poll() is None:
            for pid in processes.children(self.process.pid):
                with contextlib.suppress(ProcessLookupError):
                    os.kill(pid, signal.SIGCONT)
            self.process.terminate()
        self.process.wait(DEADLINE)
        subprocess.run([str(self.launcher), "sweep"], env=self.environment, check=True, timeout=DEADLINE)
        self.process.stderr.close()
