"""The rule of the rooms: an include runs downwards only.

Every folder of src/ is a room. A room includes itself and the rooms of the rows below its own,
never a room beside it or above. The files of src/ itself put the program together and include any
room. Headers of Qt Widgets are for ui/ and those files alone.
"""

import re

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
WIDGET_ROOMS = {"ui"}

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')


def room_of(path):
    """The room of a path below src/; None for the files of src/ itself."""
    parts = path.split("/")
    return parts[0] if len(parts) > 1 else None


def is_widget_header(name, widget_headers):
    return name.startswith("QtWidgets/") or name == "QtWidgets" or name in widget_headers


def fault(room, quote, name, widget_headers):
    """What is wrong with one include of a room; None when nothing is."""
    if room is None:
        return None
    if room not in ROW_OF:
        return f"room {room} has no place in the picture"
    if is_widget_header(name, widget_headers) and room not in WIDGET_ROOMS:
        return "Qt Widgets are for ui/ alone"
    if quote == "<":
        return None
    other = room_of(name)
    if other not in ROW_OF:
        return "not a header of a room"
    if other != room and ROW_OF[other] == ROW_OF[room]:
        return "runs sideways"
    if ROW_OF[other] > ROW_OF[room]:
        return "runs up"
    return None


def faults(files, widget_headers):
    """The faults of files, given as {path below src/: text}, as lines to show."""
    found = []
    for path, text in sorted(files.items()):
        for number, line in enumerate(text.splitlines(), 1):
            include = INCLUDE.match(line)
            if not include:
                continue
            reason = fault(room_of(path), include[1], include[2], widget_headers)
            if reason:
                found.append(f"src/{path}:{number}: {include[2]}: {reason}")
    return found
