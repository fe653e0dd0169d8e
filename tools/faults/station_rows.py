# SPDX-License-Identifier: GPL-3.0-or-later
"""Faults of the weather station's file."""

import contextlib
import os
import re
import shutil
import signal
import subprocess
import threading
import time

from table import is_safe, more_cycles, quiet_evening, row
from monitored import METHOD, Client, Cycle
from shared import Shared

AREA = "station file"
SAYS = "Weather Station Data - "
OLD = "Weather Station Data too old - "

PAGE = Shared(quiet_evening)
CSV = Shared(lambda: quiet_evening(station="station.csv"))


def put(path, content):
    part = path.with_suffix(".part")
    part.write_bytes(content)
    part.rename(path)


@contextlib.contextmanager
def station_stopped(seen, shared):
    """The program in a safe sky, and the station's last text; the station goes on afterwards."""
    monitored = shared.get()
    monitored.next_cycle("a safe sky", is_safe)
    monitored.station.send_signal(signal.SIGSTOP)
    yield monitored, monitored.station_file.read_bytes()
    monitored.station.send_signal(signal.SIGCONT)
    seen.recovery(monitored, "the station's return", is_safe)


def expect(seen, monitored, status, code, more=2):
    with seen.untrusted(monitored):
        seen.cycle(monitored, status, lambda c: c.verdict == "UNSAFE" and c.codes == code
                   and c.status.startswith(status))
        more_cycles(seen, monitored, more)


# Whole files that the station itself leaves, and what is said of them.
for fault, text, status, code in [
        ("delete", "missing, and made anew", SAYS + "file not available", "a42"),
        ("empty", "empty", SAYS + "no readings in file", "a41"),
        ("rubbish", "binary", SAYS, "a41"),
        ("huge", "200 MB long", SAYS + "file too large (over 16 MB)", "a41"),
        ("stop", "not rewritten", OLD, "a41")]:
    def broken(seen, fault=fault, status=status, code=code):
        monitored = PAGE.get()
        monitored.next_cycle("a safe sky", is_safe)
        monitored.break_station(fault)
        monitored.next_cycle(fault, lambda c: c.codes == code)
        expect(seen, monitored, status, code)
        monitored.break_station("none")
        seen.recovery(monitored, "the station's return", is_safe)
    row(AREA, text)(broken)


def with_value(name, value):
    """The text with another value for the name."""
    return lambda text: re.sub(rb"(<td>%s</td>.*?<td align=right>)[^<]*" % name.encode(),
                               rb"\g<1>" + value.encode(), text)


MISSING = "value missing or not a number"
INCOMPLETE = "file not complete"
NOTHING = "no readings in file"

# Texts that a whole page turns into, and what is said of them.
PAGES = [
    ("numbers that are none: nan, 1e999, --, 12,5, nothing", MISSING,
     [with_value(name, value) for name, value in [
         ("WindSpeed", "nan"), ("Gust", "1e999"), ("WindSpeed", "--"), ("OutHumidity", "92,5"),
         ("OutTemp", "12,5"), ("WindSpeed", ""), ("DewPoint", "inf")]]),
    ("a page that is torn", NOTHING,
     [lambda text, part=part: text[:len(text) * part // 10] for part in range(10)]),
    ("a page with a table of something else before it", NOTHING,
     [lambda text: b"<table><tr><td>News</td></tr></table>" + text]),
    ("a page with a fourth cell in a row", MISSING,
     [lambda text: text.replace(b"<td>WindSpeed</td>", b"<td></td><td>WindSpeed</td>")]),
    ("a page with tags in capitals", NOTHING, [lambda text: text.upper()]),
    ("a page with tags in its cells, or in its rows", MISSING,
     [lambda text: text.replace(b"WindSpeed", b"<b>WindSpeed</b>"),
      lambda text: text.replace(b"<tr><td>Gust", b"<tr class=x><td>Gust")]),
    ("a page with zero bytes", "not a text file",
     [lambda text: text.replace(b"Gust", b"Gust\0")]),
]
for text, status, edits in PAGES:
    def edited(seen, status=status, edits=edits):
        with station_stopped(seen, PAGE) as (monitored, whole):
            for edit in edits:
                changed = edit(whole)
                assert changed != whole
                put(monitored.station_file, whole)
                monitored.next_cycle("a whole page", is_safe)
                put(monitored.station_file, changed)
                expect(seen, monitored, SAYS + status, "a41", more=1)
    row(AREA, text)(edited)


@row(AREA, "one dead instrument in a storm, old data not unsafe")
def dead_instrument(seen):
    monitored = quiet_evening()
    with open(monitored.folder / "user/config/Kiv/Kiv_Skyhold.ini", "a",
              encoding="utf-8") as settings:
        settings.write("\n[Alarms]\nWSDataOldUnsafe=0\n")
    with monitored:
        monitored.next_cycle("a safe sky", is_safe)
        monitored.station.send_signal(signal.SIGSTOP)
        storm = with_value("Gust", "70")(with_value("WindSpeed", "45")(
            monitored.station_file.read_bytes()))
        for edit, causes in [
                (with_value("OutTemp", "--"), ["Wind 45.0 km/h, above 20", "Gust 70.0 km/h, above 20"]),
                (lambda text: text.replace(b"<td>Gust</td>", b"<td>Soil</td>"),
                 ["Wind 45.0 km/h, above 20"]),
                (with_value("WindDirection", "N/A"), ["Wind 45.0 km/h, above 20", "Gust 70.0 km/h, above 20"])]:
            put(monitored.station_file, edit(storm))
            # A level counts after a minute in its sector, the whole circle here.
            found = monitored.next_cycle("the storm", lambda c: c.verdict == "UNSAFE")
            assert [cause in found.cause for cause in causes] == [True] * len(causes), found.line
            with seen.untrusted(monitored):
                more_cycles(seen, monitored, 1)
            seen.say(f"{found.verdict}, “{found.cause}”, {found.codes or 'no code'}")
        monitored.station.send_signal(signal.SIGCONT)
        seen.recovery(monitored, "the instrument's return", is_safe)


@row(AREA, "CSV with unbalanced quotes, or torn")
def csv(seen):
    with station_stopped(seen, CSV) as (monitored, whole):
        gust = whole.index(b"Gust")
        # Cut between two records, or with some of them in quotes, a file lacks values and no more.
        for changed, status in [
                (whole.replace(b"Gust,", b'Gust,"'), INCOMPLETE),
                (whole.replace(b"Gust,", b'"Gust,', 1).replace(b"DewPoint", b'DewPoint"'), MISSING),
                (whole[:gust + 4], INCOMPLETE), (whole[:gust], MISSING)]:
            put(monitored.station_file, whole)
            monitored.next_cycle("a whole file", is_safe)
            put(monitored.station_file, changed)
            expect(seen, monitored, SAYS + status, "a41", more=1)


@row(AREA, "CSV with a footer, two more fields, or an end mark behind its records")
def csv_with_footer(seen):
    with station_stopped(seen, CSV) as (monitored, whole):
        for end in [b"made by a station\r\n", b"two,fields\r\n", b"\x1a"]:
            put(monitored.station_file, whole + end)
            monitored.next_cycle("the records", lambda c: is_safe(c) and "Refreshed" in c.status)
            more_cycles(seen, monitored, 1)
            assert all(is_safe(Cycle(line)) for line in monitored.cycles[-2:]), monitored.cycles
        seen.say("SAFE throughout")


@row(AREA, "CSV torn at the first read of a session")
def csv_at_first(seen):
    with quiet_evening(arguments=[], station="station.csv") as monitored:
        monitored.station.send_signal(signal.SIGSTOP)
        whole = monitored.station_file.read_bytes()
        put(monitored.station_file, whole[:whole.index(b"WindSpeed")])
        client = Client(monitored)
        client.invoke("Device_Start", METHOD)
        seen.expect("a first cycle", lambda: monitored.cycles, 20)
        put(monitored.station_file, whole)
        first = monitored.cycles[0]
        assert "UNSAFE" in first and INCOMPLETE in first, first
        seen.say("UNSAFE, a41, “" + SAYS + INCOMPLETE + "” in the first cycle")
        seen.recovery(monitored, "the whole file", is_safe)
        client.close()
        monitored.station.send_signal(signal.SIGCONT)


def in_its_place(make, remove):
    def walk(seen):
        with station_stopped(seen, PAGE) as (monitored, _whole):
            path = monitored.station_file
            path.unlink()
            make(path)
            expect(seen, monitored, SAYS + "file not available", "a42")
            remove(path)
    return walk


row(AREA, "a folder in its place")(in_its_place(lambda path: path.mkdir(),
                                                lambda path: path.rmdir()))
row(AREA, "a named pipe in its place")(in_its_place(os.mkfifo,
                                                                lambda path: path.unlink()))


@row(AREA, "not permitted to be read")
def forbidden(seen):
    monitored = quiet_evening()
    if os.geteuid() == 0:
        # The administrator may read everything, unless that right is given up.
        monitored.prefix = ["setpriv", "--bounding-set=-dac_override,-dac_read_search"]
        if subprocess.run([*monitored.prefix, "true"], check=False, capture_output=True).returncode:
            seen.say("not walked: rights cannot be given up here")
            return
    with monitored:
        monitored.next_cycle("a safe sky", is_safe)
        monitored.station.send_signal(signal.SIGSTOP)
        monitored.station_file.chmod(0)
        expect(seen, monitored, SAYS + "file not available", "a42")
        monitored.station.send_signal(signal.SIGCONT)
        seen.recovery(monitored, "a file with its rights", is_safe)


@row(AREA, "on a disk that goes away")
def lost_disk(seen):
    monitored = quiet_evening(station="disk/station.htm")
    disk, away = monitored.folder / "disk", monitored.folder / "away"
    away.mkdir()
    disk.mkdir()
    mounted = subprocess.run(["mount", "-t", "tmpfs", "none", disk], check=False,
                             capture_output=True).returncode == 0
    if not mounted:
        disk.rmdir()
        disk.symlink_to(away)
    seen.say("unmounted" if mounted else "a link to a folder that vanishes (no right to mount)")
    try:
        with monitored:
            monitored.next_cycle("a safe sky", is_safe)
            monitored.station.send_signal(signal.SIGSTOP)
            if mounted:
                subprocess.run(["umount", "-l", disk], check=True)
                mounted = False
            else:
                shutil.rmtree(away)
            expect(seen, monitored, SAYS + "file not available", "a42")
            away.mkdir(exist_ok=True)
            monitored.station.send_signal(signal.SIGCONT)
            seen.recovery(monitored, "the disk's return", is_safe)
    finally:
        if mounted:
            subprocess.run(["umount", "-l", disk], check=False)


for text, begin in [("behind", "17:30"), ("ahead", "19:30")]:
    # 65 minutes of the clock pass: the records of the station that stopped come of age.
    @row(AREA, f"the station's clock is an hour {text}, and it stops")
    def wrong_clock(seen, begin=begin):
        with quiet_evening(station_begin=f"2026-11-16T{begin}:00", speed=600,
                           read_seconds=60) as monitored:
            seen.cycle(monitored, "a safe sky", is_safe)
            monitored.station.send_signal(signal.SIGSTOP)
            monitored.next_cycle("too old", lambda c: c.codes == "a41")
            with seen.untrusted(monitored):
                seen.cycle(monitored, "too old", lambda c: c.status.startswith(OLD))
                more_cycles(seen, monitored, 65, 60)
            monitored.station.send_signal(signal.SIGCONT)
            seen.recovery(monitored, "its return", is_safe)


def rewritten_in_place(shared, slow_down):
    """A station in a gale that writes without renaming: whatever is caught of its file, the sky is
    never safe, and often enough the gale is seen."""
    def walk(seen):
        with station_stopped(seen, shared) as (monitored, whole):
            stormy = whole
            for name in [b"WindSpeed", b"Gust"]:
                stormy = re.sub(rb"(%s[^\r]*[>,])[\d.]+(</td></tr>)?(?=\r)" % name, rb"\g<1>60.0\2",
                                stormy)
            assert stormy.count(b"60.0") == 2, stormy
            put(monitored.station_file, stormy)
            monitored.next_cycle("the gale", lambda c: "Wind" in c.cause)
            ending = threading.Event()

            def write_on():
                while not ending.is_set():
                    with open(monitored.station_file, "wb", buffering=0) as file:
                        for begin in range(0, len(stormy), 20):
                            file.write(stormy[begin:begin + 20])
                            time.sleep(slow_down)
                    time.sleep(slow_down * 10)

            writer = threading.Thread(target=write_on)
            writer.start()
            begun = len(monitored.cycles)
            try:
                with seen.untrusted(monitored, under_way=0):
                    more_cycles(seen, monitored, 25)
            finally:
                ending.set()
                writer.join()
            lines = monitored.cycles[begun:]
            torn = sum("a41" in line for line in lines)
            seen.say(f"UNSAFE in {len(lines)} cycles, {torn} of them with a41 for a torn file")
            assert 0 < torn, lines
            put(monitored.station_file, whole)
    return walk


row(AREA, "a page rewritten while it is read")(rewritten_in_place(PAGE, 0.003))
row(AREA, "a CSV rewritten while it is read")(rewritten_in_place(CSV, 0.003))
