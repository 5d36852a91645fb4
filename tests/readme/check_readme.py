"""Runs the C and Python examples of README.md and its command lines against the built library.

Usage: check_readme.py README.md C_COMPILER INCLUDE_DIR LIBRARY_DIR PRAL
"""
import os
import re
import subprocess
import sys
import tempfile


def run(command, **options):
    done = subprocess.run(command, capture_output=True, text=True, timeout=60, **options)
    if done.returncode != 0:
        sys.exit(f"{command} ended with {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout


def main():
    readme, compiler, include, library, pral = sys.argv[1:]
    text = open(readme, encoding="utf-8").read()
    example = lambda language: re.search(rf"```{language}\n(.*?)```", text, re.S).group(1)
    environment = {**os.environ, "LD_LIBRARY_PATH": library}
    with tempfile.TemporaryDirectory() as folder:
        source, program = os.path.join(folder, "example.c"), os.path.join(folder, "example")
        with open(source, "w") as file:
            file.write(example("c"))
        run([compiler, "-std=c11", "-Wall", "-Werror", "-I", include, source, "-o", program, "-L", library, "-lpral_core"])
        promised = re.search(r"/\* ([\d.]+) \*/", example("c")).group(1)
        printed = run([program], env=environment).strip()
        assert printed == promised, f"the C example printed {printed}, not {promised}"
    promised = re.search(r"print\(x.value\) +# ([\d.]+)", example("python")).group(1)
    printed = run([sys.executable, "-c", example("python")], env=environment).strip()
    assert abs(float(printed) / float(promised) - 1) < 1e-15, f"the Python example printed {printed}, not {promised}"
    commands = re.findall(r"^    \$ pral (.*)$", text, re.M)
    assert commands, "README.md shows no command line of pral"
    for arguments in commands:
        assert run([pral, *arguments.split()]).strip(), f"pral {arguments} printed nothing"


if __name__ == "__main__":
    main()
