"""Checks the files that bring connector-config check to other programs.

Usage: IntegrationTest.py PROGRAM PROJECT_ROOT
"""
import json
import os
import re
import shlex
import subprocess
import sys
import tempfile

import yaml

program, root = sys.argv[1:]


def run(entry, *files):
    """-> what the entry of a hook writes for these files, and its exit status"""
    name, *arguments = shlex.split(entry)
    expect(os.path.basename(program), name)
    result = subprocess.run([program, *arguments, *files], capture_output=True, text=True)
    return result.stdout, result.returncode


def expect(expected, actual):
    assert expected == actual, f"expected {expected}, not {actual}"


with open(os.path.join(root, ".pre-commit-hooks.yaml"), encoding="utf-8") as file:
    hooks = {hook["id"]: hook for hook in yaml.safe_load(file)}
with open(os.path.join(root, ".github/connector-config-matcher.json"), encoding="utf-8") as file:
    matcher = json.load(file)["problemMatcher"][0]
[pattern] = matcher["pattern"]

for hook in hooks.values():
    expect("system", hook["language"])
    assert hook["name"] and hook["description"]
    assert re.search(hook["files"], "a/b.properties")
    assert not re.search(hook["files"], "a/b.properties.cpp")

with tempfile.TemporaryDirectory() as directory:
    name = os.path.join(directory, "a:1.properties")
    with open(name, "w", encoding="utf-8") as file:
        file.write("# c\na==[b]\n")
    output, status = run(hooks["connector-config-check"]["entry"], name)
    expect(1, status)
    match = re.match(pattern["regexp"], output.rstrip("\n"))
    expect(
        [name, "2", "3", "second-separator"],
        [match[pattern[part]] for part in ("file", "line", "column", "code")],
    )
    assert match[pattern["message"]].startswith("the second separator is dropped: ")
    expect(("", 0), run(hooks["connector-config-fix"]["entry"], name))
    with open(name, encoding="utf-8") as file:
        expect("# c\na=[b]\n", file.read())
