# SPDX-License-Identifier: GPL-3.0-or-later
"""Faults of the session bus, and clients that misbehave."""

import pathlib
import signal
import subprocess
import threading
import time

import dbus
import dbus.lowlevel

from table import Monitored, is_safe, row
from telling_rows import WatchedBus
from monitored import READ, Client, run

INSTANCES = 10_000
MOST_BYTES = 1_000  # of memory for one instance


def resident_kilobytes(process):
    status = pathlib.Path(f"/proc/{process}/status").read_text(encoding="ascii")
    [line] = [line for line in status.splitlines() if line.startswith("VmRSS")]
    return int(line.split()[1])


@row("bus", "none at all")
def no_bus(seen):
    with Monitored() as monitored:
        for arguments in [["--headless"], []]:
            variables = dict(monitored.run.variables,
                             DBUS_SESSION_BUS_ADDRESS=f"unix:path={monitored.folder}/none",
                             XDG_RUNTIME_DIR=str(monitored.folder / "other"),
                             QT_QPA_PLATFORM="offscreen")
            (monitored.folder / "other").mkdir(mode=0o700, exist_ok=True)
            picture = monitored.folder / "window.png"
            alone = subprocess.Popen(
                [run.PROGRAMS / "Kiv_Skyhold", "--report", "--screenshot", picture, *arguments],
                env=variables, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
            time.sleep(2)
            assert alone.poll() is None
            alone.terminate()
            said = alone.communicate(timeout=10)[1]
            assert alone.returncode == 0 and picture.exists()
            assert "Automation is off" in said, said
        seen.say("window and terminal run, “Automation is off” in the place of the attached users")


@row("bus", "hangs for ten seconds")
def bus_hangs(seen):
    with WatchedBus(["--start"]) as monitored:
        monitored.next_cycle("a safe sky", is_safe)
        monitored.watch.end()  # its question waits for the bus, not for the program
        monitored.watch = None
        monitored.daemon.send_signal(signal.SIGSTOP)
        begun = time.monotonic()
        try:
            seen.cycle(monitored, "the loss", lambda c: c.codes == "a31" and c.verdict == "UNSAFE")
            assert time.monotonic() - begun < 5
            begin = len(monitored.cycles)
            time.sleep(10 - (time.monotonic() - begun))
            assert len(monitored.cycles) - begin > 10, "the cycles were held up"
        finally:
            monitored.daemon.send_signal(signal.SIGCONT)
        seen.recovery(monitored, "its return", is_safe)


@row("clients", f"one that holds {INSTANCES} instances and dies")
def many_instances(seen):
    with Monitored(["--start"]) as monitored:
        monitored.next_cycle("a safe sky", is_safe)
        client, other = Client(monitored), Client(monitored)
        factory = client.bus.get_object("Kiv_Skyhold.Nubilo", "/Kiv_Skyhold/Nubilo",
                                        introspect=False)
        before = resident_kilobytes(monitored.monitor.pid)
        for _ in range(INSTANCES):
            factory.CreateInstance(dbus_interface="Kiv.Automation.ClassFactory")
        each = (resident_kilobytes(monitored.monitor.pid) - before) * 1024 / INSTANCES
        assert other.invoke("Kiv_TotalNoUsers") == INSTANCES + 2
        assert each < MOST_BYTES, each
        client.close()
        begun = time.monotonic()
        seen.expect("one user", lambda: other.invoke("Kiv_TotalNoUsers") == 1, 5)
        seen.say(f"{each:.0f} bytes of memory each, all counted off "
                 f"{(time.monotonic() - begun) * 1000:.0f} ms after the death")
        seen.recovery(monitored, "a safe sky", is_safe)


@row("clients", "floods of calls, wrong types, ends in mid-call")
def bad_clients(seen):
    with Monitored(["--start"]) as monitored:
        monitored.next_cycle("a safe sky", is_safe)
        ending = threading.Event()
        sent = [0]

        def flood():
            bus = dbus.bus.BusConnection(monitored.run.variables["DBUS_SESSION_BUS_ADDRESS"])
            path = bus.call_blocking("Kiv_Skyhold.Nubilo", "/Kiv_Skyhold/Nubilo",
                                     "Kiv.Automation.ClassFactory", "CreateInstance", "", ())
            while not ending.is_set():
                for _ in range(200):
                    bus.call_blocking("Kiv_Skyhold.Nubilo", path, "Kiv.Automation.Dispatch",
                                      "InvokeByName", "suav", ("Safe", dbus.UInt32(READ), []))
                    sent[0] += 1
            # Goes with its last question unanswered.
            bus.call_async("Kiv_Skyhold.Nubilo", path, "Kiv.Automation.Dispatch", "InvokeByName",
                           "suav", ("Kiv_GraphArray", dbus.UInt32(METHOD), []), None, None)
            bus.flush()
            bus.close()

        floods = [threading.Thread(target=flood) for _ in range(3)]
        for thread in floods:
            thread.start()
        monitored.watch.take_longest()
        begin = len(monitored.cycles)
        time.sleep(5)
        cycles = len(monitored.cycles) - begin
        ending.set()
        for thread in floods:
            thread.join(20)
        assert cycles > 10, cycles
        silence = monitored.watch.take_longest()
        seen.say(f"{sent[0] / 5:.0f} calls a second from three clients: {cycles} of 15 cycles came, "
                 f"longest answer {silence * 1000:.0f} ms")

        client = Client(monitored)
        dispatch = "Kiv.Automation.Dispatch"
        wrong = [
            ("InvokeByName", "suav", ("Kiv_SafeDelayValue", dbus.UInt32(4), ["many"])),
            ("InvokeByName", "suav", ("Kiv_SafeDelayValue", dbus.UInt32(4), [float("nan")])),
            ("InvokeByName", "suav", ("Kiv_SafeDelayValue", dbus.UInt32(4), [])),
            ("InvokeByName", "suav", ("SetUnSafe", dbus.UInt32(1), [dbus.Array([1], "i")])),
            ("InvokeByName", "suav", ("Safe", dbus.UInt32(0xFFFFFFF0), [])),
            ("InvokeByName", "s", ("Safe",)),
            ("Invoke", "iuav", (-1, dbus.UInt32(1), [])),
            ("Invoke", "a{sv}", ({"Safe": True},)),
            ("GetIDsOfNames", "as", (["x" * 1_000_000],)),
        ]
        for method, signature, arguments in wrong:
            try:
                client.bus.call_blocking("Kiv_Skyhold.Nubilo", client.path, dispatch, method,
                                         signature, arguments)
            except dbus.DBusException:
                continue
            raise AssertionError(f"{method} {signature} was taken")
        assert client.invoke("Kiv_SafeDelayValue") == 30
        seen.say("wrong types are refused and change nothing")
        # A connection that asks, but never reads what it is answered, holds nobody up.
        deaf = dbus.bus.BusConnection(monitored.run.variables["DBUS_SESSION_BUS_ADDRESS"])
        for _ in range(2000):
            deaf.send_message(dbus.lowlevel.MethodCallMessage(
                "Kiv_Skyhold.Nubilo", client.path, "org.freedesktop.DBus.Introspectable",
                "Introspect"))
        begun = time.monotonic()
        for _ in range(10):
            client.invoke("Safe")
        assert time.monotonic() - begun < 20
        deaf.close()
        seen.expect("one user", lambda: client.invoke("Kiv_TotalNoUsers") == 1, 5)
        seen.recovery(monitored, "a safe sky", is_safe)
        client.close()
