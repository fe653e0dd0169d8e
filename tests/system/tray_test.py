# SPDX-License-Identifier: GPL-3.0-or-later
"""The first start, the window and its tray icon on a real display, with a window manager and a
panel, by real keys and clicks."""

import subprocess
import time
import unittest

from monitored import METHOD, Client, Monitored, run

MAIN_WINDOW = r"^Kiv_Skyhold \("
POPUP_CLASS = "^Kiv_Skyhold$"


class Desktop(Monitored):
    """A monitor on a display of its own that has never been set up: the assistant of the first
    start is answered by keys, with simulators in the place of a sensor and a station."""

    def __init__(self):
        super().__init__(window=True)
        self.settings = self.folder / "user" / "config" / "Kiv" / "Kiv_Skyhold.ini"
        self.settings.unlink()

    def start_sensor(self):
        """The assistant does it."""

    def start_station(self):
        """The assistant does it."""

    def start_monitor(self):
        self.launch_monitor()
        self.wait_until("the assistant", self.shown)
        self.assistant = self.main_window()
        self.give_keys(self.assistant)
        self.keys("Down", "Return")                           # no hardware; next step
        self.keys("Tab", "Right", "Right", "Return")          # wind in m/s; next step
        self.keys("Return")                                   # the folders as they are
        self.wait_until("the simulators' file", lambda: any(
            self.folder.rglob("simulated/station.htm")))      # the last step shows it
        self.keys("Return")
        self.run.wait_for_name("Kiv_Skyhold.Nubilo", self.monitor)

    def give_keys(self, window):
        """As a user who picks it: a window manager need not give the focus to a new window."""
        def picked():
            if (self.xdotool("getactivewindow") == window and
                    self.xdotool("getwindowfocus") == window):
                return True
            self.xdotool("windowactivate", window)
            return False

        self.wait_until("the focus", picked)

    def keys(self, *pressed):
        """To the window that has the focus, in this order."""
        self.xdotool("key", "--delay", 40, *pressed)

    def __enter__(self):
        try:
            self.start_desktop()
            return super().__enter__()
        except BaseException:
            self.run.end()
            raise

    def start_desktop(self):
        self.start_display()
        self.run.start("openbox", "--sm-disable", stderr=subprocess.DEVNULL)
        self.wait_until("the window manager", lambda: self.xdotool("get_desktop"))
        self.start_panel()

    def start_panel(self):
        self.panel = self.run.start("trayer", "--edge", "bottom", "--align", "right",
                                    "--widthtype", "request", stderr=subprocess.DEVNULL)

    def xdotool(self, *command):
        """A search gives up when a window goes while it looks at it: that is no answer."""
        while True:
            answer = subprocess.run(["xdotool", *map(str, command)], env=self.run.variables,
                                    capture_output=True, text=True, check=False)
            if command[0] != "search" or "X Error" not in answer.stderr:
                return answer.stdout.strip()

    def session_runs(self):
        client = Client(self)
        try:
            return bool(client.invoke("DeviceIsRunning", METHOD))
        finally:
            client.release()
            client.close()

    def windows(self, *search):
        return set(self.xdotool("search", "--onlyvisible", *search).split())

    def shown(self):
        return bool(self.windows("--name", MAIN_WINDOW))

    def main_window(self):
        return self.windows("--name", MAIN_WINDOW).pop()

    def shape(self, window):
        """X, Y, WIDTH and HEIGHT; nothing of a window that has just gone."""
        lines = self.xdotool("getwindowgeometry", "--shell", window).splitlines()
        return {name: int(number) for name, number in (line.split("=") for line in lines)}

    def icon(self):
        """Where the panel shows its only icon; nothing when it shows none."""
        for panel in self.windows("--name", "^panel$"):
            shape = self.shape(panel)
            if shape and shape["WIDTH"] > 10:  # an empty panel is a line
                return shape["X"] + shape["WIDTH"] // 2, shape["Y"] + shape["HEIGHT"] // 2
        return None

    def menu(self):
        """The open menu; the icon itself is smaller, the main window has its title."""
        windows = (self.windows("--class", POPUP_CLASS) - self.windows("--name", MAIN_WINDOW) -
                   self.windows("--name", "^About$"))
        for window in windows:
            if self.shape(window).get("WIDTH", 0) > 40:
                return window
        return None

    def click_until(self, what, holds, *clicks):
        """A panel that still moves its icon, or a machine so busy that a double click becomes two
        single ones, misses a click; one that is missed changes nothing that is asked for here."""
        for _ in range(5):
            self.wait_until("the icon in the tray", self.icon)
            self.xdotool("mousemove", *self.icon(), "click", *clicks)
            end = time.monotonic() + 3
            while time.monotonic() < end:
                if holds():
                    return
                time.sleep(0.02)
        raise AssertionError(f"no click brought {what}")

    def double_click_until(self, what, holds):
        self.click_until(what, holds, "--repeat", 2, "--delay", 40, 1)

    def iconify_and_activate(self, window):
        self.xdotool("windowminimize", window)
        self.wait_until("an iconified window", lambda: not self.shown())
        self.xdotool("windowactivate", window)
        self.wait_until("the window", self.shown)

    def choose(self, access_key):
        """An entry of the icon's menu."""
        self.click_until("the menu", self.menu, 3)

        def chosen():
            self.xdotool("key", access_key)
            return not self.menu()

        self.wait_until(f"the end of the menu by {access_key}", chosen)

    def choose_first(self):
        """The first entry of the icon's menu, by mouse."""
        self.click_until("the menu", self.menu, 3)
        shape = self.shape(self.menu())
        self.xdotool("mousemove", shape["X"] + 20, shape["Y"] + 14, "click", 1)
        self.wait_until("the end of the menu", lambda: not self.menu())


class TrayTest(unittest.TestCase):
    def test_from_the_first_start_to_a_life_in_the_tray(self):
        with Desktop() as desktop:
            desktop.wait_until("the window", lambda: desktop.windows("--name", MAIN_WINDOW) -
                               {desktop.assistant})
            desktop.wait_until("the icon", desktop.icon)
            kept = desktop.settings.read_text(encoding="utf-8")
            for line in ["UnitsSpeed2=True", "UnitsSpeed0=False", "ImageWind=0", "FileNameCCDAP4=",
                         "BeyondLimitUnsafe=1"]:
                self.assertIn(line, kept.splitlines())
            self.assertIn("simulated/station.htm", kept)

            desktop.give_keys(desktop.main_window())
            desktop.keys("alt+f", "s")
            desktop.next_cycle("a session", lambda c: c.verdict in ("SAFE", "UNSAFE") and
                               "not available" not in c.status)

            desktop.xdotool("windowminimize", desktop.main_window())
            desktop.wait_until("a hidden window", lambda: not desktop.shown())
            desktop.double_click_until("the window", desktop.shown)
            desktop.wait_until("the window in front", lambda: desktop.xdotool("getactivewindow") ==
                               desktop.main_window())
            desktop.double_click_until("a hidden window", lambda: not desktop.shown())

            desktop.choose("t")
            desktop.wait_until("the end of the session", lambda: not desktop.session_runs())
            desktop.choose("s")
            desktop.next_cycle("a session", lambda c: c.verdict in ("SAFE", "UNSAFE"))
            self.assertFalse(desktop.shown())

            # The panel is started anew while the window is hidden.
            desktop.panel.terminate()
            desktop.panel.wait(10)
            desktop.start_panel()
            desktop.choose("r")
            desktop.wait_until("the window", desktop.shown)

            # The window must not be lost where the icon does not lead back: while a dialog waits,
            # and without a panel.
            window = desktop.main_window()
            desktop.give_keys(window)
            desktop.keys("alt+h", "a")
            desktop.wait_until("the dialog", lambda: desktop.windows("--name", "^About$"))
            desktop.choose_first()  # Stop: the icon's menu goes on working
            desktop.wait_until("the end of the session", lambda: not desktop.session_runs())
            desktop.iconify_and_activate(window)
            desktop.wait_until("the dialog", lambda: desktop.windows("--name", "^About$"))
            desktop.give_keys(desktop.windows("--name", "^About$").pop())
            desktop.keys("Return")
            desktop.wait_until("its end", lambda: not desktop.windows("--name", "^About$"))

            # Beside the file of a real station no simulator goes on.
            self.assertTrue(desktop.bus.name_has_owner(run.SENSOR_NAME))
            desktop.give_keys(window)
            desktop.keys("alt+o", "alt+e")
            desktop.wait_until("the dialog", lambda: desktop.windows("--name", "^Select data file"))
            desktop.give_keys(desktop.windows("--name", "^Select data file").pop())
            desktop.xdotool("type", "--delay", 10, desktop.settings)
            desktop.keys("Return")
            desktop.wait_until("their end", lambda: not desktop.bus.name_has_owner(run.SENSOR_NAME))
            desktop.panel.terminate()
            desktop.panel.wait(10)
            desktop.iconify_and_activate(window)

            desktop.start_panel()
            desktop.choose("e")
            self.assertEqual(desktop.monitor.wait(10), 0)
            desktop.wait_until("an empty tray", lambda: not desktop.icon())
            self.assertIn("Emulator=1", desktop.settings.read_text(encoding="utf-8").splitlines())


if __name__ == "__main__":
    unittest.main()
