# SPDX-License-Identifier: GPL-3.0-or-later
"""Sounds are heard: alarms of the whole program at a sound server of their own."""

import array
import filecmp
import math
import pathlib
import signal
import subprocess
import sys
import tempfile
import time
import unittest
import wave

from monitored import METHOD, Client, Monitored, run
from sound_server import RATE, SoundServer

HERE = pathlib.Path(__file__).resolve().parent
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


class SoundTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.server = cls.enterClassContext(SoundServer())
        cls.wav = make_wav(cls.server.folder / "a tone.wav")

    def monitored(self, *arguments, alarm=""):
        monitored = Monitored(arguments)
        monitored.run.variables["PULSE_SERVER"] = self.server.variables["PULSE_SERVER"]
        settings = monitored.folder / "user" / "config" / "Kiv" / "Kiv_Skyhold.ini"
        if alarm:
            with open(settings, "a", encoding="utf-8") as file:
                file.write(f'\n[Alarms]\nWSAlarm="{alarm}"\nWSAlarmStat=1\n')
        return monitored

    @staticmethod
    def wait_for_its_end(monitored):
        main = monitored.monitor.pid
        players = pathlib.Path(f"/proc/{main}/task/{main}/children")
        monitored.wait_until("the player's end", lambda: not players.read_text())

    def test_files_sound_once_or_repeated_until_stopped(self):
        ear = self.server.ear
        with self.monitored() as monitored:
            client = Client(monitored)
            for file, tone in [(self.wav, WAV_TONE), (MP3, MP3_TONE)]:
                with self.subTest(file=file.name):
                    begin = ear.now()
                    client.invoke("Kiv_AlarmStart", METHOD, [str(file)])
                    ear.wait("the tone", lambda b=begin, t=tone: ear.count(t, b))
                    ear.wait_for_silence(1)
                    self.assertEqual(ear.count(tone, begin), 1)
            begin = ear.now()
            client.invoke("Kiv_AlarmStart", METHOD, [f"{MP3}|repeat"])
            ear.wait("three times", lambda: ear.count(MP3_TONE, begin) >= 3)
            client.invoke("Kiv_AlarmStop", METHOD)
            ear.wait_for_silence(1)

            # It ends with its program, however that ends.
            begin = ear.now()
            client.invoke("Kiv_AlarmStart", METHOD, [f"{self.wav}|repeat"])
            ear.wait("the tone", lambda: ear.count(WAV_TONE, begin))
            monitored.monitor.send_signal(signal.SIGKILL)
            ear.wait_for_silence(1)

    def test_what_cannot_be_played_is_reported_once_and_holds_nobody(self):
        server = self.server
        rubbish = server.folder / "rubbish.mp3"
        rubbish.write_bytes(b"no sound at all\n" * 100)
        with self.monitored() as monitored:
            client = Client(monitored)

            def reported():
                return sum("rubbish.mp3" in line for line in monitored.errors)

            client.invoke("Kiv_AlarmStart", METHOD, [str(rubbish)])
            monitored.wait_until("a word", reported)
            client.invoke("Kiv_AlarmStart", METHOD, [str(rubbish)])
            self.wait_for_its_end(monitored)

            self.addCleanup(server.wake)
            server.hang()
            begin = time.monotonic()
            for _ in range(3):
                client.invoke("Kiv_AlarmStart", METHOD, [f"{self.wav}|repeat"])
                client.invoke("Kiv_AlarmStop", METHOD)
            self.assertLess(time.monotonic() - begin, 5)
            server.wake()
            begin = server.ear.now()
            client.invoke("Kiv_AlarmStart", METHOD, [str(self.wav)])
            server.ear.wait("the tone", lambda: server.ear.count(WAV_TONE, begin))
            self.assertEqual(reported(), 1)

    def test_monitor_sounds_while_its_station_is_gone(self):
        server = self.server
        begin = server.ear.now()
        with self.monitored("--start", alarm=f"{self.wav}|repeat") as monitored:
            monitored.next_cycle("a first cycle", lambda c: not c.codes)
            self.assertEqual(server.ear.tones(begin), [])
            monitored.break_station("delete")
            monitored.next_cycle("a missing file", lambda c: c.codes == "a42")
            server.ear.wait("the alarm", lambda: server.ear.count(WAV_TONE, begin) >= 2)
            monitored.break_station("none")
            monitored.next_cycle("the file's return", lambda c: not c.codes)
            server.ear.wait_for_silence(1)

    def test_without_a_sound_server_it_is_reported_once(self):
        monitored = self.monitored()
        monitored.run.variables["PULSE_SERVER"] = f"unix:{monitored.folder}/nobody"
        with monitored:
            client = Client(monitored)

            def reported():
                return sum("no audio device" in line for line in monitored.errors)

            for _ in range(2):
                client.invoke("Kiv_AlarmStart", METHOD, [str(self.wav)])
                self.wait_for_its_end(monitored)
                monitored.wait_until("a word", reported)
            self.assertEqual(reported(), 1)

    def test_sounds_that_come_with_the_program(self):
        sounds = run.PROGRAMS.parent / "share/kiv_skyhold/sounds"
        names = sorted(path.name for path in sounds.iterdir())
        self.assertEqual(len(names), 6)
        with tempfile.TemporaryDirectory() as folder:
            script = HERE.parents[1] / "sounds" / "make_sounds.py"
            subprocess.run([sys.executable, "-B", script, folder], check=True)
            self.assertEqual(filecmp.cmpfiles(sounds, folder, names, shallow=False)[0], names)


if __name__ == "__main__":
    unittest.main()
