# SPDX-License-Identifier: GPL-3.0-or-later
"""What the gateway costs: requests a second beside the bare library, listeners, memory, CPU while
idle with one listener.

Run by `./dev bench` against the programs of build/release.
"""

import pathlib
import re
import statistics
import subprocess
import sys
import time

HERE = pathlib.Path(__file__).resolve()
sys.path.insert(0, str(HERE.parents[1] / "tests" / "system"))
from gateway_parts import Events, Gateway  # noqa: E402
from monitored import Monitored  # noqa: E402
from program import cpu_ms, rss_kb  # noqa: E402

BARE = HERE.parents[1] / "build" / "bench" / "bin" / "bare_http"
IDLE_SECONDS = 20
ROUNDS = 7


def per_second(url, clients):
    done = subprocess.run(["ab", "-q", "-k", "-c", str(clients), "-n", str(4000 * clients ** 0.5)
                           .split(".", maxsplit=1)[0], url], stdout=subprocess.PIPE, text=True,
                          check=True).stdout
    if not re.search(r"Failed requests:\s+0\b", done.replace("Length:", "")):
        lengths = re.search(r"\(Connect: 0, Receive: 0, Length: \d+, Exceptions: 0\)", done)
        if not lengths:  # the transaction number grows
            raise AssertionError(done)
    return float(re.search(r"Requests per second:\s+([\d.]+)", done).group(1))


def requests(gateway):
    bare = subprocess.Popen([BARE], stdout=subprocess.PIPE, text=True)
    try:
        peer = f"http://127.0.0.1:{bare.stdout.readline().strip()}/"
        ours = gateway.url + "/api/v1/safetymonitor/0/issafe"
        for clients in [1, 16]:
            ratios, rates = [], []
            for _ in range(ROUNDS):  # one after the other, so that both see the same machine
                theirs, mine = per_second(peer, clients), per_second(ours, clients)
                ratios.append(mine / theirs)
                rates.append(mine)
            print(f"issafe with {clients} clients: {statistics.median(rates):.0f} a second, "
                  f"{statistics.median(ratios):.2f} of the bare library "
                  f"({min(ratios):.2f} to {max(ratios):.2f}; at least 0.8)")
    finally:
        bare.terminate()
        bare.wait()
        bare.stdout.close()


def listeners(monitored, gateway):
    all_of_them = [Events(gateway) for _ in range(200)]
    monitored.wait_until("an event for each", lambda: all(one.seen for one in all_of_them), 30)
    count = len(monitored.cycles)
    before = [len(one.seen) for one in all_of_them]
    monitored.wait_until("cycles", lambda: len(monitored.cycles) >= count + 3, 30)
    time.sleep(1)
    heard = sum(len(one.seen) > seen for one, seen in zip(all_of_them, before))
    print(f"200 listeners: {heard} heard the next cycles; "
          f"memory {rss_kb(gateway.program.pid) / 1024:.1f} MB (under 30)")
    for one in all_of_them:
        one.close()


def idle(gateway):
    listener = Events(gateway)
    time.sleep(2)
    begin = cpu_ms(gateway.program.pid)
    time.sleep(IDLE_SECONDS)
    print(f"CPU with one listener: {(cpu_ms(gateway.program.pid) - begin) / IDLE_SECONDS:.2f} ms "
          "a second (at most 1)")
    listener.close()


if __name__ == "__main__":
    with Monitored(["--start"], speed=1, read_seconds=5) as monitored, \
            Gateway(monitored) as gateway:
        monitored.wait_until("a cycle", lambda: monitored.cycles, 30)
        idle(gateway)
        listeners(monitored, gateway)
        requests(gateway)
