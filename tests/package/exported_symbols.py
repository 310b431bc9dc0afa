#!/usr/bin/env python3
"""Compares the symbols that the libraries export with the lists in packaging/debian/symbols.

    exported_symbols.py --nm NM --lists DIRECTORY --work DIRECTORY --version VERSION
        [--all-instances] LIBRARY...

The lists have the form of Debian's files of symbols. A new symbol gets VERSION, the version of the
project. Which instantiated templates a library contains depends on the compiler and on its options;
only with --all-instances are they compared, too. The actual lists are written to the work
directory.
"""

import argparse
import os
import re
import subprocess
import sys

LINE = re.compile(r'^ \((c\+\+(?:\|optional=templinst)?)\)"(.+)@Base" (\S+)$')
INSTANCE = "c++|optional=templinst"


def run(*command, **options):
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE, **options).stdout


def exported(nm, library):
    """-> {name: tag}; a name with a strong symbol is no instance"""
    lines = run(nm, "--dynamic", "--defined-only", "--format=posix", library).splitlines()
    kinds = [line.split()[1] for line in lines]
    # The names that dpkg expects; those that nm demangles are abbreviated.
    names = run("c++filt", input="".join(line.split()[0] + "\n" for line in lines)).splitlines()
    symbols = {}
    for name, kind in zip(names, kinds):
        is_instance = kind in "VWu" and symbols.get(name) != "c++"
        symbols[name] = INSTANCE if is_instance else "c++"
    return symbols


def read_list(path):
    """-> {name: (tag, version)}"""
    symbols = {}
    if os.path.exists(path):
        with open(path, encoding="utf-8") as file:
            for line in file:
                tag, name, version = LINE.match(line.rstrip("\n")).groups()
                symbols[name] = (tag, version)
    return symbols


def write_list(path, symbols):
    with open(path, "w", encoding="utf-8") as file:
        for name, (tag, version) in sorted(symbols.items()):
            file.write(f' ({tag})"{name}@Base" {version}\n')


def differences(expected, actual, all_instances):
    for name in sorted(expected.keys() | actual.keys()):
        entry = expected.get(name) or actual.get(name)
        is_compared = all_instances or entry[0] != INSTANCE
        if is_compared and name not in actual:
            yield f"no longer exported: {name}"
        elif is_compared and name not in expected:
            yield f"not in the list: {name}"


def check(options, library):
    name = re.sub(r"^lib|\.so.*$", "", os.path.basename(library))
    path = os.path.join(options.lists, name)
    expected = read_list(path)
    actual = {symbol: (tag, expected.get(symbol, (tag, options.version))[1])
              for symbol, tag in exported(options.nm, library).items()}
    new_path = os.path.join(options.work, name)
    write_list(new_path, actual)
    found = list(differences(expected, actual, options.all_instances))
    for difference in found:
        print(f"{name}: {difference}")
    if found:
        print(f"If that is intended: cp {new_path} {path}")
    return not found


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--nm", required=True)
    parser.add_argument("--lists", metavar="DIRECTORY", required=True)
    parser.add_argument("--work", metavar="DIRECTORY", required=True)
    parser.add_argument("--version", required=True)
    parser.add_argument("--all-instances", action="store_true")
    parser.add_argument("libraries", metavar="LIBRARY", nargs="+")
    options = parser.parse_args(arguments)
    os.makedirs(options.work, exist_ok=True)
    results = [check(options, library) for library in options.libraries]
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
