"""Checks SARIF documents of connector-config check.

Usage: SarifTest.py PROGRAM SCHEMA

The schema describes the parts of SARIF 2.1.0 that the program writes: the standard's own schema is
in no Debian package.
"""
import json
import os
import subprocess
import sys
import tempfile

import jsonschema

program, schema_file = sys.argv[1:]
with open(schema_file, encoding="utf-8") as file:
    schema = json.load(file)
jsonschema.Draft202012Validator.check_schema(schema)
validator = jsonschema.Draft202012Validator(schema)


def sarif(*arguments, status):
    result = subprocess.run([program, "check", "--sarif", *arguments], capture_output=True)
    assert result.returncode == status, result
    log = json.loads(result.stdout)
    validator.validate(log)
    return log["runs"][0]


def expect(expected, actual):
    assert expected == actual, f"expected {expected}, not {actual}"


with tempfile.TemporaryDirectory() as directory:
    os.chdir(directory)
    name = "caf\u00e9 #1%.properties"
    with open(name, "wb") as file:
        file.write("a=b\r\n\u00e9\u00e9==c\n\rk\u00ffy=\\ud83d\n".encode() + b"\xff=='\n")
    run = sarif(name, status=1)
    rules = [rule["id"] for rule in run["tool"]["driver"]["rules"]]
    places = []
    for result in run["results"]:
        expect(result["ruleId"], rules[result["ruleIndex"]])
        location = result["locations"][0]["physicalLocation"]
        expect("caf%C3%A9%20%231%25.properties", location["artifactLocation"]["uri"])
        region = location["region"]
        places.append((region["startLine"], region["startColumn"], result["ruleId"]))
    # Columns are characters here.
    expect(
        [
            (2, 4, "second-separator"),
            (4, 5, "unicode-escape"),
            (5, 1, "not-utf8"),
            (5, 3, "second-separator"),
        ],
        places,
    )
    expect(True, run["invocations"][0]["executionSuccessful"])
    expect(len(rules), len(set(rules)))

    path = os.path.join(directory, "a")
    with open(path, "wb") as file:
        file.write(b"a==b\n")
    location = sarif(path, status=1)["results"][0]["locations"][0]["physicalLocation"]
    expect("file://" + path, location["artifactLocation"]["uri"])

    run = sarif("missing", name, status=2)
    expect(False, run["invocations"][0]["executionSuccessful"])
    expect(
        ["File could not be read: missing: No such file or directory"],
        [n["message"]["text"] for n in run["invocations"][0]["toolExecutionNotifications"]],
    )
    expect([], sarif(os.devnull, status=0)["results"])

    try:
        validator.validate({"version": "2.1.0", "runs": []})
    except jsonschema.ValidationError:
        pass
    else:
        sys.exit("the schema accepts everything")
