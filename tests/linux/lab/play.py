"""What people do to a running lab: the orders of scripts/lab."""

PHONE = "02:00:00:00:00:01"
COMPUTER = "02:00:00:00:00:02"
ADDRESSES = {PHONE: "192.168.8.23", COMPUTER: "192.168.8.24"}


class Refused(Exception):
    """The order cannot be carried out."""


def daemons(lab):
    """All daemons that have been started, by their names."""
    every = [lab.bus, lab.authority, lab.modem, lab.modem_manager, lab.network_manager, lab.power, lab.sharing,
             lab.update, lab.swupdate, lab.wifi, lab.guests, lab.position]
    return {daemon.name: daemon for daemon in every if daemon is not None and daemon.process is not None}


def help(lab):
    own = """\
enable                             the modem, as NetworkManager would after another SIM card is put in
battery PERCENT [charging|discharging|full], battery out
phone joins|leaves                 on the Wi-Fi
computer joins|leaves              on the cable of the Ethernet port
cable in|out                       of the Ethernet port
position found|lost
sharing on|off                     of files
update installs|fails [rauc|swupdate]  of the box itself
hang|resume|kill|stop|start NAME   of a daemon, as listed above
"""
    return "".join(f"  scripts/lab {line}\n" for line in (lab.modem.orders.HELP + own).splitlines())


def obey(lab, words):
    """Carries an order out; returns the answer, which begins with "error: " if it was refused."""
    name, *arguments = words
    if name == "help":
        return help(lab)
    of_modem = lab.modem.orders.ORDERS if lab.modem else {}
    if name not in of_modem and name not in _ORDERS:
        return f'error: no such order: {name}; "scripts/lab help" lists them\n'
    try:
        if name in of_modem:
            lab.modem.order(*words)
        if name in _ORDERS:
            _ORDERS[name](lab, *arguments)
    except TypeError:
        return f'error: other words belong to "{name}"; "scripts/lab help" lists them\n'
    except (Refused, ValueError) as error:
        return f"error: {error}\n"
    except Exception as error:  # A daemon that hangs or is gone must not end the lab.
        return f"error: {type(error).__name__}: {error}\n"
    return ""


def _enable(lab):
    lab.path = lab.modem_manager.appeared()
    lab.modem_manager.enable(lab.path)


def _battery(lab, charge, state="discharging"):
    if charge == "out":
        lab.power.remove_battery()
    else:
        lab.power.battery(float(charge), state)


def _network(lab):
    if lab.network is None:
        raise Refused("the lab has no network, which needs root")
    return lab.network


def _one_of(word, **choices):
    if word not in choices:
        raise Refused(f"one of {', '.join(choices)}")
    choices[word]()


def _phone(lab, what):
    network = _network(lab)

    def joins():
        lab.wifi.join(PHONE)
        network.lease(PHONE, ADDRESSES[PHONE], "phone")

    def leaves():
        lab.wifi.leave(PHONE)
        network.forget(PHONE)

    _one_of(what, joins=joins, leaves=leaves)


def _computer(lab, what):
    network = _network(lab)

    def joins():
        network.plug()
        network.attach(COMPUTER)
        network.lease(COMPUTER, ADDRESSES[COMPUTER], "computer")

    def leaves():
        network.detach(COMPUTER)
        network.forget(COMPUTER)

    _one_of(what, joins=joins, leaves=leaves)


def _cable(lab, what):
    network = _network(lab)
    _one_of(what, **{"in": network.plug, "out": network.unplug})


def _traffic(lab, sent, received):
    """The modem has counted them; the kernel counts what passes the modem's interface."""
    if lab.network is not None:
        lab.network.carry(int(sent), int(received))


def _position(lab, what):
    _one_of(what, found=lab.position.find, lost=lab.position.lose)


def _sharing(lab, what):
    _one_of(what, on=lab.sharing.share, off=lambda: lab.sharing.share(False))


def _update(lab, what, name="rauc"):
    update = {"rauc": lab.update, "swupdate": lab.swupdate}.get(name)
    if update is None or update.process is None:
        raise Refused("no such daemon for updates; they need root")
    _one_of(what, installs=lambda: update.install(update.bundle()),
            fails=lambda: update.install(update.unfit_bundle()))


def _daemon(verb):
    def act(lab, name):
        if name not in daemons(lab):
            raise Refused(f"one of {', '.join(daemons(lab))}")
        getattr(daemons(lab)[name], verb)()
        if verb != "start":
            return
        if name == lab.modem.name:
            # Its terminals are others now.
            lab.modem_manager.stop()
            lab.modem_manager.start()
        if name in (lab.modem.name, lab.modem_manager.name):
            lab.add_modem()

    return act


_ORDERS = {
    "enable": _enable,
    "battery": _battery,
    "phone": _phone,
    "computer": _computer,
    "cable": _cable,
    "traffic": _traffic,
    "position": _position,
    "sharing": _sharing,
    "update": _update,
    **{verb: _daemon(verb) for verb in ("hang", "resume", "kill", "stop", "start")},
}
