#!/usr/bin/env python3
"""What blocks.py and commands.py find."""

import contextlib
import io
import os
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

import blocks  # noqa: E402
import commands  # noqa: E402


class Documents(unittest.TestCase):
    """Tests on a checkout with one document"""

    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.root = directory.name
        self.write("tests/docs/blocks.txt", "# comment\nREADME.md | console | " + commands.HERE + "\n")
        self.write("tests/docs/commands.py", "")
        self.write("scripts/lib/setup.sh", "")

    def write(self, path, text):
        path = os.path.join(self.root, path)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)

    def run_main(self, module, text):
        """-> (status, what it wrote about a README with that text)"""
        self.write("README.md", text)
        output = io.StringIO()
        with contextlib.redirect_stdout(output):
            status = module.main([self.root])
        return status, output.getvalue()


class BlocksTest(Documents):
    def expect(self, text, *problems):
        status, output = self.run_main(blocks, text)
        self.assertEqual(list(problems), output.splitlines())
        self.assertEqual(1 if problems else 0, status)

    def test_programs_and_what_they_write_need_no_mark(self):
        self.expect("```cpp\nint main() {}\n```\n\n```text\nhello\n```\n\n```\na drawing\n```\n")

    def test_a_block_that_nothing_tests_is_found(self):
        self.expect(
            "text\n\n```json\n{}\n```\n", "README.md:4: nothing tests this block (json)"
        )

    def test_a_rule_for_the_document_is_enough(self):
        self.expect("```console\n$ true\n```\n")

    def test_a_reason_is_enough(self):
        self.expect("<!-- not run: needs a network -->\n```sh\nwget x\n```\n")

    def test_a_test_must_exist(self):
        mark = "<!-- run by tests/run.sh -->\n```sh\nx\n```\n"
        self.expect(mark, "README.md:3: tests/run.sh does not exist (sh)")
        self.write("tests/run.sh", "")
        self.expect(mark)

    def test_a_part_must_be_in_its_file(self):
        mark = "<!-- part of part.cpp -->\n```cpp\nf();\nif (x)\n    g();\n```\n"
        self.write("part.cpp", "int main() {\n    f();\n    if (x)\n        g();\n}\n")
        self.expect(mark)
        self.write("part.cpp", "int main() {\n    f();\n    h();\n    if (x)\n        g();\n}\n")
        self.expect(mark, "README.md:3: part.cpp does not contain these lines (cpp)")


class CommandsTest(Documents):
    def expect(self, text, status, *parts):
        actual, output = self.run_main(commands, text)
        for part in parts:
            self.assertIn(part, output)
        self.assertEqual(status, actual)

    def test_output_is_compared(self):
        self.expect("```console\n$ echo a \\\n    b\na b\n```\n", 0, "1 commands, 0 problems")
        self.expect("```console\n$ echo a\nb\n```\n", 1, "README.md:2: echo a", "-b", "+a")

    def test_in_a_block_with_output_silence_is_compared_too(self):
        self.expect("```console\n$ echo a\n$ echo b\nb\n```\n", 1, "README.md:2: echo a")

    def test_commands_without_output_must_succeed(self):
        self.expect("```console\n$ echo a\n```\n", 0)
        self.expect("```console\n$ false\n```\n", 1, "README.md:2: false", "status 1")

    def test_commands_share_a_directory(self):
        self.expect("```console\n$ echo a > file\n```\n\n```console\n$ cat file\na\n```\n", 0)
        self.assertFalse(os.path.exists(os.path.join(self.root, "file")))

    def test_a_command_in_the_background_runs_until_the_end(self):
        self.expect(
            "```console\n$ sh -c 'echo $$ > id; echo begun; exec sleep 60' &\n"
            "$ kill -0 $(cat id)\n```\n",
            0,
        )

    def test_a_document_without_commands_proves_nothing(self):
        self.expect("nothing\n", 1)


if __name__ == "__main__":
    unittest.main()
