#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Says when the roof may be open and when it must be closed. Every failure reads as unsafe."""
import time

import dbus

SAFE = {"DeviceIsRunning": True, "DataReady": True, "SecondsSinceGoodData": 3, "Safe": True}
bus = shown = None
while True:
    try:
        if not bus:
            bus = dbus.SessionBus(private=True)  # its end releases the instance
            bus.set_exit_on_disconnect(False)
            owner = bus.get_name_owner("Kiv_Skyhold.Nubilo")  # starts no program
            path = bus.call_blocking(owner, "/Kiv_Skyhold/Nubilo", "Kiv.Automation.ClassFactory",
                                     "CreateInstance", "", (), timeout=5)
        now = "SAFE"
        for name in [*SAFE, *SAFE]:  # twice, for a read cycle may run between two questions
            answer = bus.call_blocking(owner, path, "Kiv.Automation.Dispatch", "InvokeByName",
                                       "suav", (name, 3, []), timeout=5)[0]
            if answer != SAFE[name]:
                now = f"UNSAFE: {name} is {answer}"
    except Exception as failure:
        now = f"UNSAFE: {failure}"
        if bus:
            bus.close()
            bus = None
    if now != shown:
        print(now, flush=True)
        shown = now
    time.sleep(1)
