"""The web server answers errors as the contract, docs/api/openapi.yaml, describes them."""

import concurrent.futures
import os
import pathlib
import signal

from support import processes
from support.contract import CONTRACT, operations, resolve, validator, violations
from support.sessions import open_session
from support.waiting import wait_until

OTHER_SITE = ("Sec-Fetch-Site", "cross-site")
OTHER_HOST = ("Host", "example.com")


class WebServer:
    def __init__(self, server):
        self.server = server
        self.given = {(path, method): set() for path, method, _ in operations()}

    def ask(self, path, method, *headers, target=None, body=b""):
        """Sends a request like one for an operation, and checks the answer against the contract."""
        headers = [*headers, *([("Content-Length", "0")] if method == "post" and not body else [])]
        answer = self.server.ask(target or path, headers, method=method.upper(), body=body)
        self.check(path, method, answer)
        return answer.status

    def check(self, path, method, answer):
        self.given[path, method].add(str(answer.status))
        response = resolve(CONTRACT["paths"][path][method]["responses"][str(answer.status)])
        (content_type, media_type), = response["content"].items()
        assert answer.headers["content-type"] == content_type
        for name, header in response.get("headers", {}).items():
            assert validator(resolve(header)["schema"]).is_valid(answer.headers[name.lower()])
        if answer.status == 200:
            assert not violations(validator(media_type["schema"]), answer.json())
        elif "schema" in media_type:
            assert validator(media_type["schema"]).is_valid(answer.body.decode())

    def all(self, *headers, **arguments):
        return {self.ask(path, method, *headers, **arguments) for path, method in self.given}

    def all_at_once(self, then):
        """Sends all requests, calls the given function meanwhile, and returns the status codes."""
        with concurrent.futures.ThreadPoolExecutor(len(self.given)) as pool:
            asked = [pool.submit(self.ask, *operation) for operation in self.given]
            then()
            return {answer.result() for answer in asked}

    def all_while_the_service_dies(self):
        responder = self.server.responder()
        os.kill(responder, signal.SIGSTOP)

        def die():
            wait_until(lambda: self.connections() >= len(self.given), "the service has all requests")
            os.kill(responder, signal.SIGKILL)
            wait_until(lambda: not processes.is_alive(responder), "the service has ended")

        return self.all_at_once(then=die)

    def connections(self):
        """The number of connections to the service that it has not closed."""
        sockets = pathlib.Path("/proc/net/unix").read_text().splitlines()
        return sum(line.endswith(f" {self.server.run}/responder.sock-0") for line in sockets) - 1


def test_the_web_server_gives_the_errors_of_the_contract_and_no_others(make_server):
    server = make_server().start()
    web = WebServer(server)

    assert web.all() == {200}
    assert web.all(("Cookie", open_session(server)), ("User-Agent", "test")) == {200}
    assert {web.ask(path, method, target=f"{path}/../x") for path, method in web.given} == {400}
    for path, method in web.given:
        expected = 403 if "connect" in path else 200
        assert web.ask(path, method, OTHER_SITE) == expected
    assert web.all(OTHER_HOST) == {403}
    for path, method in web.given:
        assert web.ask(path, method, body=b"a" * 1024) == (403 if method == "post" else 400)
        assert web.ask(path, method, body=b"a" * 1025) == (413 if method == "post" else 400)
    assert web.all(("X", "a" * 9000)) == {431}

    server.device.set(getWebUICarrierEnabled=0)
    assert web.all() == {501}
    server.device.set(getWebUICarrierEnabled=1)

    # If a request has not reached the service when it dies, the next service answers it. So try again
    # until all requests have reached it.
    wait_until(lambda: web.all_while_the_service_dies() == {500}, "all requests get 500 when the service dies")
    # The web server may start the next service at any time, and needs the program for that.
    responder = server.responder()
    (server.run / "kestal.cgi").unlink()
    os.kill(responder, signal.SIGKILL)
    wait_until(lambda: server.ask("/srv/status").status == 503, "the web server knows that the service has ended")
    assert web.all() == {503}

    # The short timeout applies only from here on: before, it would give up a service that is merely slow.
    server.stop()
    server.environment["KESTAL_TIMEOUT"] = "1"
    server.start()
    os.kill(server.responder(), signal.SIGSTOP)
    assert web.all_at_once(then=lambda: None) == {504}

    documented = {(path, method): set(operation["responses"]) for path, method, operation in operations()}
    assert web.given == documented
