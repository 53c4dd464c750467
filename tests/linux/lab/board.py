"""The whole lab: all daemons of a board in one folder."""

import contextlib
import json
import subprocess

from lab.access_point import MOST_STATIONS, AccessPoint
from lab.bus import Authority, Bus
from lab.leases import Leases
from lab.mbim_modem import MbimModem, MbimModemManager
from lab.modem_manager import STATE_DISABLED, Modem, ModemManager
from lab.network import BRIDGE, ETHERNET, GUESTS, USB, WIFI, Network
from lab.network_manager import NetworkManager
from lab.position import Position
from lab.power import Power, PowerSupplies
from lab.rights import GuardedBus, Polkit
from lab.service import Service, write_program
from lab.sharing import FileServer, Sharing
from lab.swupdate import SwUpdate
from lab.update import Update
from lab.usb_modem import ScanningModemManager, UsbModem
from support import paths, sanitizers
from support.waiting import DEADLINE


MESSAGES = paths.BUILD / "tools" / "kestal-messages"


class Lab:
    """Daemons start when a test asks for them, and end in the opposite order."""

    def __init__(self, folder, missing):
        """`missing(text)` is called, and does not return, when a daemon is not installed."""
        self.folder = folder
        self.missing = missing
        self.ends = contextlib.ExitStack()
        self.bus = Bus(folder)
        self.authority = Authority(folder, self.bus)
        self.modem = self.modem_manager = None
        self.supplies = PowerSupplies(folder)
        self.power = Power(folder, self.bus, self.supplies)
        self.file_server = FileServer(folder)
        self.sharing = Sharing(folder, self.bus, self.file_server)
        self.update = Update(folder, self.bus)
        self.swupdate = SwUpdate(folder)
        self.network = self.leases = self.wifi = self.guests = self.position = self.service = None
        self.network_manager = None
        #: Path of the modem at ModemManager.
        self.path = None
        #: Seconds after which a daemon that does not answer is lost; on a machine that does much else, one that works
        #: may take several.
        self.silence = 30

    def start(self, *daemons):
        """Starts all at once, and waits for them in their order."""
        for daemon in daemons:
            if not daemon.is_installed():
                self.missing(f"{daemon.program} is not installed")
            self.ends.callback(daemon.stop)
            daemon.launch()
        for daemon in daemons:
            daemon.wait()

    def guard(self, rule=True):
        """Before all else: rights are as on a board, with or without the rule that the service ships. Needs root."""
        self.bus = GuardedBus(self.folder)
        self.authority = Polkit(self.folder, self.bus)
        if rule:
            self.authority.install_rule()

    def start_bus(self):
        if not self.bus.is_running():
            self.start(self.bus)

    def start_modem(self, sim="in", on_usb=False):
        """ModemManager is told of the modem, or finds it on USB and knows a network interface of it, too."""
        self.start_bus()
        if on_usb:
            self.modem = UsbModem(self.folder)
            self.modem_manager = ScanningModemManager(self.folder, self.bus, self.modem)
        else:
            self.modem = Modem(self.folder)
            self.modem_manager = ModemManager(self.folder, self.bus)
        self.start(self.modem, self.authority)
        self.modem.order("sim", sim)
        self.start(self.modem_manager)
        self.add_modem()

    def start_mbim_modem(self, *orders):
        """ModemManager finds it on USB, after it has been given the orders. Needs root."""
        self.start_bus()
        self.modem = MbimModem(self.folder)
        self.modem_manager = MbimModemManager(self.folder, self.bus, self.modem)
        self.ends.callback(self.modem_manager.release)
        self.start(self.modem, self.authority)
        for words in orders:
            self.modem.order(*words)
        self.start(self.modem_manager)
        self.add_modem()

    def add_modem(self):
        """Makes the modem known to a ModemManager that has just been started."""
        self.path = self.modem_manager.add(self.modem)
        self.modem_manager.wait_until_known(self.path)
        if self.modem_manager.state(self.path) == STATE_DISABLED:
            self.modem_manager.enable(self.path)

    def start_power(self):
        """UPower with a battery at 80 percent."""
        self.start_bus()
        self.start(self.supplies)
        self.power.battery(80)
        self.start(self.power)

    def start_sharing(self):
        """The file server, which is not shared from yet, and its unit."""
        self.start_bus()
        if not self.file_server.is_installed():
            self.missing(f"{self.file_server.program} is not installed")
        self.ends.callback(self.file_server.release)
        self.ends.callback(self.file_server.stop)
        self.start(self.sharing)

    def start_update(self):
        """RAUC; needs root."""
        self.start_bus()
        self.start(self.update)

    def start_swupdate(self):
        """Needs root."""
        self.start(self.swupdate)

    def start_network(self):
        """Bridge, Ethernet and two access points; needs root."""
        self.network = Network(self.folder)
        self.ends.callback(self.network.close)
        self.wifi = AccessPoint(self.folder, self.network, WIFI, "Lab Box")
        self.guests = AccessPoint(self.folder, self.network, GUESTS, "Lab Guests")
        self.start(self.wifi, self.guests)

    def start_network_manager(self):
        """It has a profile for the modem, which must be one with a network interface."""
        self.network_manager = NetworkManager(self.folder, self.bus, self.network)
        self.start(self.network_manager)
        self.network_manager.wait_for_modem()

    def start_leases(self):
        """dnsmasq, which writes the leases of the network from then on."""
        self.leases = Leases(self.folder, self.network)
        self.start(self.leases)

    def start_position(self):
        self.position = Position(self.folder, self.network and self.network.namespace)
        self.ends.callback(self.position.release)
        self.start(self.position)

    def settings(self):
        """The object "linux" of the service's document."""
        settings = {"apn": "internet", "silenceSeconds": self.silence, "checkSeconds": 1,
                    "powerSupplies": str(self.supplies.folder_of_supplies),
                    "updateSocket": str(self.swupdate.progress)}
        if self.network:
            settings |= {
                "bridge": BRIDGE,
                "ethernet": [ETHERNET],
                "usb": [USB],
                "wifi": [WIFI],
                "guestWifi": [GUESTS],
                "wifiMaxClients": MOST_STATIONS,
                "hostapdDirectory": str(self.wifi.directory),
                "leases": str(self.network.leases),
            }
        if self.position:
            settings |= {"gpsdHost": "127.0.0.1", "gpsdPort": str(self.position.port)}
        return settings

    def make_service(self, page=False, as_user=False):
        """The service, not started yet, so that its document and environment can be changed."""
        self.service = Service(self, page, as_user)
        self.ends.callback(self.service.close)
        return self.service

    def start_service(self, page=False, as_user=False, **settings):
        """`settings` are added to those of the lab, or stand in their place."""
        self.make_service(page, as_user).settings |= settings
        self.service.start()

    def run(self, program, *arguments):
        """Runs a program of the project beside the service, or without one; returns what it has printed."""
        script = self.folder / f"{program.name}.run"
        write_program(script, self, self.folder, [str(program)])
        document = self.folder / f"{program.name}.json"
        document.write_text(json.dumps({"linux": self.settings()}))
        environment = {**paths.CLEAN_ENVIRONMENT, **sanitizers.OPTIONS, "LC_ALL": "C.UTF-8",
                       "KESTAL_DEVICE": str(document)}
        # A file named stderr is searched for reports of sanitizers.
        with (self.folder / "stderr").open("ab") as errors:
            return subprocess.run([script, *arguments], env=environment, stdin=subprocess.DEVNULL,
                                  stdout=subprocess.PIPE, stderr=errors, text=True, timeout=300)

    def messages(self, *words):
        """What kestal-messages prints with these words."""
        environment = {**self.service.environment, "STATE_DIRECTORY": str(self.folder / "state")}
        return subprocess.run([MESSAGES, *words], env=environment, capture_output=True, check=True,
                              timeout=DEADLINE).stdout

    def close(self):
        self.ends.close()
