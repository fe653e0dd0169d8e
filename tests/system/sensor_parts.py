# SPDX-License-Identifier: GPL-3.0-or-later
"""Real and scripted parts that skyhold-sensor reads, and the program itself on a bus of its own."""

import http.server
import json
import pathlib
import shutil
import signal
import socket
import subprocess
import tempfile
import threading
import time

import dbus

from monitored import METHOD, PUT, READ, run


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def wait_until(what, holds, seconds=20):
    end = time.monotonic() + seconds
    while True:
        seen = holds()
        if seen:
            return seen
        if time.monotonic() > end:
            raise AssertionError(f"did not come: {what}")
        time.sleep(0.02)


class Place:
    """A folder and a bus; ends whatever was started in it."""

    def __init__(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="kiv_skyhold-sensor-"))
        self.run = run.Run(self.folder, run.environment(self.folder, None))
        self.run.variables["HOME"] = str(self.folder)
        self.run.start_bus()
        self.bus = dbus.bus.BusConnection(self.run.variables["DBUS_SESSION_BUS_ADDRESS"])

    def __enter__(self):
        return self

    def __exit__(self, *_failure):
        self.bus.close()
        self.run.end()
        for program in self.run.started:
            if program.stdout:
                program.stdout.close()
        shutil.rmtree(self.folder, ignore_errors=True)

    def start_quietly(self, *command):
        return self.run.start(*command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


class Sensor:
    """skyhold-sensor with these settings, and its members as a client reads them."""

    def __init__(self, place, settings, *options):
        self.place = place
        self.file = place.folder / "skyhold-sensor.conf"
        self.file.write_text(settings, encoding="utf-8")
        self.program = place.start_quietly(run.PROGRAMS / "skyhold-sensor", "--settings",
                                           self.file, *options)
        place.run.wait_for_name(run.SENSOR_NAME, self.program)
        factory = place.bus.get_object(run.SENSOR_NAME, "/Kiv_Nubilo/Nubilo", introspect=False)
        path = factory.CreateInstance(dbus_interface="Kiv.Automation.ClassFactory")
        self.object = place.bus.get_object(run.SENSOR_NAME, path, introspect=False)

    def invoke(self, name, use=READ, *arguments):
        result, _changed = self.object.InvokeByName(
            name, dbus.UInt32(use), dbus.Array(arguments, signature="v"),
            dbus_interface="Kiv.Automation.Dispatch")
        return result

    def ready(self):
        ready = bool(self.invoke("DataReady"))
        if ready == bool(self.invoke("Kiv_XFERFileErr")):
            return ready and bool(self.invoke("DataReady"))  # it changed between the two calls
        return ready

    def wait_ready(self, ready=True, seconds=20):
        wait_until(f"data ready: {ready}", lambda: self.ready() == ready, seconds)

    def wait_for(self, member, value, seconds=20):
        def holds():
            try:
                return abs(float(self.invoke(member)) - value) < 0.05
            except dbus.DBusException:
                return False
        wait_until(f"{member} {value}", holds, seconds)

    def set_verdict(self, unsafe):
        self.invoke("SetUnSafe", METHOD, dbus.Boolean(unsafe))

    def set_switch(self, value):
        self.invoke("Kiv_SetSwitch", METHOD, dbus.Double(value))

    def take_switch(self):
        self.invoke("Kiv_DeviceSwitchCtrl", PUT, dbus.Boolean(True))


class Indi:
    """indiserver with Debian's simulators of a weather station and a sky quality meter."""

    WEATHER = "Weather Simulator"

    def __init__(self, place, *more_drivers):
        self.place = place
        self.port = free_port()
        self.more_drivers = more_drivers
        self.start()

    def start(self):
        self.server = self.place.start_quietly(
            "indiserver", "-p", self.port, "-u", self.place.folder / f"indi-{self.port}",
            "-r", 20, "indi_simulator_weather", "indi_simulator_sqm",
            *self.more_drivers)
        wait_until("the server's port", lambda: self.set("CONFIG_PROCESS.CONFIG_LOAD=On"))

    def set(self, change):
        done = subprocess.run(["indi_setprop", "-p", str(self.port), f"{self.WEATHER}.{change}"],
                              env=self.place.run.variables, stderr=subprocess.DEVNULL, check=False)
        return done.returncode == 0

    def get(self, address):
        return subprocess.run(["indi_getprop", "-p", str(self.port), "-1", "-t", "2", address],
                              env=self.place.run.variables, stdout=subprocess.PIPE, text=True,
                              stderr=subprocess.DEVNULL, check=False).stdout.strip()

    def weather(self, temperature=15, rain=0):
        assert self.set("WEATHER_CONTROL.Weather;Temperature;Wind;Gust;Precip="
                        f"0;{temperature};3;5;{rain}")

    def driver(self, name):
        """The process of the driver that runs now."""
        listed = subprocess.run(["ps", "-o", "pid=,args=", "--ppid", str(self.server.pid)],
                                stdout=subprocess.PIPE, text=True, check=False).stdout
        ids = [int(line.split()[0]) for line in listed.splitlines() if name in line]
        return ids[0] if ids else None

    def kill(self):
        self.server.kill()
        self.server.wait()


class Broker:
    """mosquitto on a port of this machine, with a user and, on demand, a certificate."""

    def __init__(self, place, password=None, certificate=None):
        self.place = place
        self.port = free_port()
        self.configuration = place.folder / f"mosquitto-{self.port}.conf"
        lines = [f"listener {self.port} 127.0.0.1", "persistence true",
                 f"persistence_location {place.folder}/", f"persistence_file {self.port}.db",
                 "log_type none", "user root"]
        if password:
            users = place.folder / "mosquitto-users"
            subprocess.run(["mosquitto_passwd", "-c", "-b", str(users), "observer", password],
                           check=True, stderr=subprocess.DEVNULL)
            lines.append(f"password_file {users}")
        lines.append(f"allow_anonymous {'false' if password else 'true'}")
        if certificate:
            lines += [f"certfile {certificate[0]}", f"keyfile {certificate[1]}"]
        self.configuration.write_text("\n".join(lines) + "\n", encoding="utf-8")
        self.options = ["-u", "observer", "-P", password] if password else []
        if certificate:
            self.options += ["--cafile", str(certificate[0])]
        self.start()

    def start(self):
        self.server = self.place.start_quietly("mosquitto", "-c", self.configuration)
        wait_until("the broker", lambda: self.publish("test", "1"))

    def publish(self, topic, message, *options):
        done = subprocess.run(["mosquitto_pub", "-h", "localhost", "-p", str(self.port), "-t",
                               topic, "-m", message, *self.options, *options],
                              stderr=subprocess.DEVNULL, check=False)
        return done.returncode == 0

    def kill(self):
        self.server.send_signal(signal.SIGKILL)
        self.server.wait()


class Alpaca:
    """A scripted device: `values` by member in lower case, `ages` by member, and `fault`: "error",
    "hang", "html", "status" or "huge"."""

    def __init__(self):
        self.values = {}
        self.ages = {}
        self.fault = None
        self.closed = False
        self.puts = []
        self.released = threading.Event()
        device = self

        class Handler(http.server.BaseHTTPRequestHandler):
            protocol_version = "HTTP/1.1"

            def log_message(self, *_arguments):
                pass

            def answer(self, value=None, error=0):
                body = json.dumps({"Value": value, "ErrorNumber": error,
                                   "ErrorMessage": "scripted" if error else ""}).encode()
                if device.fault == "html":
                    body = b"<html>busy</html>"
                elif device.fault == "huge":
                    body = b'{"Value": 1, "ErrorNumber": 0, "x": "' + b"x" * 2_000_000 + b'"}'
                self.send_response(500 if device.fault == "status" else 200)
                self.send_header("Content-Length", str(len(body)))
                self.end_headers()
                try:
                    self.wfile.write(body)
                except OSError:
                    self.close_connection = True

            def do_GET(self):
                if device.closed:
                    self.close_connection = True
                    return
                if device.fault == "hang":
                    device.released.wait(30)
                path, _, query = self.path.partition("?")
                member = path.rsplit("/", 1)[1]
                if device.fault == "error":
                    self.answer(error=0x500)
                elif member == "timesincelastupdate":
                    name = query.split("SensorName=")[1].split("&")[0].lower()
                    self.answer(device.ages.get(name, 0), 0 if name in device.ages else 0x400)
                elif member in device.values:
                    self.answer(device.values[member])
                else:
                    self.answer(error=0x400)

            def do_PUT(self):
                size = int(self.headers.get("Content-Length", 0))
                form = self.rfile.read(size).decode()
                device.puts.append((self.path.rsplit("/", 1)[1], form))
                if "setswitch" in self.path:
                    device.values["getswitch"] = "State=true" in form
                self.answer(error=0x500 if device.fault == "error" else 0)

        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self.server.daemon_threads = True
        self.url = f"http://127.0.0.1:{self.server.server_port}"
        threading.Thread(target=self.server.serve_forever, args=[0.02], daemon=True).start()

    def close(self):
        self.closed = True
        self.released.set()
        self.server.shutdown()
        self.server.server_close()
