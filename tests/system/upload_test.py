# SPDX-License-Identifier: GPL-3.0-or-later
"""The uploader against servers good and bad, and the monitor that hands files to it."""

import configparser
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

from servers import PASSWORD, USER, Ftp, Sftp, StoppingFtp, make_certificate

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "scripts"))
import run  # noqa: E402

UPLOADER = run.PROGRAMS / "Kiv_Uploader.exe"
BIG = bytes(range(256)) * 40_000  # more than all buffers on the way to a server hold


def quoted(text):
    return '"' + str(text).replace("\\", "\\\\").replace('"', '\\"') + '"'


def living_processes():
    """The parent of every process, by its id."""
    parents = {}
    for stat in pathlib.Path("/proc").glob("[0-9]*/stat"):
        try:
            state, parent = stat.read_text().rpartition(")")[2].split()[:2]
        except OSError:
            continue  # it has ended
        if state not in "ZX":
            parents[int(stat.parent.name)] = int(parent)
    return parents


def children(process):
    return [child for child, parent in living_processes().items() if parent == process]


class UploadTest(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="kiv_skyhold-test-"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.run = run.Run(self.folder, run.environment(self.folder, None))
        self.addCleanup(self.end_programs)
        self.run.variables["HOME"] = str(self.folder)
        self.settings = self.folder / "user/config/Kiv"
        self.settings.mkdir(mode=0o700, parents=True)
        self.servers = 0
        (self.folder / "out").mkdir()

    def serve(self, kind, *arguments, **more):
        """A server with a folder of its own, which is `remote` from now on."""
        self.servers += 1
        self.remote = self.folder / f"remote{self.servers}"
        return kind(self.remote, *arguments, **more)

    def end_programs(self):
        self.run.end()
        for program in self.run.started:
            if program.stdout:
                program.stdout.close()

    def file(self, name, contents):
        """A file to upload; written anew it is a second younger at least."""
        path = self.folder / "out" / name
        part = self.folder / "part"
        part.write_bytes(contents)
        if path.exists():
            modified = max(part.stat().st_mtime, path.stat().st_mtime + 1)
            os.utime(part, (modified, modified))
        return part.replace(path)

    def write_settings(self, application, text):
        path = self.settings / f"{application}.ini"
        path.write_text(text, encoding="utf-8")
        path.chmod(0o600)

    def hand_off(self, address, files, path="web/data/", timeout=20, password=PASSWORD):
        self.write_settings(
            "Kiv_Uploader",
            f"[Setup]\nServer={quoted(address)}\nServerPath={quoted(path)}\n"
            f"Username={USER}\nPassword={quoted(password)}\nTimeoutUPLOAD={timeout}\n"
            f"NoFiles={len(files)}\n"
            + "".join(f"File{i}={quoted(file)}\n" for i, file in enumerate(files, 1)))

    def told(self, section, key):
        """What the uploader has written into its area."""
        area = configparser.ConfigParser(interpolation=None)
        area.optionxform = str
        area.read(self.settings / "Kiv_Uploader.ini", encoding="utf-8")
        return area.get(section, key, fallback=None)

    def running(self):
        return self.told("Window", "Running")

    def start_uploader(self):
        log = self.folder / f"log{len(self.run.started)}"
        with open(log, "wb") as errors:
            uploader = self.run.start(UPLOADER, stderr=errors)
        uploader.log = log
        return uploader

    def wait_until(self, what, holds, seconds=20):
        end = time.monotonic() + seconds
        while not holds():
            self.assertLess(time.monotonic(), end, f"did not come: {what}")
            time.sleep(0.01)

    def end_of(self, uploader, seconds=20):
        """What it has said; its word is taken back and the password is nowhere."""
        uploader.wait(seconds)
        self.assertEqual(self.running(), "0")
        for path in filter(pathlib.Path.is_file, self.folder.rglob("*")):
            if path.parent == self.settings:
                self.assertEqual(path.stat().st_mode & 0o777, 0o600, path)
            else:
                self.assertNotIn(PASSWORD.encode(), path.read_bytes(), path)
        return uploader.log.read_text()

    def upload(self, seconds=20):
        uploader = self.start_uploader()
        said = self.end_of(uploader, seconds)
        return uploader.returncode, said

    def received(self, name):
        return (self.remote / "web/data" / name).read_bytes()

    def test_files_arrive_whole_and_again(self):
        for what, renames_over in [("renames over a file", True), ("does not", False)]:
            with self.subTest(what), self.serve(Ftp, renames_over=renames_over) as server:
                names = ["a b;#%41ä.htm", "empty", "big.png"]
                for contents in [BIG, BIG[1:] + b"new"]:
                    wanted = {names[0]: contents[:5000], names[1]: b"", names[2]: contents}
                    self.hand_off(server.address, [self.file(*item) for item in wanted.items()])
                    status, said = self.upload()
                    self.assertEqual(status, 0, said)
                    for name, bytes_ in wanted.items():
                        self.assertEqual(self.received(name), bytes_)
                # Nothing else is there, and no file ever was under its name in part.
                self.assertEqual(sorted(os.listdir(self.remote / "web/data")), sorted(names))
                for command in server.commands:
                    if command.startswith("STOR"):
                        self.assertTrue(command.endswith(".part"), command)

    def test_refusals_are_told_and_hold_nothing_up(self):
        page = self.file("page.htm", b"page")
        missing = self.folder / "out/missing"
        cases = [
            # what, permissions on the server, hand-off, what is said, arrives
            ("password", "elradfmw", {"password": "another"},
             "127.0.0.1 refuses the user name or the password", False),
            ("file", "elradfm", {}, "127.0.0.1 refuses the file", False),
            ("name", "elradmw", {}, "127.0.0.1 does not rename it", False),
            ("missing file", "elradfmw", {"files": [missing, page]}, "there is no such file", True),
        ]
        for what, permissions, more, told, arrives in cases:
            with self.subTest(what), self.serve(Ftp, permissions) as server:
                self.hand_off(server.address, **{"files": [page], **more})
                status, said = self.upload(10)
                self.assertEqual(status, 1)
                self.assertIn(told, said)
                there = self.remote / "web/data"
                self.assertEqual(os.listdir(there) if there.exists() else [],
                                 ["page.htm"] if arrives else [])
                self.assertEqual(self.told("Result", "NotArrived"), "1")
                self.assertEqual(self.told("Result", "File1"), str(more.get("files", [page])[0]))
                self.assertEqual(self.told("Result", "Reason1"), told)
                self.assertRegex(self.told("Result", "LastError"), r"20.*: " + re.escape(told))

        closed = self.serve(StoppingFtp, None)
        closed.listener.close()
        for address, told in [(closed.address, "no connection to 127.0.0.1"),
                              ("", "no server address is set"),
                              (f"{USER}:{PASSWORD}@127.0.0.1/", "the server address is not valid")]:
            with self.subTest(address):
                self.hand_off(address, [page])
                status, said = self.upload(10)
                self.assertEqual(status, 1)
                self.assertIn(told, said)

    def test_servers_that_hang_or_hang_up_are_left_in_time(self):
        files = [self.file("big.png", BIG), self.file("page.htm", b"page")]
        late = "127.0.0.1 was not done within 1 s"
        cases = [
            # where it stops, hangs up, what is said, arrives of the second file
            ("greeting", False, late, False),
            ("mid-file", False, late, True),
            ("rename", False, late, True),
            ("mid-file", True, "127.0.0.1: ", True),
        ]
        for stop_at, hang_up, told, second_arrives in cases:
            with self.subTest(stop_at, hang_up=hang_up), \
                    self.serve(StoppingFtp, stop_at, hang_up) as server:
                self.hand_off(server.address, files, path="", timeout=1)
                begin = time.monotonic()
                uploader = self.start_uploader()
                self.wait_until("the stop", server.stopped.is_set)
                said = self.end_of(uploader, 10)
                self.assertLess(time.monotonic() - begin, 4)
                self.assertEqual(uploader.returncode, 1)
                self.assertIn(f"1 of 2: {files[0]}: {told}", said)
                self.assertEqual(os.listdir(self.remote), ["page.htm"] if second_arrives else [], said)
                self.assertEqual(self.told("Result", "NotArrived"), "1" if second_arrives else "2")

    def test_key_f6_ends_it_after_the_current_file(self):
        files = [self.file("big.png", BIG), self.file("page.htm", b"page")]
        with self.serve(StoppingFtp, "mid-file") as server:
            self.hand_off(server.address, files, path="")
            uploader = self.start_uploader()
            self.wait_until("the first file", server.stopped.is_set)
            uploader.send_signal(signal.SIGUSR1)
            self.wait_until("its answer", lambda: "Ending after this file" in uploader.log.read_text())
            self.assertEqual(self.running(), "1")
            server.go_on.set()
            self.assertIn("1 of 2 files have arrived", self.end_of(uploader))
            self.assertEqual((self.remote / "big.png").read_bytes(), BIG)
            self.assertEqual(os.listdir(self.remote), ["big.png"])
            self.assertEqual(self.told("Result", "File1"), str(files[1]))
            self.assertIsNone(self.told("Result", "LastError") or None)
            self.assertIn("1 of 2 files", self.told("Result", "LastSuccess"))

    def test_whoever_is_killed_the_word_is_taken_back(self):
        files = [self.file("big.png", BIG)]
        for victim, number in [("worker", signal.SIGKILL), ("guard", signal.SIGKILL),
                               ("guard", signal.SIGTERM)]:
            with self.subTest(victim, signal=number), \
                    self.serve(StoppingFtp, "mid-file") as server:
                self.hand_off(server.address, files, path="")
                guard = self.start_uploader()
                self.wait_until("the file", server.stopped.is_set)
                [worker] = children(guard.pid)
                for process in [guard.pid, worker]:
                    about = pathlib.Path(f"/proc/{process}")
                    self.assertEqual((about / "cmdline").read_bytes(), bytes(UPLOADER) + b"\0")
                    self.assertNotIn(PASSWORD.encode(), (about / "environ").read_bytes())
                    self.assertRegex((about / "limits").read_text(), r"core file size +0 +0 ")
                self.assertEqual(self.running(), "1")
                os.kill(worker if victim == "worker" else guard.pid, number)
                self.wait_until("its end", lambda w=worker: self.running() == "0"
                                and w not in living_processes(), 5)
                self.end_of(guard, 5)
                # Who is killed cannot take away what has arrived of the file.
                self.assertEqual(os.listdir(self.remote), [] if number == signal.SIGTERM or
                                 victim == "guard" else ["big.png.part"])
                self.assertEqual(self.told("Result", "NotArrived"), "1")

    def test_one_uploader_at_a_time(self):
        with self.serve(StoppingFtp, "mid-file") as server:
            self.hand_off(server.address, [self.file("big.png", BIG)], path="")
            first = self.start_uploader()
            self.wait_until("the first file", server.stopped.is_set)
            second = self.start_uploader()
            self.wait_until("the second uploader",
                            lambda: "Waiting for another" in second.log.read_text())
            server.go_on.set()
            self.assertEqual(first.wait(20), 0)
            self.end_of(second)
            self.assertEqual(second.returncode, 0)
            self.wait_until("the end of both", lambda: server.events.count("left") == 2)
            visits = [event for event in server.events if event in ("connected", "left")]
            self.assertEqual(visits, ["connected", "left"] * 2)

    def test_encrypted_servers_see_the_password_only_when_trusted(self):
        page = self.file("page.htm", BIG)
        certificate = make_certificate(self.folder / "certificate.pem")
        for scheme, untrusted in [("ftpes", ["AUTH SSL"]), ("ftps", [])]:
            with self.subTest(scheme), self.serve(Ftp, certificate=certificate,
                                                  implicit=scheme == "ftps") as server:
                self.hand_off(f"{scheme}://{server.address}", [page])
                self.run.variables.pop("SSL_CERT_FILE", None)
                _status, said = self.upload(10)
                self.assertIn("its certificate is not trusted", said)
                self.assertEqual(server.commands, untrusted)

                self.run.variables["SSL_CERT_FILE"] = certificate + ".crt"
                status, said = self.upload()
                self.assertEqual(status, 0, said)
                self.assertEqual(self.received("page.htm"), BIG)
                self.assertIn("PROT P", server.commands)  # the file itself was encrypted, too
        with self.serve(Sftp) as server:
            self.hand_off(server.address, [page])
            _status, said = self.upload(10)
            self.assertIn("its key is not in ~/.ssh/known_hosts", said)
            self.assertEqual(server.passwords, [])

    def test_sftp_files_arrive_whole_and_again(self):
        with self.serve(Sftp) as server:
            known_hosts = self.folder / ".ssh/known_hosts"
            known_hosts.parent.mkdir(mode=0o700)
            known_hosts.write_text(server.known_hosts_line)
            for contents in [BIG[:300_000], b"new"]:
                files = [self.file('a "b" c.htm', contents), self.file("d", contents[1:])]
                self.hand_off(server.address, files)
                status, said = self.upload()
                self.assertEqual(status, 0, said)
                self.assertEqual(self.received('a "b" c.htm'), contents)
                self.assertEqual(self.received("d"), contents[1:])
            self.assertEqual(len(os.listdir(self.remote / "web/data")), 2)
            self.hand_off(server.address, files, password="another")
            self.assertIn("refuses the user name or the password", self.upload()[1])

    def test_what_did_not_arrive_goes_again(self):
        # The first connection ends before anything has been sent.
        with self.serve(StoppingFtp, "login", hang_up=True) as server:
            (self.remote / "web/data").mkdir(parents=True)
            server.folder = self.remote / "web/data"
            monitor = self.start_monitor(server.address, [self.file("page.htm", b"page")],
                                         "FileUpload1=True\n")
            self.wait_until("the fault", server.stopped.is_set)
            self.wait_until("the file", lambda: self.arrived("page.htm") == b"page")
            self.wait_until("the report", lambda: self.told("Result", "NotArrived") == "0")
            self.assertRegex(self.told("Result", "LastError"), "page.htm: 127.0.0.1: ")
            self.assertIn("1 of 1 files", self.told("Result", "LastSuccess"))
            monitor.send_signal(signal.SIGTERM)
            self.end_of(monitor)

    def start_monitor(self, address, files, more=""):
        self.write_settings(
            "Kiv_Skyhold",
            f"[Setup]\nEmulator=0\nReadStation=0\nUpload=1\nRefreshUpload=0\nTimeoutUPLOAD=20\n"
            f"Server={quoted(address)}\nServerPath=web/data/\n"
            f"Username={USER}\nPassword={quoted(PASSWORD)}\nNoFiles={len(files)}\n"
            + "".join(f"FileName{i}={file.name}\nFilePath{i}={quoted(file.parent)}\n"
                      for i, file in enumerate(files, 1)) + more)
        self.run.start_bus()
        log = self.folder / "monitor-log"
        with open(log, "wb") as errors:
            monitor = self.run.start(run.PROGRAMS / "Kiv_Skyhold", "--headless", "--start",
                                     "--time-scale", "30", stdout=subprocess.DEVNULL, stderr=errors)
        monitor.log = log
        return monitor

    def arrived(self, name):
        path = self.remote / "web/data" / name
        return path.read_bytes() if path.exists() else None


if __name__ == "__main__":
    unittest.main()
