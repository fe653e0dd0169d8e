# SPDX-License-Identifier: GPL-3.0-or-later
"""Faults that reach through the whole program."""

import signal
import subprocess
import time

import dbus

from monitored import METHOD, Client, run
from session_test import OnDisplay, RestartableBus
from table import Monitored, has_failed, is_safe, more_cycles, quiet_evening, row

SENSOR = "sensor program"
NO_SENSOR = "Cannot read Kiv_Nubilo"


@row(SENSOR, "answers every call after 0.16 s")
def slow(seen):
    with quiet_evening() as monitored:
        monitored.next_cycle("a safe sky", is_safe)
        monitored.break_sensor("late=160")
        with seen.untrusted(monitored):
            seen.cycle(monitored, "the loss", has_failed)
            more_cycles(seen, monitored, 3)
        monitored.break_sensor("none")
        seen.recovery(monitored, "its end", is_safe)


@row(SENSOR, "ends between two cycles, and comes back without data")
def ends(seen):
    with quiet_evening() as monitored:
        monitored.next_cycle("a safe sky", is_safe)
        monitored.sensor.send_signal(signal.SIGKILL)
        with seen.untrusted(monitored):
            seen.cycle(monitored, "the loss", has_failed)
            monitored.start_sensor("--ready-after", 60)
            more_cycles(seen, monitored, 3)
        seen.recovery(monitored, "its first data", is_safe)


@row(SENSOR, "absent when a client starts the session, with a window")
def absent_for_a_client(seen):
    with quiet_evening(arguments=[], window=True, sensor=None) as monitored:
        client = Client(monitored)
        for _ in range(2):
            begun = time.monotonic()
            client.invoke("Device_Start", METHOD)
            assert time.monotonic() - begun < 5, "somebody had to close the message"
            assert not client.invoke("DeviceIsRunning")
        seen.say("the client has its answer, and nothing runs")
        monitored.start_sensor()
        client.invoke("Device_Start", METHOD)
        seen.recovery(monitored, "a session with a good sensor program", is_safe)
        client.close()


@row(SENSOR, "absent at the start")
def absent(seen):
    with quiet_evening(sensor=None) as monitored:
        refuses_to_start(seen, monitored, [NO_SENSOR])
        starts_with_good_sensor(seen, monitored)


def refuses_to_start(seen, monitored, messages):
    for message in messages:
        seen.expect(message, lambda: any(message in line for line in monitored.errors), 30)
        seen.say(f"“{message}”")
    assert monitored.cycles == []
    answer = subprocess.run([run.PROGRAMS / "skyholdctl", "status"], check=False,
                            env=monitored.run.variables, stdout=subprocess.DEVNULL,
                            stderr=subprocess.DEVNULL)
    assert answer.returncode != 0, "safe without a session"
    seen.say(f"skyholdctl status {answer.returncode}")


def starts_with_good_sensor(seen, monitored):
    monitored.start_sensor()
    client = Client(monitored)
    client.invoke("Device_Start", METHOD)
    seen.recovery(monitored, "a session with a good sensor program", is_safe)
    client.close()


class WatchedBus(RestartableBus, Monitored):
    pass


class WatchedDisplay(OnDisplay, Monitored):
    pass


@row("bus", "goes away in the run and comes back")
def bus_restarts(seen):
    with WatchedBus(["--start"]) as monitored:
        monitored.next_cycle("a safe sky", is_safe)
        client = Client(monitored)
        client.invoke("Kiv_LocalControl", METHOD, [True, "script"])
        monitored.next_cycle("its control", lambda c: c.cause == "Decided by script")
        monitored.end_bus()
        with seen.untrusted(monitored):
            seen.cycle(monitored, "the loss", lambda c: c.codes == "a31")
            seen.expect("a word", lambda: any("has gone" in e for e in monitored.errors), 5)
        seen.say("its client's control of the verdict ends with it")
        monitored.start_bus()
        monitored.sensor.terminate()
        monitored.sensor.wait(10)
        monitored.start_sensor()
        seen.recovery(monitored, "sensor and automation are back", is_safe)
        monitored.run.wait_for_name("Kiv_Skyhold.Nubilo", monitored.monitor)
        client = Client(monitored)
        assert client.invoke("Kiv_TotalNoUsers") == 1
        assert client.invoke("Safe")
        client.close()


@row("clients", "those that have control of the verdict die")
def controllers_die(seen):
    with quiet_evening(safe_delay=60) as monitored:
        monitored.next_cycle("a safe sky", is_safe)
        first, second = Client(monitored), Client(monitored)
        bare = dbus.bus.BusConnection(monitored.run.variables["DBUS_SESSION_BUS_ADDRESS"])
        for client in [first, second]:
            client.invoke("Kiv_LocalControl", METHOD, [True, "script"])
        first.close()
        seen.expect("one user", lambda: second.invoke("Kiv_TotalNoUsers") == 1, 5)
        second.invoke("SetUnSafe", METHOD, [True])
        assert not second.invoke("Safe")
        seen.say("the other one keeps it")
        # It takes control through the main window, and has no instance that could be counted.
        bare.call_blocking("Kiv_Skyhold.Nubilo", "/Kiv_Skyhold/Nubilo/MForm",
                           "Kiv.Automation.Dispatch", "InvokeByName", "suav",
                           ("HasControl", dbus.UInt32(METHOD), [True, "bare"]))
        second.invoke("Kiv_LocalControl", METHOD, [False, ""])
        monitored.next_cycle("its control", lambda c: c.cause == "Decided by bare")
        begun = time.monotonic()
        bare.close()
        with seen.untrusted(monitored):
            seen.cycle(monitored, "the whole delay", lambda c: "delayed by 60 s" in c.cause)
        seen.recovery(monitored, "a safe sky", is_safe)
        # The clock runs 30 times as fast.
        assert time.monotonic() - begun > 60 / 30, "the delay was not waited for"
        second.close()


@row("display", "the X server dies under the window")
def display_dies(seen):
    with WatchedDisplay() as monitored:
        seen.expect("the window", lambda: monitored.cycles, 10)  # its first line tells of it
        monitored.next_cycle("a safe sky", is_safe)
        monitored.ends = True
        monitored.kill_display()
        status = monitored.monitor.wait(10)
        said = "; ".join(line for line in monitored.errors if "display" in line)
        assert "The display has gone" in said, monitored.errors
        settings = monitored.folder / "user/config/Kiv/Kiv_Skyhold.ini"
        assert "GraphNoPoints=120" in settings.read_text(encoding="utf-8")
        lines = (monitored.folder / "data/Skyhold.csv").read_bytes()
        assert lines.endswith(b"\r\n") and lines.count(b"\n") > 1
        calls = monitored.bus.call_blocking(
            run.SENSOR_NAME, "/Kiv_Nubilo/Nubilo", "Kiv.Automation.Dispatch", "InvokeByName",
            "suav", ("Sim_Calls", dbus.UInt32(METHOD), []))[0].splitlines()
        given_back = [call for call in calls if call.startswith("Kiv_LocalControl")]
        assert given_back and "false" in given_back[-1], calls[-5:]
        seen.say(f"the program ends with status {status} (the display's library does not let it go "
                 f"on), its end in order: data file and settings whole, the sensor program released")
