#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Makes sources of the C++ blocks of pages, so that the build compiles them and blames the page's own lines.

usage: plan.py SOURCE-DIR OUTPUT-DIR

A block with "in: NAME" goes into tests/docs/preambles/NAME.cpp.in, in the place of @BLOCK@; all such blocks of a
page make one PAGE.cpp, each in a namespace of its own. A block without a comment is a program: program-PAGE-N.cpp.
Prints the names of what it made, and the pages whose commands session.py runs. A file whose content stays is
not touched."""
import pathlib
import sys

from inventory import pages_of
from pages import blocks_of, has_session


def split_includes(text, where):
    """Include lines apart from the rest, which keeps its line numbers."""
    includes, rest = [], []
    for line in text.splitlines():
        (includes if line.startswith("#include") else rest).append(line)
        if line.startswith("#include"):
            rest.append("")
    return includes, [f'#line {where[1] + 1} "{where[0]}"', *rest]


def fragments(blocks, preambles):
    includes, body = [], []
    for block in blocks:
        frame = (preambles / f"{block.value}.cpp.in").read_text(encoding="utf-8")
        before, after = frame.split("@BLOCK@\n")
        head, _ = split_includes(before, ("", 0))
        own, lines = split_includes(block.text, (block.page, block.line))
        includes += [line for line in head + own if line not in includes]
        opening = [line for line in before.splitlines() if not line.startswith(("#include", "//"))]
        body += [f"namespace block{block.line} {{", *opening, *lines, after.rstrip("\n"), "}"]
    return "\n".join([*includes, *body]) + "\n"


def write(path, text):
    if not path.is_file() or path.read_text(encoding="utf-8") != text:
        path.write_text(text, encoding="utf-8")
    print(path)


def main():
    source, output = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    output.mkdir(parents=True, exist_ok=True)
    for path in pages_of(source):
        if has_session(path):
            print(path)
        blocks = [block for block in blocks_of(path, str(path)) if block.language == "cpp"]
        framed = [block for block in blocks if block.directive == "in"]
        if framed:
            write(output / f"{path.stem}.cpp", fragments(framed, source / "tests/docs/preambles"))
        for number, block in enumerate((block for block in blocks if not block.directive), 1):
            write(output / f"program-{path.stem}-{number}.cpp", f'#line {block.line + 1} "{path}"\n{block.text}')


if __name__ == "__main__":
    main()
