#!/usr/bin/env python3
"""Takes single files out of a packed assets file.

    unpackAssets.py ASSETS.data LOADER.js FOLDER NAME...

The loader holds the table of contents: for each file its name, where it starts and where it ends.
"""

import json
import pathlib
import re
import sys


def contents(loader):
    """The table of contents, or nothing."""
    for found in re.finditer(r'\{"files":', loader):
        try:
            return json.JSONDecoder().raw_decode(loader, found.start())[0]["files"]
        except ValueError:
            pass
    return []


def main():
    if len(sys.argv) < 5:
        print("usage: unpackAssets.py ASSETS.data LOADER.js FOLDER NAME...", file=sys.stderr)
        return 2
    assets, loader, folder = map(pathlib.Path, sys.argv[1:4])
    try:
        data = assets.read_bytes()
        places = {pathlib.PurePosixPath(f["filename"]).name: (f["start"], f["end"])
                  for f in contents(loader.read_text())}
        for name in sys.argv[4:]:
            start, end = places.get(name, (0, 0))
            if not 0 <= start < end <= len(data):
                raise ValueError(f"{assets} has no file {name}")
            (folder / name).write_bytes(data[start:end])
    except (OSError, ValueError, LookupError, TypeError) as problem:
        print(f"unpackAssets: {problem}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
