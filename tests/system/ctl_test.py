# SPDX-License-Identifier: GPL-3.0-or-later
"""skyholdctl and the example program against the real monitor: what they say, and that nothing but
a safe sky ever reads as safe."""

import json
import os
import pathlib
import re
import signal
import subprocess
import sys
import threading
import time
import unittest
from unittest import mock

from monitored import Client, Monitored
import run

CTL = run.PROGRAMS / "skyholdctl"
SOURCES = pathlib.Path(__file__).resolve().parents[2]
EXAMPLE = SOURCES / "docs/examples/roof_watch.py"
COMPLETION = SOURCES / "packaging/completions/skyholdctl.bash"
NAME = "Kiv_Skyhold.Nubilo"
SAFE, UNSAFE, UNKNOWN = 0, 1, 2
TIME = r"\d{4}-\d\d-\d\d \d\d:\d\d:\d\d "


class Shower(Monitored):
    """A monitor under a shower that lasts 25 minutes of its clock. `with_monitor` false leaves the
    monitor to be started by the bus."""

    def __init__(self, arguments=(), with_monitor=True):
        super().__init__(arguments, weather="night")
        self.clock[1] = "2026-11-16T00:50:00"
        self.with_monitor = with_monitor

    def start_monitor(self):
        if self.with_monitor:
            super().start_monitor()

    def ctl(self, *arguments, stdout=subprocess.PIPE):
        """Runs the client to its end."""
        return subprocess.run([CTL, *arguments], env=self.run.variables, stdout=stdout,
                              stderr=subprocess.PIPE, text=True, timeout=30, check=False)

    def read(self, *arguments):
        """What the client writes; it has to succeed."""
        answer = self.ctl(*arguments)
        if answer.returncode != 0 or answer.stderr:
            raise AssertionError(f"{arguments}: {answer.returncode} {answer.stderr}")
        return answer.stdout.rstrip("\n")

    def accept_the_weather(self):
        """No condition counts as unsafe any more."""
        for flag in ["SafeRain", "SafeWet", "SafeOvercast", "SafeCloudy"]:
            self.read("set", flag, "0")

    def wait_for_users(self, count):
        """Waits until as many others as that are attached."""
        client = Client(self)
        self.wait_until(f"{count} users",
                        lambda: client.invoke("Kiv_TotalNoUsers") == count + 1)
        client.close()

    def follow(self, *command):
        return Followed(self, command)


class Followed:
    """A program that goes on writing lines."""

    def __init__(self, monitored, command):
        self.monitored = monitored
        self.program = monitored.run.start(*command, stdout=subprocess.PIPE,
                                           stderr=subprocess.PIPE, text=True)
        self.lines = []
        threading.Thread(target=lambda: self.lines.extend(self.program.stdout),
                         daemon=True).start()

    def wait_for(self, pattern, seconds=20):
        """Waits until the line last written matches."""
        self.monitored.wait_until(
            f"{pattern} in {self.lines}",
            lambda: self.lines and re.match(pattern, self.lines[-1]), seconds)
        return self.lines[-1]


class CtlTest(unittest.TestCase):
    def expect(self, answer, status, output="^", error="^$"):
        self.assertEqual(answer.returncode, status, answer)
        self.assertRegex(answer.stdout or "", output)
        self.assertRegex(answer.stderr, error)

    def test_status_follows_the_weather_and_every_failure(self):
        with Shower() as monitored:
            self.expect(monitored.ctl("status"), UNKNOWN, "^UNKNOWN  No monitoring session is running")
            self.expect(monitored.ctl("start"), 0)
            self.expect(monitored.ctl("status"), UNSAFE,
                        r"^UNSAFE  Cloud: Overcast at -?[\d.]+ °C, since [\d:]+\n"
                        r"        Rain: Rain at \d+, since [\d:]+\n(.*\n)*"
                        r"Rain +\d+  Rain \(unsafe\)\n")
            monitored.read("set", "Kiv_SafeDelayValue", "3000")
            monitored.accept_the_weather()
            monitored.next_cycle("the delay", lambda c: "SAFE condition" in c.cause)
            self.expect(monitored.ctl("status"), UNSAFE,
                        r"^UNSAFE  Safe in \d+ min \d+ s; last reset by Cloud at [\d:]+\n")
            monitored.read("set", "Kiv_SafeDelayValue", "0")
            monitored.next_cycle("a safe sky", lambda c: c.verdict == "SAFE")
            self.expect(monitored.ctl("status"), SAFE,
                        r"^SAFE  nearest: .*\nCloud +-?[\d.]+ °C  Overcast\n")
            status = json.loads(monitored.read("status", "--json"))
            self.assertEqual([status["schema"], status["verdict"], status["safe"],
                              status["causes"], status["readings"]["rain"]["label"],
                              status["attached"]], [1, "safe", True, [], "Rain", 0])

            # What does not reach its reader is not said.
            with open("/dev/full", "w", encoding="ascii") as full:
                self.expect(monitored.ctl("status", stdout=full), UNKNOWN, error="cannot write")
            reader, writer = os.pipe()
            os.close(reader)
            for arguments in [["status"], ["get", "Safe"], ["list", "--json"], ["--version"]]:
                self.expect(monitored.ctl(*arguments, stdout=writer), UNKNOWN,
                            error="cannot write")
            os.close(writer)
            for closed in [">&-", "<&- >&-"]:
                shell = subprocess.run(["bash", "-c", f"'{CTL}' status {closed}"],
                                       env=monitored.run.variables, stderr=subprocess.DEVNULL,
                                       check=False, timeout=30)
                self.assertEqual(shell.returncode, UNKNOWN, closed)

            monitored.sensor.send_signal(signal.SIGKILL)
            monitored.next_cycle("the sensor's loss", lambda c: c.verdict == "UNSAFE")
            self.expect(monitored.ctl("status"), UNKNOWN, "^UNKNOWN  Kiv_Nubilo has failed, since ")
            monitored.start_sensor()
            monitored.next_cycle("the sensor's return", lambda c: c.verdict == "SAFE")
            monitored.break_station("delete")
            monitored.next_cycle("the station's loss", lambda c: c.verdict == "UNSAFE")
            self.expect(monitored.ctl("status", "--json"), UNKNOWN, '"safe":false')
            monitored.break_station("none")
            monitored.next_cycle("the station's return", lambda c: c.verdict == "SAFE")

            # Neither a hung monitor nor a hung bus is waited for.
            for hung, output, error in [
                    (monitored.monitor, "^UNKNOWN  Kiv_Skyhold does not answer", "^$"),
                    (monitored.run.started[0], "^$", "the session bus does not answer")]:
                hung.send_signal(signal.SIGSTOP)
                begin = time.monotonic()
                try:
                    self.expect(monitored.ctl("status"), UNKNOWN, output, error)
                finally:
                    hung.send_signal(signal.SIGCONT)
                self.assertGreater(time.monotonic() - begin, 4)
                self.assertLess(time.monotonic() - begin, 8)
                monitored.next_cycle("a safe sky", lambda c: c.verdict == "SAFE" and not c.codes)
                self.assertEqual(monitored.ctl("status").returncode, SAFE)

            monitored.wait_for_users(0)
            self.expect(monitored.ctl("stop"), 0)
            self.expect(monitored.ctl("status"), UNKNOWN, "^UNKNOWN  No monitoring session is running; start it with: skyholdctl start\n$")
            monitored.monitor.terminate()
            monitored.monitor.wait(20)
            self.look_back(monitored)

    def look_back(self, monitored):
        """Everything above is in the history, whose program need not run."""
        events = monitored.read("history", "--events")
        for happened in ["Session started, a cycle every 10 s", "SafeRain 1 → 0",
                         "SafeDelayVal 30 → 3000", "Sensor program failed", "Sensor program ok",
                         "Weather station absent", "Weather station ok", "Session stopped"]:
            self.assertIn(happened, events)
        periods = json.loads(monitored.read("history", "--json"))["periods"]
        self.assertEqual([period["verdict"] for period in periods[:4]],
                         ["unsafe", "waiting", "safe", "unsafe"])
        self.assertEqual([cause["name"] for cause in periods[0]["changes"][0]["causes"]],
                         ["cloud", "rain"])
        self.assertRegex(monitored.read("why", periods[0]["from"]),
                         r"^UNSAFE since [-\d]+ [:\d]+\n  Cloud: Overcast at .*\n  Rain: Rain at")
        self.assertRegex(monitored.read("why", periods[2]["from"]), "^SAFE since ")
        self.expect(monitored.ctl("why", "2001-01-01"), 2, "^$", "nothing is known of that time")
        replayed = json.loads(monitored.read("replay", "--set", "SafeRain=1", "--json"))
        self.assertGreater(replayed["changed"]["unsafe_s"], replayed["in_force"]["unsafe_s"])
        self.assertEqual(len(monitored.read("history", "--readings", "--csv").splitlines()) - 1,
                         replayed["in_force"]["cycles"])

    def test_members_are_listed_read_set_and_called(self):
        with Shower(["--start"]) as monitored:
            monitored.next_cycle("a first cycle", lambda c: not c.codes)
            listed = {line.split()[0]: line for line in monitored.read("list").split("\n")}
            self.assertGreater(len(listed), 200)
            self.assertRegex(listed["Condition_Rain"], r"method     \(\) -> RainCond$")
            for arguments, output in [
                    (["--version"], "skyholdctl " + monitored.read("get", "Version")),
                    (["get", "Safe", "--json"], '{"name":"Safe","value":false}'),
                    (["set", "DescWindCalm", "gut, 1.5"], ""),
                    (["get", "DescWindCalm"], "gut, 1.5"),
                    (["call", "Kiv_DataDisplayed", "desc", "RAIN"], "Rain"),
                    (["call", "GraphTemperatureMax", "7", "--json"],
                     '{"arguments":[7],"name":"GraphTemperatureMax","result":0}'),
            ]:
                with self.subTest(arguments=arguments):
                    self.assertEqual(monitored.read(*arguments), output)
            # Another value than was set is told.
            self.expect(monitored.ctl("set", "ReadCycle", "7"), 0, "^$", '"10" now, not "7"')
            for arguments, error in [
                    (["get", "Device_Stop"], "Device_Stop is an action"),
                    (["set", "Name", "x"], "Name cannot be set"),
                    (["set", "ReadCycle", "1,5"], '"1,5" is not the integer'),
                    (["call", "Name"], "use: skyholdctl get Name"),
                    (["watch", "Device_Stop"], "Device_Stop is an action"),
            ]:
                with self.subTest(arguments=arguments):
                    self.expect(monitored.ctl(*arguments), 2, "^$", re.escape(error))
            self.assertEqual(monitored.read("get", "DeviceIsRunning"), "true")

            completed = subprocess.run(
                ["bash", "-c", f"PATH='{CTL.parent}':$PATH; . '{COMPLETION}'; "
                 "for line in 'st' 'get version' 'set Version'; do "
                 "COMP_WORDS=(skyholdctl $line); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); "
                 "_skyholdctl; echo ${COMPREPLY[@]}; done"],
                env=monitored.run.variables, stdout=subprocess.PIPE, text=True, check=True)
            self.assertEqual(completed.stdout.split("\n")[:3],
                             ["status start stop", "Version VersionNB", ""])

    def test_watching(self):
        with Shower(["--start"]) as monitored:
            monitored.next_cycle("the shower", lambda c: c.verdict == "UNSAFE")
            monitored.read("set", "Kiv_SafeDelayValue", "0")
            status = monitored.follow(CTL, "watch", "--every", "0.1")
            values = monitored.follow(CTL, "watch", "safe", "SafeRain", "--json", "--every=0.1")
            roof = monitored.follow(sys.executable, EXAMPLE)
            status.wait_for(TIME + r"UNSAFE \| Cloud: Overcast at .*; Rain: Rain at .* \| Cloud -?[\d.]+ °C ")
            values.wait_for("")
            self.assertEqual([(sight["name"], sight["value"])
                              for sight in map(json.loads, values.lines[:2])],
                             [("Safe", False), ("SafeRain", 1)])
            roof.wait_for("UNSAFE: Safe is 0")
            monitored.wait_for_users(2)

            monitored.accept_the_weather()
            status.wait_for(TIME + r"SAFE \| nearest: ")
            values.wait_for('{"name":"Safe",.*"value":true}')
            roof.wait_for("SAFE$")

            # Gone, back, hung, and gone for good.
            monitored.monitor.send_signal(signal.SIGKILL)
            status.wait_for(TIME + r"UNKNOWN \| Kiv_Skyhold is not running; start it with")
            values.wait_for('{"fault":"Kiv_Skyhold is not running')
            roof.wait_for("UNSAFE: ")
            monitored.start_monitor()
            status.wait_for(TIME + r"UNSAFE \| Cloud: Overcast")
            values.wait_for('{"name":"SafeRain",.*"value":1}')
            monitored.accept_the_weather()
            monitored.read("set", "Kiv_SafeDelayValue", "0")
            roof.wait_for("SAFE$")
            status.wait_for(TIME + r"SAFE ")
            monitored.monitor.send_signal(signal.SIGSTOP)
            try:
                status.wait_for(TIME + r"UNKNOWN \| Kiv_Skyhold does not answer")
                roof.wait_for("UNSAFE: ")
            finally:
                monitored.monitor.send_signal(signal.SIGCONT)
            status.wait_for(TIME + r"SAFE ")
            roof.wait_for("SAFE$")
            # Nothing is left of the attempts to attach to it while it hung.
            monitored.wait_for_users(2)

            # Nobody reads the values any more: the watch ends by itself.
            unread = monitored.follow("bash", "-c",
                                      f"'{CTL}' watch Name --every 60 | head -1; "
                                      "echo ended ${PIPESTATUS[0]}")
            unread.wait_for("ended 2", 10)

            monitored.run.started[0].send_signal(signal.SIGKILL)  # the bus
            status.wait_for(TIME + r"UNKNOWN \| ")
            values.wait_for('{"fault":')
            roof.wait_for("UNSAFE: ")
            for followed in [status, values, roof]:
                self.assertIsNone(followed.program.poll())

    def test_nothing_but_start_starts_the_program(self):
        with mock.patch.object(run, "BUS_CONFIGURATION", run.BUS_CONFIGURATION.replace(
                "<listen>", "<servicedir>services</servicedir><listen>")):
            monitored = Shower(with_monitor=False)
            services = monitored.folder / "services"
            services.mkdir()
            installed = run.PROGRAMS.parent / f"share/dbus-1/services/{NAME}.service"
            (services / f"{NAME}.service").write_text(
                f"{installed.read_text().rstrip()} {' '.join(map(str, monitored.clock))}\n")
            for display in ["DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"]:
                monitored.run.variables.pop(display, None)
            with monitored:
                try:
                    self.start_on_demand(monitored)
                finally:
                    self.end_what_the_bus_started(monitored)
                self.without_a_bus(monitored)

    def start_on_demand(self, monitored):
        self.assertIn(NAME, self.ask_bus(monitored, "ListActivatableNames"))
        hint = "Kiv_Skyhold is not running; start it with: skyholdctl start"
        self.expect(monitored.ctl("status"), UNKNOWN, f"^UNKNOWN  {hint}\n$")
        for arguments in [["get", "Safe"], ["set", "ReadCycle", "5"], ["list"], ["stop"],
                          ["call", "Device_Start"]]:
            self.expect(monitored.ctl(*arguments), 2, "^$", hint)
        watch = monitored.follow(CTL, "watch")
        roof = monitored.follow(sys.executable, EXAMPLE)
        watch.wait_for(TIME + r"UNKNOWN \| " + hint)
        roof.wait_for("UNSAFE: ")
        self.assertFalse(monitored.bus.name_has_owner(NAME))

        self.expect(monitored.ctl("start"), 0)
        self.expect(monitored.ctl("status"), UNSAFE, "^UNSAFE  Cloud: Overcast at ")
        self.expect(monitored.ctl("start"), 0)  # already so
        monitored.sensor.send_signal(signal.SIGKILL)
        self.expect(monitored.ctl("stop"), 0)
        self.expect(monitored.ctl("start"), 2, "^$", "monitoring did not start")

    def ask_bus(self, monitored, method, signature="", *arguments):
        return monitored.bus.call_blocking(
            "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method,
            signature, arguments)

    def end_what_the_bus_started(self, monitored):
        if monitored.bus.name_has_owner(NAME):
            os.kill(int(self.ask_bus(monitored, "GetConnectionUnixProcessID", "s", NAME)),
                    signal.SIGTERM)
        monitored.wait_until("its end", lambda: not monitored.bus.name_has_owner(NAME))

    def without_a_bus(self, monitored):
        variables = {**monitored.run.variables,
                     "DBUS_SESSION_BUS_ADDRESS": f"unix:path={monitored.folder}/none"}
        with mock.patch.object(monitored.run, "variables", variables):
            self.expect(monitored.ctl("status"), UNKNOWN, "^UNKNOWN  there is no session bus")
            self.expect(monitored.ctl("get", "Safe"), 2, "^$", "there is no session bus")


if __name__ == "__main__":
    unittest.main()
