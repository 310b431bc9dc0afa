"""Checks the library's JSON Schema with a validator. json-schema-program writes schema and cases.

Usage: JsonSchemaTest.py PROGRAM
"""
import json
import subprocess
import sys

import jsonschema

lines = subprocess.run([sys.argv[1]], check=True, capture_output=True, text=True).stdout.splitlines()
schema, cases, other = json.loads(lines[0]), [json.loads(line) for line in lines[1:-1]], json.loads(lines[-1])

failures = []
for checked in (schema, other):
    jsonschema.Draft202012Validator.check_schema(checked)
    for name, option in checked["properties"].items():
        if not isinstance(option.get("type"), str):
            failures.append(f"{name} has no type")
        if "default" in option and not jsonschema.Draft202012Validator(option).is_valid(option["default"]):
            failures.append(f"the default of {name} is refused: {option}")

validator = jsonschema.Draft202012Validator(schema)
for case in cases:
    if validator.is_valid(case["document"]) != case["accepted"]:
        failures.append(f"should be {'accepted' if case['accepted'] else 'refused'}: {case['document']}")
if not any(case["accepted"] for case in cases) or all(case["accepted"] for case in cases):
    failures.append("the cases show nothing")

expected = {
    "schema": schema["$schema"] == "https://json-schema.org/draft/2020-12/schema",
    "required": schema["required"] == ["t.text"] and other["required"] == ["net.peers"],
    "description": schema["properties"]["t.flag"]["description"] == 'a "flag"',
    "default": schema["properties"]["t.wait"]["default"] == "1s500ms",
    "no default": all("default" not in schema["properties"][name] for name in ("t.empty", "t.infinite", "t.text")),
    "secret": "default" not in other["properties"]["net.password"],
    "keys": list(other["properties"])[-1] == "net.limits.count",
}
failures += [f"wrong: {name}" for name, holds in expected.items() if not holds]
if failures:
    sys.exit("\n".join(failures))
print(f"{len(cases)} cases")
