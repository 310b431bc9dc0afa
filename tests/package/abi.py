#!/usr/bin/env python3
"""Compares the binary interface of the libraries with that of the last release.

    abi.py --baseline DIRECTORY LIBRARY...
    abi.py --write --baseline DIRECTORY LIBRARY...

The baseline has a file NAME.abi for each library, which --write makes of a build with full debug
information (the preset dev). The status is 77 if there is no baseline, if abidiff is not installed,
or if the libraries have no debug information.
"""

import argparse
import os
import re
import shutil
import subprocess
import sys

SKIPPED = 77

# Bits of the status of abidiff
FAILED = 1 | 2
INCOMPATIBLE = 8


def baseline_of(directory, library):
    name = re.sub(r"^lib|\.so.*$", "", os.path.basename(library))
    return os.path.join(directory, name + ".abi")


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


def write(options):
    os.makedirs(options.baseline, exist_ok=True)
    for library in options.libraries:
        subprocess.run(["abidw", "--no-corpus-path", "--no-comp-dir-path",
                        "--out-file", baseline_of(options.baseline, library), library], check=True)
    return 0


def compare(options):
    status = 0
    for library in options.libraries:
        result = subprocess.run(["abidiff", baseline_of(options.baseline, library), library],
                                text=True, check=False, capture_output=True)
        if result.returncode & (FAILED | INCOMPATIBLE):
            print(result.stdout + result.stderr)
            status = 1
    return status


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--baseline", metavar="DIRECTORY", required=True)
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
