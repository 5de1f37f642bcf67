#!/usr/bin/env python3
"""Follows every link of a site that leads to the site itself: to a file, and to an anchor in it.

    checkLinks.py FOLDER

Ends with status 1 and a line for each dead one.
"""

import html.parser
import pathlib
import sys
import urllib.parse


# Doxygen 1.9 links to the list of a class's inner classes, also where these are private and not listed.
DOXYGENS_OWN = {"nested-classes"}


class Page(html.parser.HTMLParser):
    """What a page can be entered at, and where it leads."""

    def __init__(self, path):
        super().__init__()
        self.anchors, self.links = set(), []
        self.feed(path.read_text(encoding="utf-8", errors="replace"))

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name == "id" or (tag == "a" and name == "name"):
                self.anchors.add(value)
            elif name in ("href", "src") and value:
                self.links.append((self.getpos()[0], value))


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    pages = {path: Page(path) for path in sorted(root.rglob("*.html"))}
    dead, count = [], 0
    for path, page in pages.items():
        for line, link in page.links:
            parts = urllib.parse.urlsplit(link)
            if parts.scheme or parts.netloc:
                continue
            count += 1
            target = (path.parent / urllib.parse.unquote(parts.path)).resolve() if parts.path else path
            anchor = urllib.parse.unquote(parts.fragment)
            if not target.is_relative_to(root) or not target.is_file():
                dead.append(f"{path.relative_to(root)}:{line}: nothing is at {link}")
            elif anchor and target in pages and anchor not in pages[target].anchors | DOXYGENS_OWN:
                dead.append(f"{path.relative_to(root)}:{line}: {link} names no place of that page")
    print("\n".join(dead) if dead else f"{count} links on {len(pages)} pages lead somewhere")
    sys.exit(bool(dead))


if __name__ == "__main__":
    main()
