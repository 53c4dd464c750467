"""dnsmasq on the bridge, in place of leases that are written by hand."""

from lab.daemon import Daemon
from lab.network import ADDRESS, BRIDGE


class Leases(Daemon):
    program = "dnsmasq"

    def __init__(self, folder, network):
        super().__init__(folder, "dnsmasq", network.namespace)
        self.file = network.leases
        #: Where the output of the newest run begins.
        self.begin = 0

    def command(self):
        self.begin = self.output.stat().st_size if self.output.exists() else 0
        net = ADDRESS.rpartition(".")[0]
        return [
            self.program, "--keep-in-foreground", "--conf-file=/dev/null", "--user=root", "--log-facility=-",
            "--log-dhcp", "--port=0", f"--interface={BRIDGE}", "--bind-interfaces", f"--dhcp-leasefile={self.file}",
            f"--dhcp-range={net}.100,{net}.200,1h", f"--pid-file={self.folder}/dnsmasq.pid",
        ]

    def is_ready(self):
        return "DHCP, sockets bound" in self.output.read_text()[self.begin :]

