# SPDX-License-Identifier: GPL-3.0-or-later
"""A sound server without a device, and an ear at what it would play, for tests."""

import array
import math
import os
import pathlib
import signal
import subprocess
import tempfile
import threading
import time

RATE = 22050
WINDOW = RATE // 40  # samples: 25 ms
LOUD = 500           # root mean square
PATIENCE = 30        # seconds; a machine may be busy


class SoundServer:
    """A PulseAudio of its own with a sink that goes nowhere; `variables` lead a program to it.
    Without an `ear` nobody listens, which costs nothing."""

    def __init__(self, ear=True):
        self.ear = None
        self.listened = ear
        self.temporary = tempfile.TemporaryDirectory(prefix="kiv_skyhold-sound-")
        self.folder = pathlib.Path(self.temporary.name)
        runtime = self.folder / "runtime"
        runtime.mkdir(mode=0o700)
        self.variables = dict(os.environ, XDG_RUNTIME_DIR=str(runtime), HOME=str(self.folder),
                              XDG_CONFIG_HOME=str(self.folder), XDG_CACHE_HOME=str(self.folder),
                              PULSE_RUNTIME_PATH=str(runtime / "pulse"),
                              PULSE_SERVER=f"unix:{runtime}/pulse/native")

    def __enter__(self):
        with open(self.folder / "log", "w", encoding="utf-8") as log:
            # It serves the bus of nobody.
            variables = dict(self.variables, DBUS_SESSION_BUS_ADDRESS="disabled:",
                             DBUS_SYSTEM_BUS_ADDRESS="disabled:")
            del variables["PULSE_SERVER"]
            self.server = subprocess.Popen(
                ["pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no",
                 "--disable-shm=yes", "--realtime=no", "--high-priority=no", "-L",
                 "module-null-sink", "-L", "module-native-protocol-unix"],
                env=variables, stdout=log, stderr=log)
        end = time.monotonic() + PATIENCE
        while subprocess.run(["pactl", "info"], env=self.variables, check=False,
                             stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode != 0:
            if self.server.poll() is not None or time.monotonic() > end:
                raise RuntimeError("the sound server did not start:\n" +
                                   (self.folder / "log").read_text(encoding="utf-8"))
            time.sleep(0.05)
        if self.listened:
            self.ear = Ear(self.variables)
        return self

    def __exit__(self, *_failure):
        if self.ear:
            self.ear.close()
        self.wake()
        self.server.terminate()
        self.server.wait()
        self.temporary.cleanup()

    def hang(self):
        self.server.send_signal(signal.SIGSTOP)

    def wake(self):
        self.server.send_signal(signal.SIGCONT)


class Ear:
    """Listens to the sink all the time and notes for every window which tone is loudest in it."""

    def __init__(self, variables):
        self.changed = threading.Condition()
        self.windows = []  # frequency in Hz to the nearest 100, 0 for silence
        self.recorder = subprocess.Popen(
            ["parec", "--device=null.monitor", "--latency-msec=50", "--format=s16le",
             f"--rate={RATE}", "--channels=1"],
            env=variables, stdout=subprocess.PIPE)
        self.thread = threading.Thread(target=self.listen, daemon=True)
        self.thread.start()
        self.wait("the first silence", lambda: self.windows)

    def listen(self):
        while True:
            block = self.recorder.stdout.read(WINDOW * 2)
            if len(block) < WINDOW * 2:
                return
            with self.changed:
                self.windows.append(frequency(array.array("h", block)))
                self.changed.notify_all()

    def wait(self, what, holds):
        with self.changed:
            if not self.changed.wait_for(holds, PATIENCE):
                raise AssertionError(f"not heard: {what}; the last windows: {self.windows[-60:]}")

    def now(self):
        with self.changed:
            return len(self.windows)

    def tones(self, begin):
        """The tones since window `begin`, each with its length in windows."""
        found = []
        for heard in self.windows[begin:]:
            if found and found[-1][0] == heard:
                found[-1][1] += 1
            else:
                found.append([heard, 1])
        return [(heard, length) for heard, length in found if heard]

    def count(self, tone, begin):
        """How often the tone began since window `begin`."""
        return sum(1 for heard, length in self.tones(begin) if heard == tone and length > 1)

    def wait_for_silence(self, seconds):
        """Waits until nothing has been heard for so long, by the recording's own time."""
        windows = round(seconds * RATE / WINDOW)
        begin = self.now()

        def silent():
            latest = self.windows[begin:][-windows:]
            return len(latest) == windows and not any(latest)

        self.wait("silence", silent)

    def close(self):
        self.recorder.kill()
        self.recorder.wait()
        self.thread.join()
        self.recorder.stdout.close()


def frequency(samples):
    """The frequency of a tone by its zero crossings, to the nearest 100 Hz; 0 for silence."""
    if math.sqrt(sum(sample * sample for sample in samples) / len(samples)) < LOUD:
        return 0
    crossings = sum((a < 0) != (b < 0) for a, b in zip(samples, samples[1:]))
    return round(crossings / 2 / (len(samples) / RATE) / 100) * 100
