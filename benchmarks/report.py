#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Takes ratios from one run's results and writes them into docs/performance.md and .json.

usage: report.py RESULTS-DIR DOCS-DIR
"""
import json
import pathlib
import re
import sys

BEGIN, END = "<!-- table: begin -->", "<!-- table: end -->"


class Run:
    """What one run of all programs came to, as medians; a ratio never mixes two programs."""

    def __init__(self, folder):
        self.cases = {}
        for file in sorted(folder.glob("*.json")):
            for case in json.loads(file.read_text())["benchmarks"]:
                if "aggregate_name" in case:
                    self.cases[file.stem, case["run_name"], case["aggregate_name"]] = case
        self.heap = int((folder / "heap").read_text())
        lines = (folder / "instructions").read_text().split("\n")
        self.counts = {(w, int(n)): int(c) for w, n, c in (l.split() for l in lines if l)}

    def case(self, program, name, aggregate="median"):
        with_settings = re.escape(name) + r"(/(iterations:\d+|repeats:\d+|real_time|manual_time))*"
        for (where, run_name, what), case in self.cases.items():
            if (where, what) == (program, aggregate) and re.fullmatch(with_settings, run_name):
                return case
        raise SystemExit(f"report.py: no {aggregate} of case {name} of {program}")

    def time(self, program, name, clock="cpu_time"):
        """Nanoseconds of one iteration."""
        case = self.case(program, name)
        return case[clock] * {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[case["time_unit"]]


def rows(run):
    """What, measured, against, ratio, goal; without a goal nothing can be missed."""
    read = lambda name: run.time("read-path", name)
    real = lambda name: run.time("peers", name, "real_time")
    locked = lambda name: run.time("peers", name)  # one thread, never waiting: what else runs is kept out
    setup = lambda name, leaves: run.time("set-up", name) / leaves
    change = lambda name: run.time("change", name, "real_time")
    sources = lambda count: run.time("sources", f"changeOfOneAmong/{count}", "real_time")
    catalog = lambda name: run.time("catalog", name, "real_time")
    count = lambda what, n: run.counts[what, n]
    one = run.time("read-path", "oneValueBesideAnotherReader", "real_time")

    def row(what, measured, against, unit, goal, faster=False):
        ratio = against / measured if faster else measured / against
        met = goal is None or (ratio >= goal if faster else ratio <= goal)
        sign = "≥" if faster else "≤"
        return {"what": what, "measured": round(measured, 1), "against": round(against, 1), "unit": unit,
                "ratio": round(ratio, 2), "goal": "-" if goal is None else f"{sign} {goal}", "met": met}

    return [
        row("instructions a value, 1,000 at once, against the floor", count("handler", 1000) / 1000,
            count("floor", 1000) / 1000, "instructions", 1.1),
        row("instructions of a one-value call, against the floor", count("handler", 1), count("floor", 1),
            "instructions", 1.3),
        row("time a value, 1,000 at once, against the floor", read("handlerValues/1000") / 1000,
            read("floorValues/1000") / 1000, "ns", 1.0),
        row("time of a one-value `getValues`, against the floor", read("handlerValues/1"), read("floorValues/1"),
            "ns", 1.5),
        row("time a value, 10,000 at once, against 1,000 at once", read("handlerValues/10000") / 10000,
            read("handlerValues/1000") / 1000, "ns", 1.2),
        row("1,000 values beside a writer at full speed, against no writer", read("besideAFastWriter"),
            read("besideNobody"), "ns", 2.0),
        row("1,000 values beside a writer at 1 kHz, against no writer", read("besideAWriterOfOneKilohertz"),
            read("besideNobody"), "ns", 1.1),
        row("one value beside a second reading thread, against one thread", one, read("handlerValues/1"), "ns", 3.0),
        row("a bare `QMutex` beside a second locking thread, against one value read by one thread",
            run.time("read-path", "lockBesideAnotherThread", "real_time"), read("handlerValues/1"), "ns", None),
        row("1,000 values from cold caches, against slot pointers in a row",
            run.time("read-path", "handlerCold", "real_time") / 1000,
            run.time("read-path", "floorCold", "real_time") / 1000, "ns", 1.25),
        row("one value, times faster than QtDBus `Properties.Get`", real("handlerOne"), real("dbusGet"), "ns", 1000,
            True),
        row("1,000 values, times faster than a QtDBus map", real("handlerMany"), real("dbusMap"), "ns", 150, True),
        row("one value, times faster than `QSharedMemory` lock, copy, unlock", locked("handlerOne"),
            locked("qtSharedMemoryOne"), "ns", 15, True),
        row("one value, times faster than iceoryx `take()` of 8 bytes", real("handlerOne"), real("iceoryxTake"), "ns",
            5, True),
        row("1,000 `ProcessValue`, times faster than `QSharedMemory` under one lock", locked("handlerMany"),
            locked("qtSharedMemoryMany"), "ns", 1, True),
        row("1,000 `ProcessValue`, times faster than a Boost.Interprocess mutex", locked("handlerMany"),
            locked("boostMany"), "ns", 1, True),
        row("instructions of set-up a selector, against the floor", count("handler-set-up", 1000) / 1000,
            count("floor-set-up", 1000) / 1000, "instructions", 0.7),
        row("set-up a selector, against the floor", setup("handlerSetUp/1/1000", 1000), setup("floorSetUp", 1000),
            "ns", 0.7),
        row("set-up a selector, 100,000 over 100 sources against 1,000 over 1", setup("handlerSetUp/100/1000", 100000),
            setup("handlerSetUp/1/1000", 1000), "ns", 1.1),
        row("set-up a leaf, 10,000 in one source against 1,000", setup("handlerSetUp/1/10000", 10000),
            setup("handlerSetUp/1/1000", 1000), "ns", 1.4),
        {"what": "heap a selector, library and platform", "measured": run.heap, "against": "", "unit": "bytes",
         "ratio": "", "goal": "≤ 1536", "met": run.heap <= 1536},
        row("description change of 1,000 leaves, signal to slot, against the floor", change("handlerChange"),
            change("floorChange"), "ns", 1.5),
        row("change with 10 sources against 1", sources(10), sources(1), "ns", None),
        row("change with 100 sources against 1", sources(100), sources(1), "ns", None),
        row("first catalog of 100 sources with 100 leaves each, against their descriptions alone",
            catalog("firstCatalog"), catalog("descriptionsAlone"), "ns", 1.5),
    ]


def also(run):
    """What is no ratio."""
    read = lambda aggregate: run.case("change", "handlerChangeWhileRead", aggregate)["longest_read_us"]
    fetches = lambda count, aggregate: round(run.case("sources", f"fetchesOfABurst/{count}", aggregate)["fetches"])
    return {
        "longest_read_during_change_us": read("median"),
        "longest_read_during_all_changes_us": read("max"),
        "fetches_of_a_burst_during_a_fetch": {
            str(count): {"median": fetches(count, "median"), "most": fetches(count, "max")} for count in (1, 10, 100)},
        "raw_copy_of_1000_values_ns": run.time("peers", "qtSharedMemoryRaw", "real_time"),
    }


def number(value):
    return value if isinstance(value, str) else f"{value:,.0f}" if value >= 1000 else f"{value:g}"


def table(all_rows):
    lines = ["| what | measured | against | unit | ratio | goal | |", "|---|---|---|---|---|---|---|"]
    for row in all_rows:
        lines.append("| {} | {} | {} | {} | {} | {} | {} |".format(
            row["what"], number(row["measured"]), number(row["against"]), row["unit"], row["ratio"], row["goal"],
            "" if row["met"] else "missed"))
    return "\n".join(lines)


def main():
    folder, docs = (pathlib.Path(argument) for argument in sys.argv[1:3])
    run = Run(folder)
    all_rows = rows(run)
    extra = also(run)
    (docs / "performance.json").write_text(
        json.dumps({"format": "performance/1", "ratios": all_rows, "also": extra}, indent=1, ensure_ascii=False)
        + "\n")
    page = docs / "performance.md"
    text = page.read_text()
    head, rest = text.split(BEGIN)
    page.write_text(head + BEGIN + "\n" + table(all_rows) + "\n" + END + rest.split(END)[1])
    print(table(all_rows))
    print(json.dumps(extra))


if __name__ == "__main__":
    main()
