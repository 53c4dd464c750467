#!/usr/bin/env python3
"""Writes the list of all calls that the headers of platform/ declare: declared_calls.py OUT HEADER..."""

import pathlib
import re
import sys

WORD = r"[A-Za-z_]\w*"
# Words that may stand before the type of a declaration.
DECORATION = r"^(?:(?:static|virtual|explicit|inline|constexpr)\s+|\[\[[^\]]*\]\]\s*)+"


def code_of(header):
    """The text without comments and preprocessor lines, and with single spaces as its only white space."""
    text = re.sub(r"//[^\n]*|/\*.*?\*/", " ", header.read_text(), flags=re.DOTALL)
    return " ".join(re.sub(r"^\s*#(?:.*\\\n)*.*$", " ", text, flags=re.MULTILINE).split())


def statements(code):
    """(head, body) of each statement; the body is the text in braces, or None."""
    start = position = 0
    while position < len(code):
        if code[position] == ";":
            yield code[start:position].strip(), None
            start = position + 1
        elif code[position] == "{":
            depth, end = 1, position + 1
            while depth:
                depth += {"{": 1, "}": -1}.get(code[end], 0)
                end += 1
            yield code[start:position].strip(), code[position + 1 : end - 1]
            start, position = end, end - 1
        position += 1


def calls(code, scope="", language="cpp"):
    """(name, type, language) of each function that is declared for callers."""
    public = not scope
    for head, body in statements(code):
        while label := re.match(r"(public|private|protected) ?: ?(?!:)", head):
            public = label[1] == "public"
            head = head[label.end() :]
        # A template is defined in its header, so that no binding defines it.
        if re.match(r"(enum|struct|static_assert|using|constexpr|template)\b", head) or not head:
            continue
        if head.startswith('extern "C"') and body is not None:
            yield from calls(body, scope, "c")
        elif match := re.match(rf"class ({WORD})", head):
            if body is not None:
                yield from calls(body, match[1], language)
        elif public and "(" in head and "~" not in head and not head.endswith("= delete"):
            match = re.match(rf"(.*?)({WORD}|operator\W+)\s*\(", re.sub(DECORATION, "", head))
            if not match:
                sys.exit(f"declared_calls.py: cannot read: {head}")
            name = f"{scope}::{match[2]}" if scope else match[2]
            yield name, match[1].strip(), language


def main(out, *headers):
    found = sorted({call for path in headers for call in calls(code_of(pathlib.Path(path)))})
    if not found:
        sys.exit("declared_calls.py: no calls found")
    rows = "".join(
        f'    {{"{name}", "{kind}", {"true" if language == "cpp" else "false"}}},\n'
        for name, kind, language in found
    )
    pathlib.Path(out).write_text(
        "#pragma once\n\n"
        "struct DeclaredCall {\n    const char* name;\n    const char* type;\n    bool mayThrow;\n};\n\n"
        f"constexpr DeclaredCall kDeclaredCalls[] = {{\n{rows}}};\n"
    )


if __name__ == "__main__":
    main(*sys.argv[1:])
