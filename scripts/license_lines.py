#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Gives each source file the line that names its licence; --check only lists those without one."""

import pathlib
import subprocess
import sys

SOURCES = pathlib.Path(__file__).resolve().parent.parent
NAME = "SPDX-License-Identifier: GPL-3.0-or-later"
HASH, SLASHES, STARS = ("# ", ""), ("// ", ""), ("/* ", " */")
BY_SUFFIX = {".cpp": SLASHES, ".h": SLASHES, ".js": SLASHES, ".css": STARS, ".py": HASH, ".sh": HASH,
             ".bash": HASH}
BY_NAME = {"CMakeLists.txt": HASH, "dev": HASH, "run": HASH, "mail": HASH, "push": HASH, "relay": HASH,
           "setup.sh": HASH}


def marks(path):
    return BY_NAME.get(path.name) or BY_SUFFIX.get(path.suffix)


def files():
    listed = subprocess.run(["git", "-C", SOURCES, "ls-files"], capture_output=True, text=True,
                            check=True).stdout.splitlines()
    return [SOURCES / name for name in listed if marks(SOURCES / name) and
            (SOURCES / name).is_file()]


def has_line(path):
    return NAME in "".join(path.read_text().splitlines(keepends=True)[:3])


def add_line(path):
    before, after = marks(path)
    lines = path.read_text().splitlines(keepends=True)
    place = 1 if lines and lines[0].startswith("#!") else 0
    lines.insert(place, f"{before}{NAME}{after}\n")
    path.write_text("".join(lines))


def main():
    missing = [path for path in files() if not has_line(path)]
    if "--check" in sys.argv:
        for path in missing:
            print(f"{path.relative_to(SOURCES)} does not name its licence")
        sys.exit(bool(missing))
    for path in missing:
        add_line(path)


if __name__ == "__main__":
    main()
