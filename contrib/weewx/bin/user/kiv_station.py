# SPDX-License-Identifier: GPL-3.0-or-later
"""Writes the weather station's file of Kiv_Skyhold from every loop packet of weewx.

The file is a promise: what stands in it was measured lately. So

- it is written only when a packet has brought something, and replaced in one step;
- each value has an age of its own: one that has not come for `max_age` seconds, or that the station
  reports as None, becomes an empty cell, which the monitor takes for missing (and so for unsafe);
- an instrument that the station has not is named in `without`, and left out of the file.
"""

import collections
import logging
import os
import tempfile
import time

import weewx
import weewx.units
from weewx.engine import StdService

log = logging.getLogger(__name__)

VERSION = "1.0"

LABELS = ["N", "NNE", "NE", "ENE", "E", "ESE", "SE", "SSE",
          "S", "SSW", "SW", "WSW", "W", "WNW", "NW", "NNW"]

# What values are kept in is METRICWX: °C, m/s, mm, mbar. A form writes: unit text, factor, addend,
# decimals.
FORMS = {
    "us": {"temperature": ("F", 1.8, 32, 1), "speed": ("mph", 2.2369363, 0, 1),
           "rain": ("in", 1 / 25.4, 0, 2), "pressure": ("inHg", 1 / 33.8638866667, 0, 2)},
    "metric": {"temperature": ("C", 1, 0, 1), "speed": ("km/h", 3.6, 0, 1),
               "rain": ("mm", 1, 0, 1), "pressure": ("hPa", 1, 0, 1)},
    "metricwx": {"temperature": ("C", 1, 0, 1), "speed": ("m/s", 1, 0, 1),
                 "rain": ("mm", 1, 0, 1), "pressure": ("hPa", 1, 0, 1)},
}

OBSERVATIONS = ["outTemp", "outHumidity", "dewpoint", "windSpeed", "windGust", "windDir",
                "barometer", "rain", "dayRain"]
INSTRUMENTS = {"temperature", "humidity", "wind", "rain", "pressure"}
GUST_SECONDS = 600
SHORTEST_PAUSE = 1.0  # seconds between two files
COMPLAINT_PAUSE = 600


class Values:
    """The latest value of each observation while it is fresh, in METRICWX. `now` is any clock that
    only moves forward, in seconds."""

    def __init__(self, max_age, rain_today=0.0):
        self.max_age = max_age
        self.latest = {}  # name -> (value, when)
        self.winds = collections.deque()  # (speed, when) of the last ten minutes
        self.rain_today = rain_today
        self.rain_day = None

    def take(self, packet, now):
        """True when the packet has brought anything."""
        brought = False
        for name in OBSERVATIONS:
            if name not in packet:
                continue
            value = packet[name]
            brought = True
            if value is None:
                self.latest.pop(name, None)
            else:
                self.latest[name] = (float(value), now)
                if name in ("windSpeed", "windGust"):
                    self.winds.append((float(value), now))
        self.count_rain(packet)
        return brought

    def count_rain(self, packet):
        # A packet has the rain since the one before; the day begins at local midnight.
        day = time.localtime(packet["dateTime"])[:3]
        if self.rain_day not in (None, day):
            self.rain_today = 0.0
        self.rain_day = day
        if packet.get("rain") is not None:
            self.rain_today += float(packet["rain"])

    def value(self, name, now):
        value, when = self.latest.get(name, (None, 0))
        return value if value is not None and now - when <= self.max_age else None

    def gust(self, now):
        """The strongest wind of the last ten minutes, while the wind is measured."""
        while self.winds and now - self.winds[0][1] > GUST_SECONDS:
            self.winds.popleft()
        if self.value("windSpeed", now) is None or not self.winds:
            return None
        return max(speed for speed, _when in self.winds)

    def rain(self, now):
        of_day = self.value("dayRain", now)
        if of_day is not None:
            return of_day
        return None if self.value("rain", now) is None else self.rain_today


def rows(values, form, without, when, now):
    """The records of the file: name, unit and text."""
    def text(value, measure):
        unit, factor, addend, decimals = form[measure]
        return unit, "" if value is None else "%.*f" % (decimals, value * factor + addend)

    degrees = values.value("windDir", now)
    humidity = values.value("outHumidity", now)
    local = time.localtime(when)
    yield "Date", "", time.strftime("%d/%m/%Y", local)
    yield "Time", "", time.strftime("%H:%M:%S", local)
    if "temperature" not in without:
        yield "OutTemp", *text(values.value("outTemp", now), "temperature")
    if "wind" not in without:
        yield "WindSpeed", *text(values.value("windSpeed", now), "speed")
        yield "Gust", *text(values.gust(now), "speed")
        yield ("WindDirection", "",
               "" if degrees is None else LABELS[int(degrees / 22.5 + 0.5) % 16])
    if "rain" not in without:
        unit, rain = text(values.rain(now), "rain")
        yield "RainDayMin", unit, "0.0"
        yield "RainDayMax", unit, rain
    if "humidity" not in without:
        yield "OutHumidity", "%", "" if humidity is None else "%.0f" % humidity
        if "temperature" not in without:
            yield "DewPoint", *text(values.value("dewpoint", now), "temperature")
    if "pressure" not in without:
        yield "Barometer", *text(values.value("barometer", now), "pressure")


def file_text(records, csv):
    if csv:
        return "".join("%s,%s,%s\r\n" % record for record in records)
    cells = "".join("<tr><td>%s</td><td>%s</td><td>%s</td></tr>\n" % record for record in records)
    return ("<html><head><meta charset=\"utf-8\"><title>Station</title></head><body>\n<table>\n" +
            cells + "</table>\n</body></html>\n")


def replace_file(path, text):
    """A reader finds the old file or the new one, never a part."""
    folder = os.path.dirname(path) or "."
    handle, temporary = tempfile.mkstemp(prefix=os.path.basename(path) + ".", dir=folder)
    try:
        with os.fdopen(handle, "w", encoding="utf-8", newline="") as file:
            file.write(text)
        os.chmod(temporary, 0o644)  # the monitor belongs to another user
        os.replace(temporary, path)
    except BaseException:
        os.unlink(temporary)
        raise


class KivStation(StdService):
    def __init__(self, engine, config_dict):
        super().__init__(engine, config_dict)
        options = config_dict.get("KivStation", {})
        self.path = options.get("file", "/var/lib/weewx/station.csv")
        reports = config_dict.get("StdReport", {}).get("Defaults", {})
        units = str(options.get("units", reports.get("unit_system", "us"))).lower()
        if units not in FORMS:
            log.error("units is us, metric or metricwx, not %s: no file is written", units)
            return
        self.form = FORMS[units]
        without = options.get("without", [])
        self.without = {name.strip() for name in
                        ([without] if isinstance(without, str) else without)} - {""}
        if self.without - INSTRUMENTS:
            log.error("without takes %s: no file is written", ", ".join(sorted(INSTRUMENTS)))
            return
        self.values = Values(float(options.get("max_age", 180)), self.rain_since_midnight())
        self.written = float("-inf")
        self.complained = float("-inf")
        self.bind(weewx.NEW_LOOP_PACKET, self.new_loop_packet)
        log.info("writes %s", self.path)

    def rain_since_midnight(self):
        """What the archive has of today, in mm."""
        try:
            import weeutil.weeutil
            import weewx.xtypes
            now = time.time()
            span = weeutil.weeutil.TimeSpan(weeutil.weeutil.startOfDay(now), now)
            manager = self.engine.db_binder.get_manager("wx_binding")
            rain = weewx.xtypes.get_aggregate("rain", span, "sum", manager)
            return float(weewx.units.convert(rain, "mm")[0] or 0)
        except Exception as error:  # an empty or a foreign archive
            log.info("the rain of today begins at 0: %s", error)
            return 0.0

    def new_loop_packet(self, event):
        """Nothing that goes wrong here may end weewx."""
        now = time.monotonic()
        try:
            packet = {name: event.packet[name] for name in OBSERVATIONS if name in event.packet}
            packet["usUnits"] = event.packet["usUnits"]
            packet["dateTime"] = event.packet["dateTime"]
            packet = weewx.units.to_std_system(packet, weewx.METRICWX)
            if not self.values.take(packet, now) or now - self.written < SHORTEST_PAUSE:
                return
            records = rows(self.values, self.form, self.without, packet["dateTime"], now)
            replace_file(self.path, file_text(records, ".csv" in self.path))
            self.written = now
        except Exception as error:
            if now - self.complained > COMPLAINT_PAUSE:
                log.error("%s was not written: %s", self.path, error)
                self.complained = now
