"""scripts/lint reports badly formatted files, and runs clang-tidy only on sources not known to be clean."""

import json
import shutil
import subprocess

import pytest

from support import paths
from support.waiting import DEADLINE

LINT = paths.ROOT / "scripts" / "lint"


@pytest.fixture
def tree(work):
    """A source tree of two files that git tracks."""
    tree = work / "tree"
    (tree / "scripts").mkdir(parents=True)
    for name in ("lint", "signatures.py", "tidy.py", "together.py"):
        shutil.copy(paths.ROOT / "scripts" / name, tree / "scripts")
    (tree / "main.cpp").write_text("int main() { return 0; }\n")
    (tree / "script").write_text("#!/bin/sh\necho fine\n")
    (tree / ".gitignore").write_text("build\n")
    subprocess.run(["git", "init", "-q", tree], check=True, timeout=DEADLINE)
    return tree


def run(*command, path=None):
    environment = dict(paths.CLEAN_ENVIRONMENT)
    if path:
        environment["PATH"] = f"{path}:{environment['PATH']}"
    return subprocess.run(command, env=environment, capture_output=True, text=True, timeout=60)


def test_a_well_formed_tree_passes(tree):
    done = run(tree / "scripts" / "lint", "--form")
    assert done.returncode == 0, done.stdout + done.stderr


def play(folder, name, script):
    folder.mkdir(exist_ok=True)
    (folder / name).write_text(f"#!/bin/sh\n{script}\n")
    (folder / name).chmod(0o755)


def play_release(work, version, rest, tool="clang-format"):
    """The folder of a fake tool that is found as the tool of the reference release and prints `version`."""
    reference = LINT.read_text().split("\nreference=")[1].split("\n")[0]
    told = f'[ "$1" = --version ] && echo "{tool} version {version or reference}.0.0" && exit'
    play(work / "bin", f"{tool}-{reference}", f"{told}\n{rest}")
    return work / "bin"


def test_badly_formatted_files_are_reported(tree, work):
    (tree / "main.cpp").write_text("int  main(){return 0;}\n")
    (tree / "script").write_text("#!/bin/sh\necho $1\n")
    # The clang-format of this machine may be of another release.
    done = run(tree / "scripts" / "lint", "--form", path=play_release(work, "", 'exec clang-format "$@"'))
    assert done.returncode == 1
    assert "main.cpp:1" in done.stderr
    assert "SC2086" in done.stdout


def play_well_formed(work):
    """The folder of a fake clang-format that finds nothing."""
    return play_release(work, "", "exit 0")


@pytest.mark.parametrize(
    "function",
    [
        'void Device::Read(const std::string& key, unsigned int count)@"void Device::Read(const string&, unsigned int)"',
        'int Read(std::string* key) const@"int Read(" "std::__cxx11::string*) const"',
        'Device::Device(int size) : room(size)@"Device::Device(int)"',
        # A text that the caller passes is not part of the signature.
        'int Refresh(Cache& cache)@"int Refresh()"',
    ],
)
def test_a_signature_that_names_its_function_passes(tree, work, function):
    head, text = function.split("@")
    (tree / "main.cpp").write_text(f"int unused;\n\n{head} {{\n    KESTAL_SIGNATURE({text});\n}}\n")
    done = run(tree / "scripts" / "lint", "--form", path=play_well_formed(work))
    assert done.returncode == 0, done.stdout + done.stderr


@pytest.mark.parametrize(
    ("body", "finding"),
    [
        ('KESTAL_SIGNATURE("void Device::Write(int)");', '"void Device::Write(int)" stands in void Device::Read(int)'),
        ('KESTAL_SIGNATURE("void Read(int)");', '"void Read(int)" stands in void Device::Read(int)'),
        ('KESTAL_SIGNATURE("void Device::Read(bool)");', '"void Device::Read(bool)" stands in void Device::Read(int)'),
        ('Log();\n    KESTAL_SIGNATURE("void Device::Read(int)");', "does not stand first in the body of a function"),
        ("KESTAL_SIGNATURE(kRead);", "the signature is no literal"),
    ],
)
def test_a_signature_that_names_another_function_is_reported(tree, work, body, finding):
    (tree / "main.cpp").write_text(f"void Device::Read(int) {{\n    {body}\n}}\n")
    done = run(tree / "scripts" / "lint", "--form", path=play_well_formed(work))
    assert done.returncode == 1
    assert "main.cpp:" in done.stderr
    assert finding in done.stderr


def test_a_signature_is_checked_wherever_it_stands_in_its_line(tree, work):
    for line in ('KESTAL_SIGNATURE("void Write()");', 'void Read() { KESTAL_SIGNATURE("void Write()"); }'):
        (tree / "main.cpp").write_text(f"#define KESTAL_SIGNATURE(text) text\nvoid Read() {{\n{line}\n}}\n")
        done = run(tree / "scripts" / "lint", "--form", path=play_well_formed(work))
        assert done.returncode == 1
        assert done.stderr.count("main.cpp:") == 1
        assert 'main.cpp:3: "void Write()" stands in void Read()' in done.stderr


def test_a_tree_without_git_does_not_pass(tree):
    shutil.rmtree(tree / ".git")
    done = run(tree / "scripts" / "lint", "--form")
    assert done.returncode == 1
    assert "scripts/lint: git cannot list the files\n" in done.stderr


def test_findings_of_another_release_are_printed_but_do_not_fail_the_run(tree, work):
    finds = "echo 'main.cpp:1:1: error: code should be clang-formatted [-Wclang-format-violations]' >&2; exit 1"
    done = run(tree / "scripts" / "lint", "--form", path=play_release(work, 999, finds))
    assert done.returncode == 0, done.stdout + done.stderr
    assert "do not fail this run: the reference is release" in done.stderr


@pytest.mark.parametrize("failure", ["kill -s SEGV $$", "echo 'Error reading .clang-format' >&2; exit 1"])
def test_a_crash_of_another_release_fails_the_run(tree, work, failure):
    done = run(tree / "scripts" / "lint", "--form", path=play_release(work, 999, failure))
    assert done.returncode == 1
    assert "do not fail this run" not in done.stderr


@pytest.fixture
def build(tree, work):
    """The configured build of a.cpp, which includes a.h, and b.cpp. cmake and ninja are fakes."""
    build = tree / "build" / "debug"
    build.mkdir(parents=True)
    (build / "build.ninja").touch()
    for name in ("a", "b"):
        (tree / f"{name}.cpp").write_text("\n")
    (tree / "a.h").write_text("\n")
    commands = [
        {"directory": str(build), "file": str(tree / f"{name}.cpp"), "command": f"c++ -o {name}.o -c ../../{name}.cpp"}
        for name in ("a", "b")
    ]
    (build / "compile_commands.json").write_text(json.dumps(commands))
    listing = r"a.o: #deps 1, deps mtime 1 (VALID)\n    ../../a.h\n\nb.o: #deps 0, deps mtime 1 (VALID)\n"
    play(work / "bin", "ninja", f"printf '{listing}'")
    play(work / "bin", "cmake", "exit 0")
    return build


# A fake clang-tidy that checks a source, or the sources that it includes.
FIND_BAD = """for file do :; done
sources=$(sed -n 's/^#include "\\(.*\\.cpp\\)".*/\\1/p' "$file")
bad=$(grep -l bad ${sources:-$file})
[ -z "$bad" ] || { echo "$bad:1:1: error: it is bad [played-check]"; exit 1; }"""


@pytest.mark.parametrize(
    ("behaviour", "status"), [(FIND_BAD, 0), (f"{FIND_BAD}\nkill -s SEGV $$", 1), ("exit 1", 1)]
)
def test_findings_of_another_clang_tidy_do_not_fail_the_run_but_its_crash_does(tree, build, work, behaviour, status):
    (tree / "a.cpp").write_text("bad\n")
    play_release(work, "", "exit 0")
    tools = play_release(work, 999, behaviour, tool="clang-tidy")
    done = run(tree / "scripts" / "lint", path=tools)
    assert done.returncode == status, done.stdout + done.stderr
    assert ("do not fail this run" in done.stderr) == (status == 0)


@pytest.fixture
def tidy(build, work):
    """Runs a fake clang-tidy on the build; returns its exit status and the sources that it checked."""
    looked_at = work / "looked-at"
    version = '[ "$1" = --version ] && echo "version $VERSION" && exit'
    note = f'echo $(for each in ${{sources:-$file}}; do basename "$each"; done) >> {looked_at}'
    play(work / "bin", "clang-tidy", f"{version}\n{FIND_BAD.replace('bad=', f'{note}; bad=', 1)}")

    def look(*options, version="1"):
        looked_at.write_text("")
        done = subprocess.run(
            [build.parent.parent / "scripts" / "tidy.py", "clang-tidy", build, *options],
            env={"PATH": f"{work / 'bin'}:{paths.CLEAN_ENVIRONMENT['PATH']}", "VERSION": version},
            capture_output=True,
            text=True,
            timeout=60,
        )
        return done.returncode, looked_at.read_text().splitlines()

    return look


def test_clang_tidy_checks_changed_sources_again(tidy, tree):
    assert tidy() == (0, ["a.cpp b.cpp"])
    assert tidy() == (0, [])
    (tree / "b.cpp").write_text("int b;\n")
    assert tidy() == (0, ["b.cpp"])
    (tree / "a.h").write_text("int a;\n")
    assert tidy() == (0, ["a.cpp"])
    (tree / ".clang-tidy").write_text("Checks: '*'\n")
    assert tidy() == (0, ["a.cpp b.cpp"])
    assert tidy(version="2") == (0, ["a.cpp b.cpp"])
    assert tidy("--all", version="2") == (0, ["a.cpp b.cpp"])


def test_clang_tidy_reports_a_finding_until_it_is_corrected(tidy, tree):
    (tree / "a.cpp").write_text("bad\n")
    assert tidy() == (3, ["a.cpp b.cpp", "a.cpp", "b.cpp"])
    assert tidy() == (3, ["a.cpp"])
    (tree / "a.cpp").write_text("good\n")
    assert tidy() == (0, ["a.cpp"])


def test_a_finding_that_only_the_whole_group_has_does_not_count(tidy, tree, work):
    # Two sources of a group may define the same name.
    tool = work / "bin" / "clang-tidy"
    tool.write_text(tool.read_text().replace("[ -z", '[ "${sources:-one}" = one ] && exit\n[ -z'))
    (tree / "a.cpp").write_text("bad\n")
    assert tidy() == (0, ["a.cpp b.cpp", "a.cpp", "b.cpp"])
    assert tidy() == (0, [])


def test_sources_that_define_the_same_name_are_checked_apart(tidy, tree):
    for name in ("a", "b"):
        (tree / f"{name}.cpp").write_text("namespace {\nconst int kLimit = 1;\n}\n")
    code, looked_at = tidy()
    assert (code, sorted(looked_at)) == (0, ["a.cpp", "b.cpp"])


def test_sources_of_several_folders_are_checked_together(tidy, tree, build):
    commands = build / "compile_commands.json"
    commands.write_text(commands.read_text().replace("/b.cpp", "/sub/b.cpp"))
    (tree / "sub").mkdir()
    (tree / "b.cpp").rename(tree / "sub" / "b.cpp")
    assert tidy() == (0, ["a.cpp b.cpp"])


def test_sources_of_several_folders_with_other_settings_are_checked_apart(tidy, tree, build):
    test_sources_of_several_folders_are_checked_together(tidy, tree, build)
    (tree / "sub" / ".clang-tidy").write_text("Checks: played\n")
    (tree / "a.cpp").write_text("int a;\n")
    code, looked_at = tidy()
    assert (code, sorted(looked_at)) == (0, ["a.cpp", "b.cpp"])


@pytest.mark.parametrize(
    ("first", "second", "alone"),
    [
        ("int Sum(int left, int right) {", "    return Sum(1, 2);", True),
        ("std::map<int, std::function<void(int)>> kSteps = {", "int kSteps;", True),
        ("template <class T>\nT Get(const T& from) {", "int Get();", True),
        ("class Test : public Base {", "struct Test;", True),
        ("enum Answer {\n    kYes,\n};", "int kYes;", True),
        ("#define ROOM 12", "#define ROOM 13", True),
        ("using nlohmann::json;", "using json = nlohmann::ordered_json;", True),
        ("using nlohmann::json;", "using nlohmann::json;", False),
        ("using Text = std::string;", "using Text = std::string;", False),
        ("using Text = std::string;", "using Text = const char*;", True),
        ("void Device::Read() {", "void Device::Read() {", True),
        ("void binding::Read() {", "void Read() {", True),
        ("enum Answer {\n    kYes = 0,\n};", "int one = 0;", False),
        ("int Sum();", 'int two = other->Sum() + other.Sum() + Find("Sum");', False),
        ("int Sum();", "// Sum", False),
        ("int sum = 1;  // limit", "int limit;", False),
        ("void Device::Read() {\n    int count = 1;\n}", "int Read, count;", False),
        ("TEST(Sum, IsOne) {", "TEST(Sum, IsTwo) {", False),
        ("namespace binding {", "namespace binding {", False),
    ],
)
def test_a_source_that_mentions_a_name_of_another_source_is_read_apart(work, first, second, alone):
    for name, text in (("a", first), ("b", second)):
        (work / f"{name}.cpp").write_text(f"{text}\n")
    done = run(paths.ROOT / "scripts" / "together.py", "9", work / "a.cpp", work / "b.cpp")
    assert done.stdout == ("0;1\n" if alone else "0;0\n")


@pytest.mark.parametrize(
    ("header", "first", "second", "alone"),
    [
        ("int Sum();", "int Sum() {\n}", "int two = Sum();", False),
        ("int Sum();", "int Sum() {\n}", '#include "a.h"\nint Sum() {\n}', True),
        ("int Sum(int);", "int two;", '#include "b.h"\nint three = Sum();', True),
        ("struct Sum;", "int two;", '#include "b.h"\nint three = Sum();', False),
        ("int Sum();", "int two;", "static int Sum() {\n}", True),
        ("", "static int Sum() {\n}", '#include "b.h"\nint three;', True),
    ],
)
def test_names_that_headers_declare_belong_to_all_sources(work, header, first, second, alone):
    (work / "a.h").write_text(f"{header}\n")
    (work / "a.cpp").write_text(f'#include "a.h"\n{first}\n')
    (work / "b.h").write_text("int Sum();\n")
    (work / "b.cpp").write_text(f"{second}\n")
    done = run(paths.ROOT / "scripts" / "together.py", "9", work / "a.cpp", work / "b.cpp")
    assert done.stdout == ("0;1\n" if alone else "0;0\n")


def test_sources_with_other_macros_and_folders_are_checked_together(tidy, build, work):
    commands = json.loads((build / "compile_commands.json").read_text())
    for entry, option in zip(commands, ("-DFIRST=1 -DBOTH=1", "-Isecond -DBOTH=1"), strict=True):
        entry["command"] += f" {option}"
    (build / "compile_commands.json").write_text(json.dumps(commands))
    note = f'grep -ho "[-][DI][^ \\"]*" "$3/compile_commands.json" >> {work / "looked-at"}\n'
    (work / "bin" / "clang-tidy").open("a").write(note)
    assert tidy() == (0, ["a.cpp b.cpp", "-DFIRST=1", "-DBOTH=1", "-Isecond"])


def test_sources_that_give_a_macro_different_values_are_checked_apart(tidy, build):
    commands = json.loads((build / "compile_commands.json").read_text())
    for number, entry in enumerate(commands):
        entry["command"] += f" -DNUMBER={number}"
    (build / "compile_commands.json").write_text(json.dumps(commands))
    code, looked_at = tidy()
    assert (code, sorted(looked_at)) == (0, ["a.cpp", "b.cpp"])


def test_a_group_of_sources_is_checked_with_the_settings_of_its_folder(tidy, tree, build, work):
    commands = build / "compile_commands.json"
    commands.write_text(commands.read_text().replace(f"{tree}/", f"{tree}/sub/").replace("../../", "../../sub/"))
    shutil.copytree(tree, tree / "sub", ignore=lambda *_: {"sub", "build", "scripts", ".git"})
    (tree / "sub" / ".clang-tidy").write_text("Checks: played\n")
    (work / "bin" / "clang-tidy").open("a").write(f'cat "$(dirname "$file")/.clang-tidy" >> {work / "looked-at"}\n')
    assert tidy() == (0, ["a.cpp b.cpp", "Checks: played"])


@pytest.mark.parametrize("damaged", ["", '{"a.cpp": "12', "[]"])
def test_a_damaged_record_of_clean_sources_is_ignored(tidy, build, damaged):
    assert tidy() == (0, ["a.cpp b.cpp"])
    (build / "clang-tidy" / "clean.json").write_text(damaged)
    assert tidy() == (0, ["a.cpp b.cpp"])
    assert tidy() == (0, [])
