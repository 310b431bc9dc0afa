#!/usr/bin/env python3
"""A fleet on one machine: three nodes of etcd and three daemons.

    fleet.py [DAEMON]

DAEMON is the program fleet-daemon, by default the one in build/release. The nodes listen on free
ports; their data is in a temporary folder. The script changes an option for the canary, which is
web-1, and then for all daemons, shows what they print, stops a node and changes the option again.
In the end, also after Ctrl-C, nothing of it is left.
"""

import contextlib
import os
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
BUILT = os.path.join(HERE, "../../build/release/examples/fleet-daemon")
PREFIX, CANARY = "fleet/web/", "canary/web/"
SECONDS = 60  # that anything may take


def free_ports(count):
    """Ports that were free a moment ago"""
    with contextlib.ExitStack() as stack:
        sockets = [stack.enter_context(socket.socket()) for _ in range(count)]
        for one in sockets:
            one.bind(("127.0.0.1", 0))
        return [one.getsockname()[1] for one in sockets]


class Fleet:
    """Starts programs; they end with it. To be used in a with statement."""

    def __init__(self, daemon):
        self.daemon = daemon
        self.programs = {}
        self.signal = None  # the one that ends the script
        for number in (signal.SIGINT, signal.SIGTERM):
            signal.signal(number, self.end)

    def end(self, number, _):
        """Only notes the signal: an exception in the middle of a start would lose a program."""
        self.signal = number

    def __enter__(self):
        self.folder = tempfile.mkdtemp(prefix="fleet-")
        return self

    def __exit__(self, *_):
        for program in self.programs.values():
            program.kill()
        for program in self.programs.values():
            program.wait()
        shutil.rmtree(self.folder)

    def start(self, name, *command):
        with open(self.output(name), "wb") as output:
            # In a session of its own: Ctrl-C is for this script, which then ends everything.
            self.programs[name] = subprocess.Popen(
                command, stdout=output, stderr=output, start_new_session=True
            )

    def output(self, name):
        return os.path.join(self.folder, name + ".log")

    def wait(self, what, condition):
        end = time.monotonic() + SECONDS
        while not condition():
            if self.signal:
                sys.exit(128 + self.signal)
            if time.monotonic() > end:
                raise RuntimeError(f"{what}: not within {SECONDS} s")
            time.sleep(0.01)

    def start_etcd(self):
        ports = free_ports(6)
        peers = [f"http://127.0.0.1:{port}" for port in ports[3:]]
        self.endpoints = [f"http://127.0.0.1:{port}" for port in ports[:3]]
        cluster = ",".join(f"etcd-{i}={url}" for i, url in enumerate(peers, 1))
        for i, (url, peer) in enumerate(zip(self.endpoints, peers), 1):
            self.start(
                f"etcd-{i}",
                *("etcd", "--name", f"etcd-{i}", "--logger", "zap"),
                *("--data-dir", os.path.join(self.folder, f"etcd-{i}")),
                *("--listen-client-urls", url, "--advertise-client-urls", url),
                *("--listen-peer-urls", peer, "--initial-advertise-peer-urls", peer),
                *("--initial-cluster", cluster),
            )
        self.wait("etcd", lambda: self.control("endpoint", "health") == 0)

    def control(self, *words):
        """Runs etcdctl. -> its status"""
        return subprocess.run(
            ["etcdctl", "--endpoints", ",".join(self.endpoints), *words],
            env={**os.environ, "ETCDCTL_API": "3"},
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
            check=False,
        ).returncode

    def start_daemon(self, name, *prefixes):
        self.start(name, self.daemon, name, ",".join(prefixes), ",".join(self.endpoints))
        self.show(f"{name}: ready")

    def put(self, key, value):
        # connector-config fleet put log.level=VALUE does the same.
        print(f"$ etcdctl put {key} {value}", flush=True)
        self.wait("etcdctl put", lambda: self.control("put", key, value) == 0)

    def show(self, line):
        """Waits until the daemon that the line begins with has printed it, and prints it, too."""
        name = line.partition(":")[0]

        def is_there():
            with open(self.output(name), encoding="utf-8") as file:
                if line in file.read().splitlines():
                    return True
            if self.programs[name].poll() is not None:
                raise RuntimeError(f"{name} has ended, see its output")
            return False

        self.wait(line, is_there)
        print(line, flush=True)


def run(fleet):
    fleet.start_etcd()
    print("etcd: three nodes are ready", flush=True)
    fleet.start_daemon("web-1", CANARY, PREFIX)  # the canary looks there first
    fleet.start_daemon("web-2", PREFIX)
    fleet.start_daemon("web-3", PREFIX)

    fleet.put(CANARY + "log.level", "trace")
    fleet.show("web-1: log.level = trace")

    fleet.put(PREFIX + "log.level", "debug")
    fleet.show("web-2: log.level = debug")
    fleet.show("web-3: log.level = debug")

    print("$ etcdctl del " + CANARY + "log.level", flush=True)
    fleet.wait("etcdctl del", lambda: fleet.control("del", CANARY + "log.level") == 0)
    fleet.show("web-1: log.level = debug")

    fleet.programs["etcd-1"].kill()
    print("etcd: one node was killed", flush=True)
    fleet.put(PREFIX + "log.level", "info")
    for name in ("web-1", "web-2", "web-3"):
        fleet.show(f"{name}: log.level = info")


def main():
    if len(sys.argv) > 2:
        sys.exit("Usage: fleet.py [DAEMON]")
    for program in ("etcd", "etcdctl"):
        if shutil.which(program) is None:
            sys.exit(f"{program} is missing: install etcd-server and etcd-client")
    try:
        with Fleet(sys.argv[1] if len(sys.argv) > 1 else BUILT) as fleet:
            run(fleet)
    except (OSError, RuntimeError) as failure:
        sys.exit(f"fleet.py: {failure}")


if __name__ == "__main__":
    main()
