"""The pages about the owner's settings, and the commented example, have all that the service reads."""

import re

import pytest
import tree

READ_BY_THE_SERVICE = set(re.findall(r'(?:Find\(members, |members\.Field\()"(\w+)"',
                                     (tree.ROOT / "bindings/linux/settings.cpp").read_text()))


@pytest.mark.parametrize(("page", "name"), [
    ("docs/man/kestal-board.5.scd", r"\*(\w+)\*"),
    ("docs/linux.md", r"`(\w+)`"),
])
def test_all_settings_are_described(page, name):
    assert "bridge" in READ_BY_THE_SERVICE
    assert READ_BY_THE_SERVICE - set(re.findall(name, (tree.ROOT / page).read_text())) == set()


def test_the_commented_example_has_all_settings():
    described = (tree.ROOT / "deploy/linux/device.json.example").read_text().split('"linux": {')[1].split("    },")[0]
    assert set(re.findall(r'(?m)^ +"(\w+)":', described)) == READ_BY_THE_SERVICE
