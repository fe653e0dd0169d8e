# SPDX-License-Identifier: GPL-3.0-or-later
"""Servers that the uploader sends files to, each on a port of its own of this machine.

All take the user USER with PASSWORD and keep what they get in `folder`.
"""

import logging
import os
import socket
import subprocess
import threading

import paramiko
from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.filesystems import AbstractedFS, FilesystemError
from pyftpdlib.handlers import DTPHandler, FTPHandler, TLS_DTPHandler, TLS_FTPHandler
from pyftpdlib.ioloop import IOLoop
from pyftpdlib.servers import FTPServer

USER = "observer"
PASSWORD = "pass w%ord;é"  # nothing in it may be taken for anything else

logging.getLogger("pyftpdlib").disabled = True
logging.getLogger("paramiko").setLevel(logging.CRITICAL)


class NeverRenamesOver(AbstractedFS):
    """As some servers do, it refuses to rename a file to a name that is taken."""

    def rename(self, src, dst):
        if os.path.exists(dst):
            raise FilesystemError("the name is taken")
        super().rename(src, dst)


class EncryptedData(TLS_DTPHandler):
    """The server takes a client that greets on the data connection before the command has come
    for one that has left."""

    def readable(self):
        return self._ssl_want_read or self.receive


class Ftp:
    """Debian's own FTP server. Commands are noted in `commands`, the password among them. With a
    certificate it encrypts when asked to, or, `implicit`, from the first byte on."""

    def __init__(self, folder, permissions="elradfmw", renames_over=True, certificate=None,
                 implicit=False):
        folder.mkdir(parents=True, exist_ok=True)
        self.folder = folder
        self.commands = commands = []

        class Handler(TLS_FTPHandler if certificate else FTPHandler):
            authorizer = DummyAuthorizer()
            dtp_handler = EncryptedData if certificate else DTPHandler
            abstracted_fs = AbstractedFS if renames_over else NeverRenamesOver
            auth_failed_timeout = 0
            use_sendfile = False
            certfile = certificate

            def handle(self):
                if implicit:
                    self.secure_connection(self.get_ssl_context())
                super().handle()

            def pre_process_command(self, line, cmd, arg):
                commands.append(line)
                super().pre_process_command(line, cmd, arg)

        Handler.authorizer.add_user(USER, PASSWORD, str(folder), perm=permissions)
        self.loop = IOLoop()
        self.server = FTPServer(("127.0.0.1", 0), Handler, ioloop=self.loop)
        self.address = f"127.0.0.1:{self.server.socket.getsockname()[1]}/"
        self.ending = threading.Event()
        self.thread = threading.Thread(target=self.serve, daemon=True)

    def serve(self):
        while not self.ending.is_set():
            self.loop.loop(timeout=0.02, blocking=False)
        self.server.close_all()

    def __enter__(self):
        self.thread.start()
        return self

    def __exit__(self, *_failure):
        self.ending.set()
        self.thread.join()


class StoppingFtp:
    """Stops at one point of the first upload, until `go_on` is set; with `hang_up` it ends the
    connection there instead. What happens is noted in `events`."""

    def __init__(self, folder, stop_at, hang_up=False):
        folder.mkdir(parents=True, exist_ok=True)
        self.folder = folder
        self.stop_at = stop_at
        self.hang_up = hang_up
        self.go_on = threading.Event()
        self.stopped = threading.Event()
        self.events = []
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.address = f"127.0.0.1:{self.listener.getsockname()[1]}/"

    def __enter__(self):
        threading.Thread(target=self.accept, daemon=True).start()
        return self

    def __exit__(self, *_failure):
        self.go_on.set()
        self.listener.close()

    def accept(self):
        while True:
            try:
                connection, _ = self.listener.accept()
            except OSError:
                return
            threading.Thread(target=self.serve, args=[connection], daemon=True).start()

    def point(self, name):
        if name != self.stop_at or self.stopped.is_set():
            return
        self.stopped.set()
        if self.hang_up:
            raise ConnectionError("hangs up")
        self.go_on.wait(30)

    def serve(self, connection):
        self.events.append("connected")
        try:
            with connection, socket.create_server(("127.0.0.1", 0)) as data, \
                    connection.makefile("rw", newline="\r\n", encoding="utf-8") as control:
                self.talk(control, data)
        except (OSError, ValueError):
            pass
        self.events.append("left")

    def talk(self, control, data):
        def answer(text):
            control.write(text + "\r\n")
            control.flush()

        name = renamed = None
        self.point("greeting")
        answer("220 ready")
        for line in control:
            command, _, argument = line.strip().partition(" ")
            self.events.append(command)
            if command == "USER":
                answer("331 password?")
            elif command == "PASS":
                self.point("login")
                answer("230 welcome")
            elif command == "PWD":
                answer('257 "/"')
            elif command == "EPSV":
                answer(f"229 here (|||{data.getsockname()[1]}|)")
            elif command == "STOR":
                name = argument
                answer("150 go on")
                self.receive(data, self.folder / name)
                self.point("receipt")
                answer("226 received")
            elif command == "RNFR":
                renamed = argument
                answer("350 to which?")
            elif command == "RNTO":
                self.point("rename")
                (self.folder / renamed).rename(self.folder / argument)
                answer("250 renamed")
            elif command == "DELE":
                (self.folder / argument).unlink()
                answer("250 deleted")
            elif command == "QUIT":
                answer("221 bye")
                return
            else:
                answer("200 as you like")

    def receive(self, data, path):
        stream, _ = data.accept()
        with stream, open(path, "wb") as file:
            stream.settimeout(30)
            got = stream.recv(1000)
            self.point("mid-file")
            while got:
                file.write(got)
                got = stream.recv(65536)


class Sftp(paramiko.ServerInterface):
    """An SFTP server that does not rename over a file, as the protocol's usual version has it."""

    def __init__(self, folder):
        folder.mkdir(parents=True, exist_ok=True)
        self.folder = folder
        self.passwords = []
        self.key = paramiko.ECDSAKey.generate()
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.port = self.listener.getsockname()[1]
        self.address = f"sftp://127.0.0.1:{self.port}/"
        self.known_hosts_line = (f"[127.0.0.1]:{self.port} {self.key.get_name()} "
                                 f"{self.key.get_base64()}\n")
        self.transports = []

    def __enter__(self):
        threading.Thread(target=self.accept, daemon=True).start()
        return self

    def __exit__(self, *_failure):
        self.listener.close()
        for transport in self.transports:
            transport.close()

    def accept(self):
        while True:
            try:
                connection, _ = self.listener.accept()
            except OSError:
                return
            transport = paramiko.Transport(connection)
            transport.add_server_key(self.key)
            transport.set_subsystem_handler("sftp", paramiko.SFTPServer, SftpFiles, self.folder)
            self.transports.append(transport)
            try:
                transport.start_server(server=self)
            except (paramiko.SSHException, EOFError):
                pass  # the client has gone: it does not know the key

    def get_allowed_auths(self, username):
        return "password"

    def check_auth_password(self, username, password):
        self.passwords.append(password)
        good = (username, password) == (USER, PASSWORD)
        return paramiko.AUTH_SUCCESSFUL if good else paramiko.AUTH_FAILED

    def check_channel_request(self, kind, chanid):
        return paramiko.OPEN_SUCCEEDED


class SftpFiles(paramiko.SFTPServerInterface):
    def __init__(self, server, folder):
        super().__init__(server)
        self.folder = folder

    def path(self, name):
        return self.folder / name.lstrip("/")

    @staticmethod
    def answer(work):
        try:
            return work()
        except OSError as error:
            return paramiko.SFTPServer.convert_errno(error.errno)

    def stat(self, path):
        return self.answer(lambda: paramiko.SFTPAttributes.from_stat(os.stat(self.path(path))))

    lstat = stat

    def mkdir(self, path, attr):
        return self.answer(lambda: self.path(path).mkdir() or paramiko.SFTP_OK)

    def remove(self, path):
        return self.answer(lambda: self.path(path).unlink() or paramiko.SFTP_OK)

    def rename(self, oldpath, newpath):
        if self.path(newpath).exists():
            return paramiko.SFTP_FAILURE
        return self.answer(
            lambda: self.path(oldpath).rename(self.path(newpath)) and paramiko.SFTP_OK)

    def open(self, path, flags, attr):
        def work():
            handle = paramiko.SFTPHandle(flags)
            handle.writefile = os.fdopen(os.open(self.path(path), flags, 0o644), "wb")
            return handle

        return self.answer(work)


def make_certificate(path):
    """A certificate that nobody vouches for, with its key in the same file."""
    subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt",
                    "ec_paramgen_curve:prime256v1", "-nodes", "-subj", "/CN=127.0.0.1", "-addext",
                    "subjectAltName=IP:127.0.0.1", "-days", "2", "-keyout", path, "-out",
                    f"{path}.crt"], check=True, stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL)
    path.write_text(path.read_text() + path.with_name(path.name + ".crt").read_text())
    return str(path)
