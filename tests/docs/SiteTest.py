#!/usr/bin/env python3
"""Tests of what makes the site: links.py, pages.py and guarantees.py in the directory that is
the argument."""

import contextlib
import io
import os
import sys
import tempfile
import unittest

sys.path.insert(0, sys.argv.pop())

import guarantees  # noqa: E402
import links  # noqa: E402
import pages  # noqa: E402


class Files(unittest.TestCase):
    """Tests that work in a directory of their own"""

    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.root = directory.name

    def write(self, path, text):
        path = os.path.join(self.root, path)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)

    def read(self, path):
        with open(os.path.join(self.root, path), encoding="utf-8") as file:
            return file.read()

    def run_main(self, main, *arguments):
        """-> (status, what it wrote)"""
        output = io.StringIO()
        with contextlib.redirect_stdout(output), contextlib.redirect_stderr(output):
            status = main(list(arguments))
        return status, output.getvalue()


class LinksTest(Files):
    def follow(self):
        return self.run_main(links.main, self.root)

    def test_links_that_work_are_counted(self):
        self.write("a.html", '<a href="b/c.html#there">c</a> <img src="d.svg"> <a href="#own" id="own">')
        self.write("b/c.html", '<h2 id="there">There</h2> <a href="../a.html">a</a> <a href="..">up</a>')
        self.write("index.html", "")
        self.write("d.svg", "")
        self.assertEqual(self.follow(), (0, "5 links on 3 pages, 0 broken\n"))

    def test_a_missing_page_is_broken(self):
        self.write("a.html", '<a href="b.html">b</a>')
        status, text = self.follow()
        self.assertEqual(status, 1)
        self.assertIn("a.html: b.html does not exist", text)

    def test_a_missing_part_is_broken(self):
        self.write("a.html", '<a href="a.html#part">part</a>')
        status, text = self.follow()
        self.assertEqual(status, 1)
        self.assertIn("a.html: a.html#part has no such part", text)

    def test_a_link_out_of_the_site_is_broken(self):
        self.write("a.html", '<a href="../secret.html">secret</a>')
        status, text = self.follow()
        self.assertEqual(status, 1)
        self.assertIn("a.html: ../secret.html leads out of the site", text)

    def test_other_hosts_are_not_asked(self):
        self.write("a.html", '<a href="https://example.org/nothing">x</a>')
        self.assertEqual(self.follow()[0], 0)

    def test_a_site_without_links_is_no_success(self):
        self.write("a.html", "nothing")
        self.assertEqual(self.follow()[0], 1)


class PagesTest(Files):
    def setUp(self):
        super().setUp()
        self.write("docs/README.md", "# All\n\n## First\n\n- [One](one.md): why\n- [Home](../README.md)\n")
        self.write("README.md", "# Home\n")
        self.write("docs/one.md", "# One\n")

    def make(self):
        return self.run_main(pages.main, self.root, os.path.join(self.root, "out"))

    def test_the_table_of_contents_is_the_navigation(self):
        self.assertEqual(self.make(), (0, ""))
        self.assertIn(
            "  - 'First':\n      - 'One': docs/one.md\n      - 'Home': README.md\n",
            self.read("out/mkdocs.yml"),
        )

    def test_a_document_that_is_not_listed_is_a_problem(self):
        self.write("docs/how-to/two.md", "# Two\n")
        self.assertEqual(
            self.make(), (1, "pages: docs/README.md: docs/how-to/two.md is not listed\n")
        )

    def test_a_directory_stands_for_its_documents(self):
        self.write("docs/more/1.md", "# It's 1\n")
        self.write("docs/more/2.md", "# 2\n")
        self.write("docs/README.md", self.read("docs/README.md") + "- [More](more)\n")
        self.assertEqual(self.make(), (0, ""))
        self.assertIn(
            "      - 'It''s 1': docs/more/1.md\n      - '2': docs/more/2.md\n",
            self.read("out/mkdocs.yml"),
        )

    def test_a_link_to_a_file_leads_to_a_page_with_its_text(self):
        self.write("docs/one.md", "See [this](../.hidden/main.cpp).\n")
        self.write(".hidden/main.cpp", "int main() {}\n")
        self.assertEqual(self.make(), (0, ""))
        self.assertEqual(
            self.read("out/pages/docs/one.md"), "See [this](../files/hidden/main.cpp.md).\n"
        )
        self.assertIn("````cpp\nint main() {}\n````", self.read("out/pages/files/hidden/main.cpp.md"))

    def test_a_link_to_a_directory_becomes_text(self):
        self.write("docs/one.md", "See [`docs`](../docs).\n")
        self.assertEqual(self.make(), (0, ""))
        self.assertEqual(self.read("out/pages/docs/one.md"), "See `docs`.\n")

    def test_figures_are_copied(self):
        self.write("docs/one.md", "![a figure](figure.svg)\n")
        self.write("docs/figure.svg", "<svg/>")
        self.assertEqual(self.make(), (0, ""))
        self.assertEqual(self.read("out/pages/docs/figure.svg"), "<svg/>")

    def test_code_is_left_alone(self):
        text = "```cpp\nauto f = [](int) {};\n```\n"
        self.write("docs/one.md", text)
        self.assertEqual(self.make(), (0, ""))
        self.assertEqual(self.read("out/pages/docs/one.md"), text)

    def test_a_link_to_nothing_is_a_problem(self):
        self.write("docs/one.md", "[two](two.md)\n")
        self.assertEqual(self.make(), (1, "pages: docs/one.md: two.md does not exist\n"))


class GuaranteesTest(Files):
    XML = """<doxygen><compounddef kind="{kind}" id="{id}"><compoundname>{name}</compoundname>
        <sectiondef>{functions}</sectiondef></compounddef></doxygen>"""
    HEAD = "| function | called from | locks | calls back | throws | cost |\n|---|---|---|---|---|---|\n"

    def scope(self, name, functions, kind="class"):
        text = self.XML.format(kind=kind, id=name, name=name, functions=functions)
        self.write(f"xml/{name}.xml", text)

    def function(self, name, arguments="()", access="public", more=""):
        return (
            f'<memberdef kind="function" prot="{access}"><name>{name}</name>'
            f"<argsstring>{arguments}</argsstring>{more}</memberdef>"
        )

    def compare(self, *rows):
        self.write("guarantees.md", self.HEAD + "".join(f"| {row} | a | b | c | d | e |\n" for row in rows))
        directory, document = (os.path.join(self.root, name) for name in ("xml", "guarantees.md"))
        status, text = self.run_main(guarantees.main, directory, document)
        return status, text.replace(document + ": ", "").splitlines()[:-1]

    def test_a_function_without_a_row_is_found(self):
        self.scope("a::B", self.function("get") + self.function("set"))
        self.scope("a", self.function("make"), kind="namespace")
        self.assertEqual(
            self.compare("`B::get`"), (1, ["B::set: there is no row", "make: there is no row"])
        )

    def test_functions_may_share_a_row(self):
        self.scope("a::B", self.function("get") + self.function("set"))
        self.assertEqual(self.compare("`B::get` `B::set`"), (0, []))

    def test_what_needs_no_row_may_have_one(self):
        base = '<reimplements refid="x">get</reimplements>'
        self.scope(
            "a::B",
            self.function("get", more=base)
            + self.function("B", "(const B &amp;)=default")
            + self.function("operator=", "(const B &amp;)=delete")
            + self.function("~B")
            + self.function("B", "()"),
        )
        self.assertEqual(self.compare("`B::B`"), (0, []))
        self.assertEqual(self.compare("`B::B` `B::~B` `B::get`"), (0, []))

    def test_a_destructor_with_a_comment_needs_a_row(self):
        comment = "<detaileddescription><para>Waits.</para></detaileddescription>"
        self.scope("a::B", self.function("~B", more=comment))
        self.assertEqual(self.compare(), (1, ["B::~B: there is no row"]))

    def test_what_is_not_public_needs_no_row(self):
        self.scope("a::B", self.function("get") + self.function("on", access="protected"))
        self.assertEqual(self.compare("`B::get`"), (0, []))

    def test_a_row_without_a_function_is_found(self):
        self.scope("a::B", self.function("get"))
        self.assertEqual(
            self.compare("`B::get`", "`B::gone`"), (1, ["B::gone: there is no such public function"])
        )

    def test_an_empty_cell_is_found(self):
        self.scope("a::B", self.function("get"))
        self.write("guarantees.md", self.HEAD + "| `B::get` | any |  | c | d | e |\n")
        status, text = self.run_main(
            guarantees.main, os.path.join(self.root, "xml"), os.path.join(self.root, "guarantees.md")
        )
        self.assertEqual(status, 1)
        self.assertIn("`B::get`: a row has six cells, none of them empty", text)

    def test_without_functions_nothing_is_proved(self):
        self.assertEqual(self.compare()[0], 1)


if __name__ == "__main__":
    unittest.main()
