"""All files, folders and headings that the pages name exist."""

import fnmatch
import os.path
import re

import pytest
import tree

PAGES = sorted(name for name in tree.files() if name.endswith(".md"))
FOLDERS = sorted({name.split("/")[0] for name in tree.files() if "/" in name})
# A path from the root of the tree, anywhere in a text. After a slash or a dot it is part of another path.
PATH = re.compile(rf"(?<![\w/.@-])(?:\./)?((?:{'|'.join(map(re.escape, FOLDERS))})/[\w./*{{}},-]*)")
# The name of a file, without its folder.
NAME = re.compile(r"`([\w.*-]+\.(?:cpp|h|hpp|py|js|md|cmake|nft|scd))`")
LINK = re.compile(r"\]\(([^)\s]+)\)")
# Files that a page asks its reader to create.
EXAMPLES = {"hardware.cpp"}


def alternatives(path):
    """a{b,c}d stands for abd and acd."""
    if match := re.match(r"(.*?)\{([^{}]*)\}(.*)", path):
        return [each for choice in match[2].split(",") for each in alternatives(match[1] + choice + match[3])]
    return [path]


def exists(path, files):
    """Whether there is such a file or folder. Capital letters, as in NAME.po, stand for anything."""
    if path in files:
        return True
    pattern = re.sub(r"(?<![A-Za-z])[A-Z]{3,}(?![A-Za-z])", "*", path).rstrip("/")
    return any(fnmatch.fnmatchcase(each, pattern) or fnmatch.fnmatchcase(each, f"{pattern}/*") for each in files)


def headings(text):
    """The anchors of a page's headings."""
    titles = re.findall(r"(?m)^#+ (.*)$", re.sub(r"(?ms)^```.*?^```$", "", text))
    return {re.sub(r"[^\w\- ]", "", title.lower()).replace(" ", "-") for title in titles}


def missing(page, text, files, read):
    """Yields what a page names but does not exist; read() returns the text of another page."""
    for named in PATH.findall(text):
        # A dot or comma at the end belongs to the sentence; a comma may also separate two paths.
        for path in alternatives(named.rstrip(".,")):
            if not exists(path, files):
                yield path
    for name in NAME.findall(text):
        if name not in EXAMPLES and not any(fnmatch.fnmatchcase(os.path.basename(each), name) for each in files):
            yield name
    for link in LINK.findall(text):
        if re.match(r"\w+:", link):
            continue
        target, _, anchor = link.partition("#")
        path = os.path.normpath(os.path.join(os.path.dirname(page), target)) if target else page
        if not exists(path, files):
            yield link
        elif anchor and anchor not in headings(text if path == page else read(path)):
            yield link


def read(path):
    return (tree.ROOT / path).read_text()


@pytest.mark.parametrize("page", PAGES)
def test_all_that_a_page_names_exists(page):
    told = sorted(set(missing(page, read(page), tree.files(), read)))
    assert not told, "\n".join([f"{page} names what does not exist:", *told])


FILES = {"docs/page.md", "docs/other.md", "service/main.cpp", "catalogue/de.po", "scripts/run"}


@pytest.mark.parametrize(
    ("text", "told"),
    [
        ("`service/main.cpp`, service/, ./scripts/run and catalogue/NAME.po.", []),
        ("    service/main.{cpp,h}", ["service/main.h"]),
        ("See service/process.cpp.", ["service/process.cpp"]),
        ("/usr/share/docs/none, build/service/none and http://host/service/none", []),
        ("`main.cpp` and `m*.cpp` but `other.cpp`", ["other.cpp"]),
        ("[other](other.md#a-title) [this](#the-page) [site](https://host/)", []),
        ("[other](other.md#no-title) [gone](gone.md) [this](#nothing)", ["other.md#no-title", "gone.md", "#nothing"]),
    ],
)
def test_names_without_a_file_are_reported(text, told):
    page = f"# The page\n\n{text}\n"
    assert list(missing("docs/page.md", page, FILES, lambda _: "## A `title`!\n")) == told
