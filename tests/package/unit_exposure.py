#!/usr/bin/env python3
"""Checks a template of a systemd unit: it has no mistakes, and its exposure is at most 2.0.

    unit_exposure.py UNIT

The status is 77 if systemd-analyze is not installed, or cannot check a unit that is not loaded.
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile

SKIPPED = 77
MOST = 2.0


def analyze(*arguments):
    result = subprocess.run(["systemd-analyze", *arguments], text=True, check=False,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                            env={**os.environ, "SYSTEMD_COLORS": "0"})
    return result.returncode, result.stdout


def main(unit):
    if shutil.which("systemd-analyze") is None:
        print("skipped: systemd-analyze is not installed")
        return SKIPPED
    with tempfile.TemporaryDirectory() as directory:
        path = os.path.join(directory, os.path.basename(unit).replace("@", "@test"))
        with open(unit, encoding="utf-8") as template, open(path, "w", encoding="utf-8") as file:
            # The checked unit names a program that is installed.
            file.write(template.read().replace("/usr/bin/connector-config", "/bin/true"))
        verified, mistakes = analyze("verify", "--man=no", path)
        _, exposure = analyze("security", "--offline=true", "--no-pager", path)
    score = re.search(r"Overall exposure level for .*: ([0-9.]+)", exposure)
    if score is None:
        print(f"skipped: {exposure}")
        return SKIPPED
    print(mistakes + score.group())
    has_mistakes = verified != 0 or os.path.basename(path) in mistakes
    return 1 if has_mistakes or float(score.group(1)) > MOST else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
