# SPDX-License-Identifier: GPL-3.0-or-later
"""Rows of the fault table: what each does is in the modules that `__main__` lists.

A row is a function `walk(seen)` that breaks something, tells `seen` what the program showed, and
mends it again:

    @row("sensor program", "dies")
    def dies(seen):
        with Monitored(["--start"]) as monitored:
            monitored.next_cycle("a safe sky", lambda c: c.verdict == "SAFE")
            monitored.sensor.kill()
            with seen.untrusted(monitored):
                seen.cycle(monitored, "the loss", lambda c: c.codes == "a31")
            monitored.start_sensor()
            seen.recovery(monitored, "its return", lambda c: c.verdict == "SAFE")

A `Monitored` of this module is watched for as long as it runs: the program must live, and its
window thread must answer.
"""

import contextlib
import dataclasses
import threading
import time
import typing

import dbus

import monitored as system

SILENCE = 5  # longest time in seconds that the window thread may be busy

ROWS = []


@dataclasses.dataclass
class Row:
    area: str
    fault: str
    walk: typing.Callable


def row(area, fault):
    """Registers the function as a row."""
    def register(walk):
        ROWS.append(Row(area, fault, walk))
        return walk
    return register


def walk(row_, seen):
    """Fails on what the row saw, and on what no fault may cause."""
    Monitored.used.clear()
    row_.walk(seen)
    broken = [rule for program in Monitored.used for rule in program.broken_rules()]
    if broken:
        raise AssertionError("; ".join(broken))


class Monitored(system.Monitored):
    """Watched while it runs. `ends` is set by a row that ends the monitor on purpose."""

    used = []  # by the row that is walked

    def __enter__(self):
        self.watch = None
        self.ends = False
        self.broken = []
        Monitored.used.append(self)
        try:
            super().__enter__()
        except BaseException:
            self.__exit__(None, None, None)
            raise
        return self

    def __exit__(self, *failure):
        self.broken = self.broken_rules()
        if self.watch:
            self.watch.end()
            self.watch = None
        super().__exit__(*failure)

    def start_monitor(self):
        super().start_monitor()
        if self.watch:
            self.watch.end()
        self.watch = Watch(self.run.variables["DBUS_SESSION_BUS_ADDRESS"])

    def broken_rules(self):
        """What went wrong since this was last asked that never may, whatever the fault."""
        broken, self.broken = self.broken, []
        if self.watch is None:
            return broken
        if not self.ends and self.monitor.poll() is not None:
            broken.append(f"the program ended with status {self.monitor.returncode}")
        silence = self.watch.take_longest()
        if silence > SILENCE:
            broken.append(f"the window thread was silent for {silence:.1f} s")
        return broken


class Watch:
    """Asks the program again and again for something that only its window thread answers, and
    that leaves no trace. The time that this machine let the watch itself wait is not counted."""

    def __init__(self, address):
        self.bus = dbus.bus.BusConnection(address)
        self.longest = 0.0
        self.asked_at = None  # while an answer is awaited
        self.late = 0.0  # the worst delay of this thread's own sleeps since the last answer
        self.ending = threading.Event()
        self.thread = threading.Thread(target=self.ask, daemon=True)
        self.thread.start()

    def ask(self):
        while not self.ending.is_set():
            self.asked_at = begun = time.monotonic()
            with contextlib.suppress(dbus.DBusException):
                # An unknown method is refused by the object, with an answer; where program or bus
                # have gone there is none to wait for, and that is no silence.
                self.bus.call_blocking("Kiv_Skyhold.Nubilo", "/Kiv_Skyhold/Nubilo",
                                       "Kiv.Automation.ClassFactory", "Sign_of_life", "", (),
                                       timeout=60)
            self.longest = max(self.longest, time.monotonic() - begun - self.late)
            self.asked_at = None
            begun = time.monotonic()
            self.ending.wait(0.1)
            self.late = max(0.0, time.monotonic() - begun - 0.1)

    def take_longest(self):
        """The longest silence in seconds since this was last asked, also one that still lasts."""
        begun = self.asked_at
        lasting = 0.0 if begun is None else time.monotonic() - begun - self.late
        longest, self.longest = max(self.longest, lasting), 0.0
        return longest

    def end(self):
        self.ending.set()
        self.thread.join(2)
        with contextlib.suppress(dbus.DBusException):
            self.bus.close()


class Seen:
    """What a row saw; failures are AssertionErrors."""

    def __init__(self):
        self.texts = []
        self.recovered = ""

    def say(self, text):
        """Adds to what was seen."""
        if text not in self.texts:
            self.texts.append(text)

    def expect(self, what, condition, seconds):
        """Waits until the condition holds."""
        end = time.monotonic() + seconds
        while not condition():
            if time.monotonic() > end:
                raise AssertionError(f"did not come within {seconds} s: {what}")
            time.sleep(0.02)

    def cycle(self, monitored, what, matches, seconds=20):
        """The next cycle that matches, added to what was seen."""
        cycle = monitored.next_cycle(what, matches, seconds)
        self.say(shown(cycle))
        return cycle

    def recovery(self, monitored, what, matches, seconds=30):
        """As `cycle`, for the end of the fault: how it ended and after what time."""
        begun = time.monotonic()
        cycle = monitored.next_cycle(what, matches, seconds)
        self.recovered = f"{shown(cycle)} after {time.monotonic() - begun:.1f} s"
        return cycle

    @contextlib.contextmanager
    def untrusted(self, monitored, under_way=1):
        """No cycle in the block may be SAFE, but for those that were under way at its begin."""
        begin = len(monitored.cycles) + under_way
        yield
        for line in monitored.cycles[begin:]:
            if system.Cycle(line).verdict == "SAFE":
                raise AssertionError(f"SAFE although the data is not to be trusted: {line}")


def shown(cycle):
    parts = [cycle.verdict, cycle.lamps, cycle.codes or "no code", f"“{cycle.status}”"]
    return ", ".join(parts)


def quiet_evening(arguments=("--start",), **more):
    """A sky that stays safe, and no delay that could hide a wrong verdict."""
    more = {"weather": "night", "begin": "2026-11-16T18:30:00", "safe_delay": 0} | more
    return Monitored(list(arguments), **more)


def is_safe(cycle):
    return cycle.verdict == "SAFE" and not cycle.codes


def has_failed(cycle):
    return cycle.verdict == "UNSAFE" and cycle.codes == "a31"


def more_cycles(seen, monitored, number, seconds=30):
    wanted = len(monitored.cycles) + number
    seen.expect(f"{number} more cycles", lambda: len(monitored.cycles) >= wanted, seconds)
