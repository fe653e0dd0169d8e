# SPDX-License-Identifier: GPL-3.0-or-later
"""skyhold-gateway beside a monitor on its private bus, and a client of it."""

import contextlib
import http.client
import json
import socket
import subprocess
import threading
import time

import monitored  # noqa: F401  (finds the script of the demonstration run)
import run


class Gateway:
    """The program, on a port that is free. `with Gateway(monitored) as gateway` ends it."""

    def __init__(self, monitored, *arguments):
        self.program = monitored.run.start(
            run.PROGRAMS / "skyhold-gateway", "--http", "127.0.0.1:0", "--discovery-port", "0",
            *arguments, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        line = self.program.stdout.readline()
        if not line.startswith("Listening on http://127.0.0.1:"):
            raise AssertionError(line + self.program.stderr.read())
        self.port = int(line.rsplit(":", 1)[1])
        self.url = f"http://127.0.0.1:{self.port}"

    def __enter__(self):
        return self

    def __exit__(self, *_failure):
        run.end_program(self.program, patience=5)
        self.program.stdout.close()
        self.program.stderr.close()

    def ask(self, path, method="GET", body=None, **headers):
        """Status, headers and text of an answer."""
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=10)
        with contextlib.closing(connection):
            connection.request(method, path, body, headers)
            answer = connection.getresponse()
            return answer.status, answer.headers, answer.read().decode()

    def get(self, path):
        status, _headers, text = self.ask(path)
        if status != 200:
            raise AssertionError(f"{path}: {status} {text}")
        return json.loads(text)

    def safe(self):
        return self.get("/api/status")["safe"]


class Events:
    """What /api/events sends, as (name, document)."""

    def __init__(self, gateway):
        self.socket = socket.create_connection(("127.0.0.1", gateway.port), timeout=30)
        self.socket.sendall(b"GET /api/events HTTP/1.1\r\nHost: localhost\r\n\r\n")
        self.seen = []  # (time, name, data)
        self.thread = threading.Thread(target=self.read, daemon=True)
        self.thread.start()

    def read(self):
        name, data = "", ""
        with contextlib.suppress(OSError), self.socket.makefile("rb") as lines:
            for raw in lines:
                line = raw.decode().strip()
                if line.startswith("event: "):
                    name = line[7:]
                elif line.startswith("data: "):
                    data = line[6:]
                elif not line and name:
                    self.seen.append((time.monotonic(), name, json.loads(data)))
                    name = ""

    def close(self):
        with contextlib.suppress(OSError):
            self.socket.shutdown(socket.SHUT_RDWR)
        self.thread.join(5)
        self.socket.close()
