"""Kills the monitor at random moments of a busy run and looks at its files.

    kills.py [KILLS] [--seed N]
"""

import argparse
import pathlib
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "tests/system"))
from kill_run import KillRun, Torn, run  # noqa: E402  (in that folder)


def main():
    parser = argparse.ArgumentParser(prog="./dev kills", description=__doc__.split("\n")[0])
    parser.add_argument("kills", type=int, nargs="?", default=200, metavar="KILLS",
                        help="how many (200)")
    parser.add_argument("--seed", type=int, default=time.time_ns() % 100_000, metavar="N",
                        help="of the random moments")
    options = parser.parse_args()
    run.end_on_signals()
    begin = time.monotonic()
    kills = KillRun(options.kills, options.seed)
    print(f"seed {options.seed}, folder of this run: {kills.folder}", flush=True)
    try:
        for what, count in kills.walk().items():
            print(f"{what}: {count}")
    except Torn as torn:
        print(f"FAILED after {dict(kills.seen)}: {torn}")
        return 1
    print(f"{time.monotonic() - begin:.0f} s, PASSED")
    return 0


if __name__ == "__main__":
    sys.exit(main())
