# SPDX-License-Identifier: GPL-3.0-or-later
"""Breaks every edge of the program, one at a time, and reports what it shows.

    python3 -B tools/faults [--only TEXT] [--markdown [FILE]]

The exit status is 1 when a row failed.
"""

import argparse
import importlib
import pathlib
import sys
import time
import traceback

ROOT = pathlib.Path(__file__).resolve().parents[2]
PAGE = ROOT / "docs/faults.md"
sys.path.insert(0, str(ROOT / "tests/system"))
import table  # noqa: E402  (beside this file)
from shared import end_shared  # noqa: E402

MODULES = ["telling_rows", "sensor_rows", "station_rows", "output_rows", "clock_rows", "bus_rows",
           "settings_rows", "end_rows"]
HEADINGS = ["area", "fault", "what was seen (verdict, lamps, codes, status)", "recovery", "seconds"]


def parse_arguments():
    parser = argparse.ArgumentParser(prog="./dev faults", description=__doc__.split("\n")[0])
    parser.add_argument("--only", metavar="TEXT", default="",
                        help="rows whose area or fault contains this")
    parser.add_argument("--markdown", type=pathlib.Path, metavar="FILE", nargs="?", const=PAGE,
                        help="put the table into this file, by default into docs/faults.md")
    return parser.parse_args()


def put_table(path, lines):
    """Replaces the table with the same header in the file, which may have none yet. The last column,
    how long a row took, is left out."""
    lines = [text.rsplit("|", 2)[0] + "|" for text in lines]
    old = path.read_text(encoding="utf-8").splitlines() if path.exists() else []
    begin = old.index(lines[0]) if lines[0] in old else len(old)
    end = begin
    while end < len(old) and old[end].startswith("|"):
        end += 1
    path.write_text("\n".join(old[:begin] + lines + old[end:]) + "\n", encoding="utf-8")


def walk(row):
    """The cells of the table, and the failure or nothing."""
    seen = table.Seen()
    begun = time.monotonic()
    failures = []
    cycles = []
    try:
        table.walk(row, seen)
    except Exception:  # whatever it is, the other rows are walked
        failures.append(traceback.format_exc())
        cycles = [line for program in table.Monitored.used
                  for line in program.cycles[-5:] + program.errors[-5:]]
        end_shared()
    if failures:
        print("\n".join([f"FAILED {row.area}: {row.fault}", *failures, *cycles]),
              file=sys.stderr, flush=True)
        seen.say("**FAILED**")
    seconds = f"{time.monotonic() - begun:.1f}"
    return [row.area, row.fault, "; ".join(seen.texts), seen.recovered, seconds], bool(failures)


def line(cells):
    return "| " + " | ".join(str(cell).replace("|", "/") for cell in cells) + " |"


def main():
    options = parse_arguments()
    lines = [line(HEADINGS), "|" + "---|" * len(HEADINGS)]
    print("\n".join(lines), flush=True)
    failed = 0
    for name in MODULES:
        table.ROWS.clear()
        importlib.import_module(name)
        for row in table.ROWS:
            if options.only not in row.area and options.only not in row.fault:
                continue
            cells, wrong = walk(row)
            failed += wrong
            lines.append(line(cells))
            print(lines[-1], flush=True)
        end_shared()
    if options.markdown:
        put_table(options.markdown, lines)
    walked = len(lines) - 2
    print(f"{walked} rows, {failed} failed", flush=True)
    return 1 if failed or not walked else 0


if __name__ == "__main__":
    sys.exit(main())
