"""What rooms.py finds: small projects in which one rule each is broken."""

import os
import subprocess
import sys
import tempfile
import unittest

SCRIPT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "rooms.py")
sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(SCRIPT))

import rooms  # noqa: E402

TABLE = """
| room | stands on | and on |
|---|---|---|
| `platform/connector/reactive_streams` | | `boost/log/` |
| `connector/async` | `platform/connector/reactive_streams` | |
| `messaging` | `connector/async/Future.hpp` | `Poco/JSON/` |
| `connector/core/Value.hpp` `connector/core/Option.hpp` | | `boost/variant` |
| `connector/core/registry` (private) | `connector/core/Value.hpp` | |
| `connector/core` | `connector/core/Value.hpp` `connector/core/registry` `connector/async` | |
| `tools/connector-config/values` | `connector/core` | |
| `tools/connector-config` | `tools/connector-config/values` `connector/core` `connector/async` | |
"""

# Every include of these is allowed.
FILES = {
    "platform/connector/reactive_streams/Publisher.hpp": "<connector/platform/Export.hpp> <string>",
    "connector/async/Future.hpp": "<connector/reactive_streams/Publisher.hpp> <sys/ioctl.h>",
    "connector/async/Promise.hpp": "<connector/async/Future.hpp> <connector/Export.hpp>",
    "connector/async/detail/Errors.hpp": "",
    "messaging/connector/Message.hpp": "<connector/async/Future.hpp> <Poco/JSON/Object.h>",
    "connector/core/Value.hpp": "<boost/variant.hpp>",
    "connector/core/Value.cpp": "<connector/core/Value.hpp> <connector/core/Option.hpp>",
    "connector/core/Option.hpp": "<connector/core/Value.hpp>",
    "connector/core/registry/Records.hpp": "<connector/core/Value.hpp>",
    "connector/core/Core.hpp": "<connector/core/registry/Records.hpp> <connector/core/Value.hpp>",
    "tools/connector-config/values/Type.hpp": "<connector/core/Core.hpp>",
    "tools/connector-config/values/Text.cpp": '"Type.hpp" "values/Type.hpp" "../values/Type.hpp"',
    "tools/connector-config/main.cpp": '"values/Type.hpp" <connector/core/Core.hpp>',
}

PRIVATE = ["connector/core/registry"]
ERRORS = "connector/async/detail/Errors.hpp"
RECORDS = "connector/core/registry/Records.hpp"


class House(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.root = directory.name
        self.table(TABLE)
        for path, includes in FILES.items():
            self.add(path, *includes.split())

    def write(self, path, text):
        path = os.path.join(self.root, path)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)

    def table(self, text):
        self.write(rooms.TABLE, text)

    def add(self, path, *includes):
        self.write(path, "#pragma once\n" + "".join(f"#include {name}\n" for name in includes))

    def expect(self, *violations, private=None, installed=(RECORDS,), uninstalled=()):
        private = PRIVATE if private is None else private
        found = rooms.Project(self.root, private, installed, uninstalled).violations()
        self.assertEqual(sorted(violations), sorted(found))


class Includes(House):
    def test_of_rooms_below_are_allowed(self):
        self.expect()

    def test_of_rooms_that_the_table_does_not_name_are_found(self):
        self.add("connector/async/Bad.hpp", "<connector/core/Core.hpp>")
        self.expect("connector/async/Bad.hpp: <connector/core/Core.hpp> is in connector/core")

    def test_in_quotes_are_found_relative_to_the_file(self):
        self.add("connector/async/Bad.hpp", '"../core/Core.hpp"')
        self.expect('connector/async/Bad.hpp: "../core/Core.hpp" is in connector/core')

    def test_in_quotes_are_found_in_the_include_roots(self):
        self.add("connector/core/Bad.cpp", '"values/Type.hpp"')
        self.expect('connector/core/Bad.cpp: "values/Type.hpp" is in tools/connector-config/values')

    def test_in_quotes_that_mean_no_file_are_found(self):
        self.add("tools/connector-config/main.cpp", '"values/Tpye.hpp"')
        self.expect('tools/connector-config/main.cpp: "values/Tpye.hpp" is no file of the project')

    def test_with_spaces_and_comments_around_them_are_found(self):
        self.write("connector/async/Bad.hpp", "  #  include  <connector/core/Core.hpp> // why\n")
        self.expect("connector/async/Bad.hpp: <connector/core/Core.hpp> is in connector/core")

    def test_of_inner_rooms_are_those_of_other_rooms(self):
        self.add("tools/connector-config/values/Bad.cpp", '"Bad.hpp"')
        self.add("tools/connector-config/values/Bad.hpp", '"ExitStatus.hpp"')
        self.add("tools/connector-config/ExitStatus.hpp")
        self.expect(
            'tools/connector-config/values/Bad.hpp: "ExitStatus.hpp" is in tools/connector-config'
        )

    def test_of_a_single_header_allow_no_other_of_its_room(self):
        self.add("messaging/connector/Bad.hpp", "<connector/async/Promise.hpp>")
        self.expect("messaging/connector/Bad.hpp: <connector/async/Promise.hpp> is in connector/async")

    def test_of_other_libraries_are_found_where_the_table_does_not_name_them(self):
        self.add("connector/core/Bad.hpp", "<Poco/JSON/Object.h>", "<connector/unknown.hpp>")
        self.expect(
            "connector/core/Bad.hpp: <Poco/JSON/Object.h> is nothing that this room may include",
            "connector/core/Bad.hpp: <connector/unknown.hpp> is nothing that this room may include",
        )

    def test_of_another_librarys_export_header_are_found(self):
        self.add("connector/core/Bad.hpp", "<connector/platform/Export.hpp>")
        self.add("tools/connector-config/Bad.hpp", "<connector/Export.hpp>")
        self.expect(
            "connector/core/Bad.hpp: <connector/platform/Export.hpp> belongs to another library",
            "tools/connector-config/Bad.hpp: <connector/Export.hpp> belongs to another library",
        )

    def test_of_a_file_in_no_room_are_found(self):
        self.add("connector/elsewhere/Lost.hpp")
        self.add("connector/core/Bad.hpp", "<connector/elsewhere/Lost.hpp>")
        lost = "connector/elsewhere/Lost.hpp"
        self.expect(
            f"{lost}: is in no room of the table",
            f"connector/core/Bad.hpp: <{lost}> is {lost}, which is in no room of the table",
        )

    def test_in_a_room_without_a_row_are_found(self):
        self.add("fuzz/Requests.cpp", "<string>")
        self.expect("fuzz/Requests.cpp: is in no room of the table")


class PrivateHeaders(House):
    MAIN = "tools/connector-config/main.cpp"

    def test_are_not_for_programs(self):
        self.table(TABLE.replace("`connector/core` `connector/async` | |\n", f"`{RECORDS}` "
                                 "`connector/async` | |\n"))
        self.add(self.MAIN, f"<{ERRORS}>", f"<{RECORDS}>")
        self.expect(
            f"{self.MAIN}: <{ERRORS}> is private to the library",
            f"{self.MAIN}: <{RECORDS}> is private to the library",
            f"connector/core/Core.hpp: <{RECORDS}> is not installed, but this header is",
            installed=[],
        )

    def test_are_for_programs_when_they_are_installed(self):
        self.add(self.MAIN, f"<{ERRORS}>")
        self.expect(installed=[ERRORS, RECORDS])

    def test_are_for_what_is_not_installed_itself(self):
        self.add("connector/core/Good.cpp", f"<{ERRORS}>")
        self.add("connector/async/detail/Good.hpp", f"<{ERRORS}>")
        self.add("connector/core/program/Good.hpp", f"<{ERRORS}>")
        self.expect(uninstalled=["connector/core/program"])

    def test_are_not_for_installed_headers(self):
        self.add("connector/core/Bad.hpp", f"<{ERRORS}>")
        self.add(RECORDS, f"<{ERRORS}>")
        self.expect(
            f"connector/core/Bad.hpp: <{ERRORS}> is not installed, but this header is",
            f"{RECORDS}: <{ERRORS}> is not installed, but this header is",
        )

    def test_are_marked_in_the_table(self):
        self.expect(
            "docs/architecture.md: connector/async is not marked as private",
            private=[*PRIVATE, "connector/async"],
        )
        self.expect(
            "docs/architecture.md: connector/core/registry is marked as private, but installed",
            private=[],
        )


class Table(House):
    def test_has_no_room_that_stands_on_a_later_one(self):
        self.table(TABLE.replace("| `connector/async` | ", "| `connector/async` | `connector/core` "))
        self.expect(
            "docs/architecture.md: connector/async stands on connector/core, "
            "which is not above it in the table"
        )

    def test_has_no_room_that_stands_on_a_header_of_a_later_one(self):
        header = "connector/core/Core.hpp"
        self.table(TABLE.replace("| `connector/async` | ", f"| `connector/async` | `{header}` "))
        self.expect(
            f"docs/architecture.md: connector/async stands on {header}, "
            "which is not above it in the table"
        )

    def test_names_only_what_is_there(self):
        self.table(TABLE + "| `connector/gone` | `connector/async/gone.hpp` | |\n")
        self.expect(
            "docs/architecture.md: there is no connector/gone",
            "docs/architecture.md: connector/gone stands on connector/async/gone.hpp, "
            "which is no room of the table",
        )


class Program(House):
    def run_rooms(self):
        options = ["--private", PRIVATE[0], "--installed", RECORDS]
        command = [sys.executable, "-B", SCRIPT, *options, self.root]
        return subprocess.run(command, capture_output=True, text=True, check=False)

    def test_succeeds_without_violations(self):
        report = self.run_rooms()
        self.assertEqual((0, "", ""), (report.returncode, report.stdout, report.stderr))

    def test_prints_violations_and_fails(self):
        self.add("connector/async/Bad.hpp", "<connector/core/Core.hpp>")
        report = self.run_rooms()
        violation = "connector/async/Bad.hpp: <connector/core/Core.hpp> is in connector/core\n"
        self.assertEqual((1, violation), (report.returncode, report.stdout))

    def test_fails_without_a_table(self):
        self.table("# Architecture\n")
        self.assertEqual(2, self.run_rooms().returncode)

    def test_fails_when_a_row_cannot_be_read(self):
        self.table(TABLE + "| connector/other | `connector/async` | |\n")
        report = self.run_rooms()
        self.assertEqual(2, report.returncode)
        self.assertIn("no row of the table of rooms: | connector/other |", report.stderr)

    def test_reads_no_other_table(self):
        self.table(TABLE + "\n| lock | guards | is held |\n|---|---|---|\n| `mutex` | | |\n")
        self.expect()

    def test_fails_without_includes(self):
        for path in FILES:
            self.write(path, "")
        report = self.run_rooms()
        self.assertEqual((1, "no includes found\n"), (report.returncode, report.stdout))


if __name__ == "__main__":
    unittest.main()
