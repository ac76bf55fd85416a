#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Sees that each block of each page is tested, compares those that repeat a file of the source tree,
follows the links between pages, and asks for an explanation of each warning.

usage: inventory.py SOURCE-DIR BUILD-DIR MOST-NOT-RUN"""
import json
import pathlib
import re
import subprocess
import sys

from pages import DIRECTIVES, blocks_of, is_run, tested_elsewhere


def pages_of(source):
    return [source / "README.md", *sorted(source.glob("docs/**/*.md"))]


def code_of(path):
    """A file's lines without the comment at its head."""
    lines = path.read_text(encoding="utf-8").splitlines()
    while lines and re.match(r"//|#(?!include)|<!--", lines[0]):
        lines.pop(0)
    return lines


def stands_in(lines, whole):
    """The first line that does not stand in the file (an iterator: behind the lines before it), or None."""
    return next((line for line in lines if line.strip() and line.strip() not in whole), None)


def anchors_of(path):
    """What a page's headings are called in links, as forges make it."""
    headings = re.findall(r"^#+ (.*)$", path.read_text(encoding="utf-8"), re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def broken_links(path):
    """Relative links of a page that lead nowhere."""
    text = re.sub(r"^```.*?^```", "", path.read_text(encoding="utf-8"), flags=re.MULTILINE | re.DOTALL)
    for link in re.findall(r"\]\(([^)\s]+)\)", text):
        target, _, anchor = link.partition("#")
        place = path.parent / target if target else path
        if not re.match(r"[a-z]+:", link) and (
                not place.exists() or (anchor and anchor not in anchors_of(place))):
            yield link


def unexplained_warnings(source):
    """Warnings of the library that the page on troubleshooting does not name."""
    page = (source / "docs/guides/troubleshooting.md").read_text(encoding="utf-8")
    for path in sorted(source.glob("src/*.cpp")):
        for warning in re.findall(r'qWarning\(\)\s*<<\s*"([^"]+)"', path.read_text(encoding="utf-8")):
            if warning.rstrip(":") not in page:
                yield f"docs/guides/troubleshooting.md does not explain \"{warning}\" of {path.name}"


def problem_of(block, source, tests):
    name, value = block.directive, block.value
    if name and name not in (*DIRECTIVES, "not run"):
        return f"unknown comment \"{name}\""
    if block.language not in ("console", "sh", "cpp", "cmake", "json", "text", "run"):
        return f"unknown language \"{block.language}\""
    if name == "same as" and block.lines != code_of(source / value):
        return f"is not the same as {value}"
    if name in ("excerpt of", "lines of"):
        whole = [line.strip() for line in (source / value).read_text(encoding="utf-8").splitlines()]
        missing = stands_in(block.lines, iter(whole) if name == "excerpt of" else whole)
        return missing and f"{value} has no such line there: {missing}"
    if name == "tested by" and value not in tests:
        return f"there is no test {value}"
    if block.language == "json" and name != "file":
        json.loads(block.text)
    if block.language == "cmake" and not name:
        return "is neither a file nor an excerpt"
    if block.language == "text" and any(line.startswith("$ ") for line in block.lines):
        return "shows commands, so it is no plain text"
    return None


def tests_of(build):
    """The names of all tests that ctest knows."""
    listing = subprocess.run(["ctest", "--test-dir", build, "-N"], check=True, stdout=subprocess.PIPE, text=True)
    return set(re.findall(r"Test +#\d+: (\S+)", listing.stdout))


def main():
    source, tests = pathlib.Path(sys.argv[1]), tests_of(sys.argv[2])
    wrong, untested, count = list(unexplained_warnings(source)), [], 0
    for path in pages_of(source):
        page = str(path.relative_to(source))
        wrong += [f"{page}: the link {link} leads nowhere" for link in broken_links(path)]
        runs = False
        for block in blocks_of(path, page):
            count += 1
            problem = problem_of(block, source, tests)
            if problem:
                wrong.append(f"{block.where()}: {problem}")
            if block.directive == "not run":
                untested.append(f"{block.where()}: {block.value}")
            runs |= is_run(block)
        test = tested_elsewhere(path) or f"docs.session.{path.stem}"
        if runs and test not in tests:
            wrong.append(f"{page}: shows commands, but there is no test {test}")
    print("\n".join(wrong + untested))
    print(f"{count} blocks, {len(untested)} not run, {len(wrong)} wrong")
    return 1 if wrong or len(untested) > int(sys.argv[3]) or count < 90 else 0


if __name__ == "__main__":
    sys.exit(main())
