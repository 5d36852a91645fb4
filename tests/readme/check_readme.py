"""Runs the C, C++ and Python examples of README.md and its command lines against the built library: they print what is told.

Usage: check_readme.py README.md C_COMPILER CXX_COMPILER INCLUDE_DIR LIBRARY_DIR PRAL
"""
import math
import os
import re
import shlex
import subprocess
import sys
import tempfile


def run(command, **options):
    done = subprocess.run(command, capture_output=True, text=True, timeout=60, **options)
    if done.returncode != 0:
        sys.exit(f"{command} ended with {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout


def same(printed, told):
    """Whether two fits agree: the line before the table, words, and numbers to three digits."""
    tables = [[re.split(r"\s+|=", line.strip()) for line in text.strip().splitlines()] for text in (printed, told)]
    if tables[0].pop(0) != tables[1].pop(0):
        return False
    return all(a == b or math.isclose(float(a), float(b), rel_tol=1e-3)
               for rows in zip(*tables, strict=True) for a, b in zip(*rows, strict=True))


def main():
    readme, compiler, compiler_of_cpp, include, library, pral = sys.argv[1:]
    text = open(readme, encoding="utf-8").read()
    examples = lambda language: re.findall(rf"```{language}\n(.*?)```", text, re.S)
    environment = {**os.environ, "LD_LIBRARY_PATH": library}
    for code in examples("c"):
        with tempfile.TemporaryDirectory() as folder:
            source, program = os.path.join(folder, "example.c"), os.path.join(folder, "example")
            with open(source, "w") as file:
                file.write(code)
            run([compiler, "-std=c11", "-Wall", "-Werror", "-I", include, source, "-o", program, "-L", library,
                 "-lpral_core"])
            promised = re.search(r"/\* ([-\d. ]+) \*/", code).group(1)
            printed = run([program], env=environment).strip()
            assert printed == promised, f"the C example printed {printed}, not {promised}"
    for code in examples("cpp"):
        with tempfile.TemporaryDirectory() as folder:
            source, program = os.path.join(folder, "example.cpp"), os.path.join(folder, "example")
            with open(source, "w") as file:
                file.write(code)
            run([compiler_of_cpp, "-std=c++20", "-Wall", "-Werror", "-I", include, source, "-o", program, "-L", library,
                 "-lpral_core"])
            assert run([program], env=environment), "the C++ example printed nothing"
    code = "".join(examples("python"))  # each goes on from the one before
    promised = " ".join(re.findall(r"print\(.*\) +# ([-\d. ]+)", code)).split()
    printed = run([sys.executable, "-c", code], env=environment).split()
    assert all(abs(float(a) / float(b) - 1) < 1e-15 for a, b in zip(printed, promised, strict=True)), (printed, promised)
    commands = re.findall(r"^    \$ pral (.*)\n((?:    [^$].*\n)*)", text, re.M)
    assert commands, "README.md shows no command line of pral"
    for arguments, told in commands:
        printed = run([pral, *shlex.split(arguments)], cwd=os.path.dirname(readme)).strip()
        assert printed and (not told or same(printed, told)), f"pral {arguments} printed\n{printed}"


if __name__ == "__main__":
    main()
