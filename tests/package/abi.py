#!/usr/bin/env python3
"""Compares the binary interface of the libraries with that of the last release.

    abi.py --headers DIRECTORY --baseline DIRECTORY LIBRARY...
    abi.py --headers DIRECTORY --baseline DIRECTORY --write LIBRARY...

The baseline has a file NAME.abi.xz for each library, which --write makes. What counts are the types
of the installed headers. The status is 77 if there is no baseline, if abidiff is not installed, or
if the libraries have no full debug information.
"""

import argparse
import lzma
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

SKIPPED = 77


def baseline_of(directory, library):
    name = re.sub(r"^lib|\.so.*$", "", os.path.basename(library))
    return os.path.join(directory, name + ".abi.xz")


def has_types(library):
    sections = subprocess.run(["readelf", "--debug-dump=abbrev", library], text=True, check=True,
                              capture_output=True).stdout
    return "DW_TAG_member" in sections


def reason_to_skip(options):
    for program in ("abidiff", "abidw"):
        if shutil.which(program) is None:
            return f"{program} is not installed"
    for library in options.libraries:
        if not has_types(library):
            return f"{library} has no full debug information"
        if not options.write and not os.path.exists(baseline_of(options.baseline, library)):
            return "no release to compare with: " + baseline_of(options.baseline, library)
    return ""


def interface_of(library, headers):
    """The types of the headers, without what other libraries define."""
    return subprocess.run(
        ["abidw", "--no-corpus-path", "--no-comp-dir-path", "--no-show-locs",
         "--no-parameter-names", "--drop-private-types", "--drop-undefined-syms",
         "--exported-interfaces-only", "--headers-dir", headers, library],
        check=True, capture_output=True).stdout


def write(options):
    os.makedirs(options.baseline, exist_ok=True)
    for library in options.libraries:
        with lzma.open(baseline_of(options.baseline, library), "wb", preset=9) as file:
            file.write(interface_of(library, options.headers))
    return 0


def compare(options):
    status = 0
    for library in options.libraries:
        with tempfile.TemporaryDirectory() as directory:
            released = os.path.join(directory, "released.abi")
            current = os.path.join(directory, "current.abi")
            with lzma.open(baseline_of(options.baseline, library)) as file:
                pathlib.Path(released).write_bytes(file.read())
            pathlib.Path(current).write_bytes(interface_of(library, options.headers))
            result = subprocess.run(["abidiff", "--no-added-syms", released, current],
                                    text=True, check=False, capture_output=True)
        if result.returncode != 0:
            print(result.stdout + result.stderr)
            status = 1
    return status


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--baseline", metavar="DIRECTORY", required=True)
    parser.add_argument("--headers", metavar="DIRECTORY", required=True)
    parser.add_argument("--write", action="store_true")
    parser.add_argument("libraries", metavar="LIBRARY", nargs="+")
    options = parser.parse_args(arguments)
    reason = reason_to_skip(options)
    if reason:
        print("skipped: " + reason)
        return SKIPPED
    return write(options) if options.write else compare(options)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
