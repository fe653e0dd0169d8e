# SPDX-License-Identifier: GPL-3.0-or-later
"""Disks that are full or read-only, for the monitor alone.

The monitor gets a mount namespace of its own, in which the folders that it writes to are small
disks in memory; they end with it. Where this user may not mount, a limit on the size of its files
stands for a full disk, and the mode of the folder for a read-only one.
"""

import contextlib
import os
import pathlib
import resource
import subprocess
import sys

from table import Monitored

SIZE = 262_144  # bytes of each disk
FOLDERS = ["data", "ccdap", "images", "user/config/Kiv"]

# $0 is the folder of the run. What lies in a folder already moves to its disk.
MOUNT = """
for folder in FOLDERS; do
    cp -a "$0/$folder" "$0/moving" &&
    mount -t tmpfs -o size=SIZE,mode=0700 skyhold "$0/$folder" &&
    cp -a "$0/moving/." "$0/$folder/" && rm -r "$0/moving" || exit 99
done
exec "$@"
""".replace("FOLDERS", " ".join(FOLDERS)).replace("SIZE", str(SIZE))

# A program that is started inside would have lost the right to mount, but for root.
REMOUNT = """
import ctypes, os, sys
libc = ctypes.CDLL(None, use_errno=True)
folder, read_only, *namespaces = sys.argv[1:]
for space in [os.open(name, os.O_RDONLY) for name in namespaces]:
    if libc.setns(space, 0):
        sys.exit(os.strerror(ctypes.get_errno()))
MS_RDONLY, MS_REMOUNT = 1, 32
flags = MS_REMOUNT | (MS_RDONLY if read_only == "1" else 0)
if libc.mount(b"skyhold", folder.encode(), b"tmpfs", flags, None):
    sys.exit(os.strerror(ctypes.get_errno()))
"""

# Root needs no user namespace; the bus must see anybody else under the same id.
USER = [] if os.geteuid() == 0 else ["--user", "--map-current-user", "--keep-caps"]


def may_mount():
    tried = subprocess.run(["unshare", *USER, "--mount", "mount", "-t", "tmpfs", "skyhold", "/mnt"],
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
    return tried.returncode == 0


class OnDisks(Monitored):
    """`self.disk(folder)` breaks and mends one of FOLDERS."""

    mounts = None

    def __init__(self, *arguments, **more):
        super().__init__(*arguments, **more)
        if OnDisks.mounts is None:
            OnDisks.mounts = may_mount()
        if OnDisks.mounts:
            start = self.run.start
            self.run.start = lambda command, *more, **options: start(
                *(["unshare", *USER, "--mount", "sh", "-c", MOUNT, self.folder]
                  if pathlib.Path(command).name == "Kiv_Skyhold" else []),
                command, *more, **options)

    def tell_substitute(self, seen):
        if not OnDisks.mounts:
            seen.say("not tried on a real disk: no right to mount; a limit on the size of files "
                     "and the mode of the folder instead")

    def disk(self, folder):
        return (Disk if OnDisks.mounts else Substitute)(self, folder)


class Disk:
    def __init__(self, monitored, folder):
        self.process = monitored.monitor.pid
        self.name = monitored.folder / folder
        # As the monitor sees it; a folder that is held open outlives the monitor's namespace.
        self.folder = os.open(f"/proc/{self.process}/root{self.name}", os.O_RDONLY)

    def read(self, name):
        with open(name, "rb", opener=lambda path, flags: os.open(path, flags,
                                                                 dir_fd=self.folder)) as file:
            return file.read()

    def names(self):
        return sorted(os.listdir(self.folder))

    def fill(self):
        with contextlib.suppress(OSError):
            filler = os.open("filler", os.O_CREAT | os.O_WRONLY, dir_fd=self.folder)
            try:
                while True:
                    os.write(filler, bytes(4096))
            finally:
                os.close(filler)

    def empty(self):
        os.unlink("filler", dir_fd=self.folder)

    def read_only(self, on):
        """False when that cannot be had here."""
        namespaces = ["user", "mnt"] if USER else ["mnt"]
        subprocess.run([sys.executable, "-c", REMOUNT, self.name, "1" if on else "0",
                        *(f"/proc/{self.process}/ns/{name}" for name in namespaces)], check=True)
        return True


class Substitute(Disk):
    def __init__(self, monitored, folder):
        self.process = monitored.monitor.pid
        self.name = monitored.folder / folder
        self.folder = os.open(self.name, os.O_RDONLY)

    def fill(self):
        _soft, hard = resource.prlimit(self.process, resource.RLIMIT_FSIZE)
        resource.prlimit(self.process, resource.RLIMIT_FSIZE, (1, hard))

    def empty(self):
        _soft, hard = resource.prlimit(self.process, resource.RLIMIT_FSIZE)
        resource.prlimit(self.process, resource.RLIMIT_FSIZE, (hard, hard))

    def read_only(self, on):
        self.name.chmod(0o500 if on else 0o700)
        return os.geteuid() != 0  # root writes where it likes
