# SPDX-License-Identifier: GPL-3.0-or-later
"""What the running program costs: its start, CPU of a read cycle with its display, memory, CPU while idle.

Run by `./dev bench` against the programs of build/release, without a display.
"""

import pathlib
import select
import statistics
import subprocess
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).resolve()
sys.path.insert(0, str(HERE.parents[1] / "tests" / "system"))
from monitored import Client, Monitored, run  # noqa: E402

BARE = HERE.parents[1] / "build" / "bench" / "bin" / "bare_window"
CYCLES = 60
IDLE_SECONDS = 20
PAINT_SECONDS = 20
END_SECONDS = 20


def cpu_ms(pid):
    """CPU time of all threads, in milliseconds."""
    tasks = pathlib.Path(f"/proc/{pid}/task").iterdir()
    return sum(int((task / "schedstat").read_text().split()[0]) for task in tasks) / 1e6


def pss_mb(pid):
    for line in pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines():
        if line.startswith("Pss:"):
            return int(line.split()[1]) / 1024
    raise RuntimeError("no Pss")


def rss_kb(pid):
    for line in pathlib.Path(f"/proc/{pid}/status").read_text().splitlines():
        if line.startswith("VmRSS:"):
            return int(line.split()[1])
    raise RuntimeError("no VmRSS")


def cpu_over(pid, seconds):
    begin = cpu_ms(pid)
    time.sleep(seconds)
    return (cpu_ms(pid) - begin) / seconds


def end(program):
    program.terminate()
    try:
        program.wait(END_SECONDS)
    except subprocess.TimeoutExpired:
        program.kill()
        program.wait()
        raise RuntimeError(f"{program.args[0]} did not end") from None


def until_painted(command, variables):
    begin = time.monotonic()
    program = subprocess.Popen([str(part) for part in command], env=variables, bufsize=0,
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    try:
        said = b""
        while b"painted" not in said:
            left = begin + PAINT_SECONDS - time.monotonic()
            if not select.select([program.stdout], [], [], max(left, 0))[0]:
                raise RuntimeError(f"{command[0]} painted nothing in {PAINT_SECONDS} s: {said}")
            part = program.stdout.read(4096)
            if not part:
                raise RuntimeError(f"{command[0]} ended before it painted: {said}")
            said += part
        return (time.monotonic() - begin) * 1000
    finally:
        end(program)
        program.stdout.close()


def start():
    # As on a desktop, the folder of what only lasts as long as the login lies in memory.
    with Monitored(window=True) as monitored, tempfile.TemporaryDirectory(dir="/dev/shm") as memory:
        variables = monitored.run.variables | {"XDG_RUNTIME_DIR": memory}
        end(monitored.monitor)  # one instance only
        ours, theirs = [], []
        for _ in range(15):
            theirs.append(until_painted([BARE], variables))
            ours.append(until_painted([run.PROGRAMS / "Kiv_Skyhold", "--report"], variables))
        ratio = statistics.median(ours) / statistics.median(theirs)
        print(f"start to first paint: {statistics.median(ours):.0f} ms "
              f"({min(ours):.0f} to {max(ours):.0f}), bare window "
              f"{statistics.median(theirs):.0f} ms ({min(theirs):.0f} to {max(theirs):.0f}), "
              f"ratio {ratio:.2f} (at most 1.5)")


def busy():
    with Monitored(["--start"], window=True) as monitored:
        pid = monitored.monitor.pid
        monitored.wait_until("the first cycles", lambda: len(monitored.cycles) >= 5)
        rounds = []
        for _ in range(5):
            count, begin = len(monitored.cycles), cpu_ms(pid)
            monitored.wait_until("more cycles", lambda: len(monitored.cycles) >= count + CYCLES / 5)
            rounds.append((cpu_ms(pid) - begin) / (len(monitored.cycles) - count))
        print(f"CPU of a cycle with display: median {statistics.median(rounds):.2f} ms, "
              f"{min(rounds):.2f} to {max(rounds):.2f} (at most 6)")
        print(f"memory after {len(monitored.cycles)} cycles: PSS {pss_mb(pid):.1f} MB (under 45)")


def idle():
    with Monitored(window=True, speed=1) as monitored:
        bare = subprocess.Popen([BARE], env=monitored.run.variables, stdout=subprocess.DEVNULL)
        try:
            time.sleep(2)  # both have painted by then
            ours = cpu_over(monitored.monitor.pid, IDLE_SECONDS)
            theirs = cpu_over(bare.pid, IDLE_SECONDS)
            print(f"idle CPU: {ours:.4f} ms/s, bare window {theirs:.4f} ms/s (at most 3 times)")
            print(f"memory while idle: PSS {pss_mb(monitored.monitor.pid):.1f} MB, "
                  f"bare window {pss_mb(bare.pid):.1f} MB")
        finally:
            bare.terminate()
            bare.wait()


def growth():
    """Resident memory from 300 cycles on, once caches are filled."""
    for what, cycles, images, speed in [("300 sets of six images", 300, True, 100),
                                        ("8,640 cycles", 8640, False, 400)]:
        with Monitored(["--start"], weather="night", speed=speed, images=images) as monitored:
            monitored.wait_until("the first cycles", lambda: len(monitored.cycles) >= 300, 300)
            before, count = rss_kb(monitored.monitor.pid), len(monitored.cycles)
            monitored.wait_until(what, lambda: len(monitored.cycles) >= count + cycles, 900)
            print(f"memory growth over {what}: {rss_kb(monitored.monitor.pid) - before} kB "
                  "(at most 512)")


def reads():
    """A client that reads `Safe` all the time while cycles with images run every 5 s."""
    with Monitored(["--start"], speed=1, read_seconds=5, images=True) as monitored:
        monitored.wait_until("a first cycle", lambda: monitored.cycles)
        client = Client(monitored)
        count, took = len(monitored.cycles), []
        while len(monitored.cycles) < count + 6:
            begin = time.monotonic()
            client.invoke("Safe")
            took.append((time.monotonic() - begin) * 1000)
        took.sort()
        print(f"reads during cycles with images: {len(took)} reads, median "
              f"{statistics.median(took):.2f} ms, 99th percentile "
              f"{took[len(took) * 99 // 100]:.2f} ms (at most 1), longest {took[-1]:.1f} ms")


if __name__ == "__main__":
    start()
    busy()
    idle()
    reads()
    growth()
