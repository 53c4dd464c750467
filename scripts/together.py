#!/usr/bin/env python3
"""Says which sources a compiler can read together, as one source that includes them all.

usage: scripts/together.py LIMIT SOURCE...   prints the number of each source's group, separated by ";".
                                             No group has more than LIMIT sources.

Each source may define names for itself that another source uses differently. So a source is in no group
in which an earlier source defines, outside of functions and classes, a name that it mentions, or takes a
name that it defines from a namespace ("using"). A source is read as scripts/lint wants it formatted: in
the first column, only definitions start.
"""

import pathlib
import re
import sys

COMMENT = re.compile(r"//[^\n]*|/\*.*?\*/", re.DOTALL)
TEMPLATE_ARGUMENTS = re.compile(r"<[^<>;{}]*>")
DEFINITION = re.compile(r"(?m)^(?!(?:using )?namespace\b)([A-Za-z_][^;={(\[]*?)\s*[;={(\[]")
TYPE = re.compile(r"(?:struct|class|enum|union)\s+(?:class\s+)?(\w+)")
LAST_WORD = re.compile(r"(?<![\w:])(\w+)$")
ENUMERATORS = re.compile(r"(?m)^enum (?!class)[^{;]*\{([^}]*)\}")
BORROWED = re.compile(r"(?m)^using [\w:]*::(\w+);")
MACRO = re.compile(r"(?m)^#define (\w+)")
# Such as TEST, in the place of a definition.
USED_MACRO = re.compile(r"[A-Z0-9_]+")


def words(text):
    return set(re.findall(r"\w+", text))


def names(source):
    """Returns the names that a source defines for itself, those that it takes from a namespace, and all
    words in it."""
    text = COMMENT.sub("", source.read_text())
    mentioned = words(text)
    defined = set(MACRO.findall(text))
    before = None
    while before != text:
        before, text = text, TEMPLATE_ARGUMENTS.sub("", text)
    for head in DEFINITION.findall(text):
        found = TYPE.match(head) or LAST_WORD.search(head)
        if found and not USED_MACRO.fullmatch(found[1]):
            defined.add(found[1])
    for enumerators in ENUMERATORS.findall(text):
        defined |= words(enumerators)
    header = source.with_suffix(".h")
    if header.exists():
        defined -= words(header.read_text())
    return defined, set(BORROWED.findall(text)), mentioned


def groups(sources, limit):
    """Puts each source into the first group that it fits into."""
    found = []
    for source in sources:
        defined, borrowed, mentioned = names(pathlib.Path(source))
        for group, taken, lent in found:
            if len(group) < limit and taken.isdisjoint(mentioned) and lent.isdisjoint(defined):
                break
        else:
            group, taken, lent = [], set(), set()
            found.append((group, taken, lent))
        group.append(source)
        taken |= defined
        lent |= borrowed
    return [group for group, _, _ in found]


def main(limit, sources):
    numbers = {source: str(number) for number, group in enumerate(groups(sources, limit)) for source in group}
    print(";".join(numbers[source] for source in sources))


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    main(int(sys.argv[1]), sys.argv[2:])
