"""No file includes a file that its folder must not depend on, and no folders include each other in a circle.

The rules are the table of docs/architecture.md under "What may know what".
"""

import fnmatch
import os.path
import re

import pytest
import tree

PAGE = tree.ROOT / "docs" / "architecture.md"
HEADER = "| Folder | May include | Because |"
INCLUDE = re.compile(r'\s*#\s*include\s*(?P<mark>["<])(?P<name>[^">]+)[">]')
# Headers that the build generates.
GENERATED = {"declared_calls.h"}


def read_rules():
    """Each folder of the table, with the folders from which its files may include others."""
    rules = {}
    lines = iter(PAGE.read_text().splitlines())
    assert HEADER in lines and next(lines) == "|---|---|---|"
    while (row := next(lines, "")).startswith("|"):
        folders, allowed, reason = (cell.strip() for cell in row.strip("|").split("|"))
        assert reason, row
        for folder in re.findall(r"`([^`]+)`", folders):
            assert folder not in rules, f"two rows are about {folder}"
            rules[folder] = ["*"] if allowed == "everything" else re.findall(r"`([^`]+)`", allowed)
    return rules


RULES = read_rules()


def covers(pattern, file):
    return file.startswith(f"{pattern}/") or fnmatch.fnmatchcase(file, pattern)


def folder_of(file):
    """The most specific row of the table that covers a file; None if there is none."""
    return max((folder for folder in RULES if covers(folder, file)), key=len, default=None)


def includes(root, files):
    """Yields (file, line number, included file) for each include of a file of the tree."""
    for file in sorted(files):
        for number, line in enumerate((root / file).read_text().splitlines(), 1):
            if not (match := INCLUDE.match(line)):
                continue
            name = match["name"]
            beside = os.path.normpath(os.path.join(os.path.dirname(file), name))
            if match["mark"] == '"' and beside in files:
                yield file, number, beside
            elif name in files:
                yield file, number, name
            elif match["mark"] == '"' and name not in GENERATED:
                yield file, number, None


def forbidden(root, files):
    """Reports each include that the table does not allow, one line for each."""
    for file, number, included in includes(root, files):
        folder = folder_of(file)
        if folder is None:
            yield f"{file}:{number}: no row is about {file}"
        elif included is None:
            yield f"{file}:{number}: what is included is no file of the tree"
        elif folder_of(included) != folder and not any(covers(each, included) for each in RULES[folder]):
            yield f"{file}:{number}: {folder} -> {folder_of(included) or os.path.dirname(included)} ({included})"


def circles(root, files):
    """Reports each include that is part of a circle between folders, one line for each. A folder and its
    subfolders count as one, because the outer folder calls the inner ones, which use its helpers."""
    arrows = {}
    for file, number, included in includes(root, files):
        here, there = os.path.dirname(file), os.path.dirname(included or file)
        if not covers(here, f"{there}/") and not covers(there, f"{here}/"):
            arrows.setdefault((here, there), f"{file}:{number}: {here} -> {there} ({included})")
    reached = {here: set() for here, _ in arrows}
    for here in reached:
        todo = [here]
        while todo:
            now = todo.pop()
            for a, b in arrows:
                if a == now and b not in reached[here]:
                    reached[here].add(b)
                    todo.append(b)
    return [line for (here, there), line in sorted(arrows.items()) if here in reached.get(there, ())]


SOURCES = {name for name in tree.files() if name.endswith((".cpp", ".h", ".hpp"))}


def test_every_include_is_allowed():
    assert len(SOURCES) > 100
    told = list(forbidden(tree.ROOT, SOURCES))
    assert not told, "\n".join(["not allowed:", *told])


def test_no_folders_beside_each_other_are_in_a_circle():
    told = circles(tree.ROOT, SOURCES)
    assert not told, "\n".join(["in a circle:", *told])


def test_every_row_is_about_files_that_exist():
    for folder in RULES:
        assert any(folder_of(file) == folder for file in SOURCES), folder
    for pattern in {each for allowed in RULES.values() for each in allowed}:
        assert any(covers(pattern, file) for file in SOURCES), pattern


def plant(root, files):
    """Makes files, each of which includes another one in its second line, and returns their names."""
    for file, included in files:
        for name in (file, included):
            (root / name).parent.mkdir(parents=True, exist_ok=True)
            (root / name).touch()
        (root / file).write_text(f'// A comment.\n#include "{included}"\n')
    return {name for pair in files for name in pair}


@pytest.mark.parametrize(
    ("file", "included", "arrow"),
    [
        ("platform/webui.h", "framework/log.h", "platform -> framework"),
        ("framework/log.h", "components/status/status_texts.h", "framework -> components/status"),
        ("components/band/technology.h", "components/status/status_texts.h", "components/band -> components/status"),
        ("components/status/status_texts.h", "service/process.h", "components/status -> service"),
        ("service/main.cpp", "bindings/log.h", "service -> bindings/log.h"),
        ("bindings/device/calls.h", "bindings/posix/datagram.h", "bindings/device -> bindings/posix"),
        ("bindings/posix/datagram.h", "bindings/device/calls.h", "bindings/posix -> bindings/device"),
        ("bindings/posix/datagram.h", "framework/log.h", "bindings/posix -> framework"),
        ("bindings/document/node.h", "bindings/posix/datagram.h", "bindings/document -> bindings/posix"),
        ("bindings/document/node.h", "bindings/simulator/device_file.h", "bindings/document -> bindings/simulator"),
        ("bindings/document/node.h", "bindings/recording/recording.h", "bindings/document -> bindings/recording"),
        ("tests/unit/bindings/posix/x_test.cpp", "bindings/simulator/device_file.h",
         "tests/unit/bindings/posix -> bindings/simulator"),
        ("tools/sysintcli.cpp", "bindings/simulator/device_file.h", "tools -> bindings/simulator"),
        ("tests/unit/service/x_test.cpp", "bindings/device/calls.h", "tests/unit/service -> bindings/device"),
    ],
)
def test_an_include_that_is_not_allowed_is_reported_with_file_line_and_arrow(tmp_path, file, included, arrow):
    files = plant(tmp_path, [(file, included)])
    assert list(forbidden(tmp_path, files)) == [f"{file}:2: {arrow} ({included})"]


def test_an_include_that_is_allowed_is_not_reported(tmp_path):
    files = plant(tmp_path, [("service/main.cpp", "framework/log.h"), ("framework/log.h", "platform/toru_dbg.h")])
    assert not list(forbidden(tmp_path, files))
    assert not circles(tmp_path, files)


def test_includes_in_angle_brackets_are_checked_too(tmp_path):
    files = plant(tmp_path, [("framework/log.h", "service/process.h")])
    (tmp_path / "framework/log.h").write_text("#include <service/process.h>\n#include <string>\n")
    assert list(forbidden(tmp_path, files)) == ["framework/log.h:1: framework -> service (service/process.h)"]


def test_a_folder_without_a_row_and_a_missing_file_are_reported(tmp_path):
    files = plant(tmp_path, [("somewhere/a.cpp", "platform/webui.h"), ("service/main.cpp", "gone.h")]) - {"gone.h"}
    assert list(forbidden(tmp_path, files)) == [
        "service/main.cpp:2: what is included is no file of the tree",
        "somewhere/a.cpp:2: no row is about somewhere/a.cpp",
    ]


def test_folders_of_one_row_that_include_each_other_are_reported(tmp_path):
    circle = [("tests/a/x.h", "tests/b/y.h"), ("tests/b/y.h", "tests/c/z.h"), ("tests/c/z.h", "tests/a/x.h")]
    files = plant(tmp_path, [*circle, ("tests/d/w.h", "tests/a/x.h")])
    assert circles(tmp_path, files) == [
        "tests/a/x.h:2: tests/a -> tests/b (tests/b/y.h)",
        "tests/b/y.h:2: tests/b -> tests/c (tests/c/z.h)",
        "tests/c/z.h:2: tests/c -> tests/a (tests/a/x.h)",
    ]
