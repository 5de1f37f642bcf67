#!/usr/bin/env python3
"""Runs the commands of pages: every block that is marked `sh`, page by page, in a scratch folder of its own.

    runCommands.py BUILD PAGE...

BUILD is the folder of a build with the command and the package for Python. A block runs as a whole, as a shell does it that
ends at the first failure, among pictures of the names that the pages use. A line `<!-- not run: WHY -->` above a block
leaves it out; what it says is listed. Ends with status 1 where a command failed.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
LIMIT = 300  # seconds a block

# The pictures of the gallery, and those that other pages speak of; drawn, but for the gallery's photograph.
PICTURES = r"""
. "$ROOT/scripts/gallery.sh"
gallery_pictures zel
zel portrait -o portrait.png --seed 5 --size 360x480 --set scratches=4 --truth portrait --quiet
cp portrait/scratches.png scratch.png
zel apply vignette portrait.png -o portrait.jpg --quiet
zel apply vignette portrait.png -o old.tif --quiet
cp portrait.jpg photo.jpg
cp portrait.jpg group.jpg
mkdir -p photos/more
cp portrait.jpg photos/first.jpg
cp portrait.jpg photos/more/second.jpg
printf '{"recipe": 1, "steps": [{"effect": "nature-smooth", "set": {"radius": 12}}]}' >soft.json
"""
# In the place of what a page takes from the network.
CURL = '#!/bin/sh\nexec cat "$(dirname "$0")/../portrait.jpg"\n'


class Block:
    def __init__(self, page, line, text, reason):
        self.page, self.line, self.text, self.reason = page, line, text, reason


def blocks(page):
    """The blocks of shell commands of a page."""
    fence = re.compile(r"(?:^<!-- not run: ([^\n]+) -->\n)?^```sh\n(.*?)^```$", re.MULTILINE | re.DOTALL)
    text = page.read_text(encoding="utf-8")
    for found in fence.finditer(text):
        yield Block(page, text.count("\n", 0, found.start(2)), found[2], found[1])


def shell(text, folder, environment):
    return subprocess.run(["bash", "-euo", "pipefail", "-c", text], cwd=folder, env=environment, timeout=LIMIT,
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace")


def prepare(folder, build):
    tools = folder / "tools"
    tools.mkdir()
    (tools / "curl").write_text(CURL)
    (tools / "curl").chmod(0o755)
    environment = {
        "PATH": f"{tools}:{build / 'cli'}:/usr/bin:/bin", "HOME": str(folder / "home"), "LANG": "C.UTF-8",
        "PYTHONPATH": str(build / "python"), "PYTHONDONTWRITEBYTECODE": "1", "ROOT": str(ROOT)}
    done = shell(PICTURES, folder, environment)
    if done.returncode:
        raise SystemExit(f"the pictures cannot be made:\n{done.stdout}")
    return environment


def main():
    build, pages = pathlib.Path(sys.argv[1]).resolve(), [pathlib.Path(name).resolve() for name in sys.argv[2:]]
    ran, left_out, failed = 0, [], []
    with tempfile.TemporaryDirectory() as work:
        first = pathlib.Path(work) / "first"
        first.mkdir()
        environment = prepare(first, build)
        for page in pages:
            folder = pathlib.Path(work) / "page"
            subprocess.run(["cp", "-r", first, folder], check=True)
            for block in blocks(page):
                name = f"{page.relative_to(ROOT)}:{block.line}"
                if block.reason:
                    left_out.append(f"{name} was not run: {block.reason}")
                    continue
                done = shell(block.text, folder, {**environment, "HOME": str(folder / "home")})
                ran += 1
                if done.returncode:
                    failed.append(f"{name} failed with status {done.returncode}:\n{block.text}\n{done.stdout}")
            subprocess.run(["rm", "-rf", folder], check=True)
    print("\n".join([*left_out, *failed, f"{ran} blocks of {len(pages)} pages ran, {len(failed)} failed"]))
    sys.exit(bool(failed) or not ran)


if __name__ == "__main__":
    main()
