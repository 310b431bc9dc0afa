#!/usr/bin/env python3
"""Draws the figures of docs/performance and of the README.

    bench_charts.py RESULTS DIRECTORY

RESULTS is the file that bench_report.py --json writes. DIRECTORY gets an SVG for each chart below
whose cases were measured. A bar is the multiple of the time, or of the memory, of the floor, or of
ours where there is no floor. The axis is logarithmic if the longest bar is more than ten times the
shortest. The figures are 400 units wide, so that their text can be read on a phone.
"""

import json
import math
import os
import sys
from dataclasses import dataclass
from xml.sax.saxutils import escape

# Which charts there are: few bars each; docs/performance/results.md has all figures.
# name -> (title, contestants in their order, [(subject, case, what the reader sees)])
CHARTS = {
    "summary": (
        "What matters",
        ["ours", "floor", "atomic", "POCO", "signals2", "GKeyFile"],
        [
            ("lookup", "hit, 1000 keys, 2 layers, first, no group, int", "get an int, 1,000 keys"),
            ("typed", "LiveOption, get", "read a live option"),
            ("load", "100000 entries", "load a file of 100,000 lines"),
            ("watching", "set, 1000 watchers, int", "set with 1,000 subscribers"),
        ],
    ),
    "lookup": (
        "Lookup",
        ["ours", "floor", "literal", "POCO"],
        [
            ("lookup", "hit, 1000 keys, 2 layers, first, no group, int", "an int"),
            (
                "lookup",
                "hit, 1000 keys, 6 layers, last, no group, 12 bytes",
                "12 bytes, in the last of six sources",
            ),
            (
                "lookup",
                "two threads, 1000 keys, 2 layers, last, no group, 12 bytes",
                "12 bytes, two threads",
            ),
        ],
    ),
    "futures": (
        "Futures",
        ["ours", "floor", "std::promise"],
        [
            ("futures", "ready and taken, int", "an int"),
            ("futures", "ready and taken, 40 bytes", "40 bytes"),
        ],
    ),
    "live-option": (
        "Live options",
        ["ours", "atomic", "mutex"],
        [
            ("typed", "LiveOption, get", "an int"),
            ("typed", "LiveOption, snapshot", "a text"),
        ],
    ),
    "load": (
        "Load a property file",
        ["ours", "floor", "GKeyFile", "POCO", "Boost.PropertyTree"],
        [
            ("load", "1000 entries", "1,000 lines"),
            ("load", "1000000 entries", "1,000,000 lines"),
        ],
    ),
    "load-memory": (
        "Memory of an entry",
        ["ours", "floor", "literal"],
        [
            ("load memory", "100000 entries, kept", "100,000 lines, afterwards"),
            ("load memory", "100000 entries, peak", "100,000 lines, at the most"),
        ],
    ),
    "watching": (
        "Set an option",
        ["ours", "floor", "signals2", "POCO"],
        [
            ("watching", "set, 1 watchers, int", "1 subscriber"),
            ("watching", "set, 1000 watchers, int", "1,000 subscribers"),
        ],
    ),
    "keys": (
        "All keys of two sources",
        ["ours", "literal"],
        [
            ("keys", "two sources of 1000 keys", "1,000 keys each"),
            ("keys", "two sources of 100000 keys", "100,000 keys each"),
        ],
    ),
    "add-source": (
        "Add a source",
        ["ours", "keys()"],
        [
            ("add source", "1000 keys, unwatched", "1,000 keys"),
            ("add source", "100000 keys, unwatched", "100,000 keys"),
        ],
    ),
    "json": (
        "Values as JSON",
        ["ours", "POCO by hand"],
        [
            ("json", "make int", "write an int"),
            ("json", "read int", "read an int"),
            ("json", "make 100 texts", "write 100 texts"),
            ("json", "read 100 texts", "read 100 texts"),
        ],
    ),
}

UNITS = (("ns", 1e-9), ("µs", 1e-6), ("ms", 1e-3), ("s", 1.0))
COLOURS = {"ours": "#1565c0", "floor": "#757575", "literal": "#bdbdbd"}
OTHERS = "#ef9a4d"

# In units of the figure
WIDTH, LEFT, LONGEST, TOP, ROW, GAP = 400, 134, 150, 62, 22, 30


@dataclass
class Bar:
    contestant: str
    multiple: float
    label: str


@dataclass
class Group:
    title: str
    base: str  # the contestant that is 1
    bars: list


def figure_text(figure, unit):
    if unit == "bytes":
        return f"{figure:.0f} B"
    for name, seconds in UNITS:
        if figure / seconds < 1000:
            return f"{figure / seconds:.3g} {name}"
    return f"{figure:.3g} s"


def multiple_text(multiple):
    return f"{multiple:.2g}×" if multiple < 0.1 else f"{multiple:.2f}×"


def group_of(row, title, contestants):
    """-> the bars of a case, in the order of the contestants; those that were not measured miss"""
    measured = {name: each for name, each in row["contestants"].items() if each["ratio"]}
    base = "floor" if "floor" in measured else "ours"
    # A ratio of the results is ours to that contestant, so that the bars agree with the tables.
    bars = [
        Bar(
            name,
            measured[base]["ratio"] / measured[name]["ratio"],
            figure_text(measured[name]["median"], row["unit"]),
        )
        for name in contestants
        if name in measured
    ]
    return Group(title, base, bars)


def groups_of(rows, chart):
    _, contestants, cases = chart
    by_name = {(row["subject"], row["case"]): row for row in rows}
    groups = [
        group_of(by_name[subject, case], title, contestants)
        for subject, case, title in cases
        if (subject, case) in by_name
    ]
    return [group for group in groups if group.bars]


class Scale:
    """From a multiple to the length of its bar"""

    def __init__(self, multiples):
        self.most, least = max(multiples), min(multiples)
        self.is_logarithmic = self.most > 10 * least
        self.start = least / 2  # a bar of length 0 would be invisible

    def length(self, multiple):
        if self.is_logarithmic:
            part = math.log(multiple / self.start) / math.log(self.most / self.start)
        else:
            part = multiple / self.most
        return max(1.0, LONGEST * part)


def text(x, y, content, style=""):
    return f'<text x="{x:.0f}" y="{y:.0f}"{style}>{escape(content)}</text>'


def bar_lines(bar, y, scale):
    length = scale.length(bar.multiple)
    colour = COLOURS.get(bar.contestant, OTHERS)
    return [
        text(LEFT - 6, y + 13, bar.contestant, ' text-anchor="end"'),
        f'<rect x="{LEFT}" y="{y:.0f}" width="{length:.1f}" height="{ROW - 5}" fill="{colour}"/>',
        text(LEFT + length + 5, y + 13, f"{bar.label}, {multiple_text(bar.multiple)}"),
    ]


def caption(groups, scale):
    bases = dict.fromkeys(group.base for group in groups)
    kind = "logarithmic; " if scale.is_logarithmic else ""
    names = {"floor": "the floor", "ours": "ours"}
    whose = " or ".join(names[base] for base in bases)
    return f"as a multiple of {whose}; {kind}less is better"


def svg(title, groups):
    scale = Scale([bar.multiple for group in groups for bar in group.bars])
    lines, y = [], TOP
    for group in groups:
        lines.append(text(10, y + 4, group.title, ' font-weight="bold"'))
        y += 12
        for bar in group.bars:
            lines += bar_lines(bar, y, scale)
            y += ROW
        y += GAP - 12
    y -= 10
    head = [
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {y}" role="img"'
        f' font-family="sans-serif" font-size="13" fill="#212121">',
        f"<title>{escape(title)}: {escape(caption(groups, scale))}</title>",
        f'<rect width="{WIDTH}" height="{y}" fill="#ffffff"/>',
        text(10, 22, title, ' font-size="16" font-weight="bold"'),
        text(10, 40, caption(groups, scale)),
    ]
    return "\n".join([*head, *lines, "</svg>"]) + "\n"


def main(arguments):
    results, directory = arguments
    with open(results, encoding="utf-8") as file:
        rows = json.load(file)
    os.makedirs(directory, exist_ok=True)
    drawn = 0
    for name, chart in CHARTS.items():
        groups = groups_of(rows, chart)
        if groups:
            path = os.path.join(directory, name + ".svg")
            with open(path, "w", encoding="utf-8") as file:
                file.write(svg(chart[0], groups))
            drawn += 1
    return 0 if drawn else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
