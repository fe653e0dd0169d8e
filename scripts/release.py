# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks that everything that names the version agrees: ./dev release.

CMakeLists.txt is where the version stands; programs, packages and the metadata of the desktop's
software centres take it from there. The latest entry of CHANGELOG.md has to name it, with the day of
the release behind it. Nothing that is not committed is released, and no version twice.
"""

import pathlib
import re
import subprocess
import sys

SOURCES = pathlib.Path(__file__).resolve().parent.parent


def first(pattern, path):
    """What the first match names; None without one."""
    found = re.search(pattern, path.read_text(), re.MULTILINE)
    return found.group(1) if found else None


def version():
    return first(r"^project\(Kiv_Skyhold VERSION ([\d.]+)", SOURCES / "CMakeLists.txt")


def disagreements():
    """What names another version, or none, in words."""
    places = [(SOURCES / "CHANGELOG.md", r"^## ([\d.]+)")]
    wanted = version()
    filled_in = "@PROJECT_VERSION@"  # by CMake
    return [f"{path.relative_to(SOURCES)} names {named or 'no version'}, not {wanted}"
            for path, pattern in places if (named := first(pattern, path)) not in (wanted, filled_in)]


def git(*arguments):
    return subprocess.run(["git", "-C", SOURCES, *arguments], capture_output=True, text=True,
                          check=True).stdout.strip()


def main():
    faults = disagreements()
    if not first(rf"^## {re.escape(version())}, (\d{{4}}-\d\d-\d\d)$", SOURCES / "CHANGELOG.md"):
        faults.append(f'CHANGELOG.md has no day behind "## {version()},", as 2026-11-23')
    if git("status", "--porcelain"):
        faults.append("there are changes that are not committed")
    if git("tag", "--list", f"v{version()}"):
        faults.append(f"v{version()} has been released already")
    if faults:
        sys.exit("\n".join(faults))
    print(f"All agree on {version()}. To release it: git tag v{version()}")


if __name__ == "__main__":
    main()
