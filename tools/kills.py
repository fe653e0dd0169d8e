# SPDX-License-Identifier: GPL-3.0-or-later
"""Kills the monitor at random moments of a busy run, starts it again and looks at its files.

    kills.py [KILLS] [--seed N]

It records, saves images, writes the weather file and hands uploads off; a client changes settings
over the bus, another program writes into the settings file. After every kill the settings file must
be whole and hold what was saved, no line of the data file may be torn but the last, the history must
be whole and lack at most the last second, every image must decode, and what was unfinished must be
gone once the program has run again.
"""

import argparse
import collections
import configparser
import contextlib
import datetime
import pathlib
import random
import re
import shutil
import sqlite3
import struct
import subprocess
import sys
import threading
import time
import zlib

import dbus

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "tests/system"))
from monitored import PUT, Client, Cycle, Monitored, run  # noqa: E402  (in that folder)

SPEED = 200  # a cycle every 25 ms
BUSY_SECONDS = 0.4
START_SECONDS = 0.3
END_SECONDS = 0.1
# What the moment of the kill is: before the first cycle, in a running session, while the program
# ends and saves. "whole" is no kill: the program ends and everything must have been saved.
KINDS = ["start"] * 2 + ["busy"] * 4 + ["end"] * 3 + ["whole"]
LINE = re.compile(rb'"[^"]*"(,"[^"]*"){24},?')
# Stored key and member of what the client changes: all get the same number at once.
CHANGED = {("Window", "SafeDelayVal"): "Kiv_SafeDelayValue", ("Window", "Left"): "WindowLeft",
           ("Limit", "WindVWindy"): "ThreshWindVWindy", ("Limit", "HumHigh"): "ThreshHumVHumid"}


class Torn(AssertionError):
    """A file is not as it must be."""


def check(holds, what):
    if not holds:
        raise Torn(what)


def decode_png(data):
    """Fails unless the picture is whole."""
    check(data[:8] == b"\x89PNG\r\n\x1a\n", "not a PNG file")
    position, kind, pixels = 8, b"", b""
    while kind != b"IEND":
        length, kind = struct.unpack(">I4s", data[position:position + 8])
        body = data[position + 8:position + 8 + length]
        crc, = struct.unpack(">I", data[position + 8 + length:position + 12 + length])
        check(crc == zlib.crc32(kind + body), f"a wrong checksum in {kind}")
        if kind == b"IHDR":
            width, height, depth, colours = struct.unpack(">IIBB", body[:10])
            check((depth, colours) == (8, 2), "not of 24 bits")
        elif kind == b"IDAT":
            pixels += body
        position += 12 + length
    check(position == len(data), "bytes behind the end")
    check(len(zlib.decompress(pixels)) == height * (1 + 3 * width), "lines are missing")


def read_ini(path):
    parser = configparser.RawConfigParser(strict=True)
    parser.optionxform = str
    parser.read_string(path.read_text(encoding="utf-8"))
    return {(section, key): value for section in parser.sections()
            for key, value in parser.items(section)}


class KillRun:
    def __init__(self, kills, seed):
        self.kills = kills
        self.random = random.Random(seed)
        self.monitored = Monitored(["--start", "--record"], speed=SPEED, read_seconds=5)
        self.folder = self.monitored.folder
        upload = run.upload_settings(self.folder, 9).replace("RefreshUpload=0", "RefreshUpload=3")
        run.write_settings(self.folder, self.monitored.station_file, 5, images=True,
                           more_setup=upload)
        self.config = self.folder / "user/config/Kiv"
        self.ini = self.config / "Kiv_Skyhold.ini"
        self.seen = collections.Counter()
        self.number = 100    # the client's latest
        self.saved = None    # the number that the file holds for sure
        self.written = 0     # by the other program
        self.keys = set()    # of the whole file
        self.torn_lines = 0

    def walk(self):
        """Figures of the run; raises Torn."""
        killed = 0
        with self.monitored as monitored:
            self.end_whole()
            while killed < self.kills:
                kind = self.random.choice(KINDS)
                self.seen[kind] += 1
                if kind == "start":
                    self.kill_at_start()
                elif kind == "whole":
                    monitored.start_monitor()
                    self.be_busy(self.random.random() * BUSY_SECONDS)
                    self.end_whole()
                else:
                    self.kill_busy(ending=kind == "end")
                killed += kind != "whole"
                self.look(kind)
            monitored.start_monitor()
            self.wait_for_cycle()
            self.end_whole()
            self.look("whole")
        self.seen["kills"] = killed
        shutil.rmtree(self.folder)  # a run that failed leaves it to be looked at
        return self.seen

    def wait_for_cycle(self):
        begin = len(self.monitored.cycles)
        self.monitored.wait_until("a cycle", lambda: len(self.monitored.cycles) > begin + 1)

    def end_whole(self):
        """Ends the program in order; what was set must be stored then."""
        self.wait_for_cycle()
        self.change()
        self.monitored.monitor.terminate()
        check(self.monitored.monitor.wait(20) == 0, "the program ended with a failure")
        self.saved = self.number
        self.keys |= set(read_ini(self.ini))
        self.look("whole")

    def change(self, client=None):
        client = client or Client(self.monitored)
        number = self.number % 300 + 100
        for member in CHANGED.values():
            client.invoke(member, PUT, [dbus.Int32(number)])
        self.number = number

    def be_busy(self, seconds):
        """Changes settings over the bus until the time is over or the program is gone."""
        end = time.monotonic() + seconds
        try:
            client = Client(self.monitored)
            while time.monotonic() < end:
                self.change(client)
                self.write_beside()
        except dbus.DBusException:
            check(self.monitored.monitor.wait(5) is not None, "a call was refused")

    def write_beside(self):
        """Another program's key goes into the settings file, as an editor stores it."""
        self.written += 1
        lines = [line for line in self.ini.read_text(encoding="utf-8").splitlines()
                 if not line.startswith(("[Writer]", "Count="))]
        part = self.ini.with_name("edited")
        part.write_text("\n".join([*lines, "[Writer]", f"Count={self.written}", ""]),
                        encoding="utf-8")
        part.chmod(0o600)
        part.rename(self.ini)

    def kill_at_start(self):
        command = [run.PROGRAMS / "Kiv_Skyhold", *self.monitored.arguments, *self.monitored.clock]
        program = self.monitored.run.start(*command, stdout=subprocess.DEVNULL,
                                           stderr=subprocess.DEVNULL)
        time.sleep(self.random.random() * START_SECONDS)
        program.kill()
        program.wait()

    def kill_busy(self, ending):
        monitored = self.monitored
        monitored.start_monitor()
        self.wait_for_cycle()
        if ending:
            self.be_busy(0.05)
            monitored.monitor.terminate()
            time.sleep(self.random.random() * END_SECONDS)
        else:
            # From a thread of its own, whatever the program is doing.
            threading.Timer(self.random.random() * BUSY_SECONDS, monitored.monitor.kill).start()
            self.be_busy(BUSY_SECONDS + 1)
        monitored.monitor.kill()
        monitored.monitor.wait()

    def look(self, kind):
        """The program is gone: every file is as it must be."""
        self.look_at_settings(kind)
        self.look_at_data(kind)
        self.look_at_history(kind)
        record = (self.folder / "ccdap" / run.CCDAP_NAME).read_bytes()
        check(re.match(rb"\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d\d ", record) and len(record) == 100,
              f"the weather file: {record}")
        for image in (self.folder / "images").glob("[!.]*"):
            decode_png(image.read_bytes())
            self.seen["images decoded"] += 1
        self.look_for_leftovers(kind)

    def look_at_settings(self, kind):
        check(self.ini.stat().st_mode & 0o777 == 0o600, "the settings are open to others")
        stored = read_ini(self.ini)
        lost = self.keys - set(stored)
        check(not lost, f"settings are lost: {sorted(lost)[:5]}")
        if self.written:
            check(stored[("Writer", "Count")] == str(self.written), "the other program's key")
        numbers = {stored[key] for key in CHANGED}
        allowed = [str(self.saved)] + ([str(self.number)] if kind == "end" else [])
        check(len(numbers) == 1 and numbers <= set(allowed), f"{numbers} instead of {allowed}")
        if kind == "end":
            self.seen["ends that had saved" if numbers == {str(self.number)}
                      else "ends that had not saved"] += self.number != self.saved
            self.saved = int(numbers.pop())
        self.number = self.saved  # what the next start begins with
        hand_off = self.config / "Kiv_Uploader.ini"
        if hand_off.exists():
            check(("Setup", "Server") in read_ini(hand_off), "the hand-off is not whole")

    def look_at_data(self, kind):
        lines = (self.folder / "data" / "Skyhold.csv").read_bytes().split(b"\r\n")
        torn = [line for line in lines[:-1] if not LINE.fullmatch(line)]
        if lines[-1]:
            check(kind != "whole", "the last line is unfinished")
            self.seen["unfinished lines"] += 1
            self.torn_lines += 1
        check(len(torn) <= self.torn_lines - bool(lines[-1]), f"torn lines: {torn[:3]}")
        self.seen["data lines"] = len(lines) - 1

    def look_at_history(self, kind):
        """As the next start of the program finds it; it ends the session that was lost."""
        path = self.folder / "user/data/Kiv_Skyhold/history.db"
        with contextlib.closing(sqlite3.connect(path)) as database:
            state, = database.execute("PRAGMA integrity_check").fetchone()
            check(state == "ok", f"the history: {state}")
            last, count = database.execute("SELECT max(at), count(*) FROM cycles").fetchone()
            events = database.execute("SELECT count(*) FROM events").fetchone()[0]
        check(count >= self.seen["history cycles"] and events >= self.seen["history events"],
              "the history has lost what it had")
        self.seen["history cycles"], self.seen["history events"] = count, events
        if self.monitored.cycles and kind != "start":
            shown = Cycle(self.monitored.cycles[-1]).time
            shown = datetime.datetime.fromisoformat(shown).timestamp()
            behind = (shown - last / 1000) / SPEED
            check(behind < 1, f"the history lacks the last {behind:.1f} s")
        broken = list(path.parent.glob("*.broken-*"))
        check(not broken, f"set aside as torn: {broken}")

    def look_for_leftovers(self, kind):
        names = [path.name for folder in [self.folder / "images", self.folder / "ccdap",
                                          self.folder / "data", self.config]
                 for path in folder.iterdir()
                 if path.suffix not in [".png", ".dat", ".csv", ".ini", ".whole", ".running"]]
        # The lock of who saves is taken over, and its file is needed by nobody else.
        left = [name for name in names if not name.endswith(".ini.lock")
                and not name.startswith("Kiv_Uploader.ini.")]
        self.seen["most leftovers"] = max(self.seen["most leftovers"], len(left))
        check(kind != "whole" or not left, f"leftovers stay: {left}")


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
