"""What style.py finds."""

import os
import subprocess
import sys
import tempfile
import unittest

SCRIPT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "style.py")
sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(SCRIPT))

import style  # noqa: E402

LONG = "x" * 96  # too long by one column behind "// x "
PRESETS = '{ "version": 3, "cmakeMinimumRequired": { "major": 3, "minor": 22, "patch": 0 } }'


class Style(unittest.TestCase):
    def expect(self, check, path, text, *violations):
        self.assertEqual(list(violations), list(style.CHECKS[check](path, text)))


class Comments(Style):
    def test_of_100_columns_are_short_enough(self):
        self.expect("comments", "a.cpp", f"// x {LONG[1:]}\n")

    def test_of_101_columns_are_found_in_every_language(self):
        for path, text in (
            ("a.cpp", f"// x {LONG}"),
            ("a.hpp", f"/** x\n * xx{LONG}\n */"),
            ("a.hpp", f"    int x; ///< {LONG}"),
            ("CMakeLists.txt", f"set(a b) # x {LONG}"),
            ("a.cmake", f"  # x {LONG}"),
            ("a.py", f"x = 1  # x {LONG}"),
            ("a.py", f'"""x\n\nx xxx{LONG}\n"""'),
            ("scripts/run", f"#!/bin/sh\n# x  {LONG}"),
            ("a.sh", f"true # {LONG}"),
            ("a.awk", f"# x  {LONG}"),
        ):
            with self.subTest(text=text):
                self.assertTrue(list(style.CHECKS["comments"](path, text)))

    def test_that_are_too_long_are_named_with_their_line(self):
        text = f"int x;\n// x {LONG}\n"
        self.expect("comments", "a.cpp", text, "a.cpp:2: a comment of 101 columns")

    def test_are_measured_in_characters(self):
        self.expect("comments", "a.cpp", "// " + "\u00e9" * 97)

    def test_are_no_strings(self):
        self.expect("comments", "a.cpp", f'"http://{LONG}"')
        self.expect("comments", "a.py", f'x = "# {LONG}"')
        self.expect("comments", "results.json", f'"# {LONG}"')


class TestNames(Style):
    def test_may_be_in_camel_case(self):
        self.expect("test-names", "a.cpp", "TEST(Suite, DoesThis) {}\nTEST_F(Fixture, Does) {}")

    def test_with_underscores_are_found(self):
        for macro in ("TEST", "TEST_F", "TEST_P", "TYPED_TEST", "TYPED_TEST_P"):
            text = f"\n\n{macro}(Suite,\n    does_this) {{}}"
            self.expect("test-names", "a.cpp", text, "a.cpp:3: Suite.does_this has an underscore")

    def test_of_suites_and_of_instances_are_checked(self):
        for text in (
            "TEST(The_suite, Works)",
            "INSTANTIATE_TEST_SUITE_P(all_types, Suite, types)",
            "INSTANTIATE_TYPED_TEST_SUITE_P(all_types, Suite, Types)",
            "TYPED_TEST_SUITE(The_suite, Types)",
        ):
            with self.subTest(text=text):
                self.assertTrue(list(style.CHECKS["test-names"]("a.cpp", text)))


class CMake(Style):
    def test_of_the_least_version_is_asked_for_everywhere(self):
        self.expect("cmake", "CMakeLists.txt", "cmake_minimum_required(VERSION 3.22)")
        self.expect(
            "cmake",
            "a.cmake",
            "cmake_minimum_required(VERSION 3.25)",
            "a.cmake: asks for CMake 3.25, not 3.22",
        )

    def test_features_of_newer_versions_are_found(self):
        for path, text in (
            ("CMakeLists.txt", "block()\nendblock()"),
            ("CMakeLists.txt", "add_subdirectory(other SYSTEM)"),
            ("a.cmake", "return(PROPAGATE x)"),
            ("a.cmake", "target_sources(a PUBLIC FILE_SET headers)"),
            ("scripts/run", "cmake --fresh --preset release"),
        ):
            with self.subTest(text=text):
                self.assertTrue(list(style.CHECKS["cmake"](path, text)))

    def test_features_are_named_with_their_version(self):
        text = "cmake --fresh"
        self.expect("cmake", "scripts/run", text, "scripts/run: --fresh needs CMake 3.24")

    def test_presets_are_those_of_the_least_version(self):
        self.expect("cmake", "CMakePresets.json", PRESETS)
        for newer in (PRESETS.replace('"version": 3', '"version": 4'), PRESETS.replace("22", "23")):
            with self.subTest(text=newer):
                self.assertTrue(list(style.CHECKS["cmake"]("CMakePresets.json", newer)))


class Program(unittest.TestCase):
    def run_style(self, *arguments):
        command = [sys.executable, "-B", SCRIPT, *arguments]
        return subprocess.run(command, capture_output=True, text=True, check=False)

    def test_looks_into_all_rooms(self):
        for room in style.TOPS:
            with self.subTest(room=room), tempfile.TemporaryDirectory() as root:
                os.makedirs(os.path.join(root, room, "inner"))
                with open(os.path.join(root, room, "inner", "a.cpp"), "w", encoding="utf-8") as file:
                    file.write(f"// x {LONG}\n")
                report = self.run_style("comments", root)
                violation = f"{room}/inner/a.cpp:1: a comment of 101 columns\n"
                self.assertEqual((1, violation), (report.returncode, report.stdout))

    def test_refuses_checks_that_it_does_not_know(self):
        self.assertEqual(2, self.run_style("spelling", ".").returncode)


if __name__ == "__main__":
    unittest.main()
