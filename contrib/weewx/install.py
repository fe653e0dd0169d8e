# SPDX-License-Identifier: GPL-3.0-or-later
"""Installer of the extension: weectl extension install FOLDER"""

from io import StringIO

import configobj
from weecfg.extension import ExtensionInstaller

CONFIG = """
[KivStation]
    # The file that Kiv_Skyhold reads. With ".csv" in its name it is CSV, else an HTML page. weewx must
    # be allowed to make files in its folder, and the monitor's user to read them.
    file = /var/lib/weewx/station.csv

    # us, metric (km/h) or metricwx (m/s). Left out: as the reports.
    # units = metric

    # Seconds after which a value that does not come any more is missing.
    max_age = 180

    # What the station has not: temperature, humidity, wind, rain, pressure.
    # without = rain,

[StdReport]
    [[KivStation]]
        # For a station whose loop packets cannot be used: a file once in every archive interval.
        enable = false
        skin = KivStation
"""


def loader():
    return KivStationInstaller()


class KivStationInstaller(ExtensionInstaller):
    def __init__(self):
        super().__init__(
            version="1.0",
            name="KivStation",
            description="Writes the weather station's file of Kiv_Skyhold.",
            author="Kiv_Skyhold",
            author_email="",
            report_services="user.kiv_station.KivStation",
            config=configobj.ConfigObj(StringIO(CONFIG)),
            files=[("bin/user", ["bin/user/kiv_station.py"]),
                   ("skins/KivStation", ["skins/KivStation/skin.conf",
                                         "skins/KivStation/station.htm.tmpl"])])
