#!/usr/bin/env python3
"""Simulates how a change of an option spreads through a fleet.

    simulate.py [--seed N] [--costs FILE] [--rate CHANGES] [--machines N]...

The costs are those that measure.py has measured, and times of networks that are assumed. Prints a
table: for fleets of 1,000 to 1,000,000 machines and three layouts the time until half, 99 % and all
of the machines know a change, and the load of each tier. The same seed gives the same table.

The model: a server sends to one recipient after the other, in an order that is random for each
change, on all its processors. It is busy meanwhile, so changes that follow too soon wait. Signs of
life take their share of the processors of etcd; a relay has none to speak of. A message takes a
time of the network with a logarithmic normal distribution, and each recipient a fixed time to use
it.
"""

import argparse
import json
import math
import os
import random
import sys
from dataclasses import dataclass

HERE = os.path.dirname(os.path.abspath(__file__))
RACK = 40  # machines
REGION = 1000  # relays
Z99 = 2.3263  # the quantile of the normal distribution


def read_costs(path):
    with open(path, encoding="utf-8") as file:
        return json.load(file)


@dataclass
class Tree:
    """Below the first etcd, each server has `tiers[i]` recipients over the network `networks[i]`.
    `mirrored`: the recipients of the first tier are servers of etcd, otherwise relays."""

    tiers: list
    networks: list
    mirrored: bool = False

    def machines(self):
        return math.prod(self.tiers)

    def servers(self, tier):
        return math.prod(self.tiers[:tier])

    def is_etcd(self, tier):
        return tier == 0 or (tier == 1 and self.mirrored)


def layouts(machines):
    """-> {name: tree}"""
    relays = math.ceil(machines / RACK)
    trees = {
        "direct": Tree([machines], ["site"]),
        "relays": Tree([relays, min(RACK, machines)], ["site", "rack"]),
    }
    regions = math.ceil(relays / REGION)
    if regions > 1:
        tiers = [regions, math.ceil(relays / regions), RACK]
        trees["mirrors"] = Tree(tiers, ["region", "site", "rack"], mirrored=True)
    return trees


class LogNormal:
    def __init__(self, quantiles, source):
        self.mu = math.log(quantiles["p50"])
        self.sigma = max(math.log(quantiles["p99"] / quantiles["p50"]) / Z99, 0.0)
        self.random = source

    def sample(self):
        return math.exp(self.random.gauss(self.mu, self.sigma))


def utilisation(costs, is_etcd, recipients, rate):
    """The part of its processors that a server is busy; more than 1: it cannot"""
    cost = costs["etcd" if is_etcd else "relay"]
    life = cost["life"] if is_etcd else 0
    return recipients * (rate * cost["send"] + life) / cost["processors"]


class Tier:
    """The servers of one tier, and the way to their recipients."""

    def __init__(self, tree, number, costs, source):
        self.is_etcd = tree.is_etcd(number)
        self.recipients = tree.tiers[number]
        self.random = source
        self.cost = costs["etcd" if self.is_etcd else "relay"]
        self.network = LogNormal(costs["assumed"][tree.networks[number]], source)
        self.put = LogNormal(costs["etcd"]["put"], source)
        life = self.recipients * self.cost.get("life", 0) / self.cost["processors"]
        # What is left for changes. An overloaded server still gets something done.
        self.interval = self.cost["send"] / self.cost["processors"] / max(1 - life, 0.01)
        self.free = [0.0] * tree.servers(number)

    def pass_on(self, server, moment):
        """-> the moments at which the recipients know it, if the server knows it at `moment`"""
        written = moment + (self.put.sample() if self.is_etcd else 0)
        begin = max(written, self.free[server])
        self.free[server] = begin + self.recipients * self.interval
        fixed = begin + self.cost["take"]
        interval, sample = self.interval, self.network.sample
        moments = [fixed + (i + 1) * interval + sample() for i in range(self.recipients)]
        self.random.shuffle(moments)
        return moments


def spread(tiers, moment):
    """-> the moments at which the machines know a change that is put at `moment`"""
    moments = [moment]
    for tier in tiers:
        moments = [
            known for server, at in enumerate(moments) for known in tier.pass_on(server, at)
        ]
    return moments


def quantile(ordered, part):
    return ordered[int((len(ordered) - 1) * part)]


def run(tree, costs, seed, changes, rate):
    """-> a dictionary with "p50", "p99" and "last" in seconds, and "tiers" with the loads. The
    times are those of the median change."""
    source = random.Random(seed)
    tiers = [Tier(tree, number, costs, source) for number in range(len(tree.tiers))]
    rows = []
    moment = 0.0
    for _ in range(changes):
        delays = sorted(at - moment for at in spread(tiers, moment))
        rows.append([quantile(delays, 0.5), quantile(delays, 0.99), delays[-1]])
        moment += 1 / rate
    middle = [quantile(sorted(column), 0.5) for column in zip(*rows)]
    return {**dict(zip(("p50", "p99", "last"), middle)), "tiers": loads(tree, costs, rate)}


def loads(tree, costs, rate):
    """-> for each tier the load of one server"""
    result = []
    for number, recipients in enumerate(tree.tiers):
        is_etcd = tree.is_etcd(number)
        cost = costs["etcd" if is_etcd else "relay"]
        result.append(
            {
                "servers": tree.servers(number),
                "kind": "etcd" if is_etcd else "relay",
                "messages": recipients * rate,
                "bytes": recipients * (rate * cost["sendBytes"] + cost.get("lifeBytes", 0)),
                "utilisation": utilisation(costs, is_etcd, recipients, rate),
            }
        )
    return result


# Writing


def time_text(seconds):
    return f"{seconds * 1000:.1f} ms" if seconds < 1 else f"{seconds:.1f} s"


def load_text(load):
    verdict = "; too much" if load["utilisation"] > 0.7 else ""
    return (
        f"{load['servers']} {load['kind']}: {load['messages']:.0f}/s, "
        f"{load['bytes'] / 1e6:.2f} MB/s, {load['utilisation'] * 100:.1f} %{verdict}"
    )


def rows_of(sizes, costs, seed, rate):
    for machines in sizes:
        for name, tree in layouts(machines).items():
            result = run(tree, costs, seed, changes=5 if machines <= 10**5 else 1, rate=rate)
            times = [time_text(result[key]) for key in ("p50", "p99", "last")]
            is_overloaded = any(load["utilisation"] > 1 for load in result["tiers"])
            yield [
                f"{machines:,}",
                name,
                *(["-"] * 3 if is_overloaded else times),
                "<br>".join(map(load_text, result["tiers"])),
            ]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--costs", default=os.path.join(HERE, "costs.json"))
    parser.add_argument("--rate", type=float, default=1.0)
    parser.add_argument("--machines", type=int, action="append")
    options = parser.parse_args()
    sizes = options.machines or [10**3, 10**4, 10**5, 10**6]
    print("| machines | layout | p50 | p99 | last | load of each server |\n|---|---|---|---|---|---|")
    for row in rows_of(sizes, read_costs(options.costs), options.seed, options.rate):
        print(f"| {' | '.join(row)} |", flush=True)


if __name__ == "__main__":
    sys.exit(main())
