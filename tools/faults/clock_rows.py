# SPDX-License-Identifier: GPL-3.0-or-later
"""Faults of the clock: summer time, midnight, a machine that slept."""

import pathlib
import signal
import time

from table import Monitored, is_safe, row
from monitored import Client


class From(Monitored):
    """Begins at a time of its own, in the zone that is named."""

    def __init__(self, begin, zone="Europe/Berlin", **more):
        super().__init__(["--start", "--record"], begin=begin, **more)
        self.run.variables["TZ"] = zone


def data_lines(monitored):
    text = (monitored.folder / "data/Skyhold.csv").read_text(encoding="cp1252")
    return [line.strip('"').split('","') for line in text.splitlines()[1:]]


@row("clock", "summer time begins, summer time ends, midnight, New Year")
def calendar(seen):
    times = [
        # before, what the file holds after it
        ("2026-03-29T01:58:30", "2026-03-29 03:0", "two o'clock is left out"),
        ("2026-10-25T02:58:30+02:00", "2026-10-25 02:0", "the hour comes again"),
        ("2026-11-16T23:58:30", "2026-11-17 00:0", "the next day"),
        ("2025-12-31T23:58:30", "2026-01-01 00:0", "the next year"),
    ]
    for begin, after, told in times:
        with From(begin) as monitored:
            monitored.next_cycle("a safe sky", is_safe)
            seen.expect(after, lambda m=monitored, a=after: any(
                f"{line[0]} {line[1]}".startswith(a) for line in data_lines(m)), 20)
            begin_at = len(monitored.cycles)
            monitored.next_cycle("a cycle", lambda c: True)
            monitored.next_cycle("a further cycle", lambda c: True)
            wrong = [line for line in monitored.cycles[begin_at:] if "| SAFE" not in line]
            assert not wrong, wrong
            assert not any("a41" in line for line in monitored.cycles), monitored.cycles
            record = (monitored.folder / "ccdap/Kiv_CCDAP4_II.dat").read_text(encoding="cp1252")
            assert record.startswith(after[:10]), record
        seen.say(f"{begin[5:16].replace('T', ' ')}: {told}, no gap and no false alarm")


class Stepped(Monitored):
    """All programs see the machine's clock through a library that moves the time of day alone."""

    library = next(pathlib.Path("/usr/lib").glob("*/faketime/libfaketimeMT.so.1"), None)

    def __init__(self):
        super().__init__(["--start"])
        self.offset = self.folder / "offset"
        self.step(0)
        self.run.variables.update(
            LD_PRELOAD=str(self.library), FAKETIME_TIMESTAMP_FILE=str(self.offset),
            FAKETIME_NO_CACHE="1", FAKETIME_DONT_FAKE_MONOTONIC="1", NO_FAKE_STAT="1")

    def step(self, seconds):
        part = self.folder / "offset.part"
        part.write_text(f"{seconds:+d}")
        part.rename(self.offset)


@row("clock", "the machine's clock is set an hour forward, and back, in the run")
def machine_clock(seen):
    if not Stepped.library:
        seen.say("not tried: libfaketime is not there")
        return
    # The clock runs 30 times as fast: two minutes are an hour.
    for seconds in [120, -120]:
        with Stepped() as monitored:
            monitored.next_cycle("a safe sky", is_safe)
            begin = len(monitored.cycles)
            hour = monitored.cycles[-1][11:13]
            monitored.step(seconds)
            monitored.next_cycle("another hour", lambda c, h=hour: c.time[11:13] != h)
            monitored.next_cycle("a further cycle", is_safe)
            time.sleep(1)
            wrong = [line for line in monitored.cycles[begin:] if "| SAFE" not in line]
            assert len(wrong) <= 1, wrong
            # The delay before safe is neither shortened nor lengthened.
            monitored.break_sensor("xfer-error")
            monitored.next_cycle("unsafe", lambda c: c.codes == "a31")
            monitored.break_sensor("none")
            monitored.next_cycle("the delay", lambda c: "SAFE condition" in c.cause)
            monitored.step(0)
            begun = time.monotonic()
            monitored.next_cycle("a safe sky", lambda c: c.verdict == "SAFE")
            waited = time.monotonic() - begun
            assert 0.4 < waited < 3, waited
            # What was fresh before the step is not so for good.
            monitored.break_station("stop")
            monitored.step(seconds)
            seen.cycle(monitored, "old data", lambda c: c.codes == "a41" and
                       c.verdict == "UNSAFE", 20)
            monitored.break_station("none")
            seen.recovery(monitored, "its return", is_safe)
    seen.say("elapsed times do not follow the clock; a station that stops is found old all the same")


@row("clock", "an hour's step of the station's clock each way")
def station_clock(seen):
    # The station keeps its own clock, which is wrong by an hour: its records look old or of later.
    for step in [-3600, 3600]:
        with Monitored(["--start"]) as monitored:
            monitored.next_cycle("a safe sky", is_safe)
            monitored.station.terminate()
            monitored.station.wait(10)
            shifted = list(monitored.clock)
            origin = shifted.index("--time-origin") + 1
            shifted[origin] -= step * 1000 // 30
            monitored.clock, own = shifted, monitored.clock
            monitored.start_station()
            monitored.clock = own
            begin = len(monitored.cycles)
            time.sleep(3)
            seen.say(f"{step // 3600:+} h, still written: "
                     + ("SAFE" if all("| SAFE" in line for line in monitored.cycles[begin:])
                        else "UNSAFE at times"))
            monitored.break_station("stop")
            with seen.untrusted(monitored, under_way=24):
                seen.cycle(monitored, "it stops", lambda c: c.codes == "a41", 30)
            monitored.break_station("none")


@row("clock", "the machine sleeps for three hours")
def sleep(seen):
    # 600 times as fast: eighteen seconds are three hours.
    monitored = Monitored(["--start"], speed=600, read_seconds=60)
    with monitored:
        monitored.next_cycle("a safe sky", is_safe)
        client = Client(monitored)
        assert client.invoke("Safe")
        monitored.watch.end()  # nobody answers in sleep
        monitored.watch = None
        monitored.break_station("stop")
        time.sleep(0.3)
        monitored.monitor.send_signal(signal.SIGSTOP)
        begin = len(monitored.cycles)
        time.sleep(18)
        monitored.monitor.send_signal(signal.SIGCONT)
        assert not client.invoke("Safe"), "an old verdict was told after waking"
        first = seen.cycle(monitored, "the first cycle", lambda c: True)
        assert first.verdict == "UNSAFE" and len(monitored.cycles) > begin, first.line
        monitored.break_station("none")
        waiting = monitored.next_cycle("the delay", lambda c: "SAFE condition" in c.cause)
        assert waiting.verdict == "UNSAFE"
        seen.say("a client that asks first gets unsafe; the safe delay begins anew")
        seen.recovery(monitored, "a safe sky", is_safe)
        client.close()
