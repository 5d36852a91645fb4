#!/usr/bin/python3
"""Runs the test programs that measure accuracy and writes what they print into the tables of docs/numerics.md.

Usage: tools/write_accuracy.py BUILD_DIRECTORY     (from the top of the tree; `make accuracy` does it)
"""
import os
import re
import subprocess
import sys

DOCUMENT = "docs/numerics.md"
MEASURED = re.compile(r"^(.+?) +(\d+) points, worst (\S+) at (.*)$")
SUITE = re.compile(r"^\[ RUN +\] (\w+)\.(\w+)")


def measured(program):
    """(suite, test, function, points, worst, place) as printed."""
    output = subprocess.run([os.path.abspath(program)], cwd="tests", capture_output=True, text=True, check=True).stdout
    suite = test = ""
    for line in output.splitlines():
        if found := SUITE.match(line):
            suite, test = found.groups()
        elif found := MEASURED.match(line):
            yield suite, test, *(part.strip() for part in found.groups())


def markdown(head, rows):
    lines = [head, ["---"] * len(head), *rows]
    return "\n".join("| " + " | ".join(line) + " |" for line in lines)


def by_function(rows):
    return markdown(["Suite", "Measured", "Points", "Worst error", "At"],
                    [[suite, name, *rest] for suite, _, name, *rest in rows])


def by_family(rows):
    """A row per family: the worst error of each question; then its worst when truncated, whatever the question."""
    questions = ["cumulative", "survival", "log cumulative", "log density", "quantile"]
    families = {}
    for suite, test, name, _, worst, _ in rows:
        if suite == "Families":
            family, question = name.split(" ", 1)
            entry = families.setdefault(family, {})
            if "Truncated" in test:
                entry["truncated"] = max(entry.get("truncated", "0"), worst, key=float)
            else:
                entry[question] = worst
    columns = [*questions, "truncated"]
    return markdown(["Family", *columns],
                    [[family, *(entry.get(c, "") for c in columns)] for family, entry in sorted(families.items())])


TABLES = {"special functions": ("numerics_tests", by_function), "distributions": ("distributions_tests", by_family)}


def main():
    build = sys.argv[1]
    text = open(DOCUMENT, encoding="utf-8").read()
    for name, (program, layout) in TABLES.items():
        begin, end = f"<!-- measured: {name} -->\n", f"<!-- end of {name} -->"
        head, rest = text.split(begin)
        tail = rest.split(end)[1]
        text = head + begin + layout(measured(os.path.join(build, program))) + "\n" + end + tail
    open(DOCUMENT, "w", encoding="utf-8").write(text)


if __name__ == "__main__":
    main()
