# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads the include lines of the sources and fails on one that breaks the rule of the rooms.

usage: architecture_test.py SOURCE_FOLDER QT_WIDGETS_INCLUDE_FOLDER

Every folder of src/ is a room. A room includes itself and the rooms of the rows below its own,
never a room beside it or above. The files of src/ itself put the program together and include any
room. Headers of Qt Widgets are for ui/ and those files alone.
"""

import os
import pathlib
import re
import sys

# From the ground up.
ROWS = [
    {"model"},
    {"judge", "platform"},
    {"bus", "records"},
    {"settings", "units", "sensor"},
    {"conditions", "datafiles", "graphs", "history", "update"},
    {"replay"},
    {"core"},
    {"automation", "ui"},
]
ROW_OF = {room: row for row, rooms in enumerate(ROWS) for room in rooms}
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def fault(room, quote, name, widget_headers):
    """What is wrong with one include of a room; None when nothing is."""
    if room not in ROW_OF:
        return f"room {room} has no place in the picture"
    if room != "ui" and (name.startswith("QtWidgets") or name in widget_headers):
        return "Qt Widgets are for ui/ alone"
    other = name.split("/")[0]
    if quote == "<" or other == room:
        return None
    if other not in ROW_OF or "/" not in name:
        return "not a header of a room"
    return None if ROW_OF[other] < ROW_OF[room] else "runs sideways or up"


def main(folder, widget_headers):
    for line in [("core", '"', "ui/b.h"), ("judge", '"', "platform/b.h"), ("core", "<", "QLabel"),
                 ("core", '"', "../ui/b.h"), ("weather", '"', "core/b.h")]:
        assert fault(*line, widget_headers), f"{line} is not noticed"
    found = []
    for path in sorted(folder.glob("*/**/*")):
        if path.suffix not in (".h", ".cpp"):
            continue
        name = path.relative_to(folder)
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            include = INCLUDE.match(line)
            reason = include and fault(name.parts[0], *include.groups(), widget_headers)
            if reason:
                found.append(f"src/{name}:{number}: {include[2]}: {reason}")
    return "\n".join(found)


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1]), set(os.listdir(sys.argv[2]))) or 0)
