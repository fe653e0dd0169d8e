# SPDX-License-Identifier: GPL-3.0-or-later
"""Faults of the uploader and of the display, and ends that nobody asked for."""

import os
import pathlib
import shutil
import signal
import socket
import subprocess
import time

from table import Monitored, is_safe, row
from monitored import run
from output_rows import lines_of
from upload_test import children


def settings_text(monitored, application="Kiv_Skyhold"):
    path = monitored.folder / f"user/config/Kiv/{application}.ini"
    return path.read_text(encoding="utf-8") if path.exists() else ""


class WithUploader(Monitored):
    """Hands a file off every five seconds to an uploader that the row puts in its place. The
    programs are linked into a folder of the run's own, so that the real uploader is not touched."""

    def __init__(self, uploader):
        super().__init__(["--start"])
        settings = self.folder / "user/config/Kiv/Kiv_Skyhold.ini"
        page = self.folder / "page.htm"
        page.write_text("page")
        settings.write_text(settings.read_text().replace(
            "[Setup]\n", "[Setup]\nUpload=1\nRefreshUpload=0\nServer=127.0.0.1:1/\n"
            f"TimeoutUPLOAD=1\nNoFiles=1\nFileName1=page.htm\nFilePath1=\"{self.folder}\"\n"))
        self.programs = self.folder / "bin"
        self.programs.mkdir()
        shutil.copy2(run.PROGRAMS / "Kiv_Skyhold", self.programs)
        self.uploader = self.programs / "Kiv_Uploader.exe"
        if uploader:
            self.uploader.write_text(f"#!/bin/sh\necho x >> '{self.folder}/started'\n{uploader}\n")
            self.uploader.chmod(0o755)
        start = self.run.start
        self.run.start = lambda command, *more, **options: start(
            self.programs / "Kiv_Skyhold" if pathlib.Path(command).name == "Kiv_Skyhold"
            else command, *more, **options)

    def starts(self):
        path = self.folder / "started"
        return len(path.read_text().split()) if path.exists() else 0


@row("uploader", "missing, no program, ends at once, hangs, stopped for good")
def uploader(seen):
    for what, script in [("missing", None), ("no program", ""), ("ends at once", "exit 1"),
                         ("hangs", "exec sleep 1000"), ("stopped", "kill -STOP $$")]:
        with WithUploader(script) as monitored:
            if what == "no program":
                monitored.uploader.write_text("no program")
            monitored.next_cycle("a safe sky", is_safe)
            for change in range(3):
                (monitored.folder / "page.htm").write_text(f"page {change}")
                time.sleep(0.5)
            wrong = [line for line in monitored.cycles[-3:] if "| SAFE" not in line]
            assert not wrong, wrong
            if what == "ends at once":
                assert monitored.starts() > 1
            elif what in ("hangs", "stopped"):
                assert monitored.starts() == 1
                found = subprocess.run(["pgrep", "-f", str(monitored.uploader)],
                                       stdout=subprocess.PIPE, text=True, check=False)
                for process in found.stdout.split():
                    os.kill(int(process), signal.SIGKILL)
    seen.say("the cycles go on; where none runs the next hand-off tries again, a hanging one is "
             "never joined by a second")


@row("uploader", "killed at work")
def uploader_killed(seen):
    with Monitored() as monitored:
        with socket.create_server(("127.0.0.1", 0)) as silent:
            port = silent.getsockname()[1]
            area = monitored.folder / "user/config/Kiv/Kiv_Uploader.ini"
            page = monitored.folder / "page.htm"
            page.write_text("page")
            area.write_text(f"[Setup]\nServer=127.0.0.1:{port}/\nTimeoutUPLOAD=60\nNoFiles=1\n"
                            f'File1="{page}"\n')
            area.chmod(0o600)
            uploader = monitored.run.start(run.PROGRAMS / "Kiv_Uploader.exe",
                                           stderr=subprocess.DEVNULL)
            seen.expect("its word", lambda: "Running=1" in settings_text(monitored, "Kiv_Uploader"),
                        10)
            seen.expect("its worker", lambda: children(uploader.pid), 5)
            os.kill(children(uploader.pid)[0], signal.SIGKILL)
            seen.expect("its word taken back",
                        lambda: "Running=0" in settings_text(monitored, "Kiv_Uploader"), 5)
        seen.say("“Running” ends at 0")


def data_whole(monitored):
    return len(lines_of((monitored.folder / "data/Skyhold.csv").read_bytes()))


@row("end", "hang-up, closed output, file size limit, kill")
def signals(seen):
    for number, ends in [(signal.SIGHUP, True), (signal.SIGPIPE, False), (signal.SIGXFSZ, False),
                         (signal.SIGKILL, True)]:
        with Monitored(["--start", "--record"]) as monitored:
            monitored.ends = ends
            monitored.next_cycle("a safe sky", is_safe)
            monitored.monitor.send_signal(number)
            if ends:
                status = monitored.monitor.wait(10)
            else:
                monitored.next_cycle("a further cycle", is_safe)
                status = "none"
            assert data_whole(monitored) > 1
            if number == signal.SIGHUP:
                assert status == 0 and "GraphNoPoints=120" in settings_text(monitored)
            seen.say(f"{number.name}: {'ends with ' + str(status) if ends else 'goes on'}")
    seen.say("last line whole each time, settings saved but for a kill")
