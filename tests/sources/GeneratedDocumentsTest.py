"""Compares the options of generated documents with the results of other readers.

Usage: GeneratedDocumentsTest.py PRINT_OPTIONS [ROUNDS]
"""
import json
import math
import random
import re
import subprocess
import sys
import tempfile
import tomllib
from pathlib import Path

import yaml


class CoreLoader(yaml.SafeLoader):
    """PyYAML with the core schema of YAML 1.2 instead of the types of 1.1."""


CoreLoader.yaml_implicit_resolvers = {}
for tag, pattern, first in (
    ("null", r"^(?:~|null|Null|NULL|)$", ["~", "n", "N", ""]),
    ("bool", r"^(?:true|True|TRUE|false|False|FALSE)$", list("tTfF")),
    ("int", r"^(?:[-+]?[0-9]+|0o[0-7]+|0x[0-9a-fA-F]+)$", list("-+0123456789")),
    ("float", r"^(?:[-+]?(?:\.[0-9]+|[0-9]+(?:\.[0-9]*)?)(?:[eE][-+]?[0-9]+)?"
              r"|[-+]?\.(?:inf|Inf|INF)|\.(?:nan|NaN|NAN))$", list("-+.0123456789")),
    ("merge", r"^<<$", ["<"]),
):
    CoreLoader.add_implicit_resolver("tag:yaml.org,2002:" + tag, re.compile(pattern), first)


def core_int(loader, node):
    text = loader.construct_scalar(node)
    if text.startswith("0o"):
        return int(text[2:], 8)
    return int(text, 16) if text.startswith("0x") else int(text, 10)


def core_float(loader, node):
    text = loader.construct_scalar(node).lower()
    return float(text.replace(".inf", "inf").replace(".nan", "nan"))


def mapping(loader, node, deep=False):
    """Converts keys that are not text to their source text."""
    loader.flatten_mapping(node)
    return {key.value: loader.construct_object(value, deep=True) for key, value in node.value}


CoreLoader.add_constructor("tag:yaml.org,2002:int", core_int)
CoreLoader.add_constructor("tag:yaml.org,2002:float", core_float)
CoreLoader.add_constructor("tag:yaml.org,2002:map", mapping)

READERS = {
    "json": lambda path: json.loads(path.read_text(encoding="utf-8")),
    "toml": lambda path: tomllib.loads(path.read_text(encoding="utf-8")),
    "yaml": lambda path: yaml.load(path.read_text(encoding="utf-8"), Loader=CoreLoader),
}


def number(value):
    """The type and value of a number as an option; None if there is none."""
    if isinstance(value, float):
        return "double", value.hex() if math.isfinite(value) else str(value)
    if -2**31 <= value < 2**31:
        return "int", value
    if 0 <= value < 2**32:
        return "uint", value
    return ("double", float(value).hex()) if int(float(value)) == value else None


def vector(values):
    """A list that is one option; None if it is not."""
    kinds = {type(value) for value in values}
    if kinds == {bool}:
        return ["bools", values]
    if kinds == {str}:
        return ["texts", values]
    if kinds and kinds <= {int, float}:
        types = {number(value)[0] for value in values}
        if types == {"int"}:
            return ["ints", values]
        if types <= {"int", "uint"} and min(values) >= 0:
            return ["uints", values]
        return ["doubles", [float(value).hex() for value in values]]
    return None


def with_texts(value):
    """Converts the dates and times of TOML to text."""
    if isinstance(value, dict):
        return {key: with_texts(child) for key, child in value.items()}
    if isinstance(value, list):
        return [with_texts(child) for child in value]
    return value.isoformat() if hasattr(value, "isoformat") else value


def flatten(value, name, options):
    if isinstance(value, dict):
        for key, child in value.items():
            flatten(child, key if name is None else name + "." + key, options)
    elif isinstance(value, list):
        if (whole := vector(value)) is not None:
            options[name] = whole
        else:
            for index, child in enumerate(value):
                flatten(child, f"{name}.{index}", options)
    elif isinstance(value, bool):
        options[name] = ["bool", value]
    elif isinstance(value, (int, float)):
        options[name] = list(number(value))
    elif isinstance(value, str):
        options[name] = ["text", value]
    return options


class Documents:
    """Generates documents from a seed."""

    def __init__(self, seed):
        self.random = random.Random(seed)

    def text(self):
        letters = "abcXYZ019 _-äß€😀\"'\\/#:{}[],&*!|>%@`\t\n.~=<?"
        # The YAML parser loses the line break of a single-quoted text of blanks alone.
        text = "".join(self.random.choice(letters) for _ in range(self.random.randrange(8)))
        return text if text.strip() else text.replace("\n", "")

    def scalar(self, has_null):
        choices = [
            lambda: self.random.choice([True, False]),
            lambda: self.random.randrange(-10, 10),
            lambda: self.random.choice([2**31, 2**32 - 1, 2**32, 2**53, -2**31, -2**31 - 1, 2**62]),
            lambda: self.random.uniform(-5, 5),
            lambda: self.random.choice([0.1, 1e300, -1e-300, 5e-324, 1.7976931348623157e308, -0.0]),
            self.text,
            self.text,
        ]
        return None if has_null and self.random.random() < 0.1 else self.random.choice(choices)()

    def value(self, depth, has_null):
        roll = self.random.random()
        if depth > 0 and roll < 0.25:
            return self.object(depth - 1, has_null)
        if depth > 0 and roll < 0.45:
            same = self.random.random() < 0.5
            one = self.random.choice([lambda: self.random.choice([True, False]), self.text,
                                      lambda: self.random.randrange(0, 2**32),
                                      lambda: self.random.uniform(-1, 1)])
            return [one() if same else self.value(depth - 1, has_null)
                    for _ in range(self.random.randrange(4))]
        return self.scalar(has_null)

    def object(self, depth, has_null):
        """An object without dots in its keys, so that no option key occurs twice."""
        return {self.text().replace(".", "") + str(index): self.value(depth, has_null)
                for index in range(self.random.randrange(6))}

    def json(self):
        return json.dumps(self.object(4, True), ensure_ascii=self.random.random() < 0.5,
                          indent=self.random.choice([None, 1, "\t"]))

    def yaml(self):
        style = self.random.choice([None, None, '"', "'"])
        return yaml.safe_dump(self.object(4, True), allow_unicode=self.random.random() < 0.7,
                              default_flow_style=self.random.choice([True, False, None]),
                              default_style=style, width=self.random.choice([20, 80, 1000]),
                              indent=self.random.randrange(2, 6))

    def toml_value(self, value):
        if isinstance(value, bool):
            return str(value).lower()
        if isinstance(value, dict):
            return "{" + ", ".join(f"{json.dumps(k, ensure_ascii=False)} = {self.toml_value(v)}"
                                   for k, v in value.items()) + "}"
        if isinstance(value, list):
            return "[" + ", ".join(self.toml_value(v) for v in value) + "]"
        if isinstance(value, float):
            return repr(value)
        if isinstance(value, int):
            return self.random.choice([str, hex if value >= 0 else str])(value)
        if self.random.random() < 0.2:
            return self.random.choice(["1979-05-27T07:32:00+00:00", "1979-05-27", "07:32:00",
                                       "1979-05-27T00:32:00.999999-07:00"])
        return json.dumps(value, ensure_ascii=False)

    def toml(self):
        lines = []

        def table(members, name):
            inner = {}
            for key, value in members.items():
                if isinstance(value, dict) and self.random.random() < 0.7:
                    inner[key] = value
                else:
                    lines.append(f"{json.dumps(key, ensure_ascii=False)} = {self.toml_value(value)}")
            for key, value in inner.items():
                path = (name + "." if name else "") + json.dumps(key, ensure_ascii=False)
                lines.append(f"[{path}] # a table")
                table(value, path)

        table(self.object(4, False), "")
        return "\n".join(lines) + "\n"


def compare(program, directory, kind, rounds):
    paths = []
    for seed in range(rounds):
        path = directory / f"{kind}-{seed}.{kind}"
        path.write_bytes(getattr(Documents(seed), kind)().encode())
        paths.append(path)
    output = subprocess.run([program, *map(str, paths)], check=True, capture_output=True).stdout
    lines = output.decode().splitlines()
    options = 0
    for path, line in zip(paths, lines, strict=True):
        expected = flatten(with_texts(READERS[kind](path) or {}), None, {})
        found = json.loads(line)
        for type_and_value in found.values() if isinstance(found, dict) else ():
            if type_and_value[0] == "double":
                type_and_value[1] = float.fromhex(type_and_value[1]).hex()
            elif type_and_value[0] == "doubles":
                type_and_value[1] = [float.fromhex(one).hex() for one in type_and_value[1]]
        if found != expected:
            print(path.read_text(encoding="utf-8"))
            sys.exit(f"{path.name}: found {found}\nexpected {expected}")
        options += len(expected)
    if options < rounds:
        sys.exit(f"{kind}: only {options} options in {rounds} documents")
    print(f"{kind}: {rounds} documents, {options} options")


def main():
    rounds = int(sys.argv[2]) if len(sys.argv) > 2 else 300
    with tempfile.TemporaryDirectory() as directory:
        for kind in READERS:
            compare(sys.argv[1], Path(directory), kind, rounds)


main()
