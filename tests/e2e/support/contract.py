"""The contract for web developers, docs/api/openapi.yaml, and services that are checked against it."""

import json
import pathlib
import shutil
import tempfile

import jsonschema
import pytest
import yaml

from support import paths, sanitizers
from support.responder import Responder
from support.sessions import open_session


class UniqueKeys(yaml.SafeLoader):
    """Refuses equal keys in one mapping; by default, the later one would silently win."""

    def construct_mapping(self, node, deep=False):
        keys = [self.construct_object(key, deep) for key, _ in node.value]
        assert len(keys) == len(set(keys)), f"duplicate keys: {node.start_mark}"
        return super().construct_mapping(node, deep)


CONTRACT = yaml.load((paths.ROOT / "docs" / "api" / "openapi.yaml").read_text(), UniqueKeys)
SCHEMAS = CONTRACT["components"]["schemas"]
STATUS = SCHEMAS["StatusData"]["properties"]
NOTIFICATION = SCHEMAS["Notification"]["properties"]

DEVICES = sorted(path.stem for path in paths.DEVICES.glob("*.json"))
ONE_SIM = "default"
TWO_SIMS = "dual-sim-slot-2"
FIRST_OF_TWO = "dual-sim-empty-slot"
NOTHING_OF_ONE_SIM = "everything-failing"
NOTHING_OF_TWO_SIMS = "every-group-failing"


def validator(schema):
    # A schema that contains the components, so that the references in it can be resolved.
    return jsonschema.Draft202012Validator({**schema, "components": CONTRACT["components"]})


def reference(name):
    return {"$ref": f"#/components/schemas/{name}"}


STATUS_ANSWER = validator(reference("StatusAnswer"))
NOTIFICATION_ANSWER = validator(reference("NotificationAnswer"))
ACTION_ANSWER = validator(reference("ActionAnswer"))


def violations(schema, instance):
    found = []
    for error in schema.iter_errors(instance):
        found.append(f"{error.json_path}: {error.message} ({'/'.join(map(str, error.absolute_schema_path))})")
    return found


def unique(pairs):
    keys = [key for key, _ in pairs]
    assert len(keys) == len(set(keys)), f"duplicate keys: {keys}"
    return dict(pairs)


def parse(answer):
    assert answer.complete and answer.status == 200
    return json.loads(answer.body, object_pairs_hook=unique)


def shipped(name):
    return json.loads((paths.DEVICES / f"{name}.json").read_text())


class Asker:
    """A service that checks each of its answers against the contract."""

    def __init__(self, folder, document):
        self.responder = Responder(folder)
        self.write(document)
        self.responder.start()
        self.seen = {key: set() for key in STATUS}

    def write(self, document):
        self.responder.device.write(json.dumps(document).encode())

    def ask(self, target, schema, **parameters):
        answer = parse(self.responder.ask(target, **parameters))
        assert not violations(schema, answer), answer
        return answer

    def status(self, **parameters):
        data = self.ask("/srv/status", STATUS_ANSWER, **parameters)["statusData"]
        for key, value in data.items():
            self.seen[key].add(value)
        return data

    def notifications(self, **parameters):
        return self.ask("/srv/notification", NOTIFICATION_ANSWER, **parameters)["notificationsList"]

    def act(self, name, **parameters):
        return self.ask(f"/srv/{name}", ACTION_ANSWER, **parameters)


@pytest.fixture(scope="module")
def asker():
    """Makes services that are stopped after the tests of the file."""
    folder = pathlib.Path(tempfile.mkdtemp(prefix="kestal-test-"))
    made = []

    def make(document):
        (folder / str(len(made))).mkdir()
        made.append(Asker(folder / str(len(made)), document))
        return made[-1]

    yield make
    for each in made:
        each.responder.stop()
    sanitizers.check(folder)
    shutil.rmtree(folder)


@pytest.fixture(scope="module")
def shown(asker):
    """The answers of each shipped device, read only once: its states and its notifications."""
    answers = {}

    def show(name):
        if name not in answers:
            device = asker(shipped(name))
            session = {"HTTP_COOKIE": open_session(device.responder), "HTTP_USER_AGENT": "test"}
            states = [device.status(), device.status(), device.status(**session)]
            answers[name] = states, device.notifications() + device.notifications(**session)
            assert device.act("disconnect") == {"loginStatus": 0}
            assert device.act("connect", **session) == {"loginStatus": 1}
            device.responder.stop()
        return answers[name]

    return show


def is_within(state):
    return STATUS_ANSWER.is_valid({"loginStatus": 0, "statusData": state})


def walk(node, path=()):
    yield path, node
    children = node.items() if isinstance(node, dict) else enumerate(node) if isinstance(node, list) else ()
    for key, child in children:
        yield from walk(child, (*path, key))


def resolve(node):
    while "$ref" in node:
        target = CONTRACT
        for step in node["$ref"].removeprefix("#/").split("/"):
            target = target[step]
        node = target
    return node


def operations():
    for path, item in CONTRACT["paths"].items():
        for method in ("get", "post"):
            if method in item:
                yield path, method, item[method]
