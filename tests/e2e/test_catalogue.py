"""The texts for the user are complete in every language, and the catalogue has no unused ones."""

import json
import re
import subprocess

import pytest

from support import paths
from support.waiting import DEADLINE

FOLDER = paths.ROOT / "catalogue"
LANGUAGES = sorted(path.stem for path in FOLDER.glob("*.po"))
ENGLISH = "en_US"
CODE = ("framework", "components", "service")
MESSAGE_ID = re.compile(r"[a-z][a-z0-9]*(_[a-z0-9]+){2,}")
# The number of bytes for an id in the record of a notification or page.
ROOM = {"titleId": 49, "labelId": 49, "textId": 285}
PAGE_TITLE_ROOM = 127


def translations(language):
    """All (id, text) of a language in the order of the file, without the header."""
    pairs = []
    flags = ""
    for line in (FOLDER / f"{language}.po").read_text(encoding="utf-8").splitlines():
        if line.startswith("#,"):
            flags += line
        elif line.startswith("#") or not line:
            continue
        else:
            keyword, text = re.fullmatch(r'(?:(\w+) )?"(.*)"', line).groups()
            text = text.replace('\\"', '"')
            if keyword == "msgid":
                pairs.append([text, None])
            elif keyword == "msgstr":
                assert "fuzzy" not in flags, f"{language}: {pairs[-1][0]} is marked as fuzzy"
                flags = ""
                pairs[-1][1] = text
            else:
                assert keyword is None, f"{language}: unknown keyword {keyword}"
                pairs[-1][0 if pairs[-1][1] is None else 1] += text
    header, *rest = pairs
    assert header[0] == ""
    return [tuple(pair) for pair in rest]


def ids_of_the_code():
    found = set()
    for folder in CODE:
        for file in (paths.ROOT / folder).rglob("*.[ch]*"):
            # Join adjacent string literals.
            text = re.sub(r'"\s*"', "", file.read_text())
            found |= {literal for literal in re.findall(r'"([^"\n]*)"', text) if MESSAGE_ID.fullmatch(literal)}
    # Names of calls, which appear in log lines, have the same form as ids but are none.
    return found - set(re.findall(r"\bwebui_get_\w+(?=\()", (paths.ROOT / "platform" / "webui.h").read_text()))


def entries(value, key, path=()):
    """All values of a key anywhere in the document, each with its path."""
    if isinstance(value, dict):
        for name, inner in value.items():
            if name == key:
                yield path, inner
            yield from entries(inner, key, (*path, name))
    elif isinstance(value, list):
        for inner in value:
            yield from entries(inner, key, path)


def ids_of_the_devices():
    """Every (kind, id, whether it belongs to a page) in the shipped device documents."""
    found = set()
    for file in paths.DEVICES.glob("*.json"):
        document = json.loads(file.read_text())
        for kind in ROOM:
            for path, message in entries(document, kind):
                if message:
                    found.add((kind, message, "uriData" in path))
    return found


def placeholders(text):
    return sorted(re.findall(r"%\d+", text))


def test_exactly_the_texts_that_are_shown_have_translations():
    shown = ids_of_the_code() | {message for _, message, _ in ids_of_the_devices()}
    assert "system_service_failed_operation_error_text" in shown
    assert {message for message, _ in translations(ENGLISH)} == shown


def test_ids_fit_the_records_that_hold_them():
    used = ids_of_the_devices()
    assert {kind for kind, _, _ in used} == set(ROOM)
    for kind, message, of_a_page in used:
        assert len(message.encode()) <= (PAGE_TITLE_ROOM if of_a_page else ROOM[kind]), message


@pytest.mark.parametrize("language", LANGUAGES)
def test_each_language_has_the_same_texts_in_the_same_order(language):
    assert [message for message, _ in translations(language)] == [message for message, _ in translations(ENGLISH)]


@pytest.mark.parametrize("language", LANGUAGES)
def test_no_translation_is_missing_or_has_other_placeholders(language):
    english = dict(translations(ENGLISH))
    for message, text in translations(language):
        assert text.strip("  "), message
        assert placeholders(text) == placeholders(english[message]), message
        assert not re.search(r"%[1-4]\d", text), message


@pytest.mark.parametrize("language", LANGUAGES)
def test_a_text_reads_the_same_as_html_and_as_plain_text(language):
    for message, text in translations(language):
        assert not re.search(r"[<>&]", text), message


@pytest.mark.parametrize("language", LANGUAGES)
def test_a_link_can_follow_the_text_of_a_notification(language):
    end = "。" if language == "ja" else ". "
    texts = dict(translations(language))
    for kind, message, _ in ids_of_the_devices():
        if kind == "textId":
            assert texts[message].endswith(end), message


@pytest.mark.parametrize("language", LANGUAGES)
def test_the_compiler_accepts_every_translation(language, work):
    done = subprocess.run(
        [str(FOLDER / "compile"), str(FOLDER / f"{language}.po"), str(work / "webui.mo")],
        capture_output=True,
        text=True,
        timeout=DEADLINE,
    )
    assert (done.returncode, done.stdout + done.stderr) == (0, "")


@pytest.mark.parametrize(
    ("damage", "complaint"),
    [
        (lambda text: text + b'msgid "a_b_text"\nmsgstr "x"\n\nmsgid "a_b_text"\nmsgstr "y"\n', "duplicate"),
        (lambda text: text.replace(b'"Language: en_US\\n"\n', b""), "header field 'Language' missing"),
        (lambda text: text + b'msgid "a_b_text"\nmsgstr "\xff"\n', "invalid multibyte sequence"),
        (lambda text: text + b'msgid "a_b_text"\nmsgstr "x\n', "end-of-line within string"),
    ],
)
def test_the_compiler_refuses_damaged_and_dubious_translations(work, damage, complaint):
    po = work / "en_US.po"
    po.write_bytes(damage((FOLDER / f"{ENGLISH}.po").read_bytes() + b"\n"))
    done = subprocess.run(
        [str(FOLDER / "compile"), str(po), str(work / "webui.mo")], capture_output=True, text=True, timeout=DEADLINE
    )
    assert done.returncode != 0
    assert complaint in done.stderr
    assert not (work / "webui.mo").exists()
