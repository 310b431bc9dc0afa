#!/usr/bin/env python3
"""Checks every #include of the project against the table of rooms in docs/architecture.md.

    rooms.py [--private ROOM]... [--installed HEADER]... [--uninstalled DIRECTORY]... ROOT

ROOT is the directory of the project. The headers of a --private room are not installed, except
those that --installed names. The table must mark the same rooms as private. Neither programs nor
installed headers may include headers that are not installed. A directory that is not installed at
all, although the rooms in it are not private, is --uninstalled. Prints one line for each violation;
the status is 1 if there is one, 2 if the table cannot be read.
"""

import argparse
import itertools
import os
import re
import sys
from dataclasses import dataclass

TABLE = "docs/architecture.md"
CHECKED = ("platform", "connector", "messaging", "tools", "examples", "benchmarks", "fuzz")
LIBRARY = ("platform/", "connector/", "messaging/")
INCLUDE_ROOTS = ("", "platform/", "messaging/", "tools/connector-config/")

# Generated when the project is configured, so they are in no directory of the project.
EXPORT_HEADERS = {
    "connector/Export.hpp": ("connector/",),
    "connector/service/Export.hpp": ("connector/service/",),
    "connector/sources/Export.hpp": ("connector/sources/",),
    "connector/etcd/Export.hpp": ("connector/etcd/",),
    "connector/platform/Export.hpp": ("platform/", "messaging/"),
}

# The operating system's headers that are in a directory. Those of the standard library are in none.
SYSTEM = ("arpa/", "net/", "netinet/", "sys/")

HEAD = "| room | stands on | and on |"
ROW = re.compile(r"^\| (`[^|]*`)( \(private\))? \|([^|]*)\|([^|]*)\|$")
NAME = re.compile(r"`([^`]+)`")
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(<([^>]+)>|"([^"]+)")', re.MULTILINE)


@dataclass
class Room:
    """One row of the table. A room is a directory, or a header together with its source file."""

    names: list
    is_private: bool
    stands_on: list  # rooms, or single headers of them
    others: list  # prefixes of the headers of other libraries

    def name(self):
        return self.names[0]


class Rooms:
    """The table. The order of its rows is the order of the rooms, from the bottom to the top."""

    def __init__(self, text):
        self.rooms = [self.read_row(row) for row in self.rows_of(text)]
        self.by_name = {name: room for room in self.rooms for name in room.names}

    @staticmethod
    def rows_of(text):
        lines = text.splitlines()
        start = lines.index(HEAD) + 2 if HEAD in lines else len(lines)
        return itertools.takewhile(lambda line: line.startswith("|"), lines[start:])

    @staticmethod
    def read_row(row):
        match = ROW.match(row)
        if match is None:
            raise ValueError(f"{TABLE}: this is no row of the table of rooms: {row}")
        names, private, below, others = match.groups()
        return Room(NAME.findall(names), bool(private), NAME.findall(below), NAME.findall(others))

    def room_of(self, path):
        """The innermost room that contains the file; None if no room does."""
        name = re.sub(r"\.cpp$", ".hpp", path)
        while name and name not in self.by_name:
            name = os.path.dirname(name)
        return self.by_name.get(name)

    def position(self, room):
        return self.rooms.index(room)


class Project:
    def __init__(self, root, private=(), installed=(), uninstalled=()):
        self.root = root
        self.uninstalled = tuple(directory + "/" for directory in uninstalled)
        self.private = list(private)
        self.installed = set(installed)
        with open(os.path.join(root, TABLE), encoding="utf-8") as document:
            self.table = Rooms(document.read())
        if not self.table.rooms:
            raise ValueError(f"{TABLE}: there is no table of rooms")

    def violations(self):
        return [*self.table_violations(), *self.include_violations()]

    # The table itself

    def table_violations(self):
        found = []
        for room in self.table.rooms:
            found += [f"there is no {name}" for name in room.names if not self.exists(name)]
            for name in room.stands_on:
                problem = self.arrow_problem(room, name)
                if problem:
                    found.append(f"{room.name()} stands on {name}, {problem}")
        return [f"{TABLE}: {text}" for text in found + self.privacy_violations()]

    def arrow_problem(self, room, name):
        below = self.table.room_of(name)
        if below is None or not self.exists(name):
            return "which is no room of the table"
        if self.table.position(below) >= self.table.position(room):
            return "which is not above it in the table"
        return ""

    def privacy_violations(self):
        marked = {name for room in self.table.rooms if room.is_private for name in room.names}
        installed = set(self.private)
        return [f"{name} is not marked as private" for name in sorted(installed - marked)] + [
            f"{name} is marked as private, but installed" for name in sorted(marked - installed)
        ]

    # The includes

    def include_violations(self):
        found, count = [], 0
        for path in self.files():
            room = self.table.room_of(path)
            if room is None:
                found.append(f"{path}: is in no room of the table")
                continue
            for written, include, is_quoted in self.includes_of(path):
                count += 1
                problem = self.include_problem(path, room, include, is_quoted)
                if problem:
                    found.append(f"{path}: {written} {problem}")
        return found if count else [*found, "no includes found"]

    def files(self):
        paths = []
        for top in CHECKED:
            for directory, _, names in os.walk(os.path.join(self.root, top)):
                paths += [os.path.join(directory, n) for n in names if n.endswith((".hpp", ".cpp"))]
        return sorted(os.path.relpath(path, self.root) for path in paths)

    def includes_of(self, path):
        """-> [(as it is written, the file's name in it, whether that is quoted)]"""
        with open(os.path.join(self.root, path), encoding="utf-8") as source:
            matches = INCLUDE.finditer(source.read())
            return [(match[1], match[2] or match[3], match[3] is not None) for match in matches]

    def include_problem(self, path, room, include, is_quoted):
        target = self.target_of(path, include, is_quoted)
        if target is not None:
            return self.arrow_violation(path, room, target)
        if include in EXPORT_HEADERS:
            is_own = path.startswith(EXPORT_HEADERS[include])
            return "" if is_own else "belongs to another library"
        if is_quoted:
            return "is no file of the project"
        # Of another library: what has no directory is the standard library's.
        if "/" in include and not include.startswith((*SYSTEM, *room.others)):
            return "is nothing that this room may include"
        return ""

    def target_of(self, path, include, is_quoted):
        """The project's file that is included; None if it is none of the project's."""
        roots = [os.path.dirname(path)] if is_quoted else []
        for root in (*roots, *INCLUDE_ROOTS):
            target = os.path.normpath(os.path.join(root, include))
            if self.exists(target) and not target.startswith(".."):
                return target
        return None

    def arrow_violation(self, path, room, target):
        below = self.table.room_of(target)
        if below is None:
            return f"is {target}, which is in no room of the table"
        if self.is_private(target, below):
            if not path.startswith(LIBRARY):
                return "is private to the library"
            if self.is_installed(path, room):
                return "is not installed, but this header is"
        if below is room or target in room.stands_on or set(below.names) & set(room.stands_on):
            return ""
        return f"is in {below.name()}"

    def is_private(self, target, room):
        if target in self.installed or not target.startswith(LIBRARY):
            return False
        return room.is_private or "/detail/" in target

    def is_installed(self, path, room):
        is_header = path.endswith(".hpp") and not path.startswith(self.uninstalled)
        return is_header and not self.is_private(path, room)

    def exists(self, path):
        return os.path.exists(os.path.join(self.root, path))


def parse_arguments(arguments):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--private", metavar="ROOM", action="append", default=[])
    parser.add_argument("--installed", metavar="HEADER", action="append", default=[])
    parser.add_argument("--uninstalled", metavar="DIRECTORY", action="append", default=[])
    parser.add_argument("root", metavar="ROOT")
    return parser.parse_args(arguments)


def main(arguments):
    options = parse_arguments(arguments)
    try:
        project = Project(options.root, options.private, options.installed, options.uninstalled)
    except (OSError, ValueError) as failure:
        print(f"rooms: {failure}", file=sys.stderr)
        return 2
    violations = project.violations()
    for violation in violations:
        print(violation)
    return 1 if violations else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
