"""A process of the lab that can be started, stopped, killed and hung."""

import contextlib
import os
import shutil
import signal
import subprocess

from support import paths
from support.waiting import DEADLINE, wait_until


class Daemon:
    """Subclasses say what to run (`command`) and when it is ready (`is_ready`). The output of all runs is
    in FOLDER/NAME.output."""

    #: The program that must be installed.
    program = None

    def __init__(self, folder, name, namespace=None):
        self.folder = folder
        self.name = name
        self.namespace = namespace
        self.output = folder / f"{name}.output"
        self.environment = dict(paths.CLEAN_ENVIRONMENT)
        self.process = None

    def is_installed(self):
        return shutil.which(self.program, path=paths.CLEAN_ENVIRONMENT["PATH"]) is not None

    def command(self):
        raise NotImplementedError

    def is_ready(self):
        raise NotImplementedError

    def launch(self):
        """Starts the process and returns at once."""
        # It ends with the lab, however that ends.
        command = ["setpriv", "--pdeathsig", "KILL", "--", *map(str, self.command())]
        with self.entered(), self.output.open("ab") as output:
            self.process = subprocess.Popen(
                command,
                stdin=subprocess.DEVNULL,
                stdout=output,
                stderr=output,
                env=self.environment,
                start_new_session=True,
            )
        return self

    def entered(self):
        """The network that the process is in."""
        return self.namespace.entered() if self.namespace else contextlib.nullcontext()

    def wait(self):
        """Waits until the process can be used."""

        def ready():
            assert self.process.poll() is None, f"{self.name} has ended:\n{self.output.read_text(errors='replace')}"
            return self.is_ready()

        wait_until(ready, f"{self.name} is ready")
        return self

    def start(self):
        return self.launch().wait()

    @property
    def pid(self):
        return self.process.pid

    def is_running(self):
        return self.process is not None and self.process.poll() is None

    def stop(self):
        self._end(signal.SIGTERM)

    def kill(self):
        self._end(signal.SIGKILL)

    def hang(self):
        """The process answers nothing any more, but is there."""
        self._signal(signal.SIGSTOP)

    def resume(self):
        self._signal(signal.SIGCONT)

    def _signal(self, number):
        """To the process and all that it has started: they are one process group."""
        with contextlib.suppress(ProcessLookupError):
            os.killpg(self.process.pid, number)

    def _end(self, number):
        if self.process is None:
            return
        if self.process.poll() is None:
            self._signal(number)
            self._signal(signal.SIGCONT)
            try:
                self.process.wait(5)
            except subprocess.TimeoutExpired:
                pass
        # What the process has left behind ends, too.
        self._signal(signal.SIGKILL)
        self.process.wait(DEADLINE)
