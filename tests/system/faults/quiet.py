"""What the rows of both sources share: a session in hours of safe weather."""

import table


def quiet_evening(arguments=("--start",), **more):
    """A sky that stays safe, and no delay that could hide a wrong verdict."""
    more = {"weather": "night", "begin": "2026-11-16T18:30:00", "safe_delay": 0} | more
    return table.Monitored(list(arguments), **more)


def is_safe(cycle):
    return cycle.verdict == "SAFE" and not cycle.codes


def more_cycles(seen, monitored, number, seconds=30):
    wanted = len(monitored.cycles) + number
    seen.expect(f"{number} more cycles", lambda: len(monitored.cycles) >= wanted, seconds)
