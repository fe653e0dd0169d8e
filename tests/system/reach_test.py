# SPDX-License-Identifier: GPL-3.0-or-later
"""How far the program reaches: no password leaves the settings, nothing listens on a network,
programs are started by their own paths alone, a station file stays data, no planted link is
followed."""

import contextlib
import os
import pathlib
import re
import threading
import unittest
import xml.etree.ElementTree

import dbus

from monitored import METHOD, READ, Client, Monitored, run
from sound_server import SoundServer

SECRET = "Zq7-geheim-Xw4"
LISTENING = "0A"
OUR_PROGRAMS = {"Kiv_Skyhold", "Kiv_NubiloSim", "Kiv_StationSim", "Kiv_SoundPlayer",
                "Kiv_Uploader.exe"}
# What a shell, a search path, a format or a reader of the data file could fall for.
EVIL = ["$(touch MARK)", "`touch MARK`", "; touch MARK", "|touch MARK", "../../../../MARK",
        "%s%n%s%n", "\"\r\n\"injected\",\"", "=cmd|'touch MARK'!A0", "file://MARK",
        "<script>MARK</script>", "&lt;img src=MARK&gt;", "1e308", "-nan", "9" * 400]


class Watch:
    """Notes of all processes of a run, as often as it can, what anybody on the machine may see."""

    def __init__(self, folder):
        self.mark = str(folder).encode()
        self.seen = set()     # (program, first argument)
        self.servers = set()  # sockets that wait for anybody
        self.texts = set()    # environments and command lines
        self.ending = threading.Event()
        self.thread = threading.Thread(target=self.watch)

    def __enter__(self):
        self.thread.start()
        return self

    def __exit__(self, *_failure):
        self.ending.set()
        self.thread.join()

    def watch(self):
        while not self.ending.wait(0.003):
            for process in pathlib.Path("/proc").glob("[0-9]*"):
                try:
                    self.look(process)
                except (OSError, ValueError):
                    continue  # it has ended meanwhile

    def look(self, process):
        environment = (process / "environ").read_bytes()
        if self.mark not in environment:
            return
        program = os.readlink(process / "exe")
        command = (process / "cmdline").read_bytes().split(b"\0")
        self.seen.add((pathlib.Path(program).name, command[0].decode()))
        self.texts |= {environment, b" ".join(command)}
        if pathlib.Path(program).name in OUR_PROGRAMS:
            self.servers |= {f"{program} {line}" for line in listening_sockets(process)}


def listening_sockets(process):
    """Lines of the tables of the network that are sockets of this process and wait for anybody."""
    mine = set()
    for descriptor in (process / "fd").iterdir():
        with contextlib.suppress(FileNotFoundError):  # closed meanwhile
            mine |= set(re.findall(r"^socket:\[(\d+)\]", os.readlink(descriptor)))
    for table in ["tcp", "tcp6", "udp", "udp6", "raw", "raw6"]:
        for line in (process / "net" / table).read_text().splitlines()[1:]:
            fields = line.split()
            if fields[9] in mine and (not table.startswith("tcp") or fields[3] == LISTENING):
                yield f"{table} {line}"


def answers(client):
    """Every answer and every refusal of the public object."""
    description = pathlib.Path(__file__).resolve().parents[2] / "docs/Kiv_Skyhold.Nubilo.xml"
    interface = next(part for part in xml.etree.ElementTree.parse(description).iter("interface")
                     if part.get("name") == "Kiv_Skyhold._Nubilo")
    readable = [part.get("name") for part in interface.iter("property")]
    readable += [part.get("name") for part in interface.iter("method")
                 if len(part.findall("arg")) == 1 and part.find("arg").get("direction") == "out"]
    everything = readable + [part.get("name") for part in interface.iter("method")]

    def ask(name, use, arguments):
        try:
            return str(client.invoke(name, use, arguments))
        except dbus.DBusException as refused:
            return str(refused)

    found = [ask(name, READ, []) for name in readable]
    found += [ask(name, READ, ["x"] * 9) for name in everything]
    found += [ask("Kiv_DataDisplayed", METHOD, [info, ""])
              for info in ["Password", "PassWord", "Server", "UserName", "Status"]]
    return found


def poisoned_path(folder, mark):
    """A search path whose first folder has programs that leave a mark."""
    traps = folder / "traps"
    traps.mkdir()
    for name in [*OUR_PROGRAMS, "sh", "bash", "xdg-open", "ftp", "curl", "aplay", "env"]:
        trap = traps / name
        trap.write_text(f"#!/bin/sh\n/usr/bin/touch {mark}\n", encoding="utf-8")
        trap.chmod(0o755)
    return f"{traps}:{os.environ['PATH']}"


def set_up(monitored, more_setup, more=""):
    run.write_settings(monitored.folder, monitored.station_file, 5, images=True,
                       more_setup=more_setup)
    with open(monitored.folder / "user/config/Kiv/Kiv_Skyhold.ini", "a", encoding="utf-8") as file:
        file.write(more)


class ReachTest(unittest.TestCase):
    def use_everything(self, monitored, watch):
        """An upload that is refused, an alarm, every member; answers what those said."""
        client = Client(monitored)
        monitored.break_station("delete")
        # Standard error is shared with the uploader.
        monitored.wait_until("a refused upload", lambda: any(
            "0 of 6 files" in line for line in monitored.errors), 30)
        monitored.wait_until("an alarm", lambda: any(
            name == "Kiv_SoundPlayer" for name, _ in watch.seen))
        told = answers(client)
        client.close()
        monitored.monitor.terminate()
        self.assertEqual(monitored.monitor.wait(20), 0)
        return told

    def test_no_secret_leaves_nothing_listens_and_paths_are_whole(self):
        monitored = Monitored(["--start", "--record"], weather="quick")
        folder, mark = monitored.folder, monitored.folder / "MARK"
        # The server refuses this password: what it and the transfer say of that is looked at too.
        upload = run.upload_settings(folder, monitored.run.start_ftp_server())
        sound = run.PROGRAMS.parent / "share/kiv_skyhold/sounds/Bell.wav"
        set_up(monitored, upload.replace(run.FTP_PASSWORD, SECRET),
               f"\n[Alarms]\nWSAlarm={run.text(f'{sound}|repeat')}\nWSAlarmStat=1\n")
        monitored.run.variables["PATH"] = poisoned_path(folder, mark)
        with SoundServer(ear=False) as server, Watch(folder) as watch:
            monitored.run.variables["PULSE_SERVER"] = server.variables["PULSE_SERVER"]
            with monitored:
                told = self.use_everything(monitored, watch)

        self.assertGreater(len(told), 400)
        self.assertIn("Kiv_Skyhold", told)
        seen = {name for name, _first in watch.seen}
        self.assertLessEqual(OUR_PROGRAMS, seen)
        self.assertEqual([entry for entry in watch.seen
                          if entry[0] in OUR_PROGRAMS and not entry[1].startswith("/")], [])
        self.assertFalse(mark.exists(), "a program was looked for along the search path")
        self.assertEqual(watch.servers, set())

        # The password: in the settings, which are the owner's alone, and nowhere else.
        texts = {"what ps shows": b"\n".join(watch.texts), "answers": "\n".join(told).encode(),
                 "cycles": "\n".join(monitored.cycles).encode(),
                 "errors": "\n".join(monitored.errors).encode()}
        settings = folder / "user/config/Kiv"
        for path in folder.rglob("*"):
            if path.is_file() and path.parent != settings:
                texts[str(path)] = path.read_bytes()
        self.assertEqual([name for name, text in texts.items() if SECRET.encode() in text], [])
        self.assertIn(SECRET, (settings / "Kiv_Uploader.ini").read_text())
        self.assertEqual({oct(path.stat().st_mode & 0o7777) for path in settings.iterdir()},
                         {"0o600"})
        self.assertEqual(oct(settings.stat().st_mode & 0o7777), "0o700")

    def test_a_station_file_stays_data(self):
        monitored = Monitored(["--start", "--record"], speed=200)
        folder, mark = monitored.folder, monitored.folder / "MARK"
        set_up(monitored, "")
        monitored.run.variables["PATH"] = poisoned_path(folder, mark)
        with Watch(folder) as watch, monitored:
            monitored.next_cycle("a good file", lambda c: not c.codes)
            monitored.station.kill()
            page = monitored.station_file.read_text(encoding="utf-8")
            for evil in EVIL:
                part = folder / "station.part"
                part.write_text(re.sub(r">[^<\n]+</td>", lambda _cell, e=evil: f">{e}</td>", page)
                                .replace("MARK", str(mark)), encoding="utf-8")
                part.rename(monitored.station_file)
                monitored.next_cycle("a cycle", lambda c: True)
        self.assertFalse(mark.exists())
        self.assertEqual({name for name, _first in watch.seen} & {"Kiv_SoundPlayer", "sh", "dash"},
                         set())
        lines = (folder / "data/Skyhold.csv").read_bytes().split(b"\r\n")
        self.assertGreater(len(lines), len(EVIL))
        for line in lines[:-1]:
            self.assertRegex(line, rb'^"[^"]*"(,"[^"]*"){24},?$')
        self.assertEqual(len((folder / "ccdap" / run.CCDAP_NAME).read_bytes()), 100)

    def test_no_planted_link_is_followed(self):
        monitored = Monitored(["--start", "--record"], speed=200)
        folder = monitored.folder
        # Uploads to nowhere: the hand-off is written all the same.
        set_up(monitored, run.upload_settings(folder, 9))
        settings = folder / "user/config/Kiv"
        settings.chmod(0o777)
        places = [folder / "ccdap" / run.CCDAP_NAME, folder / "data/Skyhold.csv",
                  settings / "Kiv_Uploader.ini", settings / "Kiv_Uploader.running",
                  settings / "Kiv_Skyhold.ini.whole", settings / "Kiv_Skyhold.ini.lock",
                  *(folder / "images" / f"Kiv_Image{image}Condition.png" for image in run.IMAGES)]
        victims = []
        for number, place in enumerate(places):
            victims.append(folder / f"victim{number}")
            victims[-1].write_text("precious\n")
            victims[-1].chmod(0o644)
            place.symlink_to(victims[-1])
        with monitored:
            monitored.next_cycle("the weather file", lambda c: "c51" in c.codes)
            hand_off = settings / "Kiv_Uploader.ini"
            monitored.wait_until("the hand-off",
                                 lambda: hand_off.is_file() and not hand_off.is_symlink())
            monitored.monitor.terminate()
            self.assertEqual(monitored.monitor.wait(20), 0)

        for place, victim in zip(places, victims):
            with self.subTest(place=place.name):
                self.assertEqual(victim.read_text(), "precious\n")
                self.assertEqual(victim.stat().st_mode & 0o777, 0o644)
        for image in run.IMAGES:
            picture = folder / "images" / f"Kiv_Image{image}Condition.png"
            self.assertFalse(picture.is_symlink())
            self.assertTrue(picture.read_bytes().startswith(b"\x89PNG"))
        notes = "\n".join(monitored.errors)
        self.assertIn("Not recording: the user data file cannot be written", notes)
        self.assertIn(f"{settings} was open to other users", notes)
        for name in ["Kiv_Uploader.ini", "Kiv_Uploader.running", "Kiv_Skyhold.ini.whole"]:
            self.assertIn(f"{settings / name} is a link that others may have made", notes)


if __name__ == "__main__":
    unittest.main()
