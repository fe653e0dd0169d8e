"""Faults of the session bus, and clients that misbehave."""

import pathlib
import signal
import subprocess
import threading
import time

import dbus

from monitored import METHOD, READ, Client, run
from quiet import quiet_evening
from table import Monitored, row

INSTANCES = 10_000
MOST_BYTES = 1_000  # of memory for one instance


def resident_kilobytes(process):
    status = pathlib.Path(f"/proc/{process}/status").read_text(encoding="ascii")
    [line] = [line for line in status.splitlines() if line.startswith("VmRSS")]
    return int(line.split()[1])


def is_safe(cycle):
    return cycle.verdict == "SAFE" and not cycle.codes


class ManyConnections(Monitored):
    """Its bus has an address that a new bus can have again."""

    def __init__(self, *arguments, **more):
        super().__init__(*arguments, **more)
        self.address = f"unix:path={self.folder}/bus.socket"
        self.run.start_bus = self.start_bus

    def start_bus(self):
        (self.folder / "bus.socket").unlink(missing_ok=True)
        configuration = self.folder / "bus.conf"
        configuration.write_text(run.BUS_CONFIGURATION.replace("unix:tmpdir=/tmp", self.address),
                                 encoding="utf-8")
        self.daemon = self.run.start("dbus-daemon", f"--config-file={configuration}", "--nofork",
                                     "--print-address", stdout=subprocess.PIPE,
                                     stderr=subprocess.DEVNULL, text=True)
        self.daemon.stdout.readline()
        # What it prints names this very bus as well, and would lead to no other.
        self.run.variables["DBUS_SESSION_BUS_ADDRESS"] = self.address

    def end_bus(self):
        self.daemon.kill()
        self.daemon.wait()


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


@row("bus", "goes away in the run and comes back", short=True)
def bus_restarts(seen):
    with ManyConnections(["--start"]) as monitored:
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


@row("bus", "hangs for ten seconds")
def bus_hangs(seen):
    with ManyConnections(["--start"]) as monitored:
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


@row("clients", "those that have control of the verdict die", short=True)
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
        seen.expect("one user", lambda: client.invoke("Kiv_TotalNoUsers") == 1, 5)
        seen.recovery(monitored, "a safe sky", is_safe)
        client.close()
