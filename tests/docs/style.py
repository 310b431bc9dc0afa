#!/usr/bin/env python3
"""Checks rules of style that neither the compiler nor clang-format knows.

    style.py comments|test-names|cmake ROOT

comments: no comment line is longer than 100 columns. test-names: neither the suites nor the tests
of GoogleTest have underscores in their names, because GoogleTest reserves them. cmake: nothing
needs a newer CMake than 3.22. Prints one line for each violation below the directory ROOT; the
status is 1 when there is one.
"""

import io
import os
import re
import sys
import tokenize

WIDTH = 100
CMAKE = (3, 22)
PRESETS = 3  # the newest version of preset files that CMAKE reads

TOPS = (
    *("benchmarks", "cmake", "connector", "examples", "fuzz", "messaging", "platform"),
    *("scripts", "tests", "tools", ".ci"),
)

TEST = re.compile(
    r"\b(?:TYPED_TEST_SUITE(?:_P)?|REGISTER_TYPED_TEST_SUITE_P|INSTANTIATE_TYPED_TEST_SUITE_P"
    r"|INSTANTIATE_TEST_SUITE_P|TYPED_TEST_P|TYPED_TEST|TEST_P|TEST_F|TEST)"
    r"\s*\(\s*(\w+)\s*,\s*(\w+)"
)

# What came with a CMake after 3.22, and with which.
NEWER_CMAKE = {
    r"\b(FILE_SET|HEADER_SETS?|INITIALIZE_FROM_VARIABLE|IMPORTED_NO_SYSTEM)\b": (3, 23),
    r"\b(CMAKE_)?VERIFY_INTERFACE_HEADER_SETS\b": (3, 24),
    r"\b(CMAKE_)?COMPILE_WARNING_AS_ERROR\b": (3, 24),
    r"\b(FIND_PACKAGE_ARGS|CMAKE_COLOR_DIAGNOSTICS|LINK_LIBRARY_OVERRIDE)\b": (3, 24),
    r"\bCMAKE_PROJECT_TOP_LEVEL_INCLUDES\b": (3, 24),
    r"\bSET_DEPENDENCY_PROVIDER\b": (3, 24),
    r"\bPATH_EQUAL\b": (3, 24),
    r"\$<(LINK_LIBRARY|LINK_GROUP|PATH|PATH_EQUAL)\b": (3, 24),
    r"\bfind_package\([^)]*\bGLOBAL\b": (3, 24),
    r"--fresh\b": (3, 24),
    r"^[ \t]*(end)?block[ \t]*\(": (3, 25),
    r"\breturn\([ \t\n]*PROPAGATE\b": (3, 25),
    r"\badd_subdirectory\([^)]*\bSYSTEM\b": (3, 25),
    r"\b(GET_MESSAGE_LOG_LEVEL|EXPORT_NO_SYSTEM|VALIDATOR)\b": (3, 25),
    r"\bcmake --workflow\b": (3, 25),
    r"\btry_compile\([^)]*\bSOURCE_FROM_": (3, 25),
    r"\$<BUILD_LOCAL_INTERFACE\b": (3, 26),
    r"\$<(COMPILE_ONLY|LIST)\b": (3, 27),
    r"\bcmake_file_api\(": (3, 27),
    r"\bTIMEOUT_SIGNAL_NAME\b": (3, 27),
    r"\bCXX_SCAN_FOR_MODULES\b": (3, 28),
    r"\bcmake_pkg_config\(": (3, 31),
}


# The files


def files(root):
    """-> paths of the project's sources and scripts, relative to its root"""
    for top in TOPS:
        for directory, _, names in os.walk(os.path.join(root, top)):
            for name in sorted(names):
                yield os.path.relpath(os.path.join(directory, name), root)
    yield from ("CMakeLists.txt", "CMakePresets.json")


def language(path, text):
    """-> "c++", "python", "#" for the others whose comments begin with that, or "" """
    if path.endswith((".cpp", ".hpp")):
        return "c++"
    if path.endswith(".py"):
        return "python"
    if is_cmake(path) or path.endswith((".sh", ".awk")) or text.startswith("#!"):
        return "#"
    return ""


def is_cmake(path):
    return path.endswith((".cmake", ".cmake.in")) or os.path.basename(path) == "CMakeLists.txt"


def read(root, path):
    try:
        with open(os.path.join(root, path), encoding="utf-8") as file:
            return file.read()
    except (UnicodeDecodeError, FileNotFoundError):
        return ""


# The width of comments


def comment_violations(path, text):
    lines = text.splitlines()
    comments = {"c++": cpp_comments, "python": python_comments, "#": hash_comments}
    for number in comments.get(language(path, text), lambda _: ())(text):
        if len(lines[number - 1]) > WIDTH:
            yield f"{path}:{number}: a comment of {len(lines[number - 1])} columns"


def cpp_comments(text):
    """-> numbers of the lines with a comment"""
    return matching_lines(r"^[ \t]*(/\*|\*)|(^|[ \t])//", text)


def hash_comments(text):
    return matching_lines(r"(^|[ \t])#[ \t!]", text)


def matching_lines(pattern, text):
    return [n for n, line in enumerate(text.splitlines(), 1) if re.search(pattern, line)]


def python_comments(text):
    """-> numbers of the lines with a comment or a string of several lines, which a docstring is"""
    numbers = set()
    for token in tokenize.generate_tokens(io.StringIO(text).readline):
        (first, _), (last, _) = token.start, token.end
        is_text = token.type == tokenize.STRING and token.string.startswith('"""')
        if token.type == tokenize.COMMENT or is_text:
            numbers.update(range(first, last + 1))
    return sorted(numbers)


# The names of tests


def test_name_violations(path, text):
    if language(path, text) != "c++":
        return
    for match in TEST.finditer(text):
        suite, name = match.groups()
        if "_" in suite + name:
            number = text.count("\n", 0, match.start()) + 1
            yield f"{path}:{number}: {suite}.{name} has an underscore"


# The version of CMake


def cmake_violations(path, text):
    if path == "CMakePresets.json":
        yield from presets_violations(path, text)
    if is_cmake(path) or path.startswith(("scripts/", ".ci/")):
        for pattern, version in NEWER_CMAKE.items():
            for match in re.finditer(pattern, text, re.MULTILINE):
                yield f"{path}: {match[0].strip()} needs CMake {dotted(version)}"
    for match in re.finditer(r"\bcmake_minimum_required\(VERSION ([0-9.]+)", text):
        if is_cmake(path) and match[1] != dotted(CMAKE):
            yield f"{path}: asks for CMake {match[1]}, not {dotted(CMAKE)}"


def presets_violations(path, text):
    version = re.search(r'"version": ([0-9]+)', text)
    if version is None or int(version[1]) > PRESETS:
        yield f"{path}: CMake {dotted(CMAKE)} reads no presets newer than version {PRESETS}"
    least = re.search(r'"major": ([0-9]+), "minor": ([0-9]+)', text)
    if least is None or (int(least[1]), int(least[2])) != CMAKE:
        yield f"{path}: does not ask for CMake {dotted(CMAKE)}"


def dotted(version):
    return ".".join(map(str, version))


# The program


CHECKS = {
    "comments": comment_violations,
    "test-names": test_name_violations,
    "cmake": cmake_violations,
}


def violations(check, root):
    for path in files(root):
        yield from CHECKS[check](path, read(root, path))


def main(arguments):
    if len(arguments) != 2 or arguments[0] not in CHECKS:
        print(__doc__, file=sys.stderr)
        return 2
    found = list(violations(*arguments))
    for violation in found:
        print(violation)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
