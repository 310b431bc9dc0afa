"""The parts of a fleet as processes: a real etcd, and the roles of fleet-node."""

import os
import re
import shutil
import signal
import socket
import subprocess
import tempfile
import time
import urllib.request

PREFIX = "fleet/"
TICKS = os.sysconf("SC_CLK_TCK")


def processor_seconds(process_id):
    """The time that a process has used, on all processors."""
    with open(f"/proc/{process_id}/stat", encoding="utf-8") as file:
        fields = file.read().rpartition(")")[2].split()
    return (int(fields[11]) + int(fields[12])) / TICKS


def resident_bytes(process_id):
    with open(f"/proc/{process_id}/status", encoding="utf-8") as file:
        return int(re.search(r"VmRSS:\s+(\d+) kB", file.read())[1]) * 1024


def free_ports(count):
    sockets = [socket.socket() for _ in range(count)]
    try:
        for one in sockets:
            one.bind(("127.0.0.1", 0))
        return [one.getsockname()[1] for one in sockets]
    finally:
        for one in sockets:
            one.close()


class Etcd:
    """A server with an empty data folder; to be used in a with statement."""

    def __enter__(self):
        self.folder = tempfile.mkdtemp(prefix="fleet-etcd-")
        client, peer = free_ports(2)
        self.url = f"http://127.0.0.1:{client}"
        self.peer_url = f"http://127.0.0.1:{peer}"
        self.start()
        self.control("put", PREFIX + "clock", "begin")
        return self

    def start(self):
        peer_url = self.peer_url
        self.process = subprocess.Popen(
            [
                *("etcd", "--data-dir", self.folder, "--logger", "zap"),
                *("--listen-client-urls", self.url, "--advertise-client-urls", self.url),
                *("--listen-peer-urls", peer_url, "--initial-advertise-peer-urls", peer_url),
                *("--initial-cluster", f"default={peer_url}"),
            ],
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
        )

    def kill(self):
        self.process.kill()
        self.process.wait()

    def freeze(self):
        self.process.send_signal(signal.SIGSTOP)

    def thaw(self):
        self.process.send_signal(signal.SIGCONT)

    def __exit__(self, *_):
        self.kill()
        shutil.rmtree(self.folder, ignore_errors=True)

    def control(self, *words, text=None):
        """Runs etcdctl. -> what it prints"""
        return subprocess.run(
            ["etcdctl", "--endpoints", self.url, "--dial-timeout=30s", "--command-timeout=60s", *words],
            env={**os.environ, "ETCDCTL_API": "3"},
            input=text,
            check=True,
            capture_output=True,
            text=True,
        ).stdout

    def fill(self, keys, size):
        """Writes so many keys with values of so many bytes."""
        value = "x" * size
        for begin in range(0, keys, 100):
            puts = [f'put {PREFIX}key.{i} "{value}"' for i in range(begin, min(begin + 100, keys))]
            self.control("txn", text="\n" + "\n".join(puts) + "\n\n\n")

    def metric(self, name):
        """The sum of a counter, over its labels."""
        with urllib.request.urlopen(self.url + "/metrics", timeout=30) as answer:
            lines = answer.read().decode().splitlines()
        values = [line.rpartition(" ")[2] for line in lines if re.match(name + r"[ {]", line)]
        return sum(float(value) for value in values)

    def usage(self):
        return Usage(
            time.monotonic(),
            processor_seconds(self.process.pid),
            self.metric("etcd_network_client_grpc_sent_bytes_total"),
        )


class Usage:
    """What a process has used up to a moment."""

    def __init__(self, moment, processor, sent):
        self.moment, self.processor, self.sent = moment, processor, sent

    def since(self, other):
        return Usage(
            self.moment - other.moment, self.processor - other.processor, self.sent - other.sent
        )


class Node:
    """A role of fleet-node; to be used in a with statement."""

    def __init__(self, program, *words):
        self.command = [program, *map(str, words)]

    def __enter__(self):
        self.process = subprocess.Popen(self.command, stdout=subprocess.PIPE, text=True)
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()
        self.process.stdout.close()

    def line(self, word):
        """-> the words that follow in the line that begins with this word"""
        for line in self.process.stdout:
            words = line.split()
            if words[:1] == [word]:
                return words[1:]
        raise RuntimeError(f"{self.command} ended without {word}")
