# SPDX-License-Identifier: GPL-3.0-or-later
"""A running program that several rows use."""

from table import Monitored

SHARED = []


class Shared:
    """A running program that several rows use: `SHARED_ONE.get()` starts it when it does not run.
    It is ended after its module's last row, and after a row that failed."""

    def __init__(self, make):
        self.make = make
        self.running = None
        SHARED.append(self)

    def get(self):
        if self.running is None:
            self.running = self.make().__enter__()
        elif self.running not in Monitored.used:
            Monitored.used.append(self.running)
        return self.running

    def end(self):
        ending, self.running = self.running, None
        if ending:
            ending.__exit__(None, None, None)


def end_shared():
    for shared in SHARED:
        shared.end()
