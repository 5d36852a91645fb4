#!/usr/bin/env python3
"""A fingerprint of everything that the library exports: not one bit of a result may change unseen.

Every function that the public header declares is called with some 300 drawn sets of arguments, ordinary and hostile
ones. fingerprint.tsv keeps one line a function: its name, the calls, those that succeeded, and three hashes: of the
outputs (all buffers after the calls), of the flags and messages, and of the draws taken from the stream. A run that
gives other lines fails and names them.

    tests/classic/fingerprint.py --build build/release                      compares with fingerprint.tsv
    tests/classic/fingerprint.py --build build/release --update             rewrites it: say in the commit why it changed
    tests/classic/fingerprint.py --build build/release --against OTHER.so   shows the first call of each function in which
                                                                            the two libraries differ
    ... NAME ...                                                            only functions whose names match (regular
                                                                            expressions)

The lines are the same on every x86-64 processor: the C library's variants for processors with FMA and AVX2, whose last
digits differ, are switched off. They belong to Debian 12's glibc, GSL and ALGLIB.
"""

import argparse
import os
import re
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
TABLE = os.path.join(HERE, "fingerprint.tsv")
COLUMNS = ("name", "calls", "succeeded", "outputs", "flags and messages", "draws")
PLAIN_PROCESSOR = "glibc.cpu.hwcaps=-AVX2,-FMA,-FMA4"


def declarations(options):
    """Lines "returned type<tab>name<tab>type name<tab>...", as the C++ preprocessor sees the header."""
    text = subprocess.run([options.compiler, "-E", "-P", "-x", "c++", "-std=c++20", options.header],
                          check=True, capture_output=True, text=True).stdout
    found = re.findall(r'extern "C"\s+(?:__attribute__\(\(.*?\)\)\s*)?([\w\s*]*?)\b(Pral\w+)\s*\(([^()]*)\)\s*;', text)
    lines = []
    for returned, name, parameters in found:
        fields = [" ".join(p.split()) for p in parameters.split(",") if p.strip() not in ("", "void")]
        lines.append("\t".join([" ".join(returned.split()), name] + fields))
    if len({line.split("\t")[1] for line in lines}) != len(set(re.findall(r"\b(Pral\w+)\s*\(", text))):
        sys.exit("some declarations of the header are not understood")
    return lines


def run(options, libraries):
    selected = [re.compile(pattern) for pattern in options.names]
    # All declarations go in, for the fits need those of their families; names tell which are to be called.
    lines = [("+" if not selected or any(p.search(line.split("\t")[1]) for p in selected) else "-") + line
             for line in declarations(options)]
    environment = dict(os.environ, GLIBC_TUNABLES=PLAIN_PROCESSOR)
    result = subprocess.run([options.program] + (["--times"] if options.times else []) + libraries,
                            input="\n".join(lines) + "\n", env=environment, text=True, check=True, stdout=subprocess.PIPE)
    return result.stdout


def table(text):
    return {line.split("\t")[0]: line.split("\t") for line in text.splitlines() if line and not line.startswith("#")}


def kept():
    with open(TABLE, encoding="ascii") as file:
        return table(file.read())


def compare(found, expected, partial):
    """Names the lines that differ and the columns; the number of them."""
    names = sorted(found) if partial else sorted(set(found) | set(expected))
    differing = 0
    for name in names:
        new, old = found.get(name), expected.get(name)
        if new == old:
            continue
        differing += 1
        if new is None or old is None:
            print(name, "is new" if old is None else "is no more")
        elif len(new) != len(COLUMNS):
            print(" ".join(new))
        else:
            print(name + ":", ", ".join(column for column, a, b in zip(COLUMNS, new, old) if a != b), "differ")
    print(len(found), "functions,", differing, "lines differ")
    return differing


def show_rates(found):
    """The functions that hardly any set of arguments suits: their lines tell little."""
    for name, line in found.items():
        share = int(line[2]) / max(1, int(line[1])) if len(line) == len(COLUMNS) else 0
        if share < 0.25:
            print(f"{share:5.0%}  {name}")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("names", nargs="*")
    parser.add_argument("--build", default="build/release", help="a build folder, where the next two are found")
    parser.add_argument("--library")
    parser.add_argument("--program")
    parser.add_argument("--header", default=os.path.join(HERE, "../../src/classic/core_api.h"))
    parser.add_argument("--compiler", default="c++")
    parser.add_argument("--against", metavar="OTHER.so")
    parser.add_argument("--update", action="store_true")
    parser.add_argument("--rates", action="store_true", help="list the functions of which most calls fail")
    parser.add_argument("--times", action="store_true", help="list the slowest calls")
    options = parser.parse_args()
    options.library = os.path.abspath(options.library or os.path.join(options.build, "libpral_core.so"))
    options.program = options.program or os.path.join(options.build, "classic_fingerprint")
    if options.against:
        report = run(options, [options.library, os.path.abspath(options.against)])
        print(report, end="")
        return 1 if report else 0
    text = run(options, [options.library])
    found = table(text)
    if options.rates:
        show_rates(found)
    if options.update:
        lines = kept() if options.names else {}
        lines.update(found)
        with open(TABLE, "w", encoding="ascii") as file:
            file.write("# By tests/classic/fingerprint.py --update.\n# " + "\t".join(COLUMNS) + "\n")
            file.writelines("\t".join(line) + "\n" for line in lines.values())
        return 0
    return 1 if compare(found, kept(), bool(options.names)) or not found else 0


if __name__ == "__main__":
    sys.exit(main())
