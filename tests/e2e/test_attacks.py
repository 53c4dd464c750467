"""With the shipped firewall rules, one client cannot keep others out. The tests make their own networks,
which needs root."""

import contextlib
import socket

import pytest

from support import attacks, namespaces, web
from support.waiting import wait_until

LIMIT = 16
PORT = 8080
"""The launcher's default, for which the rules are written."""

pytestmark = pytest.mark.skipif(not namespaces.may_be_made(), reason="only root can make networks")


@pytest.fixture
def network():
    made = namespaces.Network()
    made.protect()
    # Load the rules once more, as at a reload.
    made.protect()
    yield made
    made.close()


@pytest.fixture
def listener(network):
    """A server that listens on every address and answers nobody."""
    with network.server.entered():
        server = socket.create_server(("::", PORT), family=socket.AF_INET6, backlog=100, dualstack_ipv6=True)
    with server:
        yield server


class Connections:
    """The connections of one client, from one address."""

    def __init__(self, stack, namespace, target, source=None):
        self.stack = stack
        self.namespace = namespace
        self.target = (target, PORT)
        self.source = source and (source, 0)
        self.open = []

    def is_let_in(self):
        with self.namespace.entered():
            try:
                connection = socket.create_connection(self.target, 30, self.source)
            except ConnectionRefusedError:
                return False
        self.open.append(self.stack.enter_context(connection))
        return True

    def fill(self):
        """Opens connections until one is refused; returns how many were accepted."""
        while self.is_let_in():
            assert len(self.open) <= LIMIT
        return len(self.open)


@pytest.fixture
def connect():
    with contextlib.ExitStack() as stack:
        yield lambda *arguments: Connections(stack, *arguments)


def test_each_address_has_its_own_limit_and_a_closed_connection_makes_room(network, listener, connect):
    target, source, other = network.server_addresses[0][0], *network.addresses[0][:2]
    first = connect(network.clients[0], target, source)
    assert first.fill() == LIMIT
    second = connect(network.clients[0], target, other)
    assert second.fill() == LIMIT
    assert connect(network.clients[1], network.server_addresses[1][0]).is_let_in()
    # Close one connection at the client's end and one at the server's.
    first.open[0].close()
    listener.accept()[0].close()
    wait_until(first.is_let_in, "there is room again")


def test_all_ipv6_addresses_of_a_client_count_together(network, listener, connect):
    target, source, other = network.server_addresses[0][1], *network.addresses[0][2:]
    first = connect(network.clients[0], target, source)
    assert first.fill() == LIMIT
    assert not connect(network.clients[0], target, other).is_let_in()
    assert connect(network.clients[1], network.server_addresses[1][1]).is_let_in()


@pytest.mark.parametrize("address", ["127.0.0.1", "::1"])
def test_the_device_itself_is_not_limited(network, listener, connect, address):
    own = connect(network.server, address)
    assert all(own.is_let_in() for _ in range(2 * LIMIT))


@pytest.mark.parametrize("address", [0, 1], ids=["IPv4", "IPv6"])
@pytest.mark.parametrize("kind", attacks.KINDS, ids=lambda kind: kind.name)
def test_an_attack_from_one_address_leaves_room_for_others(network, make_server, kind, address):
    server = make_server()
    server.port = PORT
    # The server does not close the attacker's connections, so a client that needed one of them to end
    # would wait too long.
    server.limit(max_read_idle=600, max_write_idle=600, max_keep_alive_idle=600)
    server.environment |= {"KESTAL_PORT": str(PORT), "KESTAL_ADDRESS": ["0.0.0.0", "::"][address]}
    with network.server.entered():
        server.start()
    targets = [network.server_addresses[client][address] for client in range(2)]
    with attacks.Attack(network.clients[0], targets[0], PORT, kind) as attack, network.clients[1].entered():
        wait_until(lambda: attack.refused >= kind.connections - LIMIT, "the attacker is limited")
        tried = attack.tried
        for _ in range(20):
            assert web.ask(PORT, "/srv/status", address=targets[1]).status == 200
            assert network.established(0) <= LIMIT
        wait_until(lambda: attack.tried > tried, "the attack continues")
