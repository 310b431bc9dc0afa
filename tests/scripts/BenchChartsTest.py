#!/usr/bin/env python3
"""What bench_charts.py draws."""

import json
import os
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(ROOT, "scripts", "lib"))

import bench_charts  # noqa: E402


def row(case, unit="seconds", **figures):
    """A case; each contestant has its median, and the ratio of ours to it"""
    own = figures["ours"]
    contestants = {name: {"median": f, "ratio": own / f} for name, f in figures.items()}
    return {"subject": "s", "case": case, "unit": unit, "contestants": contestants}


def chart(*cases):
    return ("Title", ["ours", "floor", "POCO"], [("s", case, "case " + case) for case in cases])


class Groups(unittest.TestCase):
    def multiples(self, row):
        (group,) = bench_charts.groups_of([row], chart(row["case"]))
        return group.base, [(bar.contestant, round(bar.multiple, 3)) for bar in group.bars]

    def test_are_multiples_of_the_floor(self):
        self.assertEqual(
            ("floor", [("ours", 1.2), ("floor", 1.0), ("POCO", 3.0)]),
            self.multiples(row("a", ours=12e-9, POCO=30e-9, floor=10e-9)),
        )

    def test_are_multiples_of_ours_where_there_is_no_floor(self):
        self.assertEqual(
            ("ours", [("ours", 1.0), ("POCO", 2.0)]), self.multiples(row("a", ours=1e-9, POCO=2e-9))
        )

    def test_leave_out_cases_and_contestants_that_were_not_measured(self):
        groups = bench_charts.groups_of([row("a", ours=1e-9)], chart("a", "b"))
        self.assertEqual(["case a"], [group.title for group in groups])
        self.assertEqual(["ours"], [bar.contestant for bar in groups[0].bars])

    def test_have_the_figures_in_their_units(self):
        for figure, unit, text in (
            (81.7e-9, "seconds", "81.7 ns"),
            (13.8e-6, "seconds", "13.8 µs"),
            (2.5, "seconds", "2.5 s"),
            (172.4, "bytes", "172 B"),
        ):
            self.assertEqual(text, bench_charts.figure_text(figure, unit))


class Scales(unittest.TestCase):
    def test_up_to_ten_are_linear(self):
        scale = bench_charts.Scale([1, 10])
        self.assertFalse(scale.is_logarithmic)
        self.assertAlmostEqual(scale.length(10), 10 * scale.length(1))

    def test_above_ten_are_logarithmic(self):
        scale = bench_charts.Scale([1, 2, 4, 16])
        self.assertTrue(scale.is_logarithmic)
        step = scale.length(2) - scale.length(1)
        self.assertAlmostEqual(scale.length(4) - scale.length(2), step)
        self.assertEqual(bench_charts.LONGEST, scale.length(16))


class Figures(unittest.TestCase):
    def test_are_well_formed_and_say_what_they_show(self):
        rows = [row("a", ours=1e-9, floor=1e-9, POCO=20e-9)]
        text = bench_charts.svg("A & B", bench_charts.groups_of(rows, chart("a")))
        root = ElementTree.fromstring(text)
        words = [element.text for element in root.iter() if element.tag.endswith("text")]
        self.assertIn("A & B", words)
        self.assertIn("as a multiple of the floor; logarithmic; less is better", words)
        self.assertIn("20 ns, 20.00×", words)

    def test_are_drawn_for_what_was_measured(self):
        with tempfile.TemporaryDirectory() as directory:
            results = os.path.join(directory, "results.json")
            known = row("make int", ours=1e-9)
            known["subject"] = "json"
            for rows, status, files in (([known], 0, ["json.svg"]), ([], 1, [])):
                with open(results, "w", encoding="utf-8") as file:
                    json.dump(rows, file)
                drawn = os.path.join(directory, str(status))
                self.assertEqual(status, bench_charts.main([results, drawn]))
                self.assertEqual(files, os.listdir(drawn))

    def test_of_the_documents_are_those_of_their_results(self):
        documents = os.path.join(ROOT, "docs", "performance")
        with tempfile.TemporaryDirectory() as directory:
            bench_charts.main([os.path.join(documents, "results.json"), directory])
            for name in os.listdir(directory):
                with open(os.path.join(directory, name), encoding="utf-8") as drawn:
                    with open(os.path.join(documents, name), encoding="utf-8") as shown:
                        self.assertEqual(drawn.read(), shown.read(), name)

    def test_have_few_bars(self):
        with open(os.path.join(ROOT, "docs/performance/results.json"), encoding="utf-8") as file:
            rows = json.load(file)
        for name, definition in bench_charts.CHARTS.items():
            bars = [bar for group in bench_charts.groups_of(rows, definition) for bar in group.bars]
            self.assertLessEqual(len(bars), 14, name)


if __name__ == "__main__":
    unittest.main()
