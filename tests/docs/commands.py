#!/usr/bin/env python3
"""Runs the commands in the documents and compares what they write.

    commands.py ROOT PROGRAM...

Runs the console blocks for which tests/docs/blocks.txt names this file. Each document gets a
directory that looks like the root of a checkout whose release build has the PROGRAMs; the scripts
in it install and build nothing. A line that begins with "$ " is a command. The lines below it are
its output, standard error included; a block without any output shows only what to type, so its
commands must only succeed. A command that ends in "&" runs until the end of the document, and has
begun when it writes a line. The address 127.0.0.1:8080 stands for a free port. Prints each
difference; the status is 1 if there is one, or no command.
"""

import contextlib
import difflib
import os
import shutil
import socket
import subprocess
import sys
import tempfile
from dataclasses import dataclass

from documents import Rules, blocks_of, paths_of

HERE = "run by tests/docs/commands.py"
ADDRESS = "127.0.0.1:8080"
TIME_LIMIT = 30  # seconds for one command


@dataclass
class Command:
    place: str
    text: str
    output: str  # what the document shows
    is_compared: bool


def commands_of(block):
    found = []
    lines = iter(enumerate(block.text.splitlines(keepends=True), block.line))
    for number, line in lines:
        if not line.startswith("$ "):
            found[-1].output += line
            continue
        text = line[2:]
        while text.endswith("\\\n"):
            text += next(lines)[1]
        found.append(Command(f"{block.document}:{number}", text.rstrip("\n"), "", True))
    if not any(command.output for command in found):
        for command in found:
            command.is_compared = False
    return found


def make_checkout(root, directory, programs):
    for name in os.listdir(root):
        if name not in (".git", "build", "scripts"):
            os.symlink(os.path.join(root, name), os.path.join(directory, name))
    for program in programs:
        relative = "tools/connector-config" if "connector-config" in program else "examples"
        place = os.path.join(directory, "build/release", relative)
        os.makedirs(place)
        os.symlink(program, os.path.join(place, os.path.basename(program)))
    shutil.copytree(os.path.join(root, "scripts"), os.path.join(directory, "scripts"))
    with open(os.path.join(directory, "scripts/lib/setup.sh"), "a", encoding="utf-8") as setup:
        setup.write("set_up() { :; }\n")


def free_address():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return f"127.0.0.1:{probe.getsockname()[1]}"


class Session:
    """Runs the commands of one document in its directory."""

    def __init__(self, directory):
        self.directory = directory
        self.address = free_address()
        self.background = []
        self.environment = dict(os.environ, LC_ALL="C.UTF-8", NO_PROXY="*")
        programs = os.path.join(directory, "build/release/tools/connector-config")
        self.environment["PATH"] = programs + os.pathsep + os.environ["PATH"]

    def arguments(self, text):
        command = text.replace(ADDRESS, self.address)
        return {
            "args": ["bash", "-c", command],
            "cwd": self.directory,
            "env": self.environment,
            "stdin": subprocess.DEVNULL,
            "stdout": subprocess.PIPE,
            "stderr": subprocess.STDOUT,
            "text": True,
        }

    def run(self, command):
        """-> (status, output)"""
        if command.text.endswith("&"):
            return self.start(command.text[:-1])
        ended = subprocess.run(**self.arguments(command.text), timeout=TIME_LIMIT, check=False)
        return ended.returncode, ended.stdout.replace(self.address, ADDRESS)

    def start(self, text):
        process = subprocess.Popen(**self.arguments("exec " + text))
        self.background.append(process)
        first = process.stdout.readline()
        return 0 if first else process.wait(), first.replace(self.address, ADDRESS)

    def end(self):
        for process in self.background:
            process.terminate()
            process.communicate(timeout=TIME_LIMIT)


def problem_of(command, status, output):
    if command.is_compared and output != command.output:
        shown, written = command.output.splitlines(), output.splitlines()
        difference = difflib.unified_diff(shown, written, "shown", "written", lineterm="")
        return f"{command.place}: {command.text}\n" + "\n".join(difference)
    if not command.is_compared and status != 0:
        return f"{command.place}: {command.text}\nstatus {status}\n{output}"
    return ""


def run_document(root, programs, blocks):
    """-> (the number of commands, the problems)"""
    commands = [command for block in blocks for command in commands_of(block)]
    problems = []
    with tempfile.TemporaryDirectory() as directory:
        make_checkout(root, directory, programs)
        session = Session(directory)
        with contextlib.ExitStack() as stack:
            stack.callback(session.end)
            for command in commands:
                if problem := problem_of(command, *session.run(command)):
                    problems.append(problem)
    return len(commands), problems


def main(arguments):
    root, programs = os.path.abspath(arguments[0]), arguments[1:]
    rules = Rules(root)
    count, problems = 0, []
    for document in paths_of(root):
        blocks = [
            block
            for block in blocks_of(root, document)
            if block.kind == "console" and rules.tester_of(block) == HERE
        ]
        if blocks:
            number, found = run_document(root, programs, blocks)
            count, problems = count + number, problems + found
    print("\n".join([*problems, f"{count} commands, {len(problems)} problems"]))
    return 1 if problems or not count else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
