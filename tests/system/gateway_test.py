"""The gateway beside the whole program: what it says over HTTP when the monitor runs, hangs and ends."""

import json
import signal
import subprocess
import time
import unittest
import urllib.error
import urllib.request

from monitored import Monitored, run

GATEWAY = run.PROGRAMS / "skyhold-gateway"


class GatewayTest(unittest.TestCase):
    def get(self, path, host=None):
        request = urllib.request.Request(self.url + path, headers={"Host": host} if host else {})
        try:
            with urllib.request.urlopen(request, timeout=5) as answer:
                return answer.status, answer.read().decode()
        except urllib.error.HTTPError as error:
            return error.code, ""

    def state(self):
        status, body = self.get("/api/status")
        self.assertEqual(status, 200)
        state = json.loads(body)
        return state["safe"], state["verdict"], [cause["text"] for cause in state["causes"]]

    def test_it_says_safe_only_while_the_monitor_does(self):
        with Monitored(["--start"], weather="night", speed=10, safe_delay=0) as monitored:
            gateway = monitored.run.start(GATEWAY, "--http", "127.0.0.1:0",
                                          stdout=subprocess.PIPE, text=True)
            said = gateway.stdout.readline().strip()
            self.assertRegex(said, r"^Listening on http://127\.0\.0\.1:[1-9]\d+$")
            self.url = said.removeprefix("Listening on ")
            monitored.wait_until("safe", lambda: self.state() == (True, "safe", []))
            self.assertEqual(self.get("/healthz"), (200, "ok\n"))
            self.assertEqual(self.get("/api/status", "elsewhere.example")[0], 421)
            self.assertEqual(self.get("/../etc/passwd")[0], 404)

            monitored.monitor.send_signal(signal.SIGSTOP)
            begin = time.monotonic()
            monitored.wait_until("the silence", lambda: not self.state()[0])
            # One and a half cycles of a second and two seconds.
            self.assertLess(time.monotonic() - begin, 5)
            self.assertEqual(self.state(), (False, "none", ["The monitor does not answer"]))
            monitored.monitor.send_signal(signal.SIGCONT)
            monitored.wait_until("safe again", lambda: self.state() == (True, "safe", []))

            monitored.monitor.kill()
            monitored.monitor.wait()
            monitored.wait_until("the end", lambda: not self.state()[0], 1)
            self.assertEqual(self.state(), (False, "none", ["The monitor is not running"]))

            second = subprocess.run([GATEWAY, "--http", self.url.removeprefix("http://")],
                                    env=monitored.run.variables, stderr=subprocess.PIPE, text=True,
                                    timeout=10, check=False)
            self.assertNotEqual(second.returncode, 0)
            self.assertIn("another program listens there already", second.stderr)
            gateway.terminate()
            self.assertEqual(gateway.wait(5), 0)


if __name__ == "__main__":
    unittest.main()
