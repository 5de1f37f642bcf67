#!/usr/bin/env python3
"""Runs the Python of a page, block after block as in a notebook, in the folder that it lies in.

    runPage.py PAGE

What the page saves with plt.savefig is its figures. A block that fails ends it, with the line of the page.
"""

import os
import pathlib
import re
import sys

import matplotlib

matplotlib.use("Agg")


def main():
    page = pathlib.Path(sys.argv[1]).resolve()
    text = page.read_text(encoding="utf-8")
    os.chdir(page.parent)
    names = {"__name__": "page"}
    for block in re.finditer(r"^```python\n(.*?)^```", text, re.MULTILINE | re.DOTALL):
        above = "\n" * (text.count("\n", 0, block.start()) + 1)  # so that a traceback tells the page's lines
        exec(compile(above + block[1], page, "exec"), names)


if __name__ == "__main__":
    main()
