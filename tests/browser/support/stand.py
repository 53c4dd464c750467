"""Web server and service for a browser test, told what to do by lines of JSON on standard input.

Each line is an object whose "do" names a method of Stand; each is answered by one line of JSON. The
end of the input ends everything.
"""

import json
import os
import pathlib
import shutil
import signal
import sys
import tempfile

E2E = pathlib.Path(__file__).resolve().parents[2] / "e2e"
sys.path.insert(0, str(E2E))

from support import paths  # noqa: E402
from support.server import Server  # noqa: E402

from player import Player  # noqa: E402


class Stand:
    def __init__(self, work):
        self.server = Server(work)
        self.player = None
        # As scripts/run --control does it.
        configuration = work / "lighttpd.conf"
        configuration.write_text(
            "include env.KESTAL_DEPLOYED_CONFIGURATION\n"
            'server.modules += ( "mod_alias", "mod_cgi" )\n'
            + (paths.ROOT / "scripts" / "control.conf").read_text()
        )
        self.server.environment |= {
            "KESTAL_DOCUMENT_ROOT": str(paths.ROOT / "demo"),
            "KESTAL_CONFIGURATION": str(configuration),
            "KESTAL_DEPLOYED_CONFIGURATION": str(paths.ROOT / "deploy" / "lighttpd.conf"),
            "KESTAL_CONTROL_PROGRAM": str(paths.ROOT / "scripts" / "control.sh"),
            "KESTAL_SIM": str(paths.SIM),
        }
        # Use the texts and locales of the build, if it has any.
        for name, folder in (("KESTAL_LOCALEDIR", "catalogue"), ("LOCPATH", "locales")):
            if (paths.BUILD / folder).is_dir():
                self.server.environment[name] = str(paths.BUILD / folder)

    def start(self, environment=None):
        for name, value in (environment or {}).items():
            self.server.environment[name] = value.replace("{port}", str(self.server.port))
        self.server.start()
        return self.place()

    def place(self):
        return {"port": self.server.port, "device": str(self.server.device.path)}

    def stop(self):
        self.server.stop()

    def kill_service(self):
        """The web server starts another."""
        os.kill(self.server.responder(), signal.SIGKILL)

    def hang_service(self):
        os.kill(self.server.responder(), signal.SIGSTOP)

    def resume_service(self):
        os.kill(self.server.responder(), signal.SIGCONT)

    def play(self, scenario):
        self.player = Player(scenario, self.server.environment)

    def proceed(self):
        return self.player.proceed()

    def end_play(self):
        return self.player.end()

    def close(self):
        if self.player is not None:
            self.player.close()
        self.server.close()


def main():
    # Ignore Ctrl-C: when the test's own process ends, this one notices it as the end of its input.
    signal.signal(signal.SIGINT, signal.SIG_IGN)
    work = pathlib.Path(tempfile.mkdtemp(prefix="kestal-test-"))
    stand = Stand(work)
    try:
        for line in sys.stdin:
            order = json.loads(line)
            try:
                answer = {"result": getattr(stand, order.pop("do"))(**order)}
            except Exception as error:  # pylint: disable=broad-except
                answer = {"error": f"{type(error).__name__}: {error}"}
            print(json.dumps(answer), flush=True)
    finally:
        stand.close()
        if "KESTAL_KEEP" in os.environ:
            print(f"kept: {work}", file=sys.stderr)
        else:
            shutil.rmtree(work)


if __name__ == "__main__":
    main()
