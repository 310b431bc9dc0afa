"""The code blocks of the documents, and what says how each of them is tested."""

import fnmatch
import os
import re
from dataclasses import dataclass

BLOCK = re.compile(r"(?:^<!-- (.*?) -->\n+)?^```([^\n]*)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
RULES = "tests/docs/blocks.txt"


@dataclass
class Block:
    document: str  # the path from the root
    line: int  # of its first line of text
    kind: str  # "cpp", "console", ...; empty for drawings
    text: str
    mark: str  # the comment above the block; empty if there is none

    def place(self):
        return f"{self.document}:{self.line}"


def paths_of(root):
    """-> the paths of all documents: those of the root and all below docs/"""
    found = [name for name in os.listdir(root) if name.endswith(".md")]
    for directory, _, names in os.walk(os.path.join(root, "docs")):
        relative = os.path.relpath(directory, root)
        found += [os.path.join(relative, name) for name in names if name.endswith(".md")]
    return sorted(found)


def read(root, path):
    with open(os.path.join(root, path), encoding="utf-8") as file:
        return file.read()


def blocks_of(root, document):
    text = read(root, document)
    return [
        Block(
            document,
            text.count("\n", 0, match.start(3)) + 1,
            match[2],
            match[3],
            match[1] or "",
        )
        for match in BLOCK.finditer(text)
    ]


class Rules:
    """The lines of blocks.txt: DOCUMENT | KIND | what tests such blocks. The first match counts."""

    def __init__(self, root):
        self.rules = [
            [column.strip() for column in line.split("|")]
            for line in read(root, RULES).splitlines()
            if line.strip() and not line.startswith("#")
        ]

    def tester_of(self, block):
        """-> what tests the block according to its own mark or the rules; nothing if none does"""
        if block.mark.startswith(("run by ", "part of ", "not run: ")):
            return block.mark
        for document, kind, tester in self.rules:
            if fnmatch.fnmatchcase(block.document, document) and kind == block.kind:
                return tester
        return ""
