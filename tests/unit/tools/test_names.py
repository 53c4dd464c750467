"""The tools have the commands that the log, the platform and the man pages name."""

import re

import pytest

import surroundings

# Skips comments and character literals; adjacent string literals are one text.
TOKEN = re.compile(
    r"""//[^\n]* | /\*.*?\*/ | '(?:[^'\\\n]|\\.)' | (?P<text>(?:"(?:[^"\\\n]|\\.)*"\s*)+)""",
    re.VERBOSE | re.DOTALL,
)
MENTION = re.compile(r"\b(\w+cli) (\w+)")


def texts(source):
    for token in TOKEN.finditer(source):
        if token["text"] is not None:
            yield "".join(re.findall(r'"((?:[^"\\\n]|\\.)*)"', token["text"]))


def log_lines():
    """All texts of the product that send the reader to a tool."""
    found = []
    for folder in ("framework", "components", "service"):
        for file in sorted((surroundings.ROOT / folder).rglob("*")):
            if file.suffix in (".cpp", ".h"):
                found += [
                    text
                    for text in texts(file.read_text())
                    if re.search(r"\btry \w+cli|command line", text, re.IGNORECASE)
                ]
    return found


def test_texts_are_read_across_lines_and_not_from_comments():
    source = """
        Log("a \\"b\\" "
            "c", '"', "d");  // "e"
        /* "f" */ "g"
    """
    assert list(texts(source)) == ['a \\"b\\" c', "d", "g"]


def test_log_lines_that_name_a_tool_are_found():
    assert len(log_lines()) > 40


@pytest.mark.parametrize("line", log_lines())
def test_the_commands_in_log_lines_work(line):
    mentions = MENTION.findall(line)
    assert mentions, "it names no tool"
    for tool, command in mentions:
        assert tool in surroundings.NAMES
        assert command in surroundings.commands(tool)
        outcome = surroundings.run(tool, command, "--help")
        assert (outcome.returncode, outcome.stderr) == (0, b"")


@pytest.mark.parametrize("tool", surroundings.NAMES)
def test_log_lines_name_each_tool(tool):
    assert tool in {mention[0] for line in log_lines() for mention in MENTION.findall(line)}


@pytest.mark.parametrize(
    "tool, header, call",
    [
        ("sysintcli", "sysint.h", r"^int sys_((?:get|cellular)\w+)\("),
        ("webui_cli", "webui.h", r"^int webui_(\w+)\("),
    ],
)
def test_each_call_of_the_platform_has_a_command(tool, header, call):
    declared = re.findall(call, (surroundings.ROOT / "platform" / header).read_text(), re.MULTILINE)
    assert len(declared) >= 10
    assert set(declared) <= set(surroundings.commands(tool))


@pytest.mark.parametrize("tool", ["sysintcli", "webui_cli", "msgbus_cli"])
def test_the_man_page_describes_each_command(tool):
    page = (surroundings.ROOT / "docs" / "man" / f"{tool}.1.scd").read_text()
    section = page.partition("\n# COMMANDS\n")[2].partition("\n# ")[0]
    described = []
    for line in section.splitlines():
        if line.startswith("*"):
            described += re.findall(r"\*(\w+)\*", line)
    assert sorted(described) == sorted(surroundings.commands(tool))


def test_the_man_page_and_the_completion_of_kestal_sim_have_each_command():
    commands = surroundings.commands("kestal-sim")
    page = (surroundings.ROOT / "docs" / "man" / "kestal-sim.1.scd").read_text()
    section = page.partition("\n# COMMANDS\n")[2].partition("\n# ")[0]
    assert set(re.findall(r"(?m)^\*(\w+)\*", section)) == set(commands)
    completion = (surroundings.ROOT / "tools" / "completion" / "kestal-sim.bash").read_text()
    assert re.search(r"commands='(.*)'", completion).group(1).split() == commands


def test_the_page_about_device_documents_tells_the_entry_of_each_query():
    page = (surroundings.ROOT / "docs" / "simulator.md").read_text()
    section = page.partition("\n### sys\n")[2].partition("\n### ")[0]
    declared = re.findall(r"(?m)^int sys_(get\w+)\(", (surroundings.ROOT / "platform" / "sysint.h").read_text())
    assert set(declared) <= set(re.findall(r"`(\w+)`", section))


def test_the_man_page_of_the_recorder_and_the_completion_of_kestal_sim_have_each_option():
    shown = surroundings.run("kestal-record", "--help", check=True).stdout.decode()
    options = set(re.findall(r"--[a-z-]+", shown)) - {"--help"}
    assert len(options) > 8
    page = (surroundings.ROOT / "docs" / "man" / "kestal-record.1.scd").read_text()
    assert options <= set(re.findall(r"(?m)^\*(--[a-z-]+)\*", page))
    # The completion of kestal-record itself takes them from --help.
    completion = (surroundings.ROOT / "tools" / "completion" / "kestal-sim.bash").read_text()
    line = re.search(r"'(--for .*)'", completion)[1]
    assert options - {"--version"} <= set(line.split())


@pytest.mark.parametrize("tool", ["sysintcli", "webui_cli", "msgbus_cli"])
def test_the_man_page_is_built(tool):
    page = (surroundings.MAN_PAGES / f"{tool}.1").read_text()
    assert f'.TH "{tool}" "1"' in page
    for name in surroundings.commands(tool):
        assert name.replace("-", "\\-") in page
