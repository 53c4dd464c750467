"""The requests of the clients of a soak, and the checks of their answers."""

import dataclasses
import json
from collections.abc import Callable

from support import contract

AGENT = "soak"
# Points at which a client disconnects without waiting for the whole answer.
IN_REQUEST, IN_BODY, AFTER_REQUEST, IN_ANSWER = range(1, 5)


@dataclasses.dataclass(frozen=True)
class Kind:
    name: str
    weight: int
    request: bytes
    problem: Callable = None
    """problem(status, type, body) returns what is wrong with an answer, or None."""
    leaves: int = 0
    """Where the client disconnects; 0 if it waits for the answer."""


def unique(pairs):
    result = dict(pairs)
    if len(result) < len(pairs):
        raise ValueError("duplicate key")
    return result


def answers(schema, login):
    """Returns a check of answers: they must follow the contract and have this login status."""

    def problem(status, content_type, body):
        if status != 200:
            return f"status {status}"
        if content_type != "application/json":
            return f"content type {content_type}"
        try:
            answer = json.loads(body, object_pairs_hook=unique)
        except ValueError as error:
            return f"no JSON: {error}"
        violations = contract.violations(schema, answer)
        if violations:
            return violations[0]
        if answer["loginStatus"] != login:
            return f"loginStatus {answer['loginStatus']}"
        return None

    return problem


def is_refused(status, _type, _body):
    return None if status == 403 else f"status {status} instead of 403"


def request(target, *headers, method="GET", body=b""):
    lines = [f"{method} {target} HTTP/1.1", "Host: 127.0.0.1", *headers]
    if body:
        lines.append(f"Content-Length: {len(body)}")
    return "\r\n".join([*lines, "", ""]).encode() + body


def kinds(cookie, foreign_cookie):
    """Returns all kinds of requests. The cookies are those of a session of this client and of another one."""
    agent = f"User-Agent: {AGENT}"
    session = (f"Cookie: {cookie}", agent)
    status = answers(contract.STATUS_ANSWER, 0)
    action = answers(contract.ACTION_ANSWER, 0)
    ask = request("/srv/status")
    post = request("/srv/status", method="POST", body=b"a=1&b=" + b"2" * 1000)
    return [
        Kind("status", 440, ask, status),
        Kind("notification", 220, request("/srv/notification"), answers(contract.NOTIFICATION_ANSWER, 0)),
        Kind("connect", 15, request("/srv/connect"), action),
        Kind("disconnect", 15, request("/srv/disconnect", "Content-Length: 0", method="POST"), action),
        Kind("status, logged in", 80, request("/srv/status", *session), answers(contract.STATUS_ANSWER, 1)),
        Kind("connect, logged in", 5, request("/srv/connect", *session), answers(contract.ACTION_ANSWER, 1)),
        Kind("status, foreign session", 40, request("/srv/status", f"Cookie: {foreign_cookie}", agent), status),
        Kind("status, invalid session", 20, request("/srv/status", "Cookie: torusess=0123", agent), status),
        Kind("unknown operation", 10, request("/srv/nothing"), action),
        Kind("refused action", 5, request("/srv/connect", "Sec-Fetch-Site: cross-site"), is_refused),
        Kind("refused body", 30, post, is_refused),
        Kind("left in its request", 20, ask[:-9], leaves=IN_REQUEST),
        Kind("left in its body", 20, post[:-500], leaves=IN_BODY),
        Kind("left after its request", 30, ask, leaves=AFTER_REQUEST),
        Kind("left in its answer", 20, ask, leaves=IN_ANSWER),
    ]
