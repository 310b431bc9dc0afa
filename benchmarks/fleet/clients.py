"""Clients of the event streams of relays, as many machines in one process."""

import re
import selectors
import socket
import threading
import time
import urllib.parse

VALUE = re.compile(rb'"value":"(\d+) ')
END = re.compile(rb'"value":"end"')


class Clients:
    """Watches the option "clock" at each URL so many times, on a thread of its own."""

    def __init__(self, urls, count):
        self.selector = selectors.DefaultSelector()
        self.delays = {}  # of each change, in seconds
        self.bytes = 0
        self.parts = {}  # of each connection: the line whose end has not come yet
        self.pending = len(urls) * count
        for url in urls:
            for _ in range(count):
                self.connect(url)
        self.thread = threading.Thread(target=self.run, daemon=True)
        self.thread.start()

    def connect(self, url):
        place = urllib.parse.urlparse(url)
        connection = socket.create_connection((place.hostname, place.port), timeout=30)
        request = f"GET /watch?key=clock HTTP/1.1\r\nHost: {place.netloc}\r\n\r\n"
        connection.sendall(request.encode())
        head = connection.recv(65536)
        if not head.startswith(b"HTTP/1.1 200 "):
            raise RuntimeError(f"{url} answers {head!r}")
        self.selector.register(connection, selectors.EVENT_READ)

    def run(self):
        while self.pending > 0:
            for key, _ in self.selector.select(60):
                self.read(key.fileobj)

    def read(self, connection):
        data = connection.recv(1 << 20)
        moment = time.monotonic_ns()
        self.bytes += len(data)
        lines, _, self.parts[connection] = (self.parts.pop(connection, b"") + data).rpartition(b"\n")
        for match in VALUE.finditer(lines):
            begin = int(match[1])
            self.delays.setdefault(begin, []).append((moment - begin) / 1e9)
        if END.search(lines) or not data:
            self.selector.unregister(connection)
            connection.close()
            self.pending -= 1

    def wait(self):
        self.thread.join(120)
        if self.pending > 0:
            raise RuntimeError(f"{self.pending} clients did not see the end")
