#!/usr/bin/env python3
"""Writes the pages of the guide for mkdocs.

    pages.py ROOT OUTPUT

ROOT is the directory of the project. OUTPUT gets mkdocs.yml and, below pages/, the documents and
their figures at the same relative paths. docs/README.md is the table of contents: its headings are
the sections of the navigation, and the links of its lists the pages; a link to a directory stands
for all documents in it. A link to any other file of the project leads to a page with the text of
that file; a link to any other directory becomes plain text. The status is 1 if a document is
missing in the table of contents or a link leads nowhere.
"""

import os
import posixpath
import re
import shutil
import sys

CONTENTS = "docs/README.md"
API = ("Reference", ("API", "api/index.html"))  # the section of what Doxygen wrote, and its entry
FIGURES = (".svg", ".png")
FENCE = re.compile(r"^```.*?^```$", re.MULTILINE | re.DOTALL)
LINK = re.compile(r"(!?)\[((?:[^\]\[]|\[[^\]]*\])*)\]\(([^)#: ]+)(#[^) ]*)?\)")
ENTRY = re.compile(r"^- \[([^\]]+)\]\(([^)]+)\)", re.MULTILINE)
HEADING = re.compile(r"^# (.+)$", re.MULTILINE)
SECTION = re.compile(r"^## (.+)$", re.MULTILINE)
LANGUAGES = {".cpp": "cpp", ".hpp": "cpp", ".json": "json", ".properties": "properties"}


class Problem(Exception):
    pass


def documents_of(root):
    """-> the paths of all documents, relative to the root"""
    found = [name for name in os.listdir(root) if name.endswith(".md")]
    for directory, _, names in os.walk(os.path.join(root, "docs")):
        relative = os.path.relpath(directory, root)
        found += [posixpath.join(relative, name) for name in names if name.endswith(".md")]
    return sorted(found)


def outside_fences(text, change):
    """-> the text with `change` applied to the parts between code blocks"""
    parts, end = [], 0
    for fence in FENCE.finditer(text):
        parts += [change(text[end : fence.start()]), fence.group()]
        end = fence.end()
    return "".join(parts) + change(text[end:])


def page_of(path):
    """-> the path of the page for a file that is no document; mkdocs ignores hidden directories"""
    return f"files/{path.lstrip('.')}.md"


class Pages:
    def __init__(self, root, output):
        self.root, self.output = root, output
        self.documents = documents_of(root)
        self.others = set()  # files that get a page of their own
        self.problems = []

    def write_all(self):
        for document in self.documents:
            text = outside_fences(self.read(document), lambda part: self.follow(document, part))
            self.write(document, text)
        for path in sorted(self.others):
            self.write(page_of(path), self.listing(path))

    def read(self, path):
        with open(os.path.join(self.root, path), encoding="utf-8") as file:
            return file.read()

    def write(self, path, text):
        path = os.path.join(self.output, "pages", path)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)

    def listing(self, path):
        language = LANGUAGES.get(os.path.splitext(path)[1], "text")
        return f"# {path}\n\n````{language}\n{self.read(path)}````\n"

    def follow(self, document, text):
        """-> the text with its links changed to what there is on the site"""
        return LINK.sub(lambda link: self.target(document, link), text)

    def target(self, document, link):
        _, label, href, _ = link.groups()
        path = posixpath.normpath(posixpath.join(posixpath.dirname(document), href))
        file = os.path.join(self.root, path)
        if os.path.isdir(file):
            return label
        if not os.path.exists(file):
            self.problems.append(f"{document}: {href} does not exist")
        elif path.endswith(FIGURES):
            self.copy(path)
        elif path not in self.documents:
            self.others.add(path)
            page = posixpath.relpath(page_of(path), posixpath.dirname(document) or ".")
            return f"[{label}]({page})"
        return link.group()

    def copy(self, path):
        copied = os.path.join(self.output, "pages", path)
        os.makedirs(os.path.dirname(copied), exist_ok=True)
        shutil.copyfile(os.path.join(self.root, path), copied)

    def pages_of(self, name, path):
        """-> [(title, path)] of an entry of the table of contents"""
        if not os.path.isdir(os.path.join(self.root, path)):
            return [(name, path)]
        inside = [page for page in self.documents if posixpath.dirname(page) == path]
        return [(HEADING.search(self.read(page))[1], page) for page in inside]

    def navigation(self):
        """-> [(section, [(title, path of the page)])]"""
        _, *parts = SECTION.split(self.read(CONTENTS))
        sections = []
        for title, body in zip(parts[::2], parts[1::2]):
            entries = []
            for name, href in ENTRY.findall(body):
                path = posixpath.normpath(posixpath.join(posixpath.dirname(CONTENTS), href))
                entries += self.pages_of(name, path)
            sections.append((title, [API[1], *entries] if title == API[0] else entries))
        listed = {path for _, entries in sections for _, path in entries}
        for document in self.documents:
            if document not in listed and document != CONTENTS:
                self.problems.append(f"{CONTENTS}: {document} is not listed")
        return sections


def quoted(title):
    return "'" + title.replace("`", "").replace("'", "''") + "'"


def write_settings(path, base, sections):
    with open(path, "w", encoding="utf-8") as file:
        file.write(f"INHERIT: {base}\ndocs_dir: pages\nsite_dir: html\nnav:\n")
        for section, entries in sections:
            file.write(f"  - {quoted(section)}:\n")
            for title, page in entries:
                file.write(f"      - {quoted(title)}: {page}\n")


def main(arguments):
    root, output = arguments
    pages = Pages(root, output)
    pages.write_all()
    sections = pages.navigation()
    base = os.path.join(os.path.dirname(os.path.abspath(__file__)), "mkdocs.yml")
    write_settings(os.path.join(output, "mkdocs.yml"), base, sections)
    for problem in pages.problems:
        print(f"pages: {problem}", file=sys.stderr)
    return 1 if pages.problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
