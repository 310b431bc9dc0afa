#!/usr/bin/env python3
"""Follows every link between the pages of a site.

    links.py DIRECTORY

DIRECTORY has the HTML pages. A link is broken when its target is outside of the directory or does
not exist, or when the page has no element with the fragment's id. Links to other hosts are not
followed. Prints one line for each broken link; the status is 1 if there is one, or no link at all.
"""

import os
import sys
from html.parser import HTMLParser
from urllib.parse import unquote, urlsplit

LINKS = {"a": "href", "link": "href", "area": "href", "img": "src", "script": "src", "iframe": "src"}


class Page(HTMLParser):
    """The links and the ids of one page"""

    def __init__(self, path):
        super().__init__()
        self.links, self.ids = set(), set()
        with open(path, encoding="utf-8") as file:
            self.feed(file.read())

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        self.ids |= {values.get("id"), values.get("name") if tag == "a" else None}
        if values.get(LINKS.get(tag)):
            self.links.add(values[LINKS[tag]])


def pages_below(root):
    """-> {path: Page}"""
    found = {}
    for directory, _, names in os.walk(root):
        for name in names:
            if name.endswith(".html"):
                path = os.path.join(directory, name)
                found[path] = Page(path)
    return found


def problem_of(link, path, pages, root):
    """-> what is wrong with the link of a page; nothing if it works"""
    parts = urlsplit(link)
    if parts.scheme or parts.netloc:
        return ""
    target = path
    if parts.path:
        target = os.path.normpath(os.path.join(os.path.dirname(path), unquote(parts.path)))
    if os.path.isdir(target):
        target = os.path.join(target, "index.html")
    if os.path.commonpath([root, target]) != root:
        return "leads out of the site"
    if not os.path.isfile(target):
        return "does not exist"
    if parts.fragment and target in pages and unquote(parts.fragment) not in pages[target].ids:
        return "has no such part"
    return ""


def is_template(path):
    """The page of a missing address has links that start with a slash, which only servers know."""
    return os.path.basename(path) == "404.html"


def main(arguments):
    root = os.path.abspath(arguments[0])
    pages = pages_below(root)
    followed, broken = 0, []
    for path, page in sorted(pages.items()):
        if is_template(path):
            continue
        for link in sorted(page.links):
            followed += 1
            if problem := problem_of(link, path, pages, root):
                broken.append(f"{os.path.relpath(path, root)}: {link} {problem}")
    print("\n".join([*broken, f"{followed} links on {len(pages)} pages, {len(broken)} broken"]))
    return 1 if broken or not followed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
