# SPDX-License-Identifier: GPL-3.0-or-later
"""skyhold-gateway with the real monitor and a real MQTT broker: whatever dies, nothing at the broker
goes on saying safe. Hooks and the fleet at the same broker."""

import contextlib
import datetime
import json
import pathlib
import signal
import subprocess
import tempfile
import threading
import time
import unittest

from gateway_parts import Gateway
from monitored import Monitored
import run
from sensor_parts import Broker, wait_until

PREFIX = "skyhold/hill"


class Place(Monitored):
    """What a broker needs of a place."""

    def start_quietly(self, *command):
        return self.run.start(*command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


class Subscriber:
    """All messages that come to a subscriber, and the latest of each topic."""

    def __init__(self, broker):
        self.latest = {}
        self.seen = []  # (time, topic, payload)
        self.program = subprocess.Popen(
            ["mosquitto_sub", "-h", "localhost", "-p", str(broker.port), "-t", "#", "-q", "1",
             "-F", "%t\t%p", *broker.options], stdout=subprocess.PIPE, text=True)
        threading.Thread(target=self.read, daemon=True).start()

    def read(self):
        for line in self.program.stdout:
            topic, _, payload = line.rstrip("\n").partition("\t")
            self.latest[topic] = payload
            self.seen.append((time.monotonic(), topic, payload))

    def __enter__(self):
        return self

    def __exit__(self, *_failure):
        self.program.kill()
        self.program.wait()
        self.program.stdout.close()

    def wait_for(self, topic, payload, seconds=20):
        wait_until(f"{topic} {payload}, not {self.latest.get(topic)}",
                   lambda: self.latest.get(topic) == payload, seconds)


def retained(broker, topic=f"{PREFIX}/safe"):
    """What a subscriber gets that comes now; None: nothing."""
    done = subprocess.run(["mosquitto_sub", "-h", "localhost", "-p", str(broker.port), "-t", topic,
                           "-C", "1", "-W", "1", *broker.options], stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, text=True, check=False)
    return done.stdout.strip() or None


def mqtt(broker, *more):
    return ["--mqtt", f"localhost:{broker.port}", "--mqtt-prefix", PREFIX, *more]


class PublishesTheState(unittest.TestCase):
    def test_nothing_stays_safe_behind_what_dies(self):
        with Place(["--start"]) as place, contextlib.ExitStack() as stack:
            broker = Broker(place)
            gateway = stack.enter_context(Gateway(place, *mqtt(broker)))
            heard = stack.enter_context(Subscriber(broker))
            safe = f"{PREFIX}/safe"
            heard.wait_for(safe, "ON")
            heard.wait_for(f"{PREFIX}/availability", "online")
            self.assertTrue(json.loads(heard.latest[f"{PREFIX}/state"])["safe"])
            wait_until("a temperature", lambda: heard.latest.get(
                f"{PREFIX}/readings/temperature", "None") != "None")
            place.wait_until("an entity for it", lambda: (
                "homeassistant/sensor/skyhold_hill/temperature/config" in heard.latest))
            config = json.loads(
                heard.latest["homeassistant/binary_sensor/skyhold_hill/safe/config"])
            self.assertEqual((config["device_class"], config["payload_on"]), ("safety", "OFF"))
            self.assertEqual(config["expire_after"], 17)

            # Home Assistant starts.
            count = sum(topic.endswith("safe/config") for _time, topic, _text in heard.seen)
            broker.publish("homeassistant/status", "online")
            wait_until("the entities again", lambda: count < sum(
                topic.endswith("safe/config") for _time, topic, _text in heard.seen))

            for name, end, back in [
                    ("killed", self.kill_monitor, place.start_monitor),
                    ("stopped", lambda p: p.monitor.send_signal(signal.SIGSTOP),
                     lambda: place.monitor.send_signal(signal.SIGCONT))]:
                with self.subTest(monitor=name):
                    end(place)
                    begin = time.monotonic()
                    heard.wait_for(safe, "OFF")
                    self.assertLess(time.monotonic() - begin, 1 if name == "killed" else 6)
                    heard.wait_for(f"{PREFIX}/readings/temperature", "None")
                    self.assertFalse(json.loads(heard.latest[f"{PREFIX}/state"])["safe"])
                    self.assertEqual(retained(broker), "OFF")
                    back()
                    heard.wait_for(safe, "ON")

            for number in [signal.SIGTERM, signal.SIGKILL]:
                with self.subTest(gateway=number):
                    begin = time.monotonic()
                    gateway.program.send_signal(number)
                    heard.wait_for(safe, "OFF")
                    heard.wait_for(f"{PREFIX}/availability", "offline")
                    wait_until("a document that says so", lambda: not json.loads(
                        heard.latest[f"{PREFIX}/state"])["safe"])
                    self.assertLess(time.monotonic() - begin, 2)
                    gateway.program.wait(5)
                    self.assertEqual(retained(broker), "OFF")
                    gateway = stack.enter_context(Gateway(place, *mqtt(broker)))
                    heard.wait_for(safe, "ON")
                    heard.wait_for(f"{PREFIX}/availability", "online")

    @staticmethod
    def kill_monitor(place):
        place.monitor.kill()
        place.monitor.wait()

    def test_a_broker_that_comes_late_dies_and_comes_back(self):
        with Place(["--start"], read_seconds=5) as place, contextlib.ExitStack() as stack:
            broker = Broker(place)
            broker.kill()
            gateway = stack.enter_context(Gateway(place, *mqtt(broker)))
            place.wait_until("safe", gateway.safe)
            broker.start()
            heard = stack.enter_context(Subscriber(broker))
            heard.wait_for(f"{PREFIX}/safe", "ON")
            # With the gateway at the same time, as when the power fails: no will is published, and
            # what the broker has stored must not outlive its age.
            database = place.folder / f"{broker.port}.db"
            database.unlink(missing_ok=True)
            broker.server.send_signal(signal.SIGUSR1)  # it stores
            wait_until("the database", database.exists)
            gateway.program.send_signal(signal.SIGSTOP)
            broker.kill()
            gateway.program.kill()
            broker.start()
            self.assertEqual(retained(broker), "ON")
            for topic in ["safe", "state", "reason"]:
                wait_until(f"nothing in {topic}", lambda name=topic: retained(
                    broker, f"{PREFIX}/{name}") is None, 15)

    def test_a_broker_that_hangs_gets_the_latest(self):
        with Place(["--start"]) as place, contextlib.ExitStack() as stack:
            broker = Broker(place)
            stack.enter_context(Gateway(place, *mqtt(broker)))
            heard = stack.enter_context(Subscriber(broker))
            heard.wait_for(f"{PREFIX}/safe", "ON")
            broker.server.send_signal(signal.SIGSTOP)
            count = len(place.cycles)
            place.wait_until("cycles", lambda: len(place.cycles) > count + 10)
            place.break_sensor("die")
            place.next_cycle("unsafe", lambda cycle: cycle.verdict == "UNSAFE")
            broker.server.send_signal(signal.SIGCONT)
            heard.wait_for(f"{PREFIX}/safe", "OFF")
            self.assertEqual(retained(broker), "OFF")

    def test_password_and_certificate(self):
        with Place(sensor=None) as place:
            files = [place.folder / "broker.pem", place.folder / "broker.key"]
            subprocess.run(
                ["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-out",
                 files[0], "-keyout", files[1], "-subj", "/CN=localhost", "-addext",
                 "subjectAltName=DNS:localhost"], check=True, stderr=subprocess.DEVNULL)
            broker = Broker(place, password="secret", certificate=files)
            for password, more, said in [
                    ("wrong", ["--mqtt-ca", files[0]], "the broker refuses: Not authorized"),
                    ("secret", ["--mqtt-tls"], "no broker at localhost"),
                    ("secret", [], "no broker at localhost"),
                    ("secret", ["--mqtt-ca", files[0]], "connected to localhost")]:
                with self.subTest(password=password, more=more):
                    file = place.folder / "password"
                    file.unlink(missing_ok=True)
                    file.touch(0o600)
                    file.write_text(password + "\n", encoding="utf-8")
                    with Gateway(place, *mqtt(broker, "--mqtt-user", "observer",
                                              "--mqtt-password-file", file, *more)) as gateway:
                        for line in gateway.program.stderr:
                            if "MQTT:" in line:
                                break
                        self.assertIn(said, line)
                        arguments = (f"/proc/{gateway.program.pid}/cmdline")
                        with open(arguments, "rb") as command:
                            self.assertNotIn(b"secret", command.read())
                        if "connected" in said:
                            wait_until("a message", lambda: retained(broker) == "OFF")


class RunsHooks(unittest.TestCase):
    def test_events_of_an_evening(self):
        with Place(["--start"]) as place:
            seen = place.folder / "events"
            script = place.folder / "hook"
            script.write_text(
                "#!/bin/sh\n"
                f"echo \"$SKYHOLD_EVENT $SKYHOLD_MQTT_PASSWORD$(cat | head -c 1)\" >>{seen}\n",
                encoding="utf-8")
            script.chmod(0o755)

            def events():
                return seen.read_text(encoding="utf-8").split("\n") if seen.exists() else []

            place.run.variables["SKYHOLD_MQTT_PASSWORD"] = "secret"
            with Gateway(place, "--hook", str(script)):
                wait_until("safe", lambda: "safe {" in events())
                place.break_sensor("die")
                wait_until("unsafe", lambda: "unsafe {" in events())
                wait_until("a source", lambda: "source-failed {" in events())
                place.start_sensor()
                wait_until("its return", lambda: "source-back {" in events())
                place.monitor.kill()
                wait_until("stopped", lambda: "stopped {" in events())
            self.assertNotIn("secret", seen.read_text(encoding="utf-8"))

    def test_those_that_come_along(self):
        """Each with a program in place of what it drives, which keeps arguments and input."""
        hooks = pathlib.Path(__file__).resolve().parents[2] / "contrib/hooks"
        with tempfile.TemporaryDirectory() as folder:
            place = pathlib.Path(folder)
            (place / "token").write_text("t0ken\n", encoding="utf-8")
            for name in ["sendmail", "curl", "pulse", "release", "skyholdctl", "sleep"]:
                script = place / name
                script.write_text(f"""#!/bin/sh
echo "$0 $*" >>{place}/seen
case $0 in
*/sendmail | */curl) cat >>{place}/seen ;;
*/skyholdctl) count=$(grep -c skyholdctl {place}/seen); exit $((count - 1)) ;; # safe only once
*/sleep) [ $(grep -c sleep {place}/seen) -lt 3 ] || kill $PPID ;;
esac
""", encoding="utf-8")
                script.chmod(0o755)
            relay = ["relay", place / "pulse", place / "release"]
            for arguments, event, status, present, absent in [
                    (["mail", "me@example.org"], "unsafe", 0,
                     ["sendmail -t -i", "To: me@example.org\n", ": unsafe\n", "\n\nRain\n", "{}"], []),
                    (["mail", "me@example.org"], "waiting", 0, [], ["sendmail"]),
                    (["push", "https://push", place / "token"], "stopped", 0,
                     ["--data-raw Rain https://push\n", "Priority: high", "Bearer t0ken"], []),
                    (["push", "https://push"], "safe", 0, ["Priority: default"], ["Bearer"]),
                    (["push"], "safe", 2, [], ["curl"]),
                    (relay, "unsafe", 0, ["/release"], ["/pulse"]),
                    (relay, "stopped", 0, ["/release"], ["/pulse"]),
                    (relay, "safe", 0, [], ["/release", "/pulse"]),
                    # The service: one pulse, for one "safe" in three questions.
                    (relay, None, -signal.SIGTERM, ["/pulse"], ["/release"])]:
                with self.subTest(arguments=arguments, event=event):
                    (place / "seen").write_text("", encoding="utf-8")
                    environment = {"PATH": f"{place}:/usr/bin:/bin", "SKYHOLD_REASON": "Rain"}
                    if event:
                        environment["SKYHOLD_EVENT"] = event
                    done = subprocess.run([hooks / arguments[0], *arguments[1:]], env=environment,
                                          input="{}", text=True, timeout=20, check=False,
                                          stderr=subprocess.DEVNULL)
                    self.assertEqual(done.returncode, status)
                    seen = (place / "seen").read_text(encoding="utf-8")
                    for text in present:
                        self.assertEqual(seen.count(text), 1, seen)
                    for text in absent:
                        self.assertNotIn(text, seen)


class Fleet(unittest.TestCase):
    def test_all_sites_of_a_broker(self):
        with Place(sensor=None) as place:
            broker = Broker(place)

            def fleet(*arguments):
                done = subprocess.run(
                    [run.PROGRAMS / "skyholdctl", "fleet", "--broker", f"localhost:{broker.port}",
                     "--wait", "0.5", *arguments], capture_output=True, text=True, check=False)
                return done.returncode, done.stdout, done.stderr

            def publish(site, verdict, seconds=0):
                now = datetime.datetime.now(datetime.timezone.utc)
                moment = now - datetime.timedelta(seconds=seconds)
                well = {"state": "ok", "ready": True}
                safe = verdict == "safe"
                broker.publish(f"skyhold/{site}/state", json.dumps({
                    "time": moment.strftime("%Y-%m-%dT%H:%M:%SZ"), "interval_s": 60,
                    "session": "running", "safe": safe, "verdict": verdict,
                    "causes": [] if safe else [{"text": "Rain Wet"}],
                    "sources": {"sensor": well, "station": well}}), "-r")
                broker.publish(f"skyhold/{site}/safe", "ON" if safe else "OFF", "-r")
                broker.publish(f"skyhold/{site}/availability", "online", "-r")

            self.assertEqual(fleet()[0], 1)
            for number in range(30):
                publish(f"site{number}", "safe")
            status, text, _errors = fleet()
            self.assertEqual((status, text.count(" SAFE ")), (0, 30))
            publish("hill", "unsafe")
            publish("lake", "safe", seconds=100)
            status, text, _errors = fleet("hill", "lake", "site1")
            self.assertEqual(status, 1)
            self.assertRegex(text, r"hill +UNSAFE .* Rain Wet\nlake +UNKNOWN .* s old\nsite1 +SAFE")
            self.assertEqual(fleet("site1", "--json")[0], 0)
            with Gateway(place, *mqtt(broker)) as gateway:
                wait_until("the gateway's own site",
                           lambda: "The monitor is not running" in fleet("hill")[1]
                           or "No monitoring session" in fleet("hill")[1])
                gateway.program.kill()
                wait_until("the will", lambda: "Its gateway is gone" in fleet("hill")[1])
            broker.kill()
            status, _text, errors = fleet()
            self.assertEqual(status, 2)
            self.assertIn("no broker at localhost", errors)


if __name__ == "__main__":
    unittest.main()
