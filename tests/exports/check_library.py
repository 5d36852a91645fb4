"""Compares the tables of the built library with the public headers: what it exports, and what it needs from elsewhere.

What the headers declare is asked of the C preprocessor, so that every macro that declares functions is seen through.
"""

import argparse
import re
import subprocess
import sys

# Parts of every Windows. Anything else would have to be shipped beside the DLL.
WINDOWS_OWN = {"kernel32.dll", "msvcrt.dll", "oleaut32.dll", "ole32.dll", "user32.dll", "advapi32.dll"}


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def declared(options):
    """The functions that the headers declare: the names Pral... and pral_... before an opening parenthesis."""
    names = set()
    for header in options.header:
        text = output_of(options.compiler, "-E", "-P", "-x", "c++", "-std=c++20", header)
        names |= set(re.findall(r"\b(Pral\w+|pral_\w+)\s*\(", text))
    return names


def is_dll(options):
    return options.library.lower().endswith(".dll")


def exported_by_dll(options):
    """The names of objdump's export table: lines of an ordinal and a name after its heading."""
    text = output_of(options.objdump, "-p", options.library)
    _, _, table = text.partition("[Ordinal/Name Pointer] Table")
    table = table.partition("\n\n")[0]
    return set(re.findall(r"^\s*\[\s*\d+\]\s+(?:\+base\[\s*\d+\]\s+\w+\s+)?(\S+)$", table, re.MULTILINE))


def exported_by_so(options):
    """Every defined dynamic symbol; the version node itself (type A) is no symbol of a caller's."""
    text = output_of(options.nm, "-D", "--defined-only", "--without-symbol-versions", options.library)
    fields = (line.split() for line in text.splitlines())
    return {field[-1] for field in fields if field and field[-2] != "A"}


def in_module_definition(options):
    with open(options.file, encoding="ascii") as definition:
        _, _, table = definition.read().partition("EXPORTS")
    return set(re.findall(r"^\s+(\S+) @\d+", table, re.MULTILINE))


def in_import_library(options):
    text = output_of(options.nm, "--defined-only", options.file)
    return {name for name in re.findall(r" T (\w+)$", text, re.MULTILINE)}


def same(found, expected):
    for name in sorted(found - expected):
        print("not declared in the header:", name)
    for name in sorted(expected - found):
        print("declared, but missing:", name)
    print(len(found), "names found,", len(expected), "declared")
    return found == expected and len(expected) > 0


def imports_are_windows_own(options):
    imports = re.findall(r"DLL Name: (\S+)", output_of(options.objdump, "-p", options.library))
    print("imports:", ", ".join(imports))
    return len(imports) > 0 and {name.lower() for name in imports} <= WINDOWS_OWN


def soname_is_right(options):
    soname = re.findall(r"SONAME\s+(\S+)", output_of(options.objdump, "-p", options.library))
    print("SONAME:", *soname)
    return soname == ["libpral_core.so.1"]


def missing_hardening(options):
    """What a finished file lacks of address randomisation, memory that is not both written and executed, and the like."""
    headers = output_of(options.objdump, "-p", options.library)
    if re.search(r"\.(dll|exe)$", options.library.lower()):
        wanted = {"ASLR": "DYNAMIC_BASE", "high entropy": "HIGH_ENTROPY_VA", "DEP": "NX_COMPAT"}
        lacking = {name for name, flag in wanted.items() if flag not in headers}
        # A file without its relocations stays where it is, whatever its flags say.
        relocated = re.search(r"Entry 5 \w+ ([0-9a-f]+) Base Relocation", headers)
        return lacking | ({"relocations"} if not relocated or int(relocated[1], 16) == 0 else set())
    symbols = output_of(options.nm, "-D", "--undefined-only", options.library)
    return {name for name, there in {
        "RELRO": re.search(r"^\s+RELRO ", headers, re.MULTILINE),
        "BIND_NOW": re.search(r"^\s+(BIND_NOW|FLAGS .*0x0*8$)", headers, re.MULTILINE),
        "a stack that is not executed": re.search(r"^\s+STACK .*\n.*flags rw-", headers, re.MULTILINE),
        "stack protector": "__stack_chk_fail" in symbols,
        "FORTIFY": re.search(r" __\w+_chk\b", symbols),
    }.items() if not there}


def hardened(options):
    lacking = missing_hardening(options)
    print("lacking:", ", ".join(sorted(lacking)) or "nothing")
    return not lacking


CHECKS = {
    "hardening": hardened,
    "exports": lambda o: same(exported_by_dll(o) if is_dll(o) else exported_by_so(o), declared(o)),
    "definition": lambda o: same(in_module_definition(o), declared(o)),
    "import-library": lambda o: same(in_import_library(o), declared(o)),
    "imports": imports_are_windows_own,
    "soname": soname_is_right,
}


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("check", choices=CHECKS)
    for name in ("library", "compiler", "nm", "objdump"):
        parser.add_argument("--" + name, required=True)
    parser.add_argument("--header", required=True, nargs="+")
    parser.add_argument("--file", help="the module definition or the import library")
    options = parser.parse_args()
    return 0 if CHECKS[options.check](options) else 1


if __name__ == "__main__":
    sys.exit(main())
