# SPDX-License-Identifier: GPL-3.0-or-later
"""skyhold-sensor with an INDI server, a broker, a scripted Alpaca device, files and commands, each
of which fails and comes back; and the whole chain with the monitor."""

import os
import signal
import subprocess
import time
import unittest

import dbus

from monitored import Monitored, run
from sensor_parts import Alpaca, Broker, Indi, Place, Sensor, wait_until

INDI = """
[source obs]
kind = indi
server = localhost:{port}
period = 1
retry = 0.5
[temperature]
value = obs: Weather Simulator.WEATHER_PARAMETERS.WEATHER_TEMPERATURE
max-age = 4
[rain]
value = obs: Weather Simulator.WEATHER_PARAMETERS.WEATHER_RAIN_HOUR
level-from = obs: Weather Simulator.WEATHER_STATUS.WEATHER_RAIN_HOUR
levels = Ok 1, Busy 2, Alert 3
max-age = 4
"""


class RealSensor(Monitored):
    """The monitor with skyhold-sensor at an INDI server of `place`, instead of the simulator."""

    def __init__(self, place, settings, *drivers):
        self.place = place
        self.settings = settings
        self.drivers = drivers
        super().__init__(["--start"], speed=10)

    def start_sensor(self, *_arguments):
        self.indi = Indi(self.place, *self.drivers)
        file = self.folder / "sensor.conf"
        file.write_text(self.settings.format(port=self.indi.port), encoding="utf-8")
        self.sensor = self.run.start(run.PROGRAMS / "skyhold-sensor", "--settings", file,
                                     stderr=subprocess.DEVNULL)
        self.run.wait_for_name(run.SENSOR_NAME, self.sensor)


class IndiTest(unittest.TestCase):
    def test_every_way_in_which_a_driver_or_the_server_fails(self):
        with Place() as place:
            indi = Indi(place)
            sensor = Sensor(place, INDI.format(port=indi.port) + """
[brightness]
value = obs: SQM Simulator.SKY_QUALITY.SKY_BRIGHTNESS
level2 = below 17
level3 = below 8
max-age = 600
""")
            sensor.wait_ready()
            sensor.wait_for("AmbientTemperature", 15)
            self.assertEqual([int(sensor.invoke(f"Condition_{name}"))
                              for name in ["Cloud", "Rain", "Brightness"]], [0, 1, 2])

            indi.weather(temperature=21, rain=30)
            sensor.wait_for("AmbientTemperature", 21)
            sensor.wait_for("Condition_Rain", 3)

            # A driver that is killed is started again by the server, disconnected and with the
            # default period.
            os.kill(indi.driver("simulator_weather"), signal.SIGKILL)
            sensor.wait_for("AmbientTemperature", 15)
            sensor.wait_ready()

            # Another client disconnects the device; it is asked to connect again.
            old = sensor.invoke("LastReading")
            self.assertTrue(indi.set("CONNECTION.DISCONNECT=On"))
            sensor.wait_ready()
            wait_until("a new reading", lambda: sensor.invoke("LastReading") != old)

            # A driver that hangs says nothing; others may ask for its definitions meanwhile, which
            # are not news.
            hung = indi.driver("simulator_weather")
            os.kill(hung, signal.SIGSTOP)
            for _ in range(3):
                subprocess.run(["indi_getprop", "-p", str(indi.port), "-t", "1",
                                "Weather Simulator.WEATHER_PARAMETERS.*"], check=False,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            sensor.wait_ready(False)
            with self.assertRaises(dbus.DBusException):
                sensor.invoke("Condition_Rain")
            os.kill(hung, signal.SIGCONT)
            sensor.wait_ready()

            indi.kill()
            sensor.wait_ready(False)
            indi.start()
            sensor.wait_ready()

    def test_monitor_says_unsafe_when_the_device_dies(self):
        with Place() as place, RealSensor(place, INDI) as monitored:
            monitored.next_cycle("a safe sky", lambda c: c.verdict == "SAFE", 40)
            hung = monitored.indi.driver("simulator_weather")
            os.kill(hung, signal.SIGSTOP)
            failed = monitored.next_cycle("the hung driver", lambda c: c.verdict == "UNSAFE")
            self.assertEqual(failed.codes, "a31", failed.line)
            os.kill(hung, signal.SIGCONT)
            monitored.next_cycle("the driver's return", lambda c: c.verdict == "SAFE", 40)
            monitored.indi.kill()
            monitored.next_cycle("the server's loss", lambda c: c.codes == "a31")

    def test_a_dome_follows_the_verdict_and_closes_without_a_monitor(self):
        dome = INDI + """
[sensor]
role = MASTER
[switch]
kind = indi
source = obs
open = Dome Simulator.DOME_SHUTTER.SHUTTER_OPEN
close = Dome Simulator.DOME_SHUTTER.SHUTTER_CLOSE
close-after = 3
"""
        with Place() as place, RealSensor(place, dome, "indi_simulator_dome") as monitored:
            def shutter(state):
                address = f"Dome Simulator.DOME_SHUTTER.SHUTTER_{state}"
                wait_until(state, lambda: monitored.indi.get(address) == "On", 40)

            monitored.next_cycle("a safe sky", lambda c: c.verdict == "SAFE", 40)
            shutter("OPEN")
            monitored.indi.weather(rain=30)
            rain = monitored.next_cycle("rain", lambda c: c.verdict == "UNSAFE")
            self.assertIn("Rain", rain.cause)
            shutter("CLOSE")
            monitored.indi.weather(rain=0)
            monitored.next_cycle("a safe sky", lambda c: c.verdict == "SAFE", 40)
            shutter("OPEN")
            monitored.monitor.kill()
            shutter("CLOSE")


class MqttTest(unittest.TestCase):
    SETTINGS = """
[source hub]
kind = mqtt
broker = localhost:{port}
user = observer
password = {password}
retry = 0.3
{more}
[rain]
value = hub: garden/sensor#rain.rate
level2 = above 0
level3 = above 1
max-age = 3
[brightness]
value = hub: garden/light
level3 = above 100
max-age = 3
"""

    def settings(self, broker, password="secret", more=""):
        return self.SETTINGS.format(port=broker.port, password=password, more=more)

    def test_messages_that_are_news_and_those_that_are_not(self):
        with Place() as place:
            broker = Broker(place, password="secret")
            # What the broker kept is as old as nobody knows.
            broker.publish("garden/sensor", '{"rain": {"rate": 0}}', "-r")
            broker.publish("garden/light", "1", "-r")
            sensor = Sensor(place, self.settings(broker))

            def publish(rain="0.5", light="3"):
                broker.publish("garden/sensor", f'{{"rain": {{"rate": {rain}}}, "id": 7}}')
                broker.publish("garden/light", light)

            def comes(member, value):
                def holds():
                    publish()
                    try:
                        return float(sensor.invoke(member)) == value
                    except dbus.DBusException:
                        return False
                wait_until(f"{member} {value}", holds)

            self.assertFalse(sensor.ready())
            comes("Condition_Rain", 2)
            sensor.wait_ready()
            self.assertEqual(int(sensor.invoke("Condition_Brightness")), 1)
            for rubbish in ["null", '"wet"', "1e999", "{"]:
                with self.subTest(rain=rubbish):
                    publish(rain=rubbish)
                    sensor.wait_ready(False, 2)  # at once, not by age
                    comes("Condition_Rain", 2)
            sensor.wait_ready(False)  # by age
            comes("Condition_Rain", 2)
            broker.kill()
            sensor.wait_ready(False, 2)
            broker.start()
            comes("Condition_Rain", 2)
            sensor.wait_ready()

    def test_wrong_password_and_untrusted_certificate(self):
        with Place() as place:
            names = ["-subj", "/CN=localhost", "-addext", "subjectAltName=DNS:localhost"]
            files = [place.folder / "broker.pem", place.folder / "broker.key"]
            subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days",
                            "2", "-out", files[0], "-keyout", files[1], *names], check=True,
                           stderr=subprocess.DEVNULL)
            broker = Broker(place, password="secret", certificate=files)
            trusted = f"tls = yes\nca = {files[0]}"
            cases = [("wrong", trusted, "refuse"), ("secret", "tls = yes", "no broker"),
                     ("secret", "", "no broker")]
            for password, more, why in cases:
                with self.subTest(password=password, more=more):
                    file = place.folder / "case.conf"
                    file.write_text(self.settings(broker, password, more), encoding="utf-8")
                    done = subprocess.run([run.PROGRAMS / "skyhold-sensor", "--check",
                                           "--seconds", "1.5", "--settings", file],
                                          stdout=subprocess.PIPE, text=True, check=False,
                                          stderr=subprocess.DEVNULL)
                    self.assertEqual(done.returncode, 1)
                    self.assertIn(why, done.stdout)
            sensor = Sensor(place, self.settings(broker, more=trusted))

            def ready():
                broker.publish("garden/sensor", '{"rain": {"rate": 0}}')
                broker.publish("garden/light", "1")
                return sensor.ready()
            wait_until("values over TLS", ready)


class AlpacaTest(unittest.TestCase):
    SETTINGS = """
[source weather]
kind = alpaca
url = {url}
device = observingconditions/0
every = 0.2
timeout = 0.5
[source monitor]
kind = alpaca
url = {url}
device = safetymonitor/0
every = 0.2
timeout = 0.5
[cloud]
value = weather: SkyTemperature
less-air = yes
level2 = above -18
level3 = above -10
max-age = 3
[temperature]
value = weather: Temperature
max-age = 3
[rain]
level-from = monitor: IsSafe
levels = true 1, false 3
max-age = 3
"""

    def test_values_their_ages_and_every_bad_answer(self):
        device = Alpaca()
        device.values = {"skytemperature": -15.0, "temperature": 10.0, "issafe": True}
        device.ages = {"skytemperature": 0.5}  # the other has no age of its own
        with Place() as place:
            sensor = Sensor(place, self.SETTINGS.format(url=device.url))
            sensor.wait_ready()
            self.assertAlmostEqual(float(sensor.invoke("SkyTemperature")), -15)
            self.assertEqual([int(sensor.invoke(f"Condition_{name}"))
                              for name in ["Cloud", "Rain", "Brightness"]], [1, 1, 0])
            device.values["issafe"] = False
            sensor.wait_for("Condition_Rain", 3)
            device.values["temperature"] = 1.0  # the sky is 16 below the air: cloudy
            sensor.wait_for("Condition_Cloud", 2)

            for fault in ["error", "hang", "html", "status", "huge"]:
                with self.subTest(fault=fault):
                    device.released.clear()
                    device.fault = fault
                    sensor.wait_ready(False)
                    device.fault = None
                    device.released.set()
                    sensor.wait_ready()
            device.ages["skytemperature"] = 20
            sensor.wait_ready(False)
            device.ages["skytemperature"] = 0
            sensor.wait_ready()
            device.values["skytemperature"] = None
            sensor.wait_ready(False)
            device.values["skytemperature"] = -20
            sensor.wait_ready()
            device.close()
            sensor.wait_ready(False)


    def test_a_switch_is_set_and_read_back(self):
        device = Alpaca()
        device.values = {"issafe": True, "getswitch": False}
        with Place() as place:
            sensor = Sensor(place, f"""
[sensor]
role = MASTER
[source safe]
kind = alpaca
url = {device.url}
device = safetymonitor/0
every = 0.2
[rain]
level-from = safe: IsSafe
levels = true 1, false 3
[switch]
kind = alpaca
url = {device.url}
id = 3
every = 0.2
timeout = 0.5
""")
            sensor.wait_ready()
            sensor.wait_for("SwitchStatus", 2)
            sensor.take_switch()
            sensor.set_verdict(False)
            sensor.set_switch(1)
            sensor.wait_for("SwitchStatus", 1)
            sets = [form for member, form in device.puts if member == "setswitch"]
            self.assertEqual(len(sets), 1)
            self.assertIn("Id=3&State=true", sets[0])
            device.fault = "html"
            sensor.wait_for("SwitchStatus", 0)  # what is not known is neither
            device.fault = None
            sensor.wait_for("SwitchStatus", 1)
            sensor.set_switch(2)
            sensor.wait_for("SwitchStatus", 2)
            device.close()
            sensor.wait_for("SwitchStatus", 0)


class TextTest(unittest.TestCase):
    def test_files_and_commands(self):
        with Place() as place:
            values = place.folder / "values"
            script = place.folder / "read-sensor"
            answer = place.folder / "answer"
            script.write_text(f"#!/bin/sh\nexec cat {answer}\n", encoding="utf-8")
            script.chmod(0o755)

            def write(path, text):
                part = path.with_suffix(".part")
                part.write_text(text, encoding="utf-8")
                part.rename(path)

            write(values, "rain=0\n")
            os.utime(values, (time.time() - 3600, time.time() - 3600))  # left from an hour ago
            write(answer, '{"sky": {"temperature": -20.5}}')
            sensor = Sensor(place, f"""
[source file]
kind = file
path = {values}
every = 0.1
[source script]
kind = command
command = {script} --now
every = 0.2
timeout = 2
[rain]
value = file: rain
level2 = above 0
level3 = above 1
max-age = 2
[cloud]
value = script: sky.temperature
level2 = above -13
level3 = above -5
max-age = 2
""")
            sensor.wait_for("SkyTemperature", -20.5)
            self.assertFalse(sensor.ready())

            def rains(text, ready=True):
                write(values, text)
                sensor.wait_ready(ready, 5)

            rains("rain=0.4\nother=1\n")
            self.assertEqual(int(sensor.invoke("Condition_Rain")), 2)
            for text in ["rain=\n", "rain=0,4\n", "rain=nan\n", "snow=0\n", "rain=0"]:
                with self.subTest(text=text):
                    rains(text, False)
                    rains("rain = 0.4\n")
            values.unlink()
            sensor.wait_ready(False, 1.5)
            # From here on something keeps the file fresh.
            for program in ["exit 3", "sleep 60", "yes 0123456789 | head -c 200000", "echo nothing"]:
                with self.subTest(program=program):
                    script.write_text(f"#!/bin/sh\n{program}\n", encoding="utf-8")
                    wait_until("no sky", lambda: self.fails(sensor, "SkyTemperature"))
                    script.write_text(f"#!/bin/sh\nexec cat {answer}\n", encoding="utf-8")
                    sensor.wait_for("SkyTemperature", -20.5)

    def fails(self, sensor, member):
        try:
            sensor.invoke(member)
        except dbus.DBusException:
            return True
        return False

    def test_settings_that_cannot_be_used_serve_nothing(self):
        with Place() as place:
            file = place.folder / "bad.conf"
            file.write_text("[source a]\nkind = file\npath = /x\n[rain]\nvalue = a: rain\n"
                            "levle3 = above 1\n", encoding="utf-8")
            done = subprocess.run([run.PROGRAMS / "skyhold-sensor", "--settings", file],
                                  stderr=subprocess.PIPE, text=True, check=False)
            self.assertEqual(done.returncode, 2)
            self.assertIn("line 6", done.stderr)


class RoofTest(unittest.TestCase):
    def test_a_roof_does_not_outlive_the_monitor(self):
        with Place() as place:
            values = place.folder / "values"
            roof = place.folder / "roof"
            moves = place.folder / "moves"
            roof.write_text("closed\n", encoding="utf-8")
            values.write_text("rain=0\n", encoding="utf-8")
            mover = place.folder / "move"
            mover.write_text(f"#!/bin/sh\necho $1 >>{moves}\necho $1 >{roof}\n", encoding="utf-8")
            mover.chmod(0o755)
            sensor = Sensor(place, f"""
[sensor]
role = MASTER
[source file]
kind = file
path = {values}
[rain]
value = file: rain
level3 = above 0
max-age = 600
[switch]
kind = command
open = {mover} open
close = {mover} closed
state = cat {roof}
every = 0.2
close-after = 2
""")
            sensor.wait_ready()
            sensor.wait_for("SwitchStatus", 2)
            self.assertEqual(str(sensor.invoke("Kiv_DeviceRole")), "MASTER")
            sensor.take_switch()
            sensor.set_switch(1)  # before any verdict
            sensor.set_verdict(True)
            sensor.set_switch(1)
            self.assertFalse(moves.exists())
            sensor.set_verdict(False)
            sensor.set_switch(1)
            sensor.wait_for("SwitchStatus", 1)
            for _ in range(8):  # while it hears of the monitor it stays open
                time.sleep(0.4)
                sensor.set_verdict(False)
            self.assertEqual(moves.read_text(), "open\n")
            # Closed by hand: it is not opened against that.
            roof.write_text("closed\n", encoding="utf-8")
            sensor.wait_for("SwitchStatus", 2)
            sensor.set_switch(1)
            self.assertEqual(moves.read_text(), "open\n")
            sensor.set_switch(2)
            wait_until("the closing", lambda: moves.read_text() == "open\nclosed\n")
            sensor.set_switch(1)
            wait_until("the opening", lambda: moves.read_text() == "open\nclosed\nopen\n")
            # And now silence.
            wait_until("the closing", lambda: moves.read_text() == "open\nclosed\nopen\nclosed\n")
            sensor.set_switch(1)
            sensor.wait_for("SwitchStatus", 1)
            sensor.program.terminate()
            sensor.program.wait(10)
            self.assertEqual(roof.read_text(), "closed\n")


if __name__ == "__main__":
    unittest.main()
