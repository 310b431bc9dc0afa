#!/usr/bin/env python3
"""Checks that every piece of code and every command in the documents is tested.

    blocks.py ROOT

A code block needs a line of tests/docs/blocks.txt, or a comment above it:

    <!-- run by PATH -->     the test or script PATH runs it
    <!-- part of PATH -->    its lines stand in the file PATH, which is built or tested
    <!-- not run: REASON --> it is not tested

PATH must exist, and must contain the lines of the block for "part of". A complete program needs
none of them: the build makes a test of it. Blocks without a language and of the kind "text" are
drawings, or what a program writes. Prints one line for each block that is not tested; the status is
1 if there is one.
"""

import os
import sys
import textwrap

from documents import Rules, blocks_of, paths_of, read

NOT_CODE = ("", "text")


def is_program(block):
    return block.kind == "cpp" and "int main(" in block.text


def lines_of(text):
    return [line.strip() for line in textwrap.dedent(text).splitlines() if line.strip()]


def contains(text, part):
    """Whether the lines of the part follow each other in the text; indentation does not count"""
    lines, wanted = lines_of(text), lines_of(part)
    return any(lines[i : i + len(wanted)] == wanted for i in range(len(lines)))


def problem_of(root, block, tester):
    if not tester:
        return "nothing tests this block"
    verb, _, path = tester.rpartition(" ")
    if tester.startswith("not run: "):
        return ""
    if not os.path.isfile(os.path.join(root, path)):
        return f"{path} does not exist"
    if verb == "part of" and not contains(read(root, path), block.text):
        return f"{path} does not contain these lines"
    return ""


def problems_of(root):
    rules = Rules(root)
    for document in paths_of(root):
        for block in blocks_of(root, document):
            if block.kind in NOT_CODE or is_program(block):
                continue
            if problem := problem_of(root, block, rules.tester_of(block)):
                yield f"{block.place()}: {problem} ({block.kind})"


def main(arguments):
    problems = list(problems_of(arguments[0]))
    for problem in problems:
        print(problem)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
