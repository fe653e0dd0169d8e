# SPDX-License-Identifier: GPL-3.0-or-later
"""Clients from elsewhere that read the gateway: INDI's weather safety proxy, a parser of Prometheus'
text, and one of the description of its pages."""

import json
import re
import signal
import subprocess
import unittest

from prometheus_client.parser import text_string_to_metric_families

from gateway_parts import Gateway
from monitored import Monitored, run
from sensor_parts import free_port


class SafetyProxy:
    """Debian's indi_weather_safety_proxy behind an indiserver."""

    DEVICE = "Weather Safety Proxy"

    def __init__(self, monitored, *settings):
        self.run = monitored.run
        self.run.variables["HOME"] = str(monitored.folder)
        self.port = str(free_port())
        self.run.start("indiserver", "-p", self.port, "-u", monitored.folder / "indi", "-r", 5,
                       "indi_weather_safety_proxy", stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL)
        for change in [*settings, "SOFT_ERROR_HYSTERESIS.SOFT_ERROR_MAX;SOFT_ERROR_RECOVERY=0;0",
                       "CONNECTION.CONNECT=On", "WEATHER_UPDATE.PERIOD=1"]:
            monitored.wait_until(change, lambda c=change: self.set(c))

    def set(self, change):
        return subprocess.run(["indi_setprop", "-p", self.port, f"{self.DEVICE}.{change}"],
                              env=self.run.variables, stderr=subprocess.DEVNULL,
                              check=False).returncode == 0

    def status(self):
        """"Ok" or "Alert"."""
        return subprocess.run(["indi_getprop", "-p", self.port, "-1", "-t", "2",
                               f"{self.DEVICE}.WEATHER_STATUS.WEATHER_SAFETY"],
                              env=self.run.variables, stdout=subprocess.PIPE, text=True,
                              stderr=subprocess.DEVNULL, check=False).stdout.strip()


class IndiProxyTest(unittest.TestCase):
    def follow(self, monitored, *settings):
        """Its status follows the monitor's verdict, and its loss."""
        proxy = SafetyProxy(monitored, *settings)
        monitored.wait_until("safe", lambda: proxy.status() == "Ok", 40)
        monitored.monitor.send_signal(signal.SIGSTOP)
        monitored.wait_until("unsafe", lambda: proxy.status() == "Alert", 40)
        monitored.monitor.send_signal(signal.SIGCONT)
        monitored.wait_until("safe again", lambda: proxy.status() == "Ok", 40)
        monitored.monitor.kill()
        monitored.monitor.wait()
        monitored.wait_until("unsafe without a monitor", lambda: proxy.status() == "Alert", 40)

    def test_it_follows_the_page(self):
        with Monitored(["--start"]) as monitored, Gateway(monitored) as gateway:
            self.follow(monitored, "SCRIPT_OR_CURL.Use url=On",
                        "WEATHER_SAFETY_URLS.WEATHER_SAFETY_URL="
                        f"{gateway.url}/roof_status.json")

    def test_it_follows_the_script(self):
        with Monitored(["--start"]) as monitored:
            script = monitored.folder / "safety"
            script.write_text(f"#!/bin/sh\nexec {run.PROGRAMS}/skyholdctl roof-status\n")
            script.chmod(0o755)
            self.follow(monitored, f"WEATHER_SAFETY_SCRIPTS.WEATHER_SAFETY_SCRIPT={script}")


class MetricsTest(unittest.TestCase):
    def test_they_parse_and_follow_the_verdict(self):
        with Monitored(["--start"]) as monitored, Gateway(monitored) as gateway:
            def families():
                _status, _headers, text = gateway.ask("/metrics")
                return {family.name: family for family in text_string_to_metric_families(text)}

            def value(name):
                return families()[name].samples[0].value

            monitored.wait_until("safe", lambda: value("skyhold_safe") == 1)
            seen = families()
            for family in seen.values():
                self.assertTrue(family.documentation, family.name)
                self.assertIn(family.type, ("gauge", "counter"), family.name)
                self.assertRegex(family.name, "^skyhold_[a-z_]+$")
            self.assertEqual(seen["skyhold_safe"].samples[0].labels, {})
            document = gateway.get("/api/status")
            self.assertLessEqual(abs(seen["skyhold_cycles"].samples[0].value - document["cycle"]), 5)
            kinds = {sample.labels["quantity"] for sample in seen["skyhold_reading_celsius"].samples}
            self.assertEqual(kinds, {"cloud", "temperature", "dew_spread", "dew_point",
                                     "ambient_temperature", "sensor_temperature"})
            monitored.monitor.kill()
            monitored.monitor.wait()
            monitored.wait_until("unsafe", lambda: value("skyhold_safe") == 0)
            self.assertEqual(value("skyhold_up"), 0)
            self.assertNotIn("skyhold_reading_celsius", families())


class DescriptionTest(unittest.TestCase):
    def test_every_page_that_is_described_answers_in_its_type(self):
        monitored = Monitored(sensor=None)
        monitored.run.start_bus()
        try:
            with Gateway(monitored) as gateway:
                described = json.loads(gateway.ask("/openapi.json")[2])
                self.assertGreaterEqual(len(described["paths"]), 7)
                for path, methods in described["paths"].items():
                    if path == "/api/events":  # it never ends
                        continue
                    types = methods["get"]["responses"]["200"]["content"]
                    _status, headers, text = gateway.ask(path)
                    self.assertIn(re.sub(";.*", "", headers["Content-Type"]), types)
                    if "application/json" in types:
                        json.loads(text)
        finally:
            monitored.run.end()


if __name__ == "__main__":
    unittest.main()
