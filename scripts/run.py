# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs the monitor against a simulated sensor program and a simulated weather station.

Everything lives in a folder of its own, which is named first: settings, station file and whatever
is written. The message bus is private and starts nothing by itself, so that neither the user's
settings nor a real sensor program are ever touched. Whatever was started is ended with the run.
"""

import argparse
import datetime
import os
import pathlib
import signal
import socket
import subprocess
import sys
import tempfile
import time

PROGRAMS = pathlib.Path(os.environ.get("SKYHOLD_PROGRAMS") or
                        pathlib.Path(__file__).resolve().parent.parent / "build/release/bin")
SENSOR_NAME = "Kiv_Nubilo.Nubilo"
CCDAP_NAME = "Kiv_CCDAP4_II.dat"
IMAGES = ["Wind", "Gust", "WindDir", "Dew", "Hum", "Temp"]
FTP_USER, FTP_PASSWORD = "observatory", "demonstration"
GRAPHS = ["Wind", "Gust", "Dir", "Hum", "Dew", "Temp"]
READ_SECONDS = [5, 10, 30, 60]  # choices of the read interval, by their index in the settings

SENSOR_FAULTS = ["slow-ready", "old-version", "role", "not-running", "xfer-error", "late", "silent",
                 "die", "nan", "inf", "wrong-types", "empty", "megabyte", "level", "nameless"]
# Faults that would keep the session from starting at all begin a little later.
LATER_FAULTS = ["not-running", "late", "silent", "die", "nan", "inf", "wrong-types", "empty",
                "megabyte", "level", "nameless", "xfer-error"]
STATION_FAULTS = ["stop", "delete", "halves", "rubbish", "empty", "huge"]

# A bus without service folders: it cannot start an installed sensor program.
BUS_CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""


class RunFailed(Exception):
    """The run cannot begin or go on; the text says why."""


def parse_arguments():
    def fault(text):
        if text.split("=")[0] not in SENSOR_FAULTS + STATION_FAULTS:
            raise argparse.ArgumentTypeError(f"there is no fault {text}")
        return text

    parser = argparse.ArgumentParser(
        prog="./dev run", description="Runs the monitor with a simulated sensor and station.",
        epilog="Faults of the sensor: " + ", ".join(SENSOR_FAULTS) + " (role=SLAVE, late=MS). "
               "Faults of the station: " + ", ".join(STATION_FAULTS) + " (halves=MS).")
    parser.add_argument("--cycles", type=int, metavar="N",
                        help="end after N read cycles (without a display: 12)")
    parser.add_argument("--speed", type=float, metavar="N",
                        help="run the clock N times as fast (1 with a window, else 10; replay 3600)")
    parser.add_argument("--station", choices=["html", "csv"], default="html",
                        help="form of the station file")
    parser.add_argument("--replay", type=pathlib.Path, metavar="FILE",
                        help="play a log of observations (CSV) instead of made-up weather")
    parser.add_argument("--fault", type=fault, action="append", default=[], metavar="NAME",
                        help="a fault to show; may be given several times")
    parser.add_argument("--record", action="store_true", help="record the user data file")
    parser.add_argument("--images", action="store_true", help="save the graphs as images")
    parser.add_argument("--upload", action="store_true",
                        help="upload the images to an FTP server that is started for it")
    parser.add_argument("--dir", type=pathlib.Path, metavar="FOLDER",
                        help="folder for everything (default: a new one)")
    parser.add_argument("--screenshot", type=pathlib.Path, metavar="FILE",
                        help="leave a picture of the window at the end")
    parser.add_argument("--headless", action="store_true", help="no window, display or not")
    options = parser.parse_args()
    if options.speed is not None and not 0 < options.speed <= 100_000:
        parser.error("--speed takes a number above 0, at most 100000")
    if options.cycles is not None and options.cycles < 1:
        parser.error("--cycles takes a number from 1")
    if options.replay and not options.replay.is_file():
        parser.error(f"there is no log {options.replay}")
    options.images |= options.upload
    options.headless |= not (os.environ.get("DISPLAY") or os.environ.get("WAYLAND_DISPLAY"))
    return options


def make_folder(wanted):
    if wanted:
        wanted.mkdir(parents=True, exist_ok=True)
        return wanted.resolve()
    return pathlib.Path(tempfile.mkdtemp(prefix="kiv_skyhold-run-"))


def environment(folder, replay):
    """The environment of every program: all folders of the user lie in the run's own."""
    variables = dict(os.environ)
    display = variables.get("WAYLAND_DISPLAY", "")
    if display and not display.startswith("/"):
        # Named relative to the runtime folder, which changes here.
        variables["WAYLAND_DISPLAY"] = os.path.join(variables.get("XDG_RUNTIME_DIR", ""), display)
    for name in ["CONFIG", "DATA", "CACHE", "STATE"]:
        variables[f"XDG_{name}_HOME"] = str(folder / "user" / name.lower())
    runtime = folder / "user" / "runtime"
    runtime.mkdir(mode=0o700, parents=True, exist_ok=True)
    variables["XDG_RUNTIME_DIR"] = str(runtime)
    if replay:
        variables["TZ"] = "UTC"  # the log's times are shown as they stand in it
    return variables


def text(value):
    """A value as it stands in a settings file."""
    return '"' + str(value).replace("\\", "\\\\").replace('"', '\\"') + '"'


def upload_settings(folder, port):
    """Lines for the section Setup: the six images, to the server of `start_ftp_server`."""
    lines = ["Upload=1", "RefreshUpload=0", f"Server={text(f'127.0.0.1:{port}/')}",
             'ServerPath="sky/"', f"Username={FTP_USER}", f"Password={FTP_PASSWORD}",
             f"NoFiles={len(IMAGES)}"]
    for number, image in enumerate(IMAGES, 1):
        lines += [f"FileName{number}=Kiv_Image{image}Condition.png",
                  f"FilePath{number}={text(folder / 'images')}"]
    return "\n".join(lines) + "\n"


def write_settings(folder, station_file, read_seconds, images=False, more_setup="",
                   safe_delay=30):
    """The settings that the monitor starts with; all others have their defaults."""

    for name in ["ccdap", "data", "images"]:
        (folder / name).mkdir(exist_ok=True)
    settings = folder / "user" / "config" / "Kiv" / "Kiv_Skyhold.ini"
    settings.parent.mkdir(mode=0o700, parents=True, exist_ok=True)
    settings.write_text(
        "[Setup]\n"
        f"HTMFile={text(station_file)}\n"
        "Emulator=0\n"
        f"RefreshRead={READ_SECONDS.index(read_seconds)}\n"
        f"{more_setup}"
        "\n[Window]\n"
        f"PathName={text(folder / 'data')}\n"
        f"PathNameCCDAP4={text(folder / 'ccdap')}\n"
        f"SafeDelayVal={safe_delay}\n"
        "\n[Graphs]\n"
        f"GraphImagePath={text(folder / 'images')}\n" +
        "".join(f"Image{graph}={int(images)}\n" for graph in GRAPHS), encoding="utf-8")
    settings.chmod(0o600)


def log_times(log, variables):
    """First and last local time of a log."""
    listed = subprocess.run([PROGRAMS / "Kiv_StationSim", "--list-times", log], env=variables,
                            stdout=subprocess.PIPE, text=True, check=False)
    if listed.returncode != 0:
        raise RunFailed("the log cannot be played")
    return [datetime.datetime.fromisoformat(line) for line in listed.stdout.split()]


class Run:
    """The programs of a run. Each is in a process group of its own, so that an interrupt from the
    terminal reaches this script alone and the end can be put in order."""

    def __init__(self, folder, variables):
        self.folder = folder
        self.variables = variables
        self.started = []

    def start(self, *command, **more):
        try:
            program = subprocess.Popen([str(part) for part in command], env=self.variables,
                                       start_new_session=True, **more)
        except OSError as error:
            raise RunFailed(f"{command[0]}: {error.strerror}") from error
        self.started.append(program)
        return program

    def start_bus(self):
        configuration = self.folder / "bus.conf"
        configuration.write_text(BUS_CONFIGURATION, encoding="utf-8")
        with open(self.folder / "bus.log", "w", encoding="utf-8") as log:
            bus = self.start("dbus-daemon", f"--config-file={configuration}", "--nofork",
                             "--print-address", stdout=subprocess.PIPE, stderr=log, text=True)
        address = bus.stdout.readline().strip()
        if not address:
            raise RunFailed("the message bus did not start")
        self.variables["DBUS_SESSION_BUS_ADDRESS"] = address

    def start_ftp_server(self):
        """A server on this machine alone; answers its port."""
        (self.folder / "ftp").mkdir(exist_ok=True)
        with socket.socket() as probe:
            probe.bind(("127.0.0.1", 0))
            port = probe.getsockname()[1]
        with open(self.folder / "ftp.log", "w", encoding="utf-8") as log:
            self.start("/usr/bin/python3", "-m", "pyftpdlib", "-i", "127.0.0.1", "-p", port, "-w",
                       "-d", self.folder / "ftp", "-u", FTP_USER, "-P", FTP_PASSWORD,
                       stdout=log, stderr=log)
        return port

    def wait_for_name(self, name, program):
        """Waits until the program has taken its name on the bus."""
        for _ in range(200):
            answer = subprocess.run(
                ["dbus-send", "--session", "--print-reply=literal", "--dest=org.freedesktop.DBus",
                 "/org/freedesktop/DBus", "org.freedesktop.DBus.NameHasOwner", f"string:{name}"],
                env=self.variables, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                check=False)
            if "true" in answer.stdout:
                return
            if program.poll() is not None:
                break
            time.sleep(0.05)
        raise RunFailed(f"{name} did not appear on the message bus")

    def end(self):
        """Ends what still runs, the last started first."""
        for program in reversed(self.started):
            end_program(program, patience=5)


def end_program(program, patience):
    if program.poll() is None:
        program.terminate()
        try:
            program.wait(patience)
        except subprocess.TimeoutExpired:
            program.kill()
            program.wait()


def wait_for_file(path, seconds):
    end = time.monotonic() + seconds
    while not path.exists() and time.monotonic() < end:
        time.sleep(0.02)


def faults_for(names, faults):
    return [f"--fault={fault}" for fault in faults if fault.split("=")[0] in names]


def follow(monitor, station, seconds):
    """Waits for the monitor's end. When the station ends first (its log is over), the monitor is
    ended; when neither does within the time, the run has failed."""
    end = time.monotonic() + seconds
    while monitor.poll() is None:
        if station and station.poll() is not None:
            end_program(monitor, patience=30)
        elif time.monotonic() > end:
            end_program(monitor, patience=30)
            raise RunFailed(f"no session, or too few cycles, in {seconds:.0f} s")
        time.sleep(0.05)
    return monitor.returncode


def play(run, options):
    read_seconds = 60 if options.replay else 10
    speed = options.speed or (3600 if options.replay else 10 if options.headless else 1)
    cycles = options.cycles
    time_limit = float("inf")  # a window is open for as long as its user likes
    time_from = datetime.datetime.now()
    station_file = run.folder / "station" / ("station.htm" if options.station == "html"
                                             else "station.csv")
    station_file.parent.mkdir(exist_ok=True)
    upload = upload_settings(run.folder, run.start_ftp_server()) if options.upload else ""
    write_settings(run.folder, station_file, read_seconds, options.images, upload)

    station_file.unlink(missing_ok=True)  # of an earlier run in the same folder

    weather = ["--scenario", "quick"]
    sensor_weather = weather
    if options.replay:
        first, last = log_times(options.replay, run.variables)
        time_from = first
        weather = ["--replay", options.replay.resolve(), "--once"]
        sensor_weather = ["--scenario", "night"]  # follows the time of day
        time_limit = (last - first).total_seconds() / speed * 2 + 60
    if options.headless and not options.replay:
        cycles = cycles or 12
        time_limit = cycles * max(read_seconds / speed, 3) + 20
    shared_clock = ["--time-from", time_from.isoformat(timespec="seconds"),
                    "--time-origin", time.time_ns() // 1_000_000, "--time-scale", speed]

    run.start_bus()
    later = faults_for(LATER_FAULTS, options.fault)
    sensor = run.start(PROGRAMS / "Kiv_NubiloSim", *sensor_weather, *shared_clock,
                       *faults_for(SENSOR_FAULTS, options.fault),
                       *([f"--fault-after={4 * read_seconds}"] if later else []))
    station = run.start(PROGRAMS / "Kiv_StationSim", "--file", station_file,
                        "--format", options.station, *weather, *shared_clock,
                        *faults_for(STATION_FAULTS, options.fault))
    run.wait_for_name(SENSOR_NAME, sensor)
    wait_for_file(station_file, seconds=2)

    command = [PROGRAMS / "Kiv_Skyhold", "--start", *shared_clock]
    if options.headless:
        command += ["--headless", "--report"]
    if options.record:
        command.append("--record")
    if cycles:
        command += ["--cycles", cycles]
    if options.screenshot:
        command += ["--screenshot", options.screenshot.absolute()]
    monitor = run.start(*command)
    try:
        return follow(monitor, station if options.replay else None, time_limit)
    finally:
        end_program(monitor, patience=30)


def end_on_signals():
    """The first signal ends the run; further ones do not cut its end short."""
    ending = False

    def end(number, _frame):
        nonlocal ending
        if not ending:
            ending = True
            raise SystemExit(128 + number)

    for number in [signal.SIGINT, signal.SIGTERM, signal.SIGHUP]:
        signal.signal(number, end)


def report(what, path):
    print(f"{what}: {path if path.exists() else 'not written'}", flush=True)


def main():
    options = parse_arguments()
    end_on_signals()
    folder = make_folder(options.dir)
    print(f"Folder of this run: {folder}", flush=True)
    run = Run(folder, environment(folder, options.replay))
    try:
        status = play(run, options)
    except RunFailed as failure:
        print(f"./dev run: {failure}", file=sys.stderr)
        status = 1
    finally:
        run.end()
    report("CCDAutopilot file", folder / "ccdap" / CCDAP_NAME)
    if options.record:
        report("User data file", folder / "data" / "Skyhold.csv")
    if options.images:
        report("Images", folder / "images")
    if options.upload:
        report("Uploaded", folder / "ftp" / "sky")
    if options.screenshot:
        report("Picture of the window", options.screenshot.absolute())
    return status


if __name__ == "__main__":
    sys.exit(main())
