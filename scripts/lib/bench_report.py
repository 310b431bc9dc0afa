#!/usr/bin/env python3
"""Compares the contestants of every benchmark case.

    bench_report.py [--limits FILE] [--json FILE] [--markdown FILE] RESULT...

RESULT is a JSON file of a benchmark program, whose benchmarks are named SUBJECT/CASE/CONTESTANT.
Prints a table for each subject: medians over the repetitions, and the ratio of our time to that of
each contestant. A ratio is the median of the ratios within each repetition, because a disturbance
of the machine affects the contestants of one repetition alike. If the names of the contestants are
numbers, they are sizes, and the table shows the exponent with which the time grows with the size.
The status is 1 if a benchmark reports an error, and 2 for wrong arguments or files.
"""

import argparse
import fnmatch
import json
import math
import re
import statistics
import sys
from dataclasses import dataclass, field

UNITS_IN_SECONDS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}
GROWTH = "growth"  # the contestant in limits of growth
ORDER = ["ours", "floor", "literal"]  # the columns; other libraries come after them


@dataclass
class Case:
    """One row: the figures of each contestant, in seconds or, if `in_bytes`, in bytes."""

    subject: str
    name: str
    samples: dict = field(default_factory=dict)  # contestant -> {repetition: figure}
    in_bytes: bool = False

    def own(self):
        """The contestant that the others are compared with."""
        return "ours" if "ours" in self.samples else next(iter(self.samples))

    def median(self, contestant):
        return statistics.median(self.samples[contestant].values())

    def ratio(self, contestant):
        """Our figure divided by the contestant's; None if no repetition has both"""
        ours, others = self.samples[self.own()], self.samples[contestant]
        ratios = [ours[i] / others[i] for i in ours if others.get(i)]
        return statistics.median(ratios) if ratios else None

    def grows(self):
        return all(name.isdigit() for name in self.samples)

    def sizes(self):
        return sorted(self.samples, key=int)

    def exponent(self):
        """The slope of the logarithm of the time over that of the size; None for a single size"""
        if len(self.samples) < 2:
            return None
        sizes = [math.log(int(size)) for size in self.sizes()]
        times = [math.log(self.median(size)) for size in self.sizes()]
        return statistics.linear_regression(sizes, times).slope


@dataclass
class Limit:
    """The maximum ratio to a contestant ("1.3 x"), own figure ("9 B", "1 s") or growth ("n^0.1")"""

    subject: str
    case: str
    contestant: str
    text: str
    only_if: str = ""

    def __post_init__(self):
        parts = re.fullmatch(r"([0-9.]+) (x|B|s)|(n)\^([0-9.]+)", self.text)
        if parts is None:
            raise ValueError(f"{self.text} is no limit")
        self.bound, self.kind = float(parts[1] or parts[4]), parts[2] or parts[3]

    def is_for(self, case, contestant):
        return (
            self.subject == case.subject
            and self.contestant == contestant
            and fnmatch.fnmatchcase(case.name, self.case)
        )

    def figure(self, case):
        if self.kind == "n":
            return case.exponent()
        return case.median(case.own()) if self.kind in ("B", "s") else case.ratio(self.contestant)

    def holds(self, case):
        figure = self.figure(case)
        return figure is not None and figure <= self.bound


# Reading


def read_results(documents):
    """-> (cases in the order of registration, texts of errors)"""
    cases, errors = {}, []
    for document in documents:
        # Benchmarks run in random order; family_index is the order of registration.
        for run in sorted(document["benchmarks"], key=lambda run: run.get("family_index", 0)):
            if run.get("run_type") == "aggregate":
                continue
            name = run.get("run_name", run["name"])
            parts = name.split("/")
            if run.get("error_occurred"):
                errors.append(f"{name}: {run.get('error_message', 'failed')}")
            elif len(parts) >= 3:
                subject, title, contestant = parts[:3]
                case = cases.setdefault((subject, title), Case(subject, title))
                case.in_bytes = "bytes" in run
                repetitions = case.samples.setdefault(contestant, {})
                repetitions[run.get("repetition_index", 0)] = figure_of(run, parts[3:])
    return list(cases.values()), errors


def figure_of(run, options):
    """For one thread the processor time, which other processes affect less"""
    if "bytes" in run:
        return run["bytes"]
    clock = "real_time" if {"real_time", "manual_time"} & set(options) else "cpu_time"
    return run[clock] * UNITS_IN_SECONDS[run["time_unit"]]


def read_limits(text):
    limits = []
    for number, line in enumerate(text.splitlines(), 1):
        if not line.strip() or line.startswith("#"):
            continue
        columns = [column.strip() for column in line.split("|")]
        try:
            limits.append(Limit(*columns))
        except (TypeError, ValueError):
            raise ValueError(f"line {number} is no limit: {line}") from None
    return limits


# Judging


def verdicts(case, contestant, limits, cases):
    """-> [(limit, "holds", "MISSED" or "not judged")]"""
    return [
        (limit, judge(limit, case, limits, cases))
        for limit in limits
        if limit.is_for(case, contestant)
    ]


def judge(limit, case, limits, cases):
    if limit.only_if and not condition_holds(limit, limits, cases):
        return "not judged"
    return "holds" if limit.holds(case) else "MISSED"


def condition_holds(limit, limits, cases):
    named = [c for c in cases if c.subject == limit.subject and c.name == limit.only_if]
    return bool(named) and all(
        other.holds(case)
        for case in named
        for other in limits
        if any(other.is_for(case, contestant) for contestant in case.samples)
    )


# Writing


def figure_text(case, figure):
    if case.in_bytes:
        return f"{figure:.1f} B"
    for unit in ("ns", "us", "ms"):
        scaled = figure / UNITS_IN_SECONDS[unit]
        if scaled < 1000:
            return f"{scaled:.3g} {unit}"
    return f"{figure:.3g} s"


def cell(case, contestant, limits, cases):
    if contestant not in case.samples:
        return ""
    text = figure_text(case, case.median(contestant))
    if contestant != case.own() and (ratio := case.ratio(contestant)) is not None:
        text += f", {ratio:.2g} x" if ratio < 0.1 else f", {ratio:.2f} x"
    return text + verdicts_text(verdicts(case, contestant, limits, cases))


def verdicts_text(judged):
    return "".join(f" (at most {limit.text}: {verdict})" for limit, verdict in judged)


def columns_of(cases):
    names = list(dict.fromkeys(name for case in cases for name in case.samples))
    return sorted(names, key=lambda name: ORDER.index(name) if name in ORDER else len(ORDER))


def table(subject_cases, limits, cases):
    """-> rows of cells, the head first"""
    if all(case.grows() for case in subject_cases):
        return growth_table(subject_cases, limits, cases)
    columns = columns_of(subject_cases)
    rows = [["case", *columns]]
    for case in subject_cases:
        rows.append([case.name, *(cell(case, column, limits, cases) for column in columns)])
    return rows


def growth_table(subject_cases, limits, cases):
    rows = [["case", "from", "to", "grows as"]]
    for case in subject_cases:
        ends = (case.sizes()[0], case.sizes()[-1])
        times = [f"{size}: {figure_text(case, case.median(size))}" for size in ends]
        rows.append([case.name, *times, growth_cell(case, limits, cases)])
    return rows


def growth_cell(case, limits, cases):
    exponent = case.exponent()
    if exponent is None:
        return ""
    return f"n^{exponent:.2f}" + verdicts_text(verdicts(case, GROWTH, limits, cases))


def by_subject(cases):
    subjects = dict.fromkeys(case.subject for case in cases)
    return [(subject, [c for c in cases if c.subject == subject]) for subject in subjects]


def as_text(rows):
    widths = [max(len(row[i]) for row in rows) for i in range(len(rows[0]))]
    lines = ["  ".join(text.ljust(width) for text, width in zip(row, widths)) for row in rows]
    return "\n".join(line.rstrip() for line in lines) + "\n"


def as_markdown(rows):
    head, *rest = ["| " + " | ".join(row) + " |\n" for row in rows]
    return head + "|" + "---|" * len(rows[0]) + "\n" + "".join(rest)


def as_json(cases, limits):
    return [
        {
            "subject": case.subject,
            "case": case.name,
            "unit": "bytes" if case.in_bytes else "seconds",
            "exponent": case.exponent() if case.grows() else None,
            "contestants": {
                name: {
                    "median": case.median(name),
                    "ratio": None if case.grows() else case.ratio(name),
                    "limits": [
                        {"limit": limit.text, "verdict": verdict}
                        for limit, verdict in verdicts(case, name, limits, cases)
                    ],
                }
                for name in case.samples
            },
        }
        for case in cases
    ]


def write(path, text):
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


# The program


def parse_arguments(arguments):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--limits", metavar="FILE")
    parser.add_argument("--json", metavar="FILE")
    parser.add_argument("--markdown", metavar="FILE")
    parser.add_argument("results", metavar="RESULT", nargs="+")
    return parser.parse_args(arguments)


def read_json(path):
    with open(path, encoding="utf-8") as file:
        return json.load(file)


def read_files(options):
    """-> (cases, errors, limits)"""
    cases, errors = read_results(read_json(path) for path in options.results)
    if not options.limits:
        return cases, errors, []
    with open(options.limits, encoding="utf-8") as file:
        return cases, errors, read_limits(file.read())


def report(options, cases, limits):
    tables = [(name, table(rows, limits, cases)) for name, rows in by_subject(cases)]
    for subject, rows in tables:
        print(f"{subject}\n\n{as_text(rows)}")
    if options.markdown:
        write(options.markdown, "\n".join(f"## {name}\n\n{as_markdown(t)}" for name, t in tables))
    if options.json:
        write(options.json, json.dumps(as_json(cases, limits), indent=2) + "\n")


def main(arguments):
    options = parse_arguments(arguments)
    try:
        cases, errors, limits = read_files(options)
    except (OSError, ValueError, KeyError) as failure:
        print(f"bench_report: {failure}", file=sys.stderr)
        return 2
    report(options, cases, limits)
    for error in dict.fromkeys(errors):
        print(f"bench_report: {error}", file=sys.stderr)
    if not cases and not errors:
        print("bench_report: nothing was measured", file=sys.stderr)
        return 1
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
