"""What the tests do with the hotspot that the box is."""

import json

from box import DEVICE

PAGE = "http://192.168.8.1"
UNIT = "/run/systemd/system/kestal.service.d"
ORDER = ('import socket, sys; modem = socket.socket(socket.AF_UNIX); modem.connect("/run/usb-modem/control"); '
         'modem.sendall("\\0".join(sys.argv[1:]).encode() + b"\\n"); print(modem.recv(999).decode())')


class Hotspot:
    def __init__(self, box):
        self.box = box

    def is_ready(self):
        return self.box.run("systemctl is-active kestal").output.strip() == "active"

    def wait_until_ready(self):
        self.box.wait(self.is_ready, "kestal is active")

    def responder(self):
        """The process id of the service itself, if it runs."""
        return self.box.run("grep -lsx kestal.cgi /proc/[0-9]*/comm | cut -d/ -f3").output.strip()

    def change_unit(self, name, text):
        """Adds to the unit's section "Service", and restarts it."""
        self.box.write(f"{UNIT}/{name}.conf", f"[Service]\n{text}\n")
        self.box.get("systemctl daemon-reload && systemctl restart kestal")

    def restore_unit(self, name):
        self.box.get(f"rm -f {UNIT}/{name}.conf && systemctl daemon-reload && systemctl restart kestal")

    def phone_joins(self):
        """Unless it has joined since the box was started."""
        if self.box.run("ip netns exec phone true").status != 0:
            self.box.get(f"{DEVICE}/phone join")

    def ask(self, path, *options):
        """What the phone gets from the page's address."""
        return self.box.run(f"ip netns exec phone curl -fsS --max-time 60 {' '.join(options)} {PAGE}{path}")

    def act(self, name):
        """As the page does."""
        answer = self.ask(f"/srv/{name}", "-d ''", f"-H 'Origin: {PAGE}'")
        assert answer.status == 0 and json.loads(answer.output) == {"loginStatus": 0}, answer

    def get(self, path):
        """An answer as a program on the box gets it; nothing while the service does not answer."""
        result = self.box.run(f"curl -fsS --max-time 60 {PAGE}{path}")
        return json.loads(result.output) if result.status == 0 else {}

    def status(self):
        return self.get("/srv/status").get("statusData", {})

    def shows(self, **values):
        """Waits until the status has these values; None for a key that it has not."""
        shown = {}

        def holds():
            nonlocal shown
            shown = self.status()
            return shown and all(shown.get(key) == value for key, value in values.items())

        try:
            self.box.wait(holds, "the status has changed")
        except AssertionError:
            raise AssertionError(f"{ {key: shown.get(key) for key in values} }, not {values}") from None

    def order(self, *words):
        """Gives the emulated modem one of its orders."""
        quoted = " ".join(f"'{word}'" for word in words)
        answer = self.box.get(f"python3 -c '{ORDER}' {quoted}")
        assert answer == "ok", answer

    def hang_modem(self):
        """The modem answers no command any more."""
        self.box.get("systemctl kill --signal=STOP usb-modem")

    def restarts(self):
        return int(self.box.property("NRestarts"))
