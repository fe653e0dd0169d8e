# SPDX-License-Identifier: GPL-3.0-or-later
"""A long run of the real program with both simulators: does it still hold what it held at first?

Files and images are written, recording is on, a sound server plays the alarms that come and go
with the weather and with the station's file, clients come, read, change a setting and go. Every
so often resident memory, open files, threads and temporary files are read; the table and the
verdict are printed, and the exit status is the verdict.

    soak.py [CYCLES]        in fast motion (100,000 cycles)
    soak.py --real SECONDS  at the pace of the clock
    soak.py --window ...    with the window
"""

import argparse
import os
import pathlib
import shutil
import statistics
import sys
import time

import dbus

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "tests/system"))
from monitored import METHOD, PUT, Client, Monitored, run  # noqa: E402  (in that folder)
from sound_server import SoundServer  # noqa: E402

SETTLED = 5_000      # cycles after which nothing may grow any more
ROW = 1_000          # cycles between two rows of the table
REAL_SETTLED = 0.25  # part of a run at the pace of the clock; the graphs are full by then
REAL_ROWS = 24
REAL_LEAST = 600     # seconds; in less an alarm could sound all through a row
GROWTH = 0.02        # of resident memory, at most
LOOK_SECONDS = 0.1
VISIT_SECONDS = 0.5  # between two clients
READS = ["Safe", "Name", "DataReady", "SkyTemperature", "Condition_Wind", "Kiv_SafeDelayMsg",
         "Condition_Cloud", "Kiv_TotalNoUsers"]


def parse_arguments():
    parser = argparse.ArgumentParser(prog="./dev soak", description=__doc__.split("\n\n")[0])
    parser.add_argument("cycles", type=int, nargs="?", default=100_000, metavar="CYCLES",
                        help="read cycles in fast motion (100000)")
    parser.add_argument("--real", type=float, metavar="SECONDS",
                        help="so many seconds at the pace of the clock instead")
    parser.add_argument("--speed", type=float, default=500, metavar="N",
                        help="how many times as fast as the clock (500)")
    parser.add_argument("--window", action="store_true",
                        help="with the window, drawn without a display")
    options = parser.parse_args()
    if options.cycles <= SETTLED and not options.real:
        parser.error(f"CYCLES must be more than {SETTLED}")
    if options.real and options.real < REAL_LEAST:
        parser.error(f"SECONDS must be at least {REAL_LEAST}")
    return options


def add_settings(monitored, readings_a_point):
    """Alarms for what the weather brings and for a missing station file; a point of the graphs
    every so many readings."""
    sounds = run.PROGRAMS.parent / "share/kiv_skyhold/sounds"
    folder = monitored.folder / "user/config/Kiv"
    with open(folder / "Kiv_Skyhold.ini", "a", encoding="utf-8") as file:
        file.write(f"GraphFreq={readings_a_point}\n\n[Alarms]\n")
        for key, sound in [("Overcast", "Bell.wav"), ("Rain", "Sonar.wav"), ("Light", "Chime.wav"),
                           ("WindyGust", "Harp.wav"), ("WSAlarm", "Knock.wav|repeat")]:
            file.write(f"{key}={run.text(sounds / sound)}\n{key}Stat=1\n")


class Held:
    """What the monitor holds, read often; `least` since the last row passes over what is held for
    a moment only (a file that is being written, a sound that plays)."""

    NAMES = ["open files", "threads", "temporary files"]

    def __init__(self, pid, folder):
        self.proc = pathlib.Path(f"/proc/{pid}")
        self.folder = folder
        self.least = None
        self.rss = []

    def look(self):
        now = [len(os.listdir(self.proc / "fd")), len(os.listdir(self.proc / "task")),
               self.temporary_files()]
        self.least = now if self.least is None else list(map(min, self.least, now))
        for line in (self.proc / "status").read_text().splitlines():
            if line.startswith("VmRSS:"):
                self.rss.append(int(line.split()[1]))

    def temporary_files(self):
        """Files that are no result in the folders that the monitor writes to."""
        return sum(path.suffix not in [".png", ".dat", ".csv", ".ini"]
                   for name in ["images", "ccdap", "data", "user/config/Kiv"]
                   for path in (self.folder / name).iterdir())

    def row(self):
        """Median of resident memory in kB and the least of the others since the last row."""
        found = [round(statistics.median(self.rss)), *self.least]
        self.least, self.rss = None, []
        return found


class Visitor:
    """Automation clients, one after the other; each reads, every tenth changes a setting and makes
    the recorder begin anew. One more stays for good."""

    def __init__(self, monitored):
        self.monitored = monitored
        self.stays = Client(monitored)
        self.visits = 0
        self.answers = 0

    def visit(self):
        self.visits += 1
        client = Client(self.monitored)
        for name in READS:
            client.invoke(name)
            self.stays.invoke(name)
            self.answers += 2
        if self.visits % 10 == 0:
            client.invoke("Kiv_SafeDelayValue", PUT, [dbus.Int32(30 + self.visits % 3)])
            client.invoke("RecordStart", METHOD, [True])
        if self.visits % 2 == 0:
            client.release()
        client.close()  # the others' instances go with their connection


def turn_station(monitored, turns):
    """The station's file goes and comes back, and so does its alarm."""
    monitored.break_station("delete" if turns % 2 else "none")


def soak(monitored, options):
    pid = monitored.monitor.pid
    held = Held(pid, monitored.folder)
    visitor = Visitor(monitored)
    begin = time.monotonic()
    end = begin + options.real if options.real else float("inf")
    step = options.real / REAL_ROWS if options.real else ROW
    last_visit = turns = 0
    table = []
    print(f"{'cycles':>8} {'seconds':>8} {'RSS kB':>8} {'open files':>11} {'threads':>8} "
          f"{'temporary':>10} {'CPU s':>7}", flush=True)
    while True:
        time.sleep(LOOK_SECONDS)
        if monitored.monitor.poll() is not None:
            raise SystemExit("the monitor has ended:\n" + "\n".join(monitored.errors[-5:]))
        held.look()
        now = time.monotonic()
        cycles = len(monitored.cycles)
        done = now - begin if options.real else cycles
        if now - last_visit >= VISIT_SECONDS:
            last_visit = now
            visitor.visit()
        # Twice a row: the station's alarm begins and ends within it.
        if done // (step / 2) > turns:
            turns += 1
            turn_station(monitored, turns)
        if done >= step * (len(table) + 1):
            row = held.row()
            table.append([done, *row])
            ticks = (pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split())
            cpu = (int(ticks[11]) + int(ticks[12])) / os.sysconf("SC_CLK_TCK")
            print(f"{cycles:8} {now - begin:8.0f} {row[0]:8} {row[1]:11} {row[2]:8} {row[3]:10} "
                  f"{cpu:7.1f}", flush=True)
        if now >= end or (not options.real and cycles >= options.cycles):
            break
    return table, visitor


def judge(table, settled):
    """Prints the verdict on each figure; true when none has grown too much."""
    first = next(row for row in table if row[0] >= settled)
    last = table[-1]
    growth = last[1] / first[1] - 1
    fine = growth <= GROWTH
    print(f"resident memory {first[1]} -> {last[1]} kB: {growth:+.2%} (at most {GROWTH:+.0%})")
    for name, before, after in zip(Held.NAMES, first[2:], last[2:]):
        print(f"{name} {before} -> {after} (no growth)")
        fine = fine and after <= before
    return fine


def main():
    options = parse_arguments()
    run.end_on_signals()
    speed = 1 if options.real else options.speed
    with SoundServer(ear=False) as sounds:
        monitored = Monitored(["--start", "--record"], weather="night", speed=speed,
                              read_seconds=5, images=True, window=options.window)
        add_settings(monitored, readings_a_point=1 if options.real else 20)
        monitored.run.variables["PULSE_SERVER"] = sounds.variables["PULSE_SERVER"]
        print(f"Folder of this run: {monitored.folder}", flush=True)
        with monitored:
            table, visitor = soak(monitored, options)
            cycles = len(monitored.cycles)
            monitored.monitor.terminate()
            status = monitored.monitor.wait(30)
    unsafe = sum("| UNSAFE" in line for line in monitored.cycles)
    codes = sum(not line.endswith("| ") and line[-1] != "|" for line in monitored.cycles)
    print(f"{cycles} cycles, {unsafe} unsafe, {codes} with a status code; {visitor.visits} clients "
          f"with {visitor.answers} answers; lines on standard error: {len(monitored.errors)}")
    for line in sorted(set(monitored.errors)):
        print(f"  {line}")
    fine = judge(table, options.real * REAL_SETTLED if options.real else SETTLED)
    if status != 0:
        print(f"the monitor ended with status {status}")
        fine = False
    if fine:
        shutil.rmtree(monitored.folder)
    print("PASSED" if fine else "FAILED")
    return 0 if fine else 1


if __name__ == "__main__":
    sys.exit(main())
