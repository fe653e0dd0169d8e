"""Sounds are heard: alarms and the whole program at a sound server of their own."""

import array
import filecmp
import math
import os
import pathlib
import queue
import signal
import subprocess
import sys
import tempfile
import threading
import time
import unittest
import wave

from monitored import Monitored
from sound_server import PATIENCE, RATE, SoundServer

HERE = pathlib.Path(__file__).resolve().parent
PROGRAMS = pathlib.Path(os.environ["SKYHOLD_PROGRAMS"])
MP3 = HERE / "tone.mp3"  # 0.2 s of MP3_TONE, 0.2 s of silence
MP3_TONE = 1000
WAV_TONE = 600


def make_wav(path, tone=WAV_TONE):
    """0.2 s of the tone and 0.2 s of silence."""
    samples = array.array("h", [round(12000 * math.sin(2 * math.pi * tone * i / RATE))
                                for i in range(RATE // 5)] + [0] * (RATE // 5))
    with wave.open(str(path), "wb") as file:
        file.setnchannels(1)
        file.setsampwidth(2)
        file.setframerate(RATE)
        file.writeframes(samples.tobytes())
    return path


class Driver:
    """The program sound_driver: alarms by lines of text."""

    def __init__(self, variables):
        self.program = subprocess.Popen([PROGRAMS / "sound_driver"], env=variables, text=True,
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.lines = queue.Queue()
        self.reader = threading.Thread(target=lambda: [self.lines.put(line.rstrip())
                                                       for line in self.program.stdout])
        self.reader.start()

    def __enter__(self):
        return self

    def __exit__(self, *_failure):
        self.program.stdin.close()
        self.program.wait(PATIENCE)
        self.reader.join()
        self.program.stdout.close()

    def next_line(self):
        return self.lines.get(timeout=PATIENCE)

    def ask(self, command):
        """Everything that is written up to the answer."""
        self.program.stdin.write(command + "\n")
        self.program.stdin.flush()
        return list(iter(self.next_line, "done"))


class SoundTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.server = cls.enterClassContext(SoundServer())

    def test_files_sound_once_or_repeated_until_stopped(self):
        ear = self.server.ear
        with Driver(self.server.variables) as driver:
            wav = make_wav(self.server.folder / "a tone.wav")
            for file, tone in [(wav, WAV_TONE), (MP3, MP3_TONE)]:
                with self.subTest(file=file.name):
                    begin = ear.now()
                    self.assertEqual(driver.ask(f"start {file}"), ["sounding"])
                    ear.wait("the tone", lambda b=begin, t=tone: ear.count(t, b))
                    self.assertEqual(driver.next_line(), "silent")  # by itself, at its end
                    ear.wait_for_silence(1)
                    self.assertEqual(ear.count(tone, begin), 1)

            for file, tone in [(wav, WAV_TONE), (MP3, MP3_TONE)]:
                with self.subTest(file=file.name, repeat=True):
                    begin = ear.now()
                    self.assertEqual(driver.ask(f"start {file}|repeat"), ["sounding"])
                    ear.wait("three times", lambda b=begin, t=tone: ear.count(t, b) >= 3)
                    self.assertEqual(driver.ask("stop"), ["silent"])
                    ear.wait_for_silence(1)

            # A sound takes the place of the one before.
            driver.ask(f"start {wav}|repeat")
            begin = ear.now()
            ear.wait("the first", lambda: ear.count(WAV_TONE, begin))
            driver.ask(f"start {MP3}|repeat")
            ear.wait("the second", lambda: ear.count(MP3_TONE, begin))
            begin = ear.now()
            ear.wait("it goes on", lambda: ear.count(MP3_TONE, begin) >= 2)
            self.assertEqual(ear.count(WAV_TONE, begin), 0)

            # It ends with its program, however that ends.
            driver.program.send_signal(signal.SIGKILL)
            ear.wait_for_silence(1)

    def test_what_cannot_be_played_is_told_once_and_holds_nobody(self):
        server = self.server
        with Driver(server.variables) as driver:
            wav = make_wav(server.folder / "tone.wav")
            rubbish = server.folder / "rubbish.mp3"
            rubbish.write_bytes(b"no sound at all\n" * 100)
            self.assertEqual(driver.ask(f"start {rubbish}"), ["sounding"])
            told = {driver.next_line(), driver.next_line()}
            self.assertIn("silent", told)
            self.assertRegex("\n".join(told), "no sound: .*rubbish.mp3: ")
            self.assertEqual(driver.ask(f"start {rubbish}"), ["sounding"])
            self.assertEqual(driver.next_line(), "silent")
            self.assertEqual(driver.ask(f"start {server.folder}/missing.wav"), [])

            self.addCleanup(server.wake)
            server.hang()
            begin = time.monotonic()
            for _ in range(3):
                self.assertEqual(driver.ask(f"start {wav}|repeat"), ["sounding"])
                self.assertEqual(driver.ask("stop"), ["silent"])
            self.assertLess(time.monotonic() - begin, 5)
            server.wake()
            begin = server.ear.now()
            driver.ask(f"start {wav}")
            server.ear.wait("the tone", lambda: server.ear.count(WAV_TONE, begin))

    def test_without_a_sound_server_it_is_told_once(self):
        with tempfile.TemporaryDirectory() as folder:
            variables = dict(os.environ, XDG_RUNTIME_DIR=folder, HOME=folder,
                             XDG_CACHE_HOME=folder, PULSE_SERVER=f"unix:{folder}/nobody")
            wav = make_wav(pathlib.Path(folder) / "tone.wav")
            with Driver(variables) as driver:
                self.assertEqual(driver.ask(f"start {wav}"), ["sounding"])
                self.assertEqual({driver.next_line(), driver.next_line()},
                                 {"silent", "no sound: no audio device"})
                self.assertEqual(driver.ask(f"start {wav}"), ["sounding"])
                self.assertEqual(driver.next_line(), "silent")

    def test_monitor_sounds_while_its_station_is_gone(self):
        server = self.server
        monitored = Monitored(["--start"])
        wav = make_wav(server.folder / "station.wav")
        settings = monitored.folder / "user" / "config" / "Kiv" / "Kiv_Skyhold.ini"
        with open(settings, "a", encoding="utf-8") as file:
            file.write(f'\n[Alarms]\nWSAlarm="{wav}|repeat"\nWSAlarmStat=1\n')
        monitored.run.variables["PULSE_SERVER"] = server.variables["PULSE_SERVER"]
        begin = server.ear.now()
        with monitored:
            monitored.next_cycle("a first cycle", lambda c: not c.codes)
            self.assertEqual(server.ear.tones(begin), [])
            monitored.break_station("delete")
            monitored.next_cycle("a missing file", lambda c: c.codes == "a42")
            server.ear.wait("the alarm", lambda: server.ear.count(WAV_TONE, begin) >= 2)
            monitored.break_station("none")
            monitored.next_cycle("the file's return", lambda c: not c.codes)
            server.ear.wait_for_silence(1)

    def test_sounds_that_come_with_the_program(self):
        with tempfile.TemporaryDirectory() as folder:
            with Driver(os.environ) as driver:
                sounds = pathlib.Path(driver.ask("sounds")[0])
            names = sorted(path.name for path in sounds.iterdir())
            self.assertEqual(len(names), 6)
            script = HERE.parents[1] / "sounds" / "make_sounds.py"
            subprocess.run([sys.executable, "-B", script, folder], check=True)
            self.assertEqual(filecmp.cmpfiles(sounds, folder, names, shallow=False)[0], names)
            for name in names:
                with self.subTest(name=name), wave.open(str(sounds / name)) as file:
                    samples = array.array("h", file.readframes(file.getnframes()))
                    self.assertTrue(0.5 < len(samples) / file.getframerate() < 3)
                    self.assertGreater(max(samples), 10000)
                    self.assertLess(max(map(abs, samples)), 32767 * 0.7)
                    for end in [samples[:3], samples[-3:]]:
                        self.assertLess(max(map(abs, end)), 500)


if __name__ == "__main__":
    unittest.main()
