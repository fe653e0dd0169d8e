# SPDX-License-Identifier: GPL-3.0-or-later
"""The whole program with both simulators on a bus of their own, for tests.

The clock of all three runs SPEED times as fast; a line that the monitor writes for every read cycle
tells what it shows.
"""

import contextlib
import os
import pathlib
import subprocess
import sys
import tempfile
import threading
import time

import dbus

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "scripts"))
import run  # noqa: E402  (the script of the demonstration run)

SPEED = 30
READ = 3  # a method or a property get
METHOD = 1
PUT = 4


class Cycle:
    """One line of the monitor: time, verdict, cause, readings, lamps, status line, codes."""

    def __init__(self, line):
        self.line = line
        parts = [part.strip() for part in line.split("|")]
        self.time, self.verdict, self.cause = parts[:3]
        self.lamps, self.status, self.codes = parts[-3:]


class Monitored:
    """Starts everything; `with Monitored() as monitored` ends it all. With `window` the monitor has
    its window, without a display."""

    def __init__(self, arguments=(), weather="quick", window=False, speed=SPEED, read_seconds=10,
                 images=False, safe_delay=30, begin="2026-11-16T22:00:00", sensor=(),
                 station="station.htm", station_begin=None):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="kiv_skyhold-test-"))
        self.run = run.Run(self.folder, run.environment(self.folder, None))
        self.station_file = self.folder / station
        self.station_begin = station_begin  # a clock of its own
        self.station_control = self.folder / "station-faults"
        self.weather = weather
        self.prefix = []  # of the monitor's command
        self.sensor_arguments = sensor  # None: there is no sensor program
        run.write_settings(self.folder, self.station_file, read_seconds, images,
                           safe_delay=safe_delay)
        self.clock = ["--time-from", begin, "--time-origin",
                      time.time_ns() // 1_000_000, "--time-scale", speed]
        self.arguments = [*arguments, *([] if window else ["--headless"])]
        if window:
            self.run.variables["QT_QPA_PLATFORM"] = "offscreen"
        self.cycles = []
        self.errors = []

    def __enter__(self):
        self.run.start_bus()
        self.bus = dbus.bus.BusConnection(self.run.variables["DBUS_SESSION_BUS_ADDRESS"])
        if self.sensor_arguments is not None:
            self.start_sensor(*self.sensor_arguments)
        self.start_station()
        self.start_monitor()
        return self

    def __exit__(self, *_failure):
        with contextlib.suppress(dbus.DBusException):
            self.bus.close()
        self.run.end()
        for program in self.run.started:
            for stream in [program.stdout, program.stderr]:
                if stream:
                    stream.close()

    def start_sensor(self, *arguments):
        self.sensor = self.run.start(run.PROGRAMS / "Kiv_NubiloSim", "--scenario", self.weather,
                                     *self.clock, *arguments)
        self.run.wait_for_name(run.SENSOR_NAME, self.sensor)

    def start_station(self):
        begin, *rest = self.clock[1:]
        form = "csv" if self.station_file.suffix == ".csv" else "html"
        self.station = self.run.start(run.PROGRAMS / "Kiv_StationSim", "--file", self.station_file,
                                      "--control", self.station_control, "--format", form,
                                      "--scenario", self.weather,
                                      "--time-from", self.station_begin or begin, *rest)
        run.wait_for_file(self.station_file, 5)

    def start_monitor(self):
        self.launch_monitor()
        self.run.wait_for_name("Kiv_Skyhold.Nubilo", self.monitor)

    def launch_monitor(self):
        self.monitor = self.run.start(*self.prefix, run.PROGRAMS / "Kiv_Skyhold", "--report",
                                      *self.arguments, *self.clock, stdout=subprocess.PIPE,
                                      stderr=subprocess.PIPE, text=True)
        # A pipe that nobody reads would stop the monitor.
        for stream, lines in [(self.monitor.stdout, self.cycles),
                              (self.monitor.stderr, self.errors)]:
            threading.Thread(target=lambda s=stream, l=lines: l.extend(map(str.rstrip, s)),
                             daemon=True).start()

    def wait_until(self, what, holds, seconds=20):
        end = time.monotonic() + seconds
        while not holds():
            if time.monotonic() > end:
                seen = "\n".join(self.cycles[-5:] + self.errors[-5:])
                raise AssertionError(f"did not come: {what}\n{seen}")
            time.sleep(0.02)

    def next_cycle(self, what, matches, seconds=20):
        """The first cycle from now on that `matches`."""
        begin = len(self.cycles)
        found = []

        def look():
            lines = [line for line in self.cycles[begin:] if "|" in line]  # not "Window painted"
            found[:] = [cycle for cycle in map(Cycle, lines) if matches(cycle)]
            return found

        self.wait_until(what, look, seconds)
        return found[0]

    def start_display(self):
        """A display of its own, for a monitor with a window."""
        self.run.variables["QT_QPA_PLATFORM"] = "xcb"
        reading, writing = os.pipe()
        display = self.run.start("Xvfb", "-displayfd", writing, "-screen", "0", "1400x900x24",
                                 "-noreset", "-nolisten", "tcp", pass_fds=[writing],
                                 stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as number:
            self.run.variables["DISPLAY"] = f":{number.readline().strip()}"
        return display

    def break_station(self, fault):
        part = self.station_control.with_suffix(".part")
        part.write_text(fault)
        part.rename(self.station_control)

    def break_sensor(self, fault):
        self.ask_sensor("Sim_Fault", fault)

    def ask_sensor(self, member, *arguments):
        """Calls a member that the simulated sensor program has for tests."""
        factory = self.bus.get_object(run.SENSOR_NAME, "/Kiv_Nubilo/Nubilo", introspect=False)
        result, _changed = factory.InvokeByName(
            member, dbus.UInt32(METHOD), dbus.Array(arguments, signature="v"),
            dbus_interface="Kiv.Automation.Dispatch")
        return str(result)


class Client:
    """An automation client of the monitor with a bus connection of its own."""

    def __init__(self, monitored):
        self.bus = dbus.bus.BusConnection(monitored.run.variables["DBUS_SESSION_BUS_ADDRESS"])
        factory = self.bus.get_object("Kiv_Skyhold.Nubilo", "/Kiv_Skyhold/Nubilo",
                                      introspect=False)
        self.path = factory.CreateInstance(dbus_interface="Kiv.Automation.ClassFactory")
        self.object = self.bus.get_object("Kiv_Skyhold.Nubilo", self.path, introspect=False)

    def invoke(self, name, use=READ, arguments=()):
        result, _changed = self.object.InvokeByName(
            name, dbus.UInt32(use), dbus.Array(arguments, signature="v"),
            dbus_interface="Kiv.Automation.Dispatch")
        return result

    def release(self):
        self.object.Release(dbus_interface="Kiv.Automation.Dispatch")

    def close(self):
        self.bus.close()
