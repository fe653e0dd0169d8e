# SPDX-License-Identifier: GPL-3.0-or-later
"""Faults of what the monitor writes: data file, CCDAutopilot file, images, settings."""

import os
import shutil
import signal

from disks import OnDisks
from table import Monitored, is_safe, row
from monitored import METHOD, PUT, Client

DATA = "Skyhold.csv"
RECORD = "Kiv_CCDAP4_II.dat"


def lines_of(contents):
    """The lines of a data file, which must all be whole."""
    assert contents.endswith(b"\r\n"), contents[-80:]
    lines = contents.decode("cp1252").split("\r\n")[:-1]
    assert len({line.count('","') for line in lines}) == 1, lines
    return lines


@row("data file", "disk full in the run")
def data_disk_full(seen):
    with OnDisks(["--start", "--record"]) as monitored:
        monitored.tell_substitute(seen)
        monitored.next_cycle("a safe sky", is_safe)
        disk = monitored.disk("data")
        disk.fill()
        seen.cycle(monitored, "lost lines", lambda c: "d13" in c.codes, 40)
        before = len(lines_of(disk.read(DATA)))
        monitored.next_cycle("a further cycle", lambda c: "d13" in c.codes)
        disk.empty()
        seen.recovery(monitored, "room again", is_safe)
        monitored.next_cycle("a further cycle", is_safe)
        after = len(lines_of(disk.read(DATA)))
        assert after > before, (before, after)
        seen.say("no torn line; lines follow again once there is room")


@row("data file", "deleted, replaced, its folder deleted, all while recording")
def data_file_deleted(seen):
    with Monitored(["--start", "--record"]) as monitored:
        folder = monitored.folder / "data"
        path = folder / DATA

        def headers():
            lines = lines_of(path.read_bytes()) if path.exists() else []
            return sum(line.startswith('"Date"') for line in lines), len(lines)

        seen.expect("a line", lambda: headers()[1] > 1, 10)
        path.unlink()
        seen.expect("a new file", lambda: headers()[0] == 1 and headers()[1] > 1, 10)
        seen.say("deleted: made anew with its header")
        other = folder / "other"
        other.write_bytes(path.read_bytes())
        other.rename(path)
        before = headers()[1]
        seen.expect("lines in the replaced file", lambda: headers()[1] > before, 10)
        seen.say("replaced by another program: lines follow in what stands there now")
        shutil.rmtree(folder)
        seen.cycle(monitored, "lost lines", lambda c: c.codes == "d13" and c.verdict == "SAFE", 60)
        folder.mkdir()
        seen.expect("lines in the new folder", lambda: headers()[1] > 1, 10)
        seen.recovery(monitored, "no more code", is_safe)


@row("data file", "folder missing, or a file in its place, at the start")
def data_folder_missing(seen):
    monitored = Monitored(["--start", "--record"])
    shutil.rmtree(monitored.folder / "data")
    (monitored.folder / "data").write_text("in the way")
    with monitored:
        seen.cycle(monitored, "a safe sky", lambda c: c.verdict == "SAFE")
        client = Client(monitored)
        client.invoke("RecordStart", METHOD, [True])
        assert (monitored.folder / "data").read_text() == "in the way"
        seen.say("not recorded, monitored all the same")
        client.invoke("Device_Stop", METHOD)
        (monitored.folder / "data").unlink()
        client.invoke("Device_Start", METHOD)
        client.invoke("RecordStart", METHOD, [True])
        seen.expect("a data file", lambda: (monitored.folder / "data" / DATA).exists(), 10)
        seen.recovery(monitored, "a safe sky", is_safe)
        seen.say("a missing folder is made at the next start")
        client.close()


@row("CCDAutopilot file", "disk read-only, full, folder gone")
def ccdap_disk(seen):
    with OnDisks(["--start"]) as monitored:
        monitored.tell_substitute(seen)
        monitored.next_cycle("a safe sky", is_safe)
        disk = monitored.disk("ccdap")
        if disk.read_only(True):
            seen.cycle(monitored, "a write error", lambda c: c.codes == "c51")
        disk.read_only(False)
        monitored.next_cycle("no more error", is_safe)
        os.unlink(RECORD, dir_fd=disk.folder)
        disk.fill()
        seen.cycle(monitored, "a write error", lambda c: c.codes == "c51")
        disk.empty()
        seen.recovery(monitored, "no more error", is_safe)
        assert len(disk.read(RECORD)) == 100
    with Monitored(["--start"]) as monitored:
        monitored.next_cycle("a safe sky", is_safe)
        shutil.rmtree(monitored.folder / "ccdap")
        monitored.next_cycle("a write error", lambda c: c.codes == "c51" and c.verdict == "SAFE")
        (monitored.folder / "ccdap").mkdir()
        monitored.next_cycle("no more error", is_safe)
        assert (monitored.folder / "ccdap" / RECORD).stat().st_size == 100


@row("images", "disk read-only, full, folder gone")
def image_disk(seen):
    with OnDisks(["--start"], images=True) as monitored:
        monitored.tell_substitute(seen)
        disk = monitored.disk("images")
        seen.expect("images", lambda: len(disk.names()) == 6, 60)
        client = Client(monitored)
        for what, broken, mended in [
                ("full", disk.fill, disk.empty),
                ("read-only", lambda: disk.read_only(True), lambda: disk.read_only(False))]:
            if broken() is False:
                continue
            seen.cycle(monitored, what, lambda c: c.codes == "i23" and c.verdict == "SAFE", 60)
            mended()
            seen.recovery(monitored, "images again", is_safe, 60)
        for name in disk.names():
            assert disk.read(name).startswith(b"\x89PNG") and b"IEND" in disk.read(name)[-12:], name
        assert len(disk.names()) == 6, disk.names()
        seen.say("every image is whole, nothing is left behind")
        client.close()
    with Monitored(["--start"], images=True) as monitored:
        folder = monitored.folder / "images"
        seen.expect("images", lambda: folder.exists() and len(os.listdir(folder)) == 6, 60)
        shutil.rmtree(folder)
        monitored.next_cycle("no folder", lambda c: c.codes == "i23" and c.verdict == "SAFE", 60)
        folder.mkdir()
        seen.expect("images", lambda: len(os.listdir(folder)) == 6, 60)


@row("settings", "disk full, read-only, folder gone, at the end of the program")
def settings_not_saved(seen):
    for what in ["full", "read-only", "folder gone"]:
        with OnDisks(["--start", "--record"]) as monitored:
            monitored.tell_substitute(seen)
            monitored.ends = True
            disk = monitored.disk("user/config/Kiv")
            before = disk.read("Kiv_Skyhold.ini")
            client = Client(monitored)
            client.invoke("Kiv_SafeDelayValue", PUT, [45])
            if what == "full":
                disk.fill()
            elif what == "read-only" and not disk.read_only(True):
                continue
            elif what == "folder gone" and not OnDisks.mounts:
                shutil.rmtree(disk.name)
            elif what == "folder gone":
                os.unlink("Kiv_Skyhold.ini", dir_fd=disk.folder)  # a disk's own folder stays
            monitored.monitor.send_signal(signal.SIGTERM)
            assert monitored.monitor.wait(10) == 0
            def said():
                return [line for line in monitored.errors if "could not be saved" in line]

            if what == "folder gone":
                assert not said(), said()
                continue
            seen.expect("a word", said, 5)
            assert disk.read("Kiv_Skyhold.ini") == before
            seen.say(f"{what}: “{said()[0].split('.ini')[0]}.ini”, the file before stays whole"
                     .replace(str(monitored.folder), "…"))
    seen.say("folder gone: made anew and saved")
