#!/usr/bin/env python3
"""Compares the tables of docs/guarantees.md with the public functions of the headers.

    guarantees.py XML DOCUMENT

XML is the directory that Doxygen wrote. Every public function needs a row, in any table whose
first column is "function": `Class::name` for a member, `name` for another function; a row may have
several of them. Overloads share a row. No row is needed for an override, whose base has one, for a
function that is defaulted or deleted, and for a destructor without a comment. Prints one line for
each function without a row, each row without a function and each row with an empty cell; the
status is 1 if there is one.
"""

import glob
import os
import re
import sys
import xml.etree.ElementTree as ElementTree

SCOPES = ("class", "struct", "namespace")
HEAD = "| function |"
NAME = re.compile(r"`([^`]+)`")


def is_written(function):
    """Whether the text of the declaration gives the function a body or a promise of one"""
    arguments = function.findtext("argsstring") or ""
    return not arguments.replace(" ", "").endswith(("=default", "=delete"))


def has_comment(function):
    texts = (function.find("briefdescription"), function.find("detaileddescription"))
    return any(text is not None and "".join(text.itertext()).strip() for text in texts)


def needs_row(function):
    if function.find("reimplements") is not None or not is_written(function):
        return False
    return not function.findtext("name").startswith("~") or has_comment(function)


def functions_in(scope):
    """-> the public functions of a class, or all functions of a namespace"""
    for member in scope.iter("memberdef"):
        if member.get("kind") == "function" and member.get("prot") == "public":
            yield member


def name_of(scope, function):
    name = function.findtext("name")
    if scope.get("kind") == "namespace":
        return name
    return scope.findtext("compoundname").split("::")[-1] + "::" + name


def scopes_in(directory):
    for path in glob.glob(os.path.join(directory, "*.xml")):
        for scope in ElementTree.parse(path).iter("compounddef"):
            if scope.get("kind") in SCOPES:
                yield scope


def functions_of(directory):
    """-> (the names that need a row, all names)"""
    needed, known = set(), set()
    for scope in scopes_in(directory):
        for function in functions_in(scope):
            known.add(name_of(scope, function))
            if needs_row(function):
                needed.add(name_of(scope, function))
    return needed, known


def rows_of(text):
    """-> the cells of each row of the tables of functions"""
    inside = False
    for line in text.splitlines():
        if not line.startswith("|"):
            inside = False
        elif line.startswith(HEAD):
            inside = True
        elif inside and not line.startswith("|---"):
            yield [cell.strip() for cell in line.strip("|").split("|")]


def problems_of(needed, known, text):
    listed = set()
    for cells in rows_of(text):
        names = NAME.findall(cells[0])
        listed.update(names)
        if len(cells) != 6 or not all(cells):
            yield f"{cells[0]}: a row has six cells, none of them empty"
    for name in sorted(needed - listed):
        yield f"{name}: there is no row"
    for name in sorted(listed - known):
        yield f"{name}: there is no such public function"


def main(arguments):
    directory, document = arguments
    needed, known = functions_of(directory)
    if not needed:
        print("guarantees: Doxygen found no functions", file=sys.stderr)
        return 1
    with open(document, encoding="utf-8") as file:
        problems = list(problems_of(needed, known, file.read()))
    for problem in problems:
        print(f"{document}: {problem}")
    print(f"{len(needed)} public functions, {len(problems)} problems")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
