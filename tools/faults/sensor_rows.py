# SPDX-License-Identifier: GPL-3.0-or-later
"""Faults of the sensor program."""

import signal
import subprocess
import time
import unittest.mock

import run
from table import has_failed, is_safe, more_cycles, quiet_evening, row
from telling_rows import NO_SENSOR, refuses_to_start, starts_with_good_sensor
from monitored import METHOD, Client
from shared import Shared

AREA = "sensor program"


SHARED = Shared(quiet_evening)


def shared():
    monitored = SHARED.get()
    monitored.next_cycle("a safe sky", is_safe)
    return monitored


# What a running session shows for a fault that ends again.
FAILURES = {
    "not-running": "its device does not run",
    "xfer-error": "its transfer file fails",
    "silent": "never answers",
    "late=1000": "answers every call after 1 s",
    "late=1900": "answers every call after 1.9 s",
    "slow-member=RainHeaterStatus": "answers one call after 3 s",
    "failing-member=SetUnSafe": "refuses the verdict",
    "wrong-types": "answers with wrong types",
    "nan": "answers with NaN",
    "inf": "answers with infinities",
    "empty": "answers with empty values",
    "level=9": "answers with a condition that there is not",
}
UNSAFE_COMMANDS = ["SetUnSafe(method; b true)", "Kiv_SetSwitch(method; d 2)"]


def failure(fault):
    def walk(seen):
        monitored = shared()
        monitored.ask_sensor("Sim_Calls")
        monitored.break_sensor(fault)
        # A refusal after the cycle's test is reported by the next cycle.
        with seen.untrusted(monitored, under_way=2 if "failing" in fault else 1):
            seen.cycle(monitored, fault, has_failed)
            more_cycles(seen, monitored, 3)
        calls = monitored.ask_sensor("Sim_Calls").splitlines()
        told = [calls.count(command) for command in UNSAFE_COMMANDS]
        assert all(told), "it was not told to close"
        if fault == "silent":
            assert told == [1, 1], "its messages pile up"
        monitored.break_sensor("none")
        seen.recovery(monitored, "its end", is_safe)
    return walk


for name, text in FAILURES.items():
    row(AREA, text)(failure(name))


@row(AREA, "answers with texts of a megabyte")
def megabytes(seen):
    with quiet_evening(window=True) as monitored:
        monitored.next_cycle("a safe sky", is_safe)
        monitored.break_sensor("megabyte")
        more_cycles(seen, monitored, 5)
        cycle = seen.cycle(monitored, "its texts", lambda c: "mmm" in c.line)
        assert len(cycle.line) < 2000, len(cycle.line)
        monitored.break_sensor("none")
        seen.recovery(monitored, "its end", is_safe)


@row(AREA, "ends in the middle of a cycle")
def ends_in_mid_call(seen):
    monitored = shared()
    for member in ["Condition_Rain", "DeviceIsRunning", "SetUnSafe"]:
        monitored.break_sensor(f"die={member}")
        with seen.untrusted(monitored, under_way=2):
            seen.cycle(monitored, member, has_failed)
            more_cycles(seen, monitored, 2)
        monitored.start_sensor()
        seen.recovery(monitored, "its return", is_safe)


@row(AREA, "a second copy is started")
def second_copy(seen):
    monitored = shared()
    second = monitored.run.start(run.PROGRAMS / "Kiv_NubiloSim", stderr=subprocess.PIPE, text=True)
    assert second.wait(10) == 1
    seen.say("the second is refused the name: " + second.stderr.read().strip())
    more_cycles(seen, monitored, 2)
    # The name changes hands, and the first goes on: whom the session began with stays its sensor.
    monitored.break_sensor("nameless")
    first = monitored.sensor
    monitored.start_sensor()
    second = monitored.sensor
    seen.cycle(monitored, "no change", is_safe)
    monitored.break_sensor("xfer-error")
    more_cycles(seen, monitored, 3)
    seen.cycle(monitored, "the first is still asked", is_safe)
    first.kill()
    seen.cycle(monitored, "the second is taken up, with its fault", has_failed)
    monitored.break_sensor("none")
    seen.recovery(monitored, "the second's good data", is_safe)


@row(AREA, "ends, and the bus starts one that never comes")
def hanging_start(seen):
    monitored = quiet_evening()
    services = monitored.folder / "services"
    services.mkdir()
    (services / "sensor.service").write_text(
        f"[D-BUS Service]\nName={run.SENSOR_NAME}\nExec=/bin/sleep 20\n", encoding="utf-8")
    configuration = run.BUS_CONFIGURATION.replace(
        "<listen>", f"<servicedir>{services}</servicedir><listen>")
    with unittest.mock.patch.object(run, "BUS_CONFIGURATION", configuration), monitored:
        monitored.next_cycle("a safe sky", is_safe)
        monitored.sensor.kill()
        begun = time.monotonic()
        with seen.untrusted(monitored):
            seen.cycle(monitored, "the loss", has_failed)
            assert time.monotonic() - begun < 5, "the start was waited for"
            more_cycles(seen, monitored, 5)
        monitored.start_sensor()
        seen.recovery(monitored, "one that comes", is_safe)


def refused_start(arguments, messages):
    def walk(seen):
        with quiet_evening(sensor=arguments) as monitored:
            refuses_to_start(seen, monitored, messages)
            monitored.sensor.kill()
            monitored.sensor.wait()
            starts_with_good_sensor(seen, monitored)
    return walk


OLD = "Version of Kiv_Nubilo must be equal or greater than 5.2x"
for text, arguments, messages in [
        ("too old", ["--fault", "old-version"], [OLD, NO_SENSOR]),
        ("never has data", ["--fault", "slow-ready=100000"], [NO_SENSOR]),
        ("never answers from the start on", ["--fault", "silent"], [NO_SENSOR]),
        ("ends while its first data is awaited", ["--fault", "die=DataReady"], [NO_SENSOR]),
]:
    row(AREA, text)(refused_start(arguments, messages))


@row(AREA, "answers every call after 1 s from the start to the end")
def slow_from_the_start(seen):
    # Its delays do not shrink with the clock: the time that the start waits must not, either.
    with quiet_evening(sensor=["--fault", "late=1000"], speed=3, read_seconds=5) as monitored:
        with seen.untrusted(monitored, under_way=0):
            seen.cycle(monitored, "a slow sensor program", has_failed)
            more_cycles(seen, monitored, 3)
        client = Client(monitored)
        client.invoke("Device_Stop", METHOD)
        calls = monitored.ask_sensor("Sim_Calls").splitlines()
        told = ["Kiv_DeviceSwitchCtrl(put; b true)",
                'Kiv_LocalControl(method; b true, s "Kiv_Skyhold has control")',
                "Device_Start(method)", *UNSAFE_COMMANDS,
                'Kiv_LocalControl(method; b false, s "")']
        assert [call for call in told if call in calls] == told, calls
        monitored.break_sensor("none")
        client.invoke("Device_Start", METHOD)
        seen.recovery(monitored, "a session after its end", is_safe)
        client.close()


@row(AREA, "gives its instances only when nobody waits for them any more")
def late_instance(seen):
    with quiet_evening(sensor=["--fault", "silent"]) as monitored:
        seen.expect(NO_SENSOR, lambda: any(NO_SENSOR in line for line in monitored.errors), 30)
        client = Client(monitored)
        client.invoke("Device_Start", METHOD)
        monitored.break_sensor("none")
        calls = []

        def released():
            calls.extend(monitored.ask_sensor("Sim_Calls").splitlines())
            return calls.count("Release()") == calls.count("CreateInstance()") == 2

        seen.expect("every instance is released", released, 10)
        seen.say("each is released")
        client.invoke("Device_Start", METHOD)
        seen.recovery(monitored, "a session with a good sensor program", is_safe)
        client.close()


@row(AREA, "every role")
def roles(seen):
    for role in ["MASTER", "SLAVE", "", "master", "x" * 5000]:
        with quiet_evening(sensor=["--role", role]) as monitored:
            cycle = monitored.next_cycle("a safe sky", is_safe)
            monitored.break_sensor("xfer-error")
            with seen.untrusted(monitored):
                monitored.next_cycle("a failure", has_failed)
            calls = monitored.ask_sensor("Sim_Calls")
            drives = "Kiv_SetSwitch(" in calls
            assert drives == (role == "MASTER"), role[:20]
            seen.say(f"{role[:10] or 'none'}: {cycle.verdict}, then a31, "
                     f"the switch {'driven' if drives else 'left alone'}")
