"""docs/classic.md tells the truth about places: what each row names stands in its file, and its test exists."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
ROW = re.compile(r"^\| .+ \| `(\S+)` `(.+?)` \| `(\w+)\.(\w+)` \|$")


def main() -> int:
    rows = (ROOT / "docs/classic.md").read_text().splitlines()
    rows = [row for row in rows if row.startswith("|")][2:]
    tests = "\n".join(path.read_text() for path in (ROOT / "tests").rglob("*_test.cpp"))
    faults = []
    for row in rows:
        match = ROW.match(row)
        if not match:
            faults.append(f"not a row of three columns: {row}")
            continue
        path, name, suite, test = match.groups()
        if not (ROOT / path).is_file() or name not in (ROOT / path).read_text():
            faults.append(f"{path} has no '{name}'")
        if f"TEST({suite}, {test})" not in tests:
            faults.append(f"there is no test {suite}.{test}")
    print("\n".join(faults) or f"{len(rows)} habits are where the page says")
    return 1 if faults or not rows else 0


if __name__ == "__main__":
    sys.exit(main())
