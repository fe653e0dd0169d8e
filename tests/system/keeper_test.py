# SPDX-License-Identifier: GPL-3.0-or-later
"""The gateway that the monitor runs: it starts with it, comes back when it is killed, ends with it,
and a port that is taken is reported."""

import json
import os
import pathlib
import signal
import socket
import unittest
import urllib.error
import urllib.request

from monitored import Monitored


def free_port():
    with socket.socket() as asking:
        asking.bind(("127.0.0.1", 0))
        return asking.getsockname()[1]


def with_gateway(port):
    monitored = Monitored(["--start"])
    settings = monitored.folder / "user/config/Kiv/Kiv_Skyhold.ini"
    settings.write_text(settings.read_text() + f'[Network]\nServe="1"\nPort="{port}"\n')
    return monitored


def gateway_of(monitored):
    """Its process; nothing while it does not run."""
    for task in pathlib.Path(f"/proc/{monitored.monitor.pid}/task").iterdir():
        for child in (task / "children").read_text().split():
            if "skyhold-gateway" in pathlib.Path(f"/proc/{child}/comm").read_text():
                return int(child)
    return None


def verdict(port):
    try:
        with urllib.request.urlopen(f"http://127.0.0.1:{port}/api/status", timeout=5) as answer:
            return json.loads(answer.read())["verdict"]
    except (urllib.error.URLError, ConnectionError):
        return None


class KeeperTest(unittest.TestCase):
    def test_the_gateway_lives_as_long_as_the_monitor(self):
        port = free_port()
        with with_gateway(port) as monitored:
            monitored.wait_until("safe over the network", lambda: verdict(port) == "safe")
            first = gateway_of(monitored)
            os.kill(first, signal.SIGKILL)
            monitored.wait_until("safe again", lambda: verdict(port) == "safe")
            self.assertNotEqual(gateway_of(monitored), first)
            monitored.monitor.kill()  # it cannot end the gateway any more
            monitored.wait_until("its end", lambda: verdict(port) is None)

    def test_a_port_that_is_taken_is_reported_and_tried_again(self):
        with socket.socket() as other:
            other.bind(("127.0.0.1", 0))
            other.listen()
            port = other.getsockname()[1]
            with with_gateway(port) as monitored:
                def reported():
                    return any("another program listens there already" in line
                               for line in monitored.errors)

                monitored.wait_until("the report", reported)
                other.close()
                monitored.wait_until("the gateway", lambda: verdict(port) == "safe")


if __name__ == "__main__":
    unittest.main()
