"""hostapd without a radio: its control socket is real, and phones are added by hand."""

import socket

from lab.daemon import Daemon
from support.waiting import DEADLINE

# As a board with one radio allows.
MOST_STATIONS = 64


class AccessPoint(Daemon):
    """One network name, so one process."""

    program = "hostapd"

    def __init__(self, folder, network, interface, ssid):
        super().__init__(folder, f"hostapd-{interface}", network.namespace)
        self.directory = folder / "hostapd"
        self.interface = interface
        self.ssid = ssid

    @property
    def control(self):
        return self.directory / self.interface

    def command(self):
        configuration = self.folder / f"{self.name}.conf"
        configuration.write_text(
            f"interface={self.interface}\ndriver=none\nctrl_interface={self.directory}\n"
            f"ssid={self.ssid}\nhw_mode=g\nchannel=6\nauth_algs=1\nmax_num_sta={MOST_STATIONS}\n"
        )
        # A process that was killed leaves its socket behind, which would look ready.
        self.control.unlink(missing_ok=True)
        return [self.program, configuration]

    def is_ready(self):
        try:
            return "state=ENABLED" in self.ask("STATUS")
        except (FileNotFoundError, ConnectionRefusedError):
            return False

    def ask(self, command):
        """Sends a command and returns the answer."""
        # A file, because hostapd is in another network, where abstract addresses of this one do not exist.
        own = self.folder / f"{self.name}.client"
        with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as connection:
            connection.settimeout(DEADLINE)
            connection.bind(str(own))
            try:
                connection.connect(str(self.control))
                connection.send(command.encode())
                return connection.recv(65536).decode(errors="replace")
            finally:
                own.unlink()

    def stations(self):
        """The addresses of all stations that may send; those that have left are kept for a while."""
        found = {}
        answer = self.ask("STA-FIRST")
        while ":" in answer:
            mac = answer.splitlines()[0]
            found[mac] = "[AUTHORIZED]" in answer
            answer = self.ask(f"STA-NEXT {mac}")
        return [mac for mac, may_send in found.items() if may_send]

    def join(self, mac):
        answer = self.ask(f"NEW_STA {mac}")
        assert answer == "OK\n", answer

    def leave(self, mac):
        answer = self.ask(f"DISASSOCIATE {mac}")
        assert answer == "OK\n", answer
