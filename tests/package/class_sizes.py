#!/usr/bin/env python3
"""Compares the sizes of all classes in the installed headers with a list.

    class_sizes.py --compiler CXX [--flags FLAGS] --include DIRECTORY --work DIRECTORY LIST

Applications contain objects of these classes, so a changed size breaks existing programs. The
classes are all that GCC finds in the headers in DIRECTORY, including private ones and instantiated
templates. The status is 1 if a size differs, and 77 if the list is not for the compiler's platform.
The actual list is written to the work directory.
"""

import argparse
import os
import re
import shlex
import subprocess
import sys

SKIPPED = 77

OURS = ("connector::", "fl::", "foundation::")

# What the list is for: macros of the preprocessor, and whether they are defined.
PLATFORM = {
    "__x86_64__": True,
    "__LP64__": True,
    "__GLIBCXX__": True,
    "__clang__": False,  # it cannot list the sizes
    "_GLIBCXX_DEBUG": False,
    "__SANITIZE_ADDRESS__": False,
    "__SANITIZE_THREAD__": False,
}

CLASS = re.compile(r"^Class (.+)\n   size=([0-9]+) align=([0-9]+)$", re.MULTILINE)

# Shorter names. Versions of GCC differ in which default arguments of templates they show.
NAMES = [
    (r"std::__cxx11::", "std::"),
    (r", std::char_traits<\w+>, std::allocator<\w+> ?", ""),
    (r"std::basic_string<char ?>", "std::string"),
    (r"std::basic_string<char16_t ?>", "std::u16string"),
    (r"std::(vector|set)<([^<>]*), (?:std::less<\2 ?>, ?)?std::allocator<\2 ?> ?>", r"std::\1<\2>"),
    (r"boost::variant<bool, int, unsigned int, (?:[^<>]|<[^<>]*>)*>", "OptionValue"),
    (r" >", ">"),
]

# Templates that the headers only declare for applications to use
USES = """
template class connector::detail::FutureContinuation<connector::configuration::OptionValue>;
template class connector::reactive_streams::Subscriber<connector::configuration::OptionValue>;
"""


def run(command, **options):
    return subprocess.run(command, check=True, text=True, **options)


def unsuitable(compiler):
    """-> why the list is not for this compiler with these flags; "" if it is"""
    probe = run([*compiler, "-dM", "-E", "-x", "c++", "-"], input="#include <string>\n",
                capture_output=True)
    macros = set(re.findall(r"^#define (\w+)", probe.stdout, re.MULTILINE))
    for macro, is_wanted in PLATFORM.items():
        if (macro in macros) != is_wanted:
            return f"{macro} is {'not ' if is_wanted else ''}defined"
    return ""


def headers_below(directory):
    for folder, _, names in os.walk(directory):
        for name in names:
            if name.endswith(".hpp"):
                yield os.path.relpath(os.path.join(folder, name), directory)


def short(name):
    for pattern, replacement in NAMES:
        name = re.sub(pattern, replacement, name)
    return name


def sizes(dump):
    """-> {name: (size, alignment)} from what -fdump-lang-class writes"""
    classes = {}
    for name, size, alignment in CLASS.findall(dump):
        if name.startswith(OURS) and "<lambda" not in name:
            classes[short(name)] = (int(size), int(alignment))
    return classes


def measure(compiler, include, work):
    os.makedirs(work, exist_ok=True)
    source, dump = (os.path.join(work, "headers." + suffix) for suffix in ("cpp", "class"))
    with open(source, "w", encoding="utf-8") as file:
        file.writelines(f"#include <{name}>\n" for name in sorted(headers_below(include)))
        file.write(USES)
    run([*compiler, "-std=c++17", "-I", include, "-fsyntax-only", f"-fdump-lang-class={dump}", source])
    with open(dump, encoding="utf-8") as file:
        return sizes(file.read())


def read_list(path):
    """-> {name: (size, alignment)}"""
    classes = {}
    with open(path, encoding="utf-8") as file:
        for line in file:
            if line.strip() and not line.startswith("#"):
                size, alignment, name = line.strip().split(" ", 2)
                classes[name] = (int(size), int(alignment))
    return classes


def write_list(path, classes):
    with open(path, "w", encoding="utf-8") as file:
        file.write("# size, alignment and name of the classes in the installed headers, for x86-64\n")
        for name, (size, alignment) in sorted(classes.items()):
            file.write(f"{size} {alignment} {name}\n")


def differences(expected, actual):
    for name in sorted(expected.keys() | actual.keys()):
        if expected.get(name) != actual.get(name):
            yield f"{name}: {shown(actual.get(name))}, the list says {shown(expected.get(name))}"


def shown(figures):
    return "no such class" if figures is None else f"size {figures[0]}, alignment {figures[1]}"


def parse_arguments(arguments):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--compiler", metavar="CXX", required=True)
    parser.add_argument("--flags", metavar="FLAGS", default="")
    parser.add_argument("--include", metavar="DIRECTORY", required=True)
    parser.add_argument("--work", metavar="DIRECTORY", required=True)
    parser.add_argument("list", metavar="LIST")
    return parser.parse_args(arguments)


def main(arguments):
    options = parse_arguments(arguments)
    compiler = [options.compiler, *shlex.split(options.flags)]
    reason = unsuitable(compiler)
    if reason:
        print(f"skipped: the list is for GCC and libstdc++ on x86-64 without sanitizers, but {reason}")
        return SKIPPED
    actual = measure(compiler, options.include, options.work)
    new_list = os.path.join(options.work, os.path.basename(options.list))
    write_list(new_list, actual)
    found = list(differences(read_list(options.list), actual))
    for difference in found:
        print(difference)
    if found:
        print(f"If the next version may be incompatible: cp {new_list} {options.list}")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
