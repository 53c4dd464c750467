#!/usr/bin/env python3
"""Checks that each signature text of the product names the function that contains it.

usage: scripts/signatures.py FILE...

The text of KESTAL_SIGNATURE is what a function is called in its log lines. It is written by hand, so a copied
function can log under the name of the one it was copied from, and the compiler does not notice. For each
KESTAL_SIGNATURE("...") in the given files, this checks that it stands first in the body of a function, and that
the function's name and the types of its parameters are those of the text. The function may have parameters in
front of them: an object that its caller hands down is no part of the text. Prints each finding as FILE:LINE and
exits with 1 if there is one.
"""

import re
import sys

USE = re.compile(r"(?<!#define )\bKESTAL_SIGNATURE\((?P<text>[^;]*)\);")
TEXT = re.compile(r'(\s*"(?:[^"\\]|\\.)*")+\s*')
COMMENT = re.compile(r"//[^\n]*|/\*.*?\*/", re.DOTALL)
NAME = re.compile(r"[\w:~]+$")
# The name of a parameter, which follows its type and may be missing.
PARAMETER_NAME = re.compile(r"(?<=[\s&*])(?!(?:int|long|short|char|bool|double|float|unsigned)$)[a-z]\w*$")


def without_comments(source):
    """Returns the source with its comments replaced by blanks, so that line numbers stay the same."""
    return COMMENT.sub(lambda found: re.sub(r"[^\n]", " ", found.group()), source)


def split_parameters(function):
    """Returns a function's name and the types of its parameters in a normalised form."""
    opening = function.index("(")
    closing = function.rindex(")")
    name = NAME.search(function[:opening].strip()).group()
    parameters = [parameter.strip() for parameter in function[opening + 1 : closing].split(",")]
    types = [PARAMETER_NAME.sub("", parameter) for parameter in parameters if parameter]
    return name, [re.sub(r"\s|\bstd::|\b__cxx11::", "", each) for each in types]


def header_before(source, position):
    """Returns the head of the function whose body begins right before position; None if none does."""
    before = source[:position].rstrip()
    if not before.endswith("{"):
        return None
    head = re.split(r"[;{}]|^#.*$", before[:-1], flags=re.MULTILINE)[-1].strip()
    # Remove the initialisers of a constructor.
    head = re.sub(r"\)\s*:[^:].*", ")", head, flags=re.DOTALL)
    return head if "(" in head and ")" in head else None


def findings(path):
    with open(path, encoding="utf-8") as file:
        source = without_comments(file.read())
    for use in USE.finditer(source):
        line = source.count("\n", 0, use.start()) + 1
        if not TEXT.fullmatch(use["text"]):
            yield line, "the signature is no literal"
            continue
        text = "".join(re.findall(r'"((?:[^"\\]|\\.)*)"', use["text"]))
        head = header_before(source, use.start())
        if head is None:
            yield line, f'"{text}" does not stand first in the body of a function'
            continue
        function, types = split_parameters(head)
        named, named_types = split_parameters(text)
        if function != named or types[len(types) - len(named_types) :] != named_types:
            yield line, f'"{text}" stands in {" ".join(head.split())}'


def main(paths):
    found = False
    for path in paths:
        for line, finding in findings(path):
            print(f"{path}:{line}: {finding}", file=sys.stderr)
            found = True
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
