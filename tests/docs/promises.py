#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Sees that each promise of docs/security.md has a test.

usage: promises.py SOURCE-DIR BUILD-DIR

A promise is a row of a table whose last column is "test". That column names tests of ctest in backticks, each with the
function of the test behind it, in backticks too; a test that is a whole program stands alone. The function must be in
a file that is called as the test is: `platform.buffer-attach` is made of BufferAttachTest.cpp."""
import pathlib
import re
import sys

from inventory import tests_of

OTHER_TABLES = ("party", "group")  # the first columns of tables that promise nothing
LEAST_PROMISES = 40


def rows_of(path):
    """Each row of each table: its line number, the table's headings, its cells."""
    headings = None
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        cells = [cell.strip() for cell in line.strip().strip("|").split("|")] if line.startswith("|") else None
        if cells and headings and not set(line) <= set("|-: "):
            yield number, headings, cells
        headings = cells and (headings or cells)


def plain(name):
    return re.sub(r"[^a-z0-9]", "", name.lower())


def functions_of(source):
    """The test functions of each file, by the file's name in small letters."""
    return {plain(path.stem).removesuffix("test"):
            set(re.findall(r"^void \w+::(\w+)\(\)", path.read_text(encoding="utf-8"), re.MULTILINE))
            for folder in ("tests", "tools") for path in source.glob(f"{folder}/**/*est.cpp")}


def problem_of(cell, tests, functions):
    spans = re.findall(r"`([^`]+)`", cell)
    if not spans:
        return "names no test"
    test = ""
    for span in spans:
        if "." in span:
            test = span
            if test not in tests:
                return f"there is no test {test}"
        elif span not in functions.get(plain(test.partition(".")[2]), ()):
            return f"{test or 'no test'} has no function {span}"
    return None


def main():
    source = pathlib.Path(sys.argv[1])
    tests, functions = tests_of(sys.argv[2]), functions_of(source)
    wrong, count = [], 0
    for number, headings, cells in rows_of(source / "docs/security.md"):
        if headings[0] in OTHER_TABLES:
            continue
        count += 1
        whole = headings[-1] == "test" and len(cells) == len(headings)
        problem = problem_of(cells[-1], tests, functions) if whole else "has no column \"test\""
        if problem:
            wrong.append(f"docs/security.md:{number}: {problem}")
    print("\n".join(wrong))
    print(f"{count} promises, {len(wrong)} wrong")
    return 1 if wrong or count < LEAST_PROMISES else 0


if __name__ == "__main__":
    sys.exit(main())
