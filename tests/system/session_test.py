# SPDX-License-Identifier: GPL-3.0-or-later
"""A session of the whole program: verdicts, faults of both sources, clients, and the end."""

import signal
import socket
import subprocess
import time
import unittest

import dbus

from monitored import METHOD, Client, Monitored, run


class RestartableBus(Monitored):
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


class OnDisplay(Monitored):
    """The window on a display that can be killed."""

    def __init__(self):
        super().__init__(["--start", "--record"], window=True)

    def __enter__(self):
        self.display = self.start_display()
        return super().__enter__()

    def kill_display(self):
        self.display.kill()
        self.display.wait()


class SessionTest(unittest.TestCase):
    def test_verdict_flips_with_the_weather_and_with_failing_sources(self):
        with Monitored(["--start"]) as monitored:
            shower = monitored.next_cycle("the shower", lambda c: c.verdict == "UNSAFE")
            self.assertIn("Rain:", shower.cause)
            waiting = monitored.next_cycle("the delay", lambda c: "SAFE condition" in c.cause)
            self.assertEqual(waiting.verdict, "UNSAFE")
            monitored.next_cycle("a safe sky", lambda c: c.verdict == "SAFE")
            record = (monitored.folder / "ccdap" / "Kiv_CCDAP4_II.dat").read_bytes()
            self.assertEqual(len(record), 100)
            self.assertEqual(record[23:27], b"C K ")

            monitored.sensor.send_signal(signal.SIGKILL)
            lost = monitored.next_cycle("the sensor's loss", lambda c: c.verdict == "UNSAFE")
            self.assertEqual((lost.status, lost.codes, lost.cause[:23]),
                             ("Error with Kiv_Nubilo", "a31", "Kiv_Nubilo has failed, "))
            monitored.start_sensor()
            back = monitored.next_cycle("the sensor's return", lambda c: c.verdict == "SAFE")
            self.assertEqual(back.codes, "")

            faults = [
                ("stop", "Weather Station Data too old", "a41"),
                ("delete", "Weather Station Data - file not available", "a42"),
            ]
            for fault, status, code in faults:
                with self.subTest(fault=fault):
                    monitored.break_station(fault)
                    seen = monitored.next_cycle(fault, lambda c: c.verdict == "UNSAFE", 40)
                    self.assertTrue(seen.status.startswith(status), seen.line)
                    self.assertEqual(seen.codes, code)
                    self.assertIn("Station data", seen.cause)
                    monitored.break_station("none")
                    monitored.next_cycle("the station's return", lambda c: c.verdict == "SAFE")

    def test_service_manager_hears_of_finished_cycles_and_of_nothing_else(self):
        monitored = Monitored()
        address = monitored.folder / "notify"
        with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as manager:
            manager.bind(str(address))
            manager.settimeout(20)
            monitored.prefix = ["env", f"NOTIFY_SOCKET={address}", "WATCHDOG_USEC=300000000"]

            def next_message():
                return manager.recv(4096).decode()

            with monitored:
                idle = ["WATCHDOG_USEC=0", "STATUS=No session: no verdict"]
                self.assertEqual([next_message() for _ in range(3)], ["READY=1", *idle])
                client = Client(monitored)
                client.invoke("Device_Start", METHOD)
                heard = [next_message() for _ in range(7)]
                # An idle monitor finishes no cycle, and nobody waits for one.
                client.invoke("Device_Stop", METHOD)
                while heard[-2:] != idle:
                    heard.append(next_message())
                self.assertEqual([text for text in heard if text.startswith("WATCHDOG_USEC")],
                                 ["WATCHDOG_USEC=0", "WATCHDOG_USEC=300000000", "WATCHDOG_USEC=0"])
                rounds = [heard[i + 1] for i, text in enumerate(heard) if text == "WATCHDOG=1"]
                for status in rounds:
                    self.assertRegex(status, "^STATUS=(Safe|Unsafe)[^:]*: ")
                monitored.wait_until("all cycles", lambda: len(monitored.cycles) >= len(rounds))
                self.assertEqual(len(rounds), len(monitored.cycles))
                monitored.monitor.send_signal(signal.SIGTERM)
                self.assertEqual(next_message(), "STOPPING=1")

    def test_hung_sensor_holds_no_cycle_for_long(self):
        with Monitored(["--start"]) as monitored:
            monitored.next_cycle("a first cycle", lambda c: not c.codes)
            client = Client(monitored)

            def closings():
                calls = monitored.ask_sensor("Sim_Calls").splitlines()
                return calls.count("SetUnSafe(method; b true)")

            before = closings()
            for fault in ["silent", "late=1000"]:
                with self.subTest(fault=fault):
                    monitored.break_sensor(fault)
                    begin = time.monotonic()
                    first = monitored.next_cycle(fault, lambda c: c.codes == "a31")
                    self.assertLess(time.monotonic() - begin, 5)
                    self.assertEqual(first.verdict, "UNSAFE")
                    client.invoke("Safe")
                    if fault == "silent":
                        # Once it is known to hang it holds nobody up any more.
                        begin = time.monotonic()
                        for _ in range(3):
                            monitored.next_cycle("a quick cycle", lambda c: c.codes == "a31", 3)
                        self.assertLess(time.monotonic() - begin, 4.5)
                        self.assertLessEqual(closings(), before + 1)
                    monitored.break_sensor("none")
                    monitored.next_cycle("its return", lambda c: c.codes == "")

    def test_clients_are_counted_and_the_end_is_in_order(self):
        with Monitored() as monitored:
            first, second = Client(monitored), Client(monitored)
            self.assertEqual(str(first.invoke("Name")), "Kiv_Skyhold")
            self.assertFalse(first.invoke("DataReady"))
            first.invoke("Device_Start", METHOD)
            monitored.next_cycle("a first cycle", lambda c: True)
            self.assertTrue(first.invoke("DataReady"))

            second.release()
            with self.assertRaises(dbus.DBusException) as gone:
                second.release()
            self.assertEqual(gone.exception.get_dbus_name(),
                             "org.freedesktop.DBus.Error.UnknownObject")
            for name, error in [("NoSuchMember", "UnknownName"), ("Safe", "BadParamCount")]:
                with self.assertRaises(dbus.DBusException) as refused:
                    first.invoke(name, METHOD, [dbus.Int32(1)])
                self.assertEqual(refused.exception.get_dbus_name(),
                                 f"Kiv.Automation.Error.{error}")

            # A client that dies with control of the verdict does not keep it, others or not.
            other = Client(monitored)
            first.invoke("Kiv_LocalControl", METHOD, [True, "script"])
            monitored.next_cycle("its control", lambda c: c.cause == "Decided by script")
            first.close()
            monitored.next_cycle("the end of its control", lambda c: "script" not in c.cause)
            self.assertEqual(other.invoke("Kiv_TotalNoUsers"), 1)

            monitored.monitor.send_signal(signal.SIGTERM)
            self.assertEqual(monitored.monitor.wait(10), 0)
            settings = monitored.folder / "user/config/Kiv/Kiv_Skyhold.ini"
            self.assertEqual(settings.stat().st_mode & 0o777, 0o600)
            self.assertIn("GraphNoPoints=120", settings.read_text())

    def test_control_without_an_instance_ends_with_its_client(self):
        with Monitored(["--start"], safe_delay=0) as monitored:
            monitored.next_cycle("a safe sky", lambda c: c.verdict == "SAFE")
            bare = dbus.bus.BusConnection(monitored.run.variables["DBUS_SESSION_BUS_ADDRESS"])
            bare.call_blocking("Kiv_Skyhold.Nubilo", "/Kiv_Skyhold/Nubilo/MForm",
                               "Kiv.Automation.Dispatch", "InvokeByName", "suav",
                               ("HasControl", dbus.UInt32(METHOD), [True, "bare"]))
            monitored.next_cycle("its control", lambda c: c.cause == "Decided by bare")
            bare.close()
            monitored.next_cycle("its end", lambda c: "bare" not in c.cause)

    def test_bus_goes_away_and_comes_back(self):
        with RestartableBus(["--start"]) as monitored:
            monitored.next_cycle("a safe sky", lambda c: c.verdict == "SAFE")
            client = Client(monitored)
            client.invoke("Kiv_LocalControl", METHOD, [True, "script"])
            monitored.next_cycle("its control", lambda c: c.cause == "Decided by script")
            monitored.end_bus()
            lost = monitored.next_cycle("the loss", lambda c: c.codes == "a31")
            self.assertEqual(lost.verdict, "UNSAFE")
            monitored.wait_until("a word", lambda: any("has gone" in e for e in monitored.errors))
            monitored.start_bus()
            monitored.sensor.terminate()
            monitored.sensor.wait(10)
            monitored.start_sensor()
            monitored.next_cycle("both are back", lambda c: c.verdict == "SAFE" and not c.codes)
            monitored.run.wait_for_name("Kiv_Skyhold.Nubilo", monitored.monitor)
            client = Client(monitored)
            self.assertEqual(client.invoke("Kiv_TotalNoUsers"), 1)
            client.close()

    def test_a_display_that_dies_ends_the_program_in_order(self):
        with OnDisplay() as monitored:
            monitored.next_cycle("a safe sky", lambda c: c.verdict == "SAFE", 30)
            monitored.kill_display()
            monitored.monitor.wait(10)
            monitored.wait_until("a word", lambda: any(
                "The display has gone" in line for line in monitored.errors))
            settings = monitored.folder / "user/config/Kiv/Kiv_Skyhold.ini"
            self.assertIn("GraphNoPoints=120", settings.read_text(encoding="utf-8"))
            self.assertTrue((monitored.folder / "data/Skyhold.csv").read_bytes().endswith(b"\r\n"))
            given_back = [call for call in monitored.ask_sensor("Sim_Calls").splitlines()
                          if call.startswith("Kiv_LocalControl")]
            self.assertIn("false", given_back[-1])

    def test_second_instance_ends_silently(self):
        with Monitored() as monitored:
            second = monitored.run.start(run.PROGRAMS / "Kiv_Skyhold", "--headless")
            self.assertEqual(second.wait(10), 0)
            self.assertIsNone(monitored.monitor.poll())


if __name__ == "__main__":
    unittest.main()
