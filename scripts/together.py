#!/usr/bin/env python3
"""Says which sources a compiler can read together, as one source that includes them all.

usage: scripts/together.py LIMIT SOURCE...   prints the number of each source's group, separated by ";".
                                             No group has more than LIMIT sources.

Each source may define names for itself that another source, or a header that it includes, uses
differently. So a source is in no group in which an earlier source defines, outside of functions and
classes, a name that it mentions, or takes a name that it defines from a namespace ("using"). Names that
the project's headers declare mean the same in all sources, so only a second definition of them counts. So
does an alias ("using Name = ...") that two sources define in the same words. A source is read as
scripts/lint wants it formatted: in the first column, only definitions start.
"""

import functools
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
COMMENT = re.compile(r"//[^\n]*|/\*.*?\*/", re.DOTALL)
INCLUDE = re.compile(r'(?m)^#include "(.*)"')
# What mentions no name that a source defines outside of classes: includes, texts and members.
ELSEWHERE = re.compile(r'(?m)^#include.*|"(?:[^"\\\n]|\\.)*"|(?:\.|->)\s*\w+')
TEMPLATE_ARGUMENTS = re.compile(r"<[^<>;{}]*>")
DEFINITION = re.compile(r"(?m)^(?!using [\w:]+;|(?:using )?namespace\b)([A-Za-z_][^;={(\[]*?)\s*([;={(\[])")
TYPE = re.compile(r"(?:struct|class|enum|union)\s+(?:class\s+)?(\w+)")
# With the class of a member, but without namespaces, which have lower-case names.
LAST_WORD = re.compile(r"(?<![\w:])(?:[a-z_]\w*::)*((?:[A-Z]\w*::)*~?\w+)$")
ENUMERATORS = re.compile(r"(?m)^enum (?!class)[^{;]*\{([^}]*)\}")
ALIAS = re.compile(r"(?m)^using (\w+) = ([^;]*);")
BORROWED = re.compile(r"(?m)^using [\w:]*::(\w+);")
MACRO = re.compile(r"(?m)^#define (\w+)")
# Such as TEST, in the place of a definition.
USED_MACRO = re.compile(r"[A-Z0-9_]+")
KEYWORDS = {"delete", "operator", "static_assert", "void"}


def words(text):
    return set(re.findall(r"\b[A-Za-z_]\w*", text))


@functools.cache
def read(path):
    return COMMENT.sub("", path.read_text())


@functools.cache
def definitions(path):
    """Returns what a file defines or declares outside of functions and classes: the types that it only
    declares, the types that it defines, and all other names. A member has the name of its class before its
    own."""
    text = read(path)
    declared, types, others = set(), set(), set(MACRO.findall(text))
    before = None
    while before != text:
        before, text = text, TEMPLATE_ARGUMENTS.sub("", text)
    for head, end in DEFINITION.findall(text):
        if found := TYPE.match(head):
            (types if end == "{" else declared).add(found[1])
        elif (found := LAST_WORD.search(head)) and not USED_MACRO.fullmatch(found[1]):
            others.add(found[1])
    for enumerators in ENUMERATORS.findall(text):
        others |= words(enumerators)
    return declared, types, {name for name in others if name.split("::")[-1] not in KEYWORDS}


@functools.cache
def headers(path):
    """Returns the project's headers that a file names."""
    named = (folder / name for name in INCLUDE.findall(read(path)) for folder in (ROOT, path.parent))
    return {header for header in named if header.is_file()}


def declarations(source):
    """Returns the names that the project's headers that a source includes, one through another, declare, those
    of them that are not types, and which header decides the meaning of which name."""
    included, new = set(), headers(source)
    while new:
        included |= new
        new = set().union(*map(headers, new)) - included
    names, functions, decided = set(), set(), set()
    for header in included:
        declared, types, others = definitions(header)
        names |= declared | types | others
        functions |= others
        decided |= {(name, header) for name in types | others}
    return names, functions, decided


class Names:
    """The names of one source, or of all sources of a group."""

    def __init__(self, source=None):
        self.defined = set()
        self.own = set()
        self.declared = set()
        self.declarations = set()
        self.borrowed = set()
        self.mentioned = set()
        self.aliases = {}
        if source:
            text = read(source)
            declared, types, others = definitions(source)
            self.defined = declared | types | others
            self.declared, functions, self.declarations = declarations(source)
            self.own = (declared - self.declared) | types | (others - functions)
            self.borrowed = set(BORROWED.findall(text))
            self.mentioned = words(ELSEWHERE.sub("", text))
            self.aliases = dict(ALIAS.findall(text))

    def add(self, other):
        self.defined |= other.defined
        self.own |= other.own
        self.declared |= other.declared
        self.declarations |= other.declarations
        self.borrowed |= other.borrowed
        self.aliases |= other.aliases

    def clash(self, other):
        """Whether a source cannot be read after the sources of this group."""
        same = {name for name, meaning in self.aliases.items() if other.aliases.get(name) == meaning}
        known = {name for name, _ in self.declarations - other.declarations}
        new = {name for name, _ in other.declarations - self.declarations}
        return bool(
            (self.defined & other.defined) - same
            or (self.own & (other.mentioned | other.declared)) - same
            or self.declared & other.own
            or self.borrowed & (other.defined | new)
            or known & (other.borrowed | (other.declared & other.mentioned))
        )


def groups(sources, limit):
    """Puts each source into the first group that it fits into."""
    found = []
    for source in sources:
        names = Names(pathlib.Path(source))
        for group, known in found:
            if len(group) < limit and not known.clash(names):
                break
        else:
            group, known = [], Names()
            found.append((group, known))
        group.append(source)
        known.add(names)
    return [group for group, _ in found]


def main(limit, sources):
    numbers = {source: str(number) for number, group in enumerate(groups(sources, limit)) for source in group}
    print(";".join(numbers[source] for source in sources))


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    main(int(sys.argv[1]), sys.argv[2:])
