# SPDX-License-Identifier: GPL-3.0-or-later
"""skyhold-gateway with the real monitor: what the network hears of it, above all when it is gone,
hangs or is silent."""

import contextlib
import json
import pathlib
import re
import signal
import socket
import subprocess
import time
import unittest
from unittest import mock

from gateway_parts import Gateway
from monitored import Monitored
import run


class FollowsTheMonitor(unittest.TestCase):
    def test_safe_and_every_loss(self):
        with Monitored(["--start"]) as monitored, Gateway(monitored) as gateway:
            monitored.wait_until("safe", gateway.safe)
            self.assertEqual(gateway.ask("/healthz")[0], 200)

            # Stopped: nobody says so, and it must not stay safe for as long as its last cycle counts.
            monitored.monitor.send_signal(signal.SIGSTOP)
            begin = time.monotonic()
            monitored.wait_until("unsafe", lambda: not gateway.safe())
            self.assertLess(time.monotonic() - begin, 5)
            document = gateway.get("/api/status")
            self.assertEqual(document["causes"][0]["text"], "The monitor does not answer")
            self.assertNotIn("readings", document)
            self.assertEqual(gateway.ask("/healthz")[0], 503)
            monitored.monitor.send_signal(signal.SIGCONT)
            monitored.wait_until("safe again", gateway.safe)

            # Killed: the bus says so at once.
            monitored.monitor.kill()
            monitored.monitor.wait()
            begin = time.monotonic()
            monitored.wait_until("unsafe", lambda: not gateway.safe())
            self.assertLess(time.monotonic() - begin, 1)
            monitored.start_monitor()
            monitored.wait_until("safe again", gateway.safe)

            # A session that is stopped in order.
            monitored.break_sensor("die")
            monitored.wait_until("unsafe", lambda: not gateway.safe())
            gateway.program.terminate()
            self.assertEqual(gateway.program.wait(5), 0)


class MovesTheRoof(unittest.TestCase):
    def test_as_far_as_it_may(self):
        """A client drives the switch: it is closed always, opened while it is safe, and who drives
        it stays as it was."""
        monitored = Monitored(["--start"], weather="quick")
        settings = monitored.folder / "user/config/Kiv/Kiv_Skyhold.ini"
        settings.write_text(settings.read_text().replace(
            "[Setup]\n", '[Setup]\nSWRole0="False"\nSWRole1="True"\n'))
        with monitored, Gateway(monitored, "--allow-switch") as gateway:
            def move(state):
                status, _headers, text = gateway.ask(
                    "/api/v1/switch/0/setswitch", "PUT", f"Id=0&State={state}&ClientID=3",
                    **{"Content-Type": "application/x-www-form-urlencoded"})
                self.assertEqual(status, 200)
                return json.loads(text)

            def shows(state):
                return lambda: gateway.get("/api/v1/switch/0/getswitch?Id=0")["Value"] is state

            self.assertEqual(move("true")["ErrorNumber"], 0x500)  # not safe yet
            monitored.wait_until("safe", gateway.safe)
            for state in [True, False, True]:
                self.assertEqual(move(state), {"ClientTransactionID": 0, "ErrorNumber": 0,
                                               "ErrorMessage": "", "ServerTransactionID": mock.ANY})
                monitored.wait_until(f"switch {state}", shows(state))
            document = gateway.get("/api/status")
            self.assertFalse(document["roof"]["driven"])
            self.assertEqual(document["attached"], 0)
            monitored.monitor.send_signal(signal.SIGSTOP)
            monitored.wait_until("unsafe", lambda: not gateway.safe())
            self.assertEqual(move("false")["ErrorNumber"], 0x500)
            monitored.monitor.send_signal(signal.SIGCONT)


class IsFound(unittest.TestCase):
    def test_from_this_computer_where_it_listens_there(self):
        monitored = Monitored(sensor=None)
        monitored.run.start_bus()
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as asking:
            asking.bind(("127.0.0.1", 0))
            port = asking.getsockname()[1]
        try:
            with Gateway(monitored, "--discovery-port", str(port)) as gateway, \
                    socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as asking:
                asking.setsockopt(socket.SOL_SOCKET, socket.SO_BROADCAST, 1)
                asking.settimeout(5)
                for target in ["127.0.0.1", "127.255.255.255"]:
                    asking.sendto(b"alpacadiscovery1", (target, port))
                    self.assertEqual(json.loads(asking.recv(100)), {"AlpacaPort": gateway.port})
        finally:
            monitored.run.end()


class WithoutAMonitor(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.monitored = Monitored(sensor=None)
        cls.monitored.run.start_bus()
        cls.gateway = Gateway(cls.monitored)

    @classmethod
    def tearDownClass(cls):
        cls.gateway.__exit__()
        cls.monitored.run.end()

    def test_says_unsafe(self):
        self.assertFalse(self.gateway.safe())

    def test_a_taken_port_is_an_error(self):
        second = subprocess.run(
            [run.PROGRAMS / "skyhold-gateway", "--http", f"127.0.0.1:{self.gateway.port}"],
            env=self.monitored.run.variables, capture_output=True, text=True, timeout=10,
            check=False)
        self.assertEqual(second.returncode, 2)
        self.assertIn("another program listens there already", second.stderr)

    def test_foreign_names_are_refused(self):
        for host, status in [("localhost", 200), ("LOCALHOST:1", 200), ("192.0.2.7:80", 200),
                             ("[::1]", 200), ("evil.example", 421), ("localhost.evil.example", 421),
                             ("127.0.0.1.evil.example:11111", 421), ("[evil]", 421), ("", 421)]:
            with self.subTest(host=host):
                got, headers, _text = self.gateway.ask("/api/status", Host=host)
                self.assertEqual(got, status)
                self.assertIn("default-src 'none'", headers["Content-Security-Policy"])
                self.assertEqual(headers["X-Frame-Options"], "DENY")
                self.assertIsNone(headers["Access-Control-Allow-Origin"])

    def test_bad_clients_do_not_keep_others_waiting(self):
        """Silent connections, a request that never ends, too large ones: others are answered."""
        with contextlib.ExitStack() as stack:
            silent = [stack.enter_context(
                socket.create_connection(("127.0.0.1", self.gateway.port), timeout=10))
                for _ in range(300)]
            for number, connection in enumerate(silent[:100]):
                connection.sendall(b"GET /api/status HTTP/1.1\r\nX: "[:number % 30 + 1])
            begin = time.monotonic()
            for _ in range(50):
                self.assertFalse(self.gateway.safe())
            self.assertLess(time.monotonic() - begin, 5)
            big = stack.enter_context(
                socket.create_connection(("127.0.0.1", self.gateway.port), timeout=10))
            big.sendall(b"PUT /api/status HTTP/1.1\r\nHost: localhost\r\n"
                        b"Content-Length: 10000000\r\n\r\n")
            self.assertIn(b" 413 ", big.recv(100))
            with contextlib.suppress(OSError):  # ended while it sends
                for _ in range(160):
                    big.sendall(b"x" * 65536)
            head = stack.enter_context(
                socket.create_connection(("127.0.0.1", self.gateway.port), timeout=10))
            with contextlib.suppress(OSError):
                head.sendall(b"GET / HTTP/1.1\r\n" + b"X: " + b"x" * 100_000)
            self.assertRegex(head.recv(100), b"^(HTTP/1.1 4..|$)")
            process = pathlib.Path(f"/proc/{self.gateway.program.pid}/status").read_text()
            resident = int(re.search(r"VmRSS:\s+(\d+) kB", process).group(1))
            self.assertLess(resident, 30_000)

    def test_a_request_that_takes_too_long_is_ended(self):
        with socket.create_connection(("127.0.0.1", self.gateway.port), timeout=30) as slow:
            begin = time.monotonic()
            slow.settimeout(0.5)
            ended = False
            for byte in b"GET / HTTP/1.1\r\nX-Slow: " + b"x" * 60:
                with contextlib.suppress(TimeoutError):
                    try:
                        slow.sendall(bytes([byte]))
                        ended = slow.recv(1) == b""
                    except ConnectionError:
                        ended = True
                if ended:
                    break
            self.assertTrue(ended)
            self.assertLess(time.monotonic() - begin, 20)


if __name__ == "__main__":
    unittest.main()
