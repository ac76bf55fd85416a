#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Draws docs/pictures/watch-plot.svg: the last frame that "selector watch --plot" drew on a terminal.

usage: tests/docs/plot_picture.py >docs/pictures/watch-plot.svg   (in a shell of script/demo --shell)

The tool runs on a pseudo terminal of 80 columns while the drive of the pump station follows two setpoints. Braille
characters become dots, so that the picture does not depend on a reader's fonts."""
import fcntl
import os
import pty
import re
import struct
import subprocess
import sys
import termios
import time
from html import escape

DRIVE = "processdata://PumpStation/Pump/1/drive"
PLOT = ["selector", "watch", "--plot", "--interval", "100", "--timeout", "14", f"{DRIVE}/speed", f"{DRIVE}/temperature"]
COLUMNS, ROWS, WIDTH, HEIGHT, MARGIN = 80, 24, 9, 18, 12
DOTS = [(0, 0), (0, 1), (0, 2), (1, 0), (1, 1), (1, 2), (0, 3), (1, 3)]  # bit by bit of a Braille character


def set_speed(value):
    subprocess.run(["selector", "write", f"{DRIVE}/setpoint", str(value)], check=True, stdout=subprocess.DEVNULL)


def last_frame():
    set_speed(900)
    child, terminal = pty.fork()
    if child == 0:
        os.environ.update(TERM="xterm-256color", LC_ALL="C.UTF-8", NO_COLOR="1")
        os.execvp(PLOT[0], PLOT)
    fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", ROWS, COLUMNS, 0, 0))
    setpoints, start, printed = [(3, 2100), (9, 1300)], time.monotonic(), b""
    while True:
        try:
            printed += os.read(terminal, 65536)
        except OSError:  # the tool has ended
            break
        if setpoints and time.monotonic() - start > setpoints[0][0]:
            set_speed(setpoints.pop(0)[1])
    os.waitpid(child, 0)
    frame = re.split(r"\x1b\[\d+A", printed.decode())[-1]
    return [line for line in re.sub(r"\x1b\[[0-9;?]*[A-Za-z]", "", frame).splitlines() if line.strip()]


def drawn(row, line):
    """The elements of one line of the terminal."""
    top = MARGIN + row * HEIGHT
    for text in re.finditer(r"[^\s\u2800-\u28ff│]+( [^\s\u2800-\u28ff│]+)*", line):
        yield (f'<text x="{MARGIN + text.start() * WIDTH}" y="{top + 13}" '
               f'textLength="{len(text.group()) * WIDTH}">{escape(text.group())}</text>')
    for column, character in enumerate(line):
        left = MARGIN + column * WIDTH
        if character == "│":
            yield f'<rect class="axis" x="{left + 4}" y="{top}" width="1" height="{HEIGHT}"/>'
        elif "\u2800" <= character <= "\u28ff":
            for bit, (x, y) in enumerate(DOTS):
                if ord(character) - 0x2800 & 1 << bit:
                    yield f'<circle cx="{left + 2.25 + 4.5 * x}" cy="{top + 2.25 + 4.5 * y}" r="1.6"/>'


def main():
    lines = last_frame()
    if len(lines) < 10:
        sys.exit("plot_picture.py: no chart came; is the simulator running? Use a shell of script/demo --shell.\n" + "\n".join(lines))
    width, height = COLUMNS * WIDTH + 2 * MARGIN, len(lines) * HEIGHT + 2 * MARGIN
    print(f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" height="{height}">')
    print("<!-- SPDX-License-Identifier: MIT. Made by tests/docs/plot_picture.py from a run on a terminal. -->")
    print("<style>text{font:14px monospace;fill:#d8dee9}circle{fill:#88c0d0}.axis{fill:#6b7689}</style>")
    print(f'<rect width="{width}" height="{height}" rx="6" fill="#1e222a"/>')
    for row, line in enumerate(lines):
        for element in drawn(row, line):
            print(element)
    print("</svg>")


if __name__ == "__main__":
    main()
