"""Measures the HTTP service from outside, with clients that other people wrote.

The contestant is a server of the same libraries that answers a fixed text on one thread. Both run
at the same time, and are measured in turns, so that a disturbance affects both.
"""
import argparse
import contextlib
import json
import os
import re
import selectors
import socket
import statistics
import subprocess
import sys
import threading
import time
import urllib.request

ROUTE = "/options/net.port"
BASE_LINE = "fixed text"


class Server:
    """A process that prints where it listens."""

    def __init__(self, *command):
        self.process = subprocess.Popen(command, stdout=subprocess.PIPE, text=True)
        line = self.process.stdout.readline()
        self.port = int(line.rsplit(":", 1)[1])

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.process.wait(30)
        self.process.stdout.close()

    def url(self, path=ROUTE):
        return f"http://127.0.0.1:{self.port}{path}"

    def processor_time(self):
        """In seconds, of the whole process."""
        fields = open(f"/proc/{self.process.pid}/stat").read().rsplit(") ", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")

    def memory(self):
        """In bytes: what only this process has in memory."""
        text = open(f"/proc/{self.process.pid}/smaps_rollup").read()
        return 1024 * sum(map(int, re.findall(r"^Private_\w+: +(\d+) kB", text, re.M)))

    def descriptors(self):
        return len(os.listdir(f"/proc/{self.process.pid}/fd"))


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def number(pattern, text):
    return float(re.search(pattern, text).group(1))


def wrk(url, connections, seconds):
    """Requests a second with keep-alive, and the 99th percentile of the response time in ms."""
    text = run("wrk", "-t1", f"-c{connections}", f"-d{seconds}s", "--latency", url)
    if "Non-2xx" in text or "Socket errors" in text:
        raise RuntimeError(text)
    value, unit = re.search(r"99%\s+([\d.]+)(us|ms|s)\b", text).groups()
    return number(r"Requests/sec: +([\d.]+)", text), float(value) * {
        "us": 0.001,
        "ms": 1,
        "s": 1000,
    }[unit]


def ab(url, count, connections=64):
    """Requests a second with a connection for each."""
    text = run("ab", "-q", f"-n{count}", f"-c{connections}", url)
    if number(r"Failed requests: +(\d+)", text) > 0 or "Non-2xx" in text:
        raise RuntimeError(text)
    return number(r"Requests per second: +([\d.]+)", text)


def in_turns(rounds, *measures):
    """The results of each measure."""
    results = [[] for _ in measures]
    for _ in range(rounds):
        for measure, of_measure in zip(measures, results):
            of_measure.append(measure())
    return results


def median_ratio(ours, theirs):
    return statistics.median(a / b for a, b in zip(ours, theirs))


class Clients:
    """Many connections of this process."""

    def __init__(self, port, count, request):
        self.sockets = []
        for _ in range(count):
            client = socket.create_connection(("127.0.0.1", port))
            client.sendall(request)
            self.sockets.append(client)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for client in self.sockets:
            client.close()

    def await_text(self, text, seconds=60):
        """Reads from all until each has got the text. Returns when the last one had, in seconds."""
        begin = time.monotonic()
        missing = set(self.sockets)
        with selectors.DefaultSelector() as selector:
            for client in missing:
                selector.register(client, selectors.EVENT_READ)
            while missing:
                if time.monotonic() - begin > seconds:
                    raise RuntimeError(f"{len(missing)} clients lack {text}")
                for key, _ in selector.select(1):
                    received = key.fileobj.recv(65536)
                    if not received:
                        raise RuntimeError("a client was disconnected")
                    if text in received:
                        selector.unregister(key.fileobj)
                        missing.discard(key.fileobj)
        return time.monotonic() - begin


@contextlib.contextmanager
def trickling(port, count):
    """Clients that send a byte of a request's head now and then, and never all of it."""
    over = threading.Event()

    def trickle(clients):
        while not over.wait(0.2):
            for i, client in enumerate(clients.sockets):
                try:
                    client.sendall(b"x")
                except OSError:  # the service has ended it, so another one comes
                    client.close()
                    with contextlib.suppress(OSError):
                        clients.sockets[i] = socket.create_connection(("127.0.0.1", port))

    with Clients(port, count, b"GET /x HTTP/1.1\r\nHost: localhost\r\nA: ") as clients:
        thread = threading.Thread(target=trickle, args=(clients,))
        thread.start()
        try:
            yield
        finally:
            over.set()
            thread.join()


class Report:
    def __init__(self):
        self.rows = []

    def add(self, subject, value, limit, holds):
        self.rows.append({"subject": subject, "value": value, "limit": limit, "holds": holds})
        print(f"{subject:55} {value:>34}   {limit:>22}   {'holds' if holds else 'MISSED'}",
              flush=True)


def put(server, value, key="net.port"):
    request = urllib.request.Request(server.url(f"/options/{key}"), json.dumps(value).encode(),
                                     method="PUT", headers={"Content-Type": "application/json"})
    with urllib.request.urlopen(request) as response:
        response.read()


def longest_wait(server, action):
    """How long another client waits at most while an action runs, in ms."""
    program = os.path.join(os.path.dirname(__file__), "longest_wait.py")
    with subprocess.Popen([sys.executable, program, server.url("/options/net.other")],
                          stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as other:
        other.stdout.readline()
        action()
        return float(other.communicate()[0])


def keep_alive(report, ours, fixed, rounds, seconds):
    rate, base = in_turns(rounds, lambda: wrk(ours.url(), 64, seconds)[0],
                          lambda: wrk(fixed.url(), 64, seconds)[0])
    ratio = median_ratio(rate, base)
    report.add("GET of an option, keep-alive, 64 connections",
               f"{statistics.median(rate):.0f}/s, {ratio:.2f} x {BASE_LINE}", "at least 0.60 x",
               ratio >= 0.6)


def connection_each(report, ours, fixed, rounds, count):
    def measure(server):
        before = server.processor_time()
        return ab(server.url(), count), (server.processor_time() - before) / count

    mine, base = in_turns(rounds, lambda: measure(ours), lambda: measure(fixed))
    ratio = median_ratio([rate for rate, _ in mine], [rate for rate, _ in base])
    cost = statistics.median(time for _, time in mine) * 1e6
    report.add("the same, a connection for each request",
               f"{statistics.median(r for r, _ in mine):.0f}/s, {ratio:.2f} x {BASE_LINE}",
               "at least 0.60 x", ratio >= 0.6)
    report.add("its processor time a request", f"{cost:.0f} us", "at most 150 us", cost <= 150)


def watch(server, key):
    return f"GET /watch?key={key} HTTP/1.1\r\nHost: 127.0.0.1:{server.port}\r\n\r\n".encode()


def idle_streams(report, ours, count):
    request = watch(ours, "net.port")
    with Clients(ours.port, 100, request) as few:  # what the first stream needs once
        few.await_text(b"data: ")
    before = ours.memory()
    with Clients(ours.port, count, request) as clients:
        clients.await_text(b"data: ")
        each = (ours.memory() - before) / count
        report.add(f"{count} idle event streams, memory of each", f"{each:.0f} bytes",
                   "at most 4096 bytes", each <= 4096)

        def change(value):
            put(ours, value)
            return clients.await_text(str(value).encode()) * 1000

        last = change(7777)
        longest = longest_wait(ours, lambda: change(8888))
    report.add("a change reaches all of them", f"{last:.0f} ms", "at most 500 ms", last <= 500)
    report.add("another client meanwhile", f"at most {longest:.0f} ms", "at most 100 ms",
               longest <= 100)


def large_events(report, ours, count):
    """Clients that watch and do not read beyond the first value."""
    with Clients(ours.port, count, watch(ours, "net.large")) as clients:
        clients.await_text(b"data: ")
        longest = longest_wait(ours, lambda: put(ours, "x" * 1000000, "net.large"))
    report.add(f"another client, while {count} get 1 MB each", f"at most {longest:.0f} ms",
               "at most 100 ms", longest <= 100)


def slow_heads(report, ours, count, rounds, seconds):
    def beside():
        with trickling(ours.port, count):
            return wrk(ours.url(), 100, seconds)[1]

    alone, with_slow = in_turns(rounds, lambda: wrk(ours.url(), 100, seconds)[1], beside)
    worst = statistics.median(with_slow)
    limit = max(3 * statistics.median(alone), 20)
    report.add(f"100 clients beside {count} that never finish a head",
               f"99 %: {worst:.1f} ms, alone {statistics.median(alone):.1f} ms",
               f"at most {limit:.0f} ms", worst <= limit)


def growth(report, ours, count):
    ab(ours.url(), count // 10)
    memory, descriptors = ours.memory(), ours.descriptors()
    ab(ours.url(), count)
    time.sleep(0.5)  # the last connections end
    grown = ours.memory() - memory
    left = ours.descriptors() - descriptors
    report.add(f"{count} requests", f"{grown / 1024:+.0f} KiB, {left:+d} descriptors",
               "256 KiB, no descriptor", grown <= 256 * 1024 and left <= 0)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program", help="connector-config")
    parser.add_argument("fixed", help="fixed-text-server")
    parser.add_argument("--quick", action="store_true", help="check that everything runs")
    parser.add_argument("--json", help="file for the results")
    arguments = parser.parse_args()
    rounds, scale = (1, 0.05) if arguments.quick else (7, 1)

    report = Report()
    ours = Server(arguments.program, "--set", "net.port=8080", "--set", "net.other=1", "--set",
                  "net.large=", "serve", "--http", "127.0.0.1:0",
                  "--writable", "net.")
    with ours:
        with urllib.request.urlopen(ours.url()) as response:
            text = response.read().decode()
        with Server(arguments.fixed, text) as fixed:
            seconds = 1 if arguments.quick else 3
            keep_alive(report, ours, fixed, rounds, seconds)
            connection_each(report, ours, fixed, rounds, int(20000 * scale))
        slow_heads(report, ours, int(2000 * scale), min(rounds, 3), seconds)
        idle_streams(report, ours, int(9998 * scale))  # and one that changes it, and another one
        growth(report, ours, int(100000 * scale))
        large_events(report, ours, int(1500 * scale))
    if arguments.json:
        with open(arguments.json, "w", encoding="utf-8") as file:
            json.dump(report.rows, file, indent=2)
    return 0


if __name__ == "__main__":
    sys.exit(main())
