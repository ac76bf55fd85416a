#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Types the commands of a page into a shell and compares what they print with what the page shows.

usage: session.py PAGE DATA-DIR [MODULE…]

Commands run in order, in a folder that holds copies of DATA-DIR. Each must end with 0, unless the next one is
"echo $?". One that ends with "&" goes on in the background until the end of the page or a "kill %N"; what it
prints later stands in blocks of its own. "…" alone on a line stands for any lines, at a line's end for its rest.
Times, blanks and, where the page says so, numbers are not compared. Each MODULE gets a name that no other test
has."""
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time

from pages import blocks_of

LIMIT = 100  # seconds for one command, or for output to come


class Mismatch(Exception):
    pass


def matches(shown, printed, whole):
    """Whether printed lines are as shown; with whole off, more may follow. Gives the lines taken, or None."""
    if not shown:
        return len(printed) if not printed or not whole else None
    if shown[0] == "…":
        for start in range(len(printed) + 1):
            if matches(shown[1:], printed[start:], whole) is not None:
                return start
        return None
    if printed and (shown[0] == printed[0]
                    or (shown[0].endswith("…") and printed[0].startswith(shown[0][:-1]))):
        rest = matches(shown[1:], printed[1:], whole)
        return None if rest is None else rest + 1
    return None


class Background:
    """A command that goes on while others run."""

    def __init__(self, command, folder, environment):
        self.lines, self.seen = [], 0
        # Line by line, as on a terminal. stdbuf preloads a library, which AddressSanitizer takes for a mistake.
        options = environment.get("ASAN_OPTIONS", "") + ":verify_asan_link_order=0"
        self.process = subprocess.Popen(
            ["bash", "-c", f"exec stdbuf -oL {command}"], cwd=folder,
            env=dict(environment, ASAN_OPTIONS=options), stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, encoding="utf-8")
        self.reader = threading.Thread(target=self.read, daemon=True)
        self.reader.start()

    def read(self):
        for line in self.process.stdout:
            self.lines.append(line)

    def end(self, number=signal.SIGTERM):
        if self.process.poll() is None:
            self.process.send_signal(number)
        self.process.wait(LIMIT)
        self.reader.join(LIMIT)


class Session:
    def __init__(self, page, data, modules):
        self.page = page
        self.names = {module: f"{module}{os.getpid()}" for module in modules}
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="docs-session."))
        self.state = self.folder.with_name(self.folder.name + ".state")
        self.state.write_text(f"cd {self.folder}\n", encoding="utf-8")
        self.jobs, self.last = [], 0
        for source in pathlib.Path(data).iterdir():
            if source.is_file():
                (self.folder / source.name).write_text(self.own(source.read_text(encoding="utf-8")), "utf-8")

    def own(self, text):
        for module, name in self.names.items():
            text = re.sub(rf"(?<![A-Za-z0-9]){module}(?![A-Za-z0-9])", name, text)
        return text

    def plain(self, lines, numbers_vary):
        result = []
        for line in lines:
            for module, name in self.names.items():
                line = line.replace(name, module)
            line = re.sub(r"\d{4}-\d\d-\d\d[ T]\d\d:\d\d:\d\d(\.\d+)?", "TIME", line)
            if numbers_vary:
                line = re.sub(r"-?\d+(\.\d+)?(e[+-]\d+)?", "N", line)
            result.append(re.sub(r"\s+", " ", line).strip())
        while result and not result[-1]:
            result.pop()
        return result

    def compare(self, command, shown, printed, numbers_vary):
        shown, printed = self.plain(shown, numbers_vary), self.plain(printed, numbers_vary)
        if matches(shown, printed, True) is None:
            raise Mismatch("\n  ".join(["the page shows", *shown, "but it prints", *printed]))

    def await_output(self, job, shown, numbers_vary):
        shown, deadline = self.plain(shown, numbers_vary), time.monotonic() + LIMIT
        while True:
            printed = self.plain(job.lines[job.seen:], numbers_vary)
            taken = matches(shown, printed, False)
            if taken is not None:
                break
            if time.monotonic() > deadline:
                raise Mismatch("\n  ".join(["waited in vain for", *shown, "there came", *printed]))
            time.sleep(0.05)
        # Past the shown lines: whatever "…" took is counted by matching from the end of what is needed.
        while matches(shown, printed[:taken], True) is None:
            taken += 1
        job.seen += taken

    def run(self, command, shown, numbers_vary, code_is_asked):
        kill = re.fullmatch(r"kill (?:-([A-Z]+) )?%(\d+)", command)
        if kill:
            self.jobs[int(kill.group(2)) - 1].end(getattr(signal, "SIG" + (kill.group(1) or "TERM")))
            return
        if command.endswith(" &"):
            self.jobs.append(Background(command[:-2], self.current_folder(), self.environment()))
            self.await_output(self.jobs[-1], shown, numbers_vary)
            return
        # Variables and folder live on in a file that the next command reads.
        script = (f'. "{self.state}"; set -a; (exit {self.last})\n{command}\n'
                  f'code=$?; {{ declare -px; printf "cd %q\\n" "$PWD"; }} >"{self.state}"; exit $code\n')
        done = subprocess.run(["bash", "-o", "pipefail", "-c", script], cwd=self.folder, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, encoding="utf-8",
                              timeout=LIMIT, check=False)
        self.last = done.returncode
        if shown is not None:
            self.compare(command, shown, done.stdout.splitlines(), numbers_vary)
        if self.last != 0 and not code_is_asked:
            raise Mismatch(f"it ended with {self.last}:\n{done.stdout}")

    def environment(self):
        text = subprocess.run(["bash", "-c", f'. "{self.state}"; env -0'], cwd=self.folder, check=True,
                              stdout=subprocess.PIPE, text=True, encoding="utf-8").stdout
        return dict(entry.split("=", 1) for entry in text.split("\0") if "=" in entry)

    def current_folder(self):
        return self.environment()["PWD"]

    def do_console(self, block):
        steps, vary = [], block.directive == "numbers vary"
        for line in block.lines:
            if line.startswith("$ "):
                steps.append((line[2:], []))
            elif steps and steps[-1][0].endswith("\\"):
                steps[-1] = (steps[-1][0] + "\n" + line.removeprefix("> "), [])
            elif steps:
                steps[-1][1].append(line)
            else:
                raise Mismatch("it begins with no command, and does not say whose output it is")
        for position, (command, shown) in enumerate(steps):
            asked = position + 1 < len(steps) and steps[position + 1][0] == "echo $?"
            try:
                self.run(self.own(command), shown, vary, asked)
            except Mismatch as problem:
                raise Mismatch(f"$ {command}\n{problem}") from None
        return len(steps)

    def do(self, block):
        if block.directive == "file":
            (pathlib.Path(self.current_folder()) / block.value).write_text(self.own(block.text), "utf-8")
            return 1
        if block.directive == "output of":
            self.await_output(self.jobs[int(block.value.removeprefix("%")) - 1], block.lines, True)
            return 1
        if block.directive in ("", "numbers vary") and block.language == "console":
            return self.do_console(block)
        if block.language == "run" and block.lines[0].endswith(" &"):
            self.run(self.own(block.lines[0]), ["ready"], False, False)
            return 1
        if block.language == "run" or (not block.directive and block.language == "sh"):
            self.run(self.own(block.text), None, False, False)
            return 1
        return 0

    def end(self):
        for job in self.jobs:
            job.end()
        for name in self.names.values():  # what a killed publisher, or a page that fails, leaves behind
            for buffer in pathlib.Path("/dev/shm").glob(f"*{name}*"):
                buffer.unlink()
        shutil.rmtree(self.folder)
        self.state.unlink(missing_ok=True)


def main():
    page = pathlib.Path(sys.argv[1])
    session = Session(page, sys.argv[2], sys.argv[3:])
    count = 0
    try:
        for block in blocks_of(page, page.name):
            try:
                count += session.do(block)
            except (Mismatch, subprocess.TimeoutExpired) as problem:
                print(f"FAILED: {block.where()}: {problem}")
                return 1
    finally:
        session.end()
    print(f"{page.name}: {count} commands and files")
    return 0 if count else 1


if __name__ == "__main__":
    sys.exit(main())
