# SPDX-License-Identifier: MIT
"""Takes the fenced blocks out of a Markdown page, with what the comment before each says of its test."""
import re

# A comment "run: COMMAND" by itself is a command that readers do not see, such as one that prepares something.
# "commands tested by: TEST" anywhere says that another test runs the commands of the page.
# A paragraph "*Not run by a test…*" behind a block tells readers that it is not, and why.
# What the comment right before a block may say. A block without one is run or compiled as it stands.
DIRECTIVES = (
    "file",  # the block becomes this file in the page's folder, for the commands that follow
    "in",  # C++: compiled inside of tests/docs/preambles/NAME.cpp.in
    "same as",  # equal to this file of the source tree, which is built and tested there
    "excerpt of",  # its lines stand in this file of the source tree, in this order
    "lines of",  # the same in any order
    "tested by",  # this test of ctest runs the commands
    "numbers vary",  # numbers in the output are compared as "a number"
    "output of",  # %N: what the N-th command in the background prints next; numbers vary
)


class Block:
    """One fenced block: its language, its lines, where it starts, and what its comment says."""

    def __init__(self, page, line, language, directive):
        self.page, self.line, self.language, self.lines = page, line, language, []
        name, _, value = directive.partition(":")
        self.directive, self.value = name.strip(), value.strip()

    @property
    def text(self):
        return "\n".join(self.lines) + "\n"

    def where(self):
        return f"{self.page}:{self.line}"


def blocks_of(path, page):
    """All blocks of a page, and its hidden commands as blocks of the language "run", in order."""
    blocks, current, before = [], None, ""
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if current is not None:
            if line.startswith("```"):
                current = None
            else:
                current.lines.append(line)
        elif line.startswith("```"):
            comment = re.fullmatch(r"<!-- (?!run: )(.*) -->", before)
            current = Block(page, number, line[3:], comment.group(1) if comment else "")
            blocks.append(current)
        elif blocks and re.fullmatch(r"\*Not run by a test\b.*\*", line):
            blocks[-1].directive, blocks[-1].value = "not run", line.strip("*")
        elif line.startswith("<!-- run: "):
            hidden = Block(page, number, "run", "")
            hidden.lines.append(line.removeprefix("<!-- run: ").removesuffix(" -->"))
            blocks.append(hidden)
        before = line
    return blocks


def tested_elsewhere(path):
    """The test of ctest that runs the page's commands in place of session.py, or None."""
    match = re.search(r"^<!-- commands tested by: (.*) -->$", path.read_text(encoding="utf-8"), re.MULTILINE)
    return match and match.group(1)


def is_run(block):
    """Whether session.py runs the block as it stands."""
    return block.language == "run" or (
        block.language in ("console", "sh") and block.directive in ("", "numbers vary", "output of"))


def has_session(path):
    return not tested_elsewhere(path) and any(is_run(block) for block in blocks_of(path, path.name))
