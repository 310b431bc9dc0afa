#!/usr/bin/env python3
"""Tests of benchmarks/fleet/simulate.py."""

import copy
import math
import os
import random
import subprocess
import sys
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
FLEET = os.path.join(HERE, "../../benchmarks/fleet")
sys.path.insert(0, FLEET)

import simulate  # noqa: E402

ALWAYS = {"p50": 0.01, "p99": 0.01}  # no randomness
COSTS = {
    "etcd": {
        "put": ALWAYS,
        "take": 0.1,
        "send": 0.002,
        "sendBytes": 100,
        "life": 0,
        "lifeBytes": 10,
        "processors": 2,
    },
    "relay": {"take": 1, "send": 0.02, "sendBytes": 200, "processors": 2},
    "assumed": {name: ALWAYS for name in ("machine", "rack", "site", "region")},
}


def run(tree, costs, changes=1, rate=1, seed=1):
    return simulate.run(tree, costs, seed=seed, changes=changes, rate=rate)


class Spreading(unittest.TestCase):
    def test_takes_the_sum_of_all_times(self):
        result = run(simulate.Tree([10], ["site"]), COSTS)
        # put, take, ten messages on two processors, network
        self.assertAlmostEqual(0.01 + 0.1 + 0.01 + 0.01, result["last"])
        self.assertAlmostEqual(0.01 + 0.1 + 0.005 + 0.01, result["p50"])

    def test_passes_every_tier(self):
        result = run(simulate.Tree([1, 1], ["site", "rack"]), COSTS)
        self.assertAlmostEqual(0.01 + 0.1 + 0.001 + 0.01 + 1 + 0.01 + 0.01, result["last"])

    def test_writes_again_in_a_mirror(self):
        tree = simulate.Tree([1, 1, 1], ["region", "site", "rack"], mirrored=True)
        etcd = 0.01 + 0.1 + 0.001 + 0.01
        self.assertAlmostEqual(etcd + etcd + 1 + 0.01 + 0.01, run(tree, COSTS)["last"])

    def test_reaches_every_machine_of_every_layout_once(self):
        for machines in (1000, 4000):
            for tree in simulate.layouts(machines).values():
                source = random.Random(1)
                tiers = [
                    simulate.Tier(tree, number, COSTS, source) for number in range(len(tree.tiers))
                ]
                self.assertEqual(machines, len(simulate.spread(tiers, 0.0)))

    def test_is_in_order(self):
        costs = simulate.read_costs(os.path.join(FLEET, "costs.json"))
        for tree in simulate.layouts(1000).values():
            result = run(tree, costs)
            self.assertLessEqual(result["p50"], result["p99"])
            self.assertLessEqual(result["p99"], result["last"])

    def test_waits_while_the_server_is_busy(self):
        tree = simulate.Tree([1000], ["site"])  # one second for each change
        slowly = run(tree, COSTS, changes=9, rate=0.5)["last"]
        self.assertAlmostEqual(slowly, run(tree, COSTS, changes=1)["last"])
        # Four changes are before the fifth, which is the median one; it came after 0.4 s.
        self.assertAlmostEqual(slowly + 4 - 0.4, run(tree, COSTS, changes=9, rate=10)["last"])

    def test_is_slower_when_signs_of_life_take_their_share(self):
        costs = copy.deepcopy(COSTS)
        costs["etcd"]["life"] = 0.001  # half of both processors for 1,000 recipients
        tree = simulate.Tree([1000], ["site"])
        self.assertAlmostEqual(run(tree, COSTS)["last"] + 1, run(tree, costs)["last"])

    def test_depends_on_the_seed_alone(self):
        costs = copy.deepcopy(COSTS)
        costs["assumed"]["site"] = {"p50": 0.01, "p99": 0.1}
        tree = simulate.Tree([100], ["site"])
        self.assertEqual(run(tree, costs), run(tree, costs))
        self.assertNotEqual(run(tree, costs), run(tree, costs, seed=2))


class Times(unittest.TestCase):
    def test_of_the_network_have_the_given_quantiles(self):
        times = simulate.LogNormal({"p50": 0.001, "p99": 0.01}, random.Random(1))
        samples = sorted(times.sample() for _ in range(20_000))
        self.assertAlmostEqual(0.001, simulate.quantile(samples, 0.5), delta=0.0001)
        self.assertAlmostEqual(0.01, simulate.quantile(samples, 0.99), delta=0.001)


class Loads(unittest.TestCase):
    def test_are_those_of_one_server_of_each_tier(self):
        etcd, relay = simulate.loads(simulate.Tree([20, 5], ["site", "rack"]), COSTS, rate=10)
        self.assertEqual((1, "etcd", 200), (etcd["servers"], etcd["kind"], etcd["messages"]))
        self.assertEqual((20, "relay", 50), (relay["servers"], relay["kind"], relay["messages"]))
        self.assertEqual(20 * (10 * 100 + 10), etcd["bytes"])
        self.assertEqual(5 * 10 * 200, relay["bytes"])
        self.assertAlmostEqual(20 * 10 * 0.002 / 2, etcd["utilisation"])
        self.assertAlmostEqual(5 * 10 * 0.02 / 2, relay["utilisation"])

    def test_beyond_the_processors_have_no_times(self):
        rows = list(simulate.rows_of([10_000], COSTS, 1, 1))
        direct = next(row for row in rows if row[1] == "direct")
        self.assertEqual(["-", "-", "-"], direct[2:5])
        self.assertIn("too much", direct[5])


class Layouts(unittest.TestCase):
    def test_have_mirrors_once_a_server_would_have_too_many_relays(self):
        self.assertNotIn("mirrors", simulate.layouts(40_000))
        tree = simulate.layouts(1_000_000)["mirrors"]
        self.assertEqual(25, tree.tiers[0])
        self.assertEqual(1_000_000, math.prod(tree.tiers))


class CommandLine(unittest.TestCase):
    def test_prints_the_same_table_twice(self):
        command = [sys.executable, "-B", os.path.join(FLEET, "simulate.py"), "--machines", "1000"]
        tables = [subprocess.run(command, check=True, capture_output=True).stdout for _ in "12"]
        self.assertEqual(tables[0], tables[1])
        self.assertEqual(4, len(tables[0].splitlines()))


if __name__ == "__main__":
    unittest.main()
