# SPDX-License-Identifier: GPL-3.0-or-later
"""The live page in a real browser: it follows the verdict, and says so when it hears nothing."""

import contextlib
import os
import shutil
import signal
import time
import unittest

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By

from gateway_parts import Gateway
from monitored import Monitored


@contextlib.contextmanager
def browser(monitored, script=True):
    options = webdriver.ChromeOptions()
    for argument in ["--headless=new", "--no-sandbox", "--disable-gpu", "--window-size=1280,800",
                     "--disable-dev-shm-usage", "--disable-background-networking",
                     f"--user-data-dir={monitored.folder}/chromium-{script}"]:
        options.add_argument(argument)
    if not script:
        options.add_experimental_option("prefs",
                                        {"profile.managed_default_content_settings.javascript": 2})
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    page = webdriver.Chrome(service=Service(shutil.which("chromedriver")), options=options)
    try:
        yield page
    finally:
        page.quit()


def word(page):
    return page.find_element(By.ID, "verdict").text


class PageTest(unittest.TestCase):
    def until(self, page, wanted, seconds):
        """How long it took until the page says this word."""
        begin = time.monotonic()
        while word(page) != wanted:
            self.assertLess(time.monotonic() - begin, seconds,
                            f"{wanted} did not come: {word(page)}")
            time.sleep(0.02)
        return time.monotonic() - begin

    def expect_clean(self, page, gateway):
        """No error on the console, and nothing asked of anybody else."""
        errors = [entry["message"] for entry in page.get_log("browser")
                  if entry["level"] == "SEVERE" and "ERR_CONNECTION" not in entry["message"] and
                  "ERR_INCOMPLETE" not in entry["message"]]
        self.assertEqual(errors, [])
        asked = {entry.split('"url":"', 1)[1].split('"', 1)[0]
                 for entry in (log["message"] for log in page.get_log("performance"))
                 if '"Network.requestWillBeSent"' in entry and '"url":"http' in entry}
        self.assertTrue(asked)
        self.assertEqual({url for url in asked if not url.startswith(gateway.url)}, set())

    def test_it_follows_the_verdict_and_every_loss(self):
        with Monitored(["--start"]) as monitored, Gateway(monitored) as gateway, \
                browser(monitored) as page:
            page.get(gateway.url)
            monitored.wait_until("safe", gateway.safe)
            self.until(page, "SAFE", 2)
            readings = page.find_element(By.ID, "readings").text
            self.assertIn("Cloud", readings)

            monitored.break_sensor("not-running")
            monitored.wait_until("unsafe", lambda: not gateway.safe())
            self.until(page, "UNSAFE", 2)
            self.assertIn("has failed", page.find_element(By.ID, "causes").text)
            monitored.break_sensor("none")
            monitored.wait_until("safe again", gateway.safe)
            self.until(page, "SAFE", 2)

            # The monitor hangs: its last "safe" is not shown for longer than it counts.
            monitored.monitor.send_signal(signal.SIGSTOP)
            self.until(page, "UNKNOWN", 5)
            values = page.find_elements(By.CSS_SELECTOR, "#readings .value")
            self.assertEqual({value.text for value in values}, {"–"})
            monitored.monitor.send_signal(signal.SIGCONT)
            self.until(page, "SAFE", 5)
            self.expect_clean(page, gateway)

            # The gateway is killed: nobody says anything any more.
            os.kill(gateway.program.pid, signal.SIGKILL)
            self.until(page, "UNKNOWN", 5)

    def test_a_killed_monitor_and_a_page_without_script(self):
        with Monitored(["--start"]) as monitored, Gateway(monitored) as gateway, \
                browser(monitored) as page, browser(monitored, script=False) as plain:
            monitored.wait_until("safe", gateway.safe)
            page.get(gateway.url)
            self.until(page, "SAFE", 2)
            plain.get(gateway.url)
            self.assertEqual(word(plain), "SAFE")
            self.assertIn("Cloud", plain.find_element(By.ID, "readings").text)
            monitored.monitor.kill()
            monitored.monitor.wait()
            self.until(page, "UNKNOWN", 5)
            plain.refresh()
            self.assertEqual(word(plain), "UNKNOWN")
            self.expect_clean(page, gateway)

            # What a browser keeps of the page never holds a verdict.
            _status, headers, style = gateway.ask("/page.css")
            kept = {"If-None-Match": headers["ETag"]}
            self.assertEqual(headers["Cache-Control"], "no-cache")
            self.assertEqual(gateway.ask("/page.css", **kept)[::2], (304, ""))
            self.assertEqual(gateway.ask("/page.js", **kept)[0], 200)
            self.assertTrue(style)
            for path in ["/", "/api/status"]:
                status, headers, _text = gateway.ask(path, **kept)
                self.assertEqual((status, headers["Cache-Control"]), (200, "no-store"), path)

    def test_what_waited_while_the_page_slept_is_not_believed(self):
        """The page stands still, the gateway hangs with it, and then an old "safe" comes out."""
        with Monitored(["--start"]) as monitored, Gateway(monitored) as gateway, \
                browser(monitored) as page:
            monitored.wait_until("safe", gateway.safe)
            page.get(gateway.url)
            self.until(page, "SAFE", 2)
            document = gateway.get("/api/status")
            os.kill(gateway.program.pid, signal.SIGSTOP)
            self.until(page, "UNKNOWN", 5)
            page.execute_script(
                """const late = new MessageEvent("state", {data: JSON.stringify(arguments[0])});
                events.dispatchEvent(late);""", document)
            self.assertEqual(word(page), "UNKNOWN")
            os.kill(gateway.program.pid, signal.SIGCONT)
            self.until(page, "SAFE", 5)


if __name__ == "__main__":
    unittest.main()
