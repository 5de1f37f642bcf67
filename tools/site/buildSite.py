#!/usr/bin/env python3
"""Makes the documentation site: every page of this repository as HTML, with what the pages link to.

    buildSite.py FOLDER VERSION

Pages are rendered by cmark-gfm, so that they look as they do where the repository is read. A link to another file of the
repository leads to that file, shown as text; to a folder, to its list. The reference of the interfaces is made beside
this by Doxygen (scripts/site); contents.txt tells the order.
"""

import html
import os
import pathlib
import re
import shutil
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent


def tracked(*patterns):
    """Files of the repository; what is not committed yet counts, what is ignored does not."""
    command = ["git", "-C", str(ROOT), "ls-files", "--cached", "--others", "--exclude-standard", *patterns]
    names = subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines()
    return sorted(name for name in set(names) if (ROOT / name).exists())


def address(name):
    """Where a page, file or folder of the repository lies on the site."""
    if name == "README.md":
        return "index.html"
    if name.startswith("api/"):
        return name + "/index.html"
    if name.endswith(".md"):
        return name[:-3] + ".html"
    if (ROOT / name).is_dir():
        return name.rstrip("/") + "/index.html"
    return name if re.search(r"\.(png|jpe?g|svg)$", name) else name + ".html"


def slug(heading, seen):
    """The anchor of a heading, as where the repository is read."""
    text = html.unescape(re.sub(r"<[^>]+>", "", heading)).lower()
    name = re.sub(r"[^\w\- ]", "", text).replace(" ", "-")
    seen[name] = seen.get(name, -1) + 1
    return f"{name}-{seen[name]}" if seen[name] else name


class Site:
    def __init__(self, folder, version):
        self.folder, self.version = folder, version
        self.pages = tracked("*.md", ":!:.*")
        self.parts = self.read_contents()
        self.linked = set()  # files and folders that are no pages

    def read_contents(self):
        parts, named = [], set()
        for line in (HERE / "contents.txt").read_text().splitlines():
            if not line or line.startswith("#"):
                continue
            name, bar, title = (part.strip() for part in line.partition("|"))
            if not bar:
                parts.append((name, []))
            elif name in self.pages or name.startswith("api/"):
                parts[-1][1].append((name, title))
                named.add(name)
        rest = [(name, self.title(name)) for name in self.pages if name not in named]
        return [part for part in [*parts, ("More", rest)] if part[1]]

    def title(self, name):
        return re.search(r"^# (.+)$", (ROOT / name).read_text(encoding="utf-8"), re.MULTILINE)[1]

    def navigation(self, current):
        up = "../" * address(current).count("/")
        lines = [f'<a class="name" href="{up}index.html">libzel_effects <span class="version">{self.version}</span></a>']
        for part, pages in self.parts:
            lines.append(f"<h2>{html.escape(part)}</h2>\n<ul>")
            for name, title in pages:
                here = ' aria-current="page"' if name == current else ""
                lines.append(f'<li><a href="{up}{address(name)}"{here}>{html.escape(title)}</a></li>')
            lines.append("</ul>")
        return "\n".join(lines)

    def write(self, name, title, body):
        place = self.folder / address(name)
        place.parent.mkdir(parents=True, exist_ok=True)
        up = "../" * address(name).count("/")
        place.write_text(f"""<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>{html.escape(title)} - libzel_effects</title>
<link rel="stylesheet" href="{up}style.css">
</head>
<body>
<nav id="contents">
{self.navigation(name)}
</nav>
<main>
<a class="contents" href="#contents">All pages</a>
{body}
</main>
</body>
</html>
""", encoding="utf-8")

    def link(self, page, target):
        """A link of a page as one of the site."""
        if re.match(r"[a-z]+:|#|//", target):
            return target
        path, mark, anchor = target.partition("#")
        name = os.path.normpath(os.path.join(os.path.dirname(page), html.unescape(path)))
        if not (ROOT / name).exists():
            raise SystemExit(f"{page}: nothing is at {target}")
        if name not in self.pages:
            self.linked.add(name)
        return os.path.relpath(address(name), os.path.dirname(address(page)) or ".") + mark + anchor

    def page(self, name):
        text = subprocess.run(["cmark-gfm", "--unsafe", "-e", "table", "-e", "autolink", "-e", "strikethrough", ROOT / name],
                              check=True, capture_output=True, text=True).stdout
        seen = {}
        text = re.sub(r"<h([1-6])>(.*?)</h\1>", lambda m: f'<h{m[1]} id="{slug(m[2], seen)}">{m[2]}</h{m[1]}>', text, flags=re.DOTALL)
        text = re.sub(r'(href|src)="([^"]+)"', lambda m: f'{m[1]}="{self.link(name, m[2])}"', text)
        text = text.replace("<table>", '<div class="table"><table>').replace("</table>", "</table></div>")
        self.write(name, self.title(name), text)

    def file(self, name):
        if (ROOT / name).is_dir():
            files = tracked(name)
            self.linked.update(files)
            here = os.path.dirname(address(name))
            items = "".join(f'<li><a href="{os.path.relpath(address(file), here)}">{html.escape(file)}</a></li>\n' for file in files)
            self.write(name, name, f"<h1>{html.escape(name)}</h1>\n<ul>\n{items}</ul>")
        elif address(name) == name:
            place = self.folder / name
            place.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / name, place)
        else:
            text = html.escape((ROOT / name).read_text(encoding="utf-8"))
            self.write(name, name, f"<h1>{html.escape(name)}</h1>\n<pre><code>{text}</code></pre>")

    def build(self):
        for name in self.pages:
            self.page(name)
        done = set()
        while self.linked - done:  # a folder brings its files
            for name in sorted(self.linked - done):
                if name not in self.pages:
                    self.file(name)
                done.add(name)
        shutil.copy(HERE / "style.css", self.folder)


if __name__ == "__main__":
    Site(pathlib.Path(sys.argv[1]), sys.argv[2]).build()
