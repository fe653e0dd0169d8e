"""Faults of the sensor program."""

import signal

from table import Monitored, row


@row("sensor program", "ends between two cycles, and comes back", short=True)
def ends(seen):
    with Monitored(["--start"]) as monitored:
        monitored.next_cycle("a safe sky", lambda c: c.verdict == "SAFE")
        monitored.sensor.send_signal(signal.SIGKILL)
        with seen.untrusted(monitored):
            seen.cycle(monitored, "the loss", lambda c: c.codes == "a31" and c.verdict == "UNSAFE")
        monitored.start_sensor()
        seen.recovery(monitored, "its return", lambda c: c.verdict == "SAFE")
