# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads from the released programs whether they were built to resist a memory fault.

    hardening_test.py PROGRAM...
"""

import pathlib
import subprocess
import sys

ENDBR64 = b"\xf3\x0f\x1e\xfa"  # where an indirect jump may land, on x86
FORMATS = {"printf", "fprintf", "vprintf", "vfprintf", "sprintf", "snprintf"}


def readelf(program, *options):
    return subprocess.run(["readelf", "-W", *options, program], stdout=subprocess.PIPE, text=True,
                          check=True).stdout


def line_of(text, word):
    return next((line for line in text.splitlines() if word in line), "")


def imports(program):
    return {line.split()[-2 if line.endswith(")") else -1].split("@")[0]
            for line in readelf(program, "--dyn-syms").splitlines() if " UND " in line}


def missing(program):
    """What the program has not."""
    imported = imports(program)
    header = readelf(program, "-h")
    segments = readelf(program, "-l")
    dynamic = readelf(program, "-d")
    found = {
        "an address of its own choice": "DYN" in line_of(header, "Type:") and
                                        " PIE" in line_of(dynamic, "(FLAGS_1)"),
        "relocations that are read-only": "GNU_RELRO" in segments,
        "all functions bound at the start": "BIND_NOW" in line_of(dynamic, "(FLAGS)"),
        "a stack without code": bool(line_of(segments, "GNU_STACK")) and
                                " RWE " not in line_of(segments, "GNU_STACK"),
        "guarded stacks": "__stack_chk_fail" in imported,
        "checked formats": not FORMATS & imported,
    }
    if "X86-64" in line_of(header, "Machine:"):
        found["marked jump targets"] = pathlib.Path(program).read_bytes().count(ENDBR64) >= 10
    return [what for what, there in found.items() if not there]


def main(programs):
    failed = False
    for program in programs:
        lacks = missing(program)
        failed = failed or bool(lacks)
        print(f"{pathlib.Path(program).name}: {'lacks ' + ', '.join(lacks) if lacks else 'hardened'}")
    # A program may have nothing to check; that the checks are on at all shows in the others.
    if not any(name.endswith("_chk") for program in programs for name in imports(program)):
        print("no program checks its formats and copies")
        failed = True
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
