#!/usr/bin/env python3
"""Measures what one etcd and one relay carry, with a real server on this machine.

    measure.py [--quick] [--costs FILE] NODE
    measure.py --check RELAYS CLIENTS [--costs FILE] NODE
    measure.py --outage SECONDS NODE

NODE is the program fleet-node. The first form prints tables, and writes the costs that simulate.py
needs to FILE. With --quick, it measures small sizes briefly, only to show that it works. The second
form starts as many relays with as many clients each, and prints what was measured beside what the
simulation says with the costs in FILE. The third form kills a server, and freezes another one, for
so many seconds, and prints when a source knew that.
"""

import argparse
import contextlib
import json
import os
import statistics
import sys
import time

from clients import Clients
from parts import PREFIX, Etcd, Node, processor_seconds, resident_bytes
import simulate

HERE = os.path.dirname(os.path.abspath(__file__))
SOURCES_OF_A_PROCESS = 500


def milliseconds(seconds):
    return f"{seconds * 1000:.1f} ms"


def microseconds(seconds):
    return f"{seconds * 1e6:.0f} us"


def print_table(title, columns, rows):
    print(f"\n{title}\n\n| {' | '.join(columns)} |\n|{'---|' * len(columns)}")
    for row in rows:
        print(f"| {' | '.join(map(str, row))} |", flush=True)


def quantile(values, part):
    ordered = sorted(values)
    return ordered[int((len(ordered) - 1) * part)]


class Bench:
    def __init__(self, node, is_quick):
        self.node = node
        self.seconds = 1 if is_quick else 5
        self.is_quick = is_quick

    def put(self, etcd, rate, size):
        """Puts at a steady rate. -> (p50, p99) of the answers, in seconds"""
        with Node(self.node, "put", etcd.url, PREFIX, int(rate * self.seconds), rate, size) as put:
            return [int(word) / 1e9 for word in put.line("done")]

    def watchers(self, count, keys=1000, rate=10, size=100):
        """Many sources on one server. -> a row of figures"""
        with Etcd() as etcd, contextlib.ExitStack() as stack:
            etcd.fill(keys, 100)
            nodes = [
                stack.enter_context(Node(self.node, "watch", etcd.url, PREFIX, part))
                for part in parts_of(count, SOURCES_OF_A_PROCESS)
            ]
            for node in nodes:
                node.line("current")
            before = etcd.usage()
            put = self.put(etcd, rate, size)
            told = [list(map(int, node.line("told"))) for node in nodes]
            used = etcd.usage().since(before)
            return {
                "watchers": count,
                "rate": rate,
                "size": size,
                "put": put,
                "p50": statistics.median(one[1] for one in told) / 1e9,
                "p99": max(one[2] for one in told) / 1e9,
                "last": max(one[3] for one in told) / 1e9,
                # A source that is told late is told several changes at once.
                "messages": count * int(rate * self.seconds) / used.moment,
                "processor": used.processor / used.moment,
                "bytes": used.sent / used.moment,
                "resident": resident_bytes(etcd.process.pid),
            }

    def silence(self, count):
        """-> processor time and bytes that a watcher costs each second when nothing changes"""
        with Etcd() as etcd, Node(self.node, "watch", etcd.url, PREFIX, count) as node:
            node.line("current")
            before = etcd.usage()
            self.put(etcd, 1 / self.seconds, 1)  # one change, to wait for
            used = etcd.usage().since(before)
            return used.processor / used.moment / count, used.sent / used.moment / count

    def first_list(self, keys):
        with Etcd() as etcd:
            etcd.fill(keys, 100)
            before = etcd.usage()
            with Node(self.node, "watch", etcd.url, PREFIX, 1) as node:
                node.line("current")
                used = etcd.usage().since(before)
            return {"keys": keys, "used": used, "resident": resident_bytes(etcd.process.pid)}

    def relays(self, relays, clients, rate=10, size=100):
        """Relays with clients of their own. -> a row of figures"""
        with Etcd() as etcd, contextlib.ExitStack() as stack:
            nodes = [
                stack.enter_context(Node(self.node, "relay", etcd.url, PREFIX))
                for _ in range(relays)
            ]
            watching = Clients([node.line("listening")[0] for node in nodes], clients)
            ids = [node.process.pid for node in nodes]
            before, sent = sum(map(processor_seconds, ids)), watching.bytes
            self.put(etcd, rate, size)
            watching.wait()
            delays = watching.delays.values()  # the figures are those of the median change
            told = sum(map(len, delays))
            return {
                "relays": relays,
                "clients": clients,
                "p50": statistics.median(quantile(one, 0.5) for one in delays),
                "p99": statistics.median(quantile(one, 0.99) for one in delays),
                "last": statistics.median(map(max, delays)),
                "processor": sum(map(processor_seconds, ids)) - before,
                "bytes": (watching.bytes - sent) / told,
                "told": told,
                "resident": max(map(resident_bytes, ids)),
            }


def parts_of(count, most):
    return [min(most, count - begin) for begin in range(0, count, most)]


# The tables


def print_watchers(title, rows):
    columns = ["watchers", "changes/s", "value", "put p50", "told p50", "told p99", "last"]
    columns += ["processors", "bytes/s", "memory"]
    print_table(
        title,
        columns,
        [
            [
                *(row["watchers"], row["rate"], f"{row['size']} B"),
                *map(milliseconds, (row["put"][0], row["p50"], row["p99"], row["last"])),
                f"{row['processor']:.2f}",
                f"{row['bytes'] / 1e6:.2f} MB",
                f"{row['resident'] / 1e6:.0f} MB",
            ]
            for row in rows
        ],
    )


def print_lists(rows):
    print_table(
        "First list",
        ["keys", "time", "processor time of etcd", "sent", "memory of etcd"],
        [
            [
                row["keys"],
                milliseconds(row["used"].moment),
                milliseconds(row["used"].processor),
                f"{row['used'].sent / 1e6:.1f} MB",
                f"{row['resident'] / 1e6:.0f} MB",
            ]
            for row in rows
        ],
    )


def print_relays(rows):
    print_table(
        "One relay, 10 changes a second",
        ["clients", "told p50", "told p99", "last", "processor time for each event", "memory"],
        [
            [
                row["clients"],
                *map(milliseconds, (row["p50"], row["p99"], row["last"])),
                microseconds(row["processor"] / row["told"]),
                f"{row['resident'] / 1e6:.0f} MB",
            ]
            for row in rows
        ],
    )


# The costs


def costs_of(one, seldom, often, silence, lists, relay_few, relay_many):
    """What simulate.py needs. The costs of a message are differences between two rates."""
    life, life_bytes = silence
    messages = often["messages"] - seldom["messages"]
    processor = (often["processor"] - seldom["processor"]) / messages
    sent = (often["bytes"] - seldom["bytes"]) / messages
    largest = lists[-1]
    events = relay_many["told"] - relay_few["told"]
    return {
        "etcd": {
            "put": {"p50": one["put"][0], "p99": one["put"][1]},
            "take": max(one["p50"] - one["put"][0], 0.0001),
            "send": max(processor, 1e-6),
            "sendBytes": sent,
            "life": life,
            "lifeBytes": life_bytes,
            "listKey": largest["used"].processor / largest["keys"],
            "listKeyBytes": largest["used"].sent / largest["keys"],
            "processors": os.cpu_count(),
        },
        "relay": {
            "take": max(relay_few["p50"] - one["p50"], 0.0001),
            "send": max((relay_many["processor"] - relay_few["processor"]) / events, 1e-6),
            "sendBytes": relay_many["bytes"],
            "processors": os.cpu_count(),
        },
    }


def measure(bench):
    """Prints the tables. -> the costs"""
    quick = bench.is_quick
    by_count = [bench.watchers(n) for n in ([1, 10] if quick else [1, 10, 100, 500, 1000])]
    print_watchers("Watchers, 1,000 keys of 100 bytes", by_count)
    count = 10 if quick else 500
    by_rate = [bench.watchers(count, rate=rate) for rate in (2, 20, 40)]
    print_watchers("Changes", by_rate)
    if not quick:
        by_size = [bench.watchers(100, size=size) for size in (1_000, 10_000, 100_000)]
        print_watchers("Sizes", by_size)
    silence = bench.silence(count)
    print(
        f"\nA watcher in silence: {microseconds(silence[0])} of a processor and "
        f"{silence[1]:.0f} bytes each second"
    )
    lists = [bench.first_list(n) for n in ([1000] if quick else [1_000, 10_000, 100_000])]
    print_lists(lists)
    relays = [bench.relays(1, n) for n in ([1, 10] if quick else [1, 20, 100, 500])]
    print_relays(relays)
    return costs_of(by_count[0], by_rate[0], by_rate[-1], silence, lists, relays[0], relays[-1])


def check(bench, relays, clients, costs):
    real = bench.relays(relays, clients)
    tree = simulate.Tree(tiers=[relays, clients], networks=["machine", "machine"])
    simulated = simulate.run(tree, costs, seed=1, changes=50, rate=10)
    print_table(
        f"{relays} relays with {clients} clients each",
        ["", "p50", "p99", "last"],
        [
            [name, *(milliseconds(row[key]) for key in ("p50", "p99", "last"))]
            for name, row in (("measured", real), ("simulated", simulated))
        ],
    )


# An outage


def outage(bench, seconds, name, begin, end):
    """-> a row: after how many seconds a source was stale, and current again"""
    with Etcd() as etcd, Node(bench.node, "status", etcd.url, PREFIX) as node:
        lists = node.line("current")[1]
        began = time.monotonic_ns()
        begin(etcd)
        stale = (int(node.line("stale")[0]) - began) / 1e9
        time.sleep(max(0, seconds - stale))
        ended = time.monotonic_ns()
        end(etcd)
        moment, lists_after = node.line("current")
        current = (int(moment) - ended) / 1e9
        return [name, f"{stale:.2f} s", f"{current:.2f} s", int(lists_after) - int(lists)]


def print_outages(bench, seconds):
    rows = [
        outage(bench, seconds, "killed, started again", Etcd.kill, Etcd.start),
        outage(bench, seconds, "frozen, thawed", Etcd.freeze, Etcd.thaw),
    ]
    columns = ["server", "stale after", "current after", "lists"]
    print_table(f"An outage of {seconds} s", columns, rows)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--check", nargs=2, type=int, metavar=("RELAYS", "CLIENTS"))
    parser.add_argument("--outage", type=int, metavar="SECONDS")
    parser.add_argument("--costs", default=os.path.join(HERE, "costs.json"))
    parser.add_argument("node", metavar="NODE")
    options = parser.parse_args()
    bench = Bench(options.node, options.quick)
    if options.check:
        check(bench, *options.check, simulate.read_costs(options.costs))
        return
    if options.outage:
        print_outages(bench, options.outage)
        return
    costs = measure(bench)
    if options.quick:
        return
    costs["assumed"] = simulate.read_costs(options.costs)["assumed"]
    with open(options.costs, "w", encoding="utf-8") as file:
        json.dump(costs, file, indent=2)
        file.write("\n")


if __name__ == "__main__":
    sys.exit(main())
