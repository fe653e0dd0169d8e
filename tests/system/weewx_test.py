# SPDX-License-Identifier: GPL-3.0-or-later
"""The extension of weewx: packets as drivers send them, and the file as the monitor's reader sees it.

weewx itself is not needed: what the extension uses of it stands here.
"""

import importlib.util
import os
import pathlib
import subprocess
import sys
import tempfile
import types
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
PROGRAMS = pathlib.Path(os.environ.get("SKYHOLD_PROGRAMS") or ROOT / "build/release/bin")
NOON = 1_795_435_200  # a time stamp; its day is the same in the time zones of the test


def load_extension():
    """The module, with the four names of weewx that it uses."""
    weewx = types.ModuleType("weewx")
    weewx.NEW_LOOP_PACKET, weewx.METRICWX = "loop", 17
    weewx.units = types.ModuleType("weewx.units")

    def to_std_system(packet, _system):
        if packet["usUnits"] != 17:
            raise ValueError("the test sends METRICWX")
        return packet
    weewx.units.to_std_system = to_std_system
    weewx.engine = types.ModuleType("weewx.engine")

    class StdService:
        def __init__(self, engine, _config):
            self.engine = engine

        def bind(self, _event, method):
            self.engine.bound = method
    weewx.engine.StdService = StdService
    for module in [weewx, weewx.units, weewx.engine]:
        sys.modules[module.__name__] = module
    spec = importlib.util.spec_from_file_location(
        "kiv_station", ROOT / "contrib/weewx/bin/user/kiv_station.py")
    extension = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(extension)
    return extension


EXTENSION = load_extension()
WHOLE = {"outTemp": 10.0, "outHumidity": 80.0, "dewpoint": 6.7, "windSpeed": 3.0, "windGust": None,
         "windDir": 359.9, "barometer": 1013.2, "rain": 0.2}


class Station:
    """The service with a clock that the test moves."""

    def __init__(self, name="station.csv", **options):
        self.folder = tempfile.TemporaryDirectory()
        self.path = pathlib.Path(self.folder.name) / name
        self.seconds = 0
        EXTENSION.time = types.SimpleNamespace(
            monotonic=lambda: self.seconds, time=lambda: NOON, localtime=self.local,
            strftime=__import__("time").strftime)
        self.bound = None
        EXTENSION.KivStation(self, {"KivStation": {"file": str(self.path), "max_age": "60",
                                                   **options}})

    @staticmethod
    def local(when):
        return __import__("time").gmtime(when)

    def send(self, packet, after=5):
        self.seconds += after
        self.bound(types.SimpleNamespace(
            packet={"usUnits": 17, "dateTime": NOON + self.seconds, **packet}))

    def cells(self):
        return {line.split(",")[0]: line.split(",")[1:]
                for line in self.path.read_text(encoding="utf-8").splitlines()}

    def close(self):
        self.folder.cleanup()


class WeewxTest(unittest.TestCase):
    def station(self, *names, **options):
        station = Station(*names, **options)
        self.addCleanup(station.close)
        return station

    def test_values_in_the_units_of_the_user(self):
        cases = {
            "metric": {"OutTemp": ["C", "10.0"], "WindSpeed": ["km/h", "10.8"],
                       "RainDayMax": ["mm", "0.4"], "Barometer": ["hPa", "1013.2"]},
            "metricwx": {"WindSpeed": ["m/s", "3.0"], "Gust": ["m/s", "7.0"]},
            "us": {"OutTemp": ["F", "50.0"], "DewPoint": ["F", "44.1"], "WindSpeed": ["mph", "6.7"],
                   "RainDayMax": ["in", "0.02"], "Barometer": ["inHg", "29.92"]},
        }
        for units, expected in cases.items():
            with self.subTest(units=units):
                station = self.station(units=units)
                station.send({**WHOLE, "windSpeed": 7.0})
                station.send(WHOLE)
                cells = station.cells()
                for name, cell in expected.items():
                    self.assertEqual(cells[name], cell, name)
                self.assertEqual(cells["WindDirection"], ["", "N"])
                self.assertEqual(oct(station.path.stat().st_mode & 0o777), "0o644")

    def test_partial_packets_and_instruments_that_die(self):
        station = self.station(units="metric")
        station.send({"outTemp": 10.0})
        # What has not come yet is not a calm night.
        self.assertEqual(station.cells()["WindSpeed"], ["km/h", ""])
        self.assertEqual(station.cells()["Gust"], ["km/h", ""])
        station.send(WHOLE)
        for _ in range(14):  # the wind sensor is dead, the thermometer is not
            station.send({"outTemp": 11.0, "outHumidity": 70.0, "dewpoint": 5.0})
        self.assertEqual(station.cells()["OutTemp"], ["C", "11.0"])
        self.assertEqual(station.cells()["WindSpeed"], ["km/h", ""])
        self.assertEqual(station.cells()["Gust"], ["km/h", ""])
        station.send({**WHOLE, "outTemp": None})
        self.assertEqual(station.cells()["OutTemp"], ["C", ""])
        self.assertEqual(station.cells()["WindSpeed"], ["km/h", "10.8"])

    def test_nothing_is_written_without_news(self):
        station = self.station()
        station.send({"inTemp": 20.0})
        self.assertFalse(station.path.exists())
        station.send(WHOLE)
        before = station.path.stat().st_mtime_ns
        station.send(WHOLE, after=0.2)  # a second at least between two files
        station.send({"consBatteryVoltage": 4.7})
        self.assertEqual(station.path.stat().st_mtime_ns, before)
        station.send({**WHOLE, "windSpeed": "?"})  # a driver's fault does not end weewx
        self.assertEqual(os.listdir(station.folder.name), ["station.csv"])

    def test_rain_of_the_day(self):
        station = self.station(units="metric")
        station.send(WHOLE)
        station.send(WHOLE, after=86_400)
        self.assertEqual(station.cells()["RainDayMax"], ["mm", "0.2"])
        station.send({**WHOLE, "dayRain": 4.0})
        self.assertEqual(station.cells()["RainDayMax"], ["mm", "4.0"])

    def test_settings_that_cannot_be_used_write_nothing(self):
        for options in [{"units": "furlongs"}, {"without": "winds"}]:
            with self.subTest(options=options), self.assertLogs(EXTENSION.log, "ERROR"):
                self.assertIsNone(self.station(**options).bound)

    def test_the_monitors_reader(self):
        cases = [("station.csv", {}, WHOLE, 0), ("station.htm", {}, WHOLE, 0),
                 ("station.csv", {"without": ["rain", "pressure"]}, WHOLE, 0),
                 ("station.htm", {}, {**WHOLE, "windSpeed": 0.0, "windDir": None}, 0),
                 ("station.htm", {}, {**WHOLE, "dewpoint": None}, 1),
                 ("station.csv", {}, {"outTemp": 3.0}, 1)]
        for name, options, packet, status in cases:
            with self.subTest(name=name, options=options, packet=packet), \
                    tempfile.TemporaryDirectory() as home:
                station = self.station(name, units="us", **options)
                station.send(packet)
                checked = subprocess.run(
                    [PROGRAMS / "skyholdctl", "check-station", station.path],
                    env={**os.environ, "XDG_CONFIG_HOME": home}, stdout=subprocess.PIPE, text=True,
                    check=False)
                self.assertEqual(checked.returncode, status, checked.stdout)


if __name__ == "__main__":
    unittest.main()
