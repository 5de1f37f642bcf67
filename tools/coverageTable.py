#!/usr/bin/env python3
"""Which lines the tests ran, from what a build of the coverage preset counted: a table by room on standard output, and
a page with every file and the lines that were not reached.
Usage: coverageTable.py SOURCE_FOLDER BUILD_FOLDER PAGE.html"""
import collections
import concurrent.futures
import html
import json
import os
import pathlib
import subprocess
import sys

ROOMS = ("src", "libzel", "cli", "portrait", "include")


def counts_of(data_file):
    """{source: {line: count}} of one object."""
    run = subprocess.run(["gcov", "--json-format", "--stdout", str(data_file)], cwd=data_file.parent,
                         capture_output=True, check=True)
    counts = {}
    for text in run.stdout.splitlines():
        for file in json.loads(text)["files"]:
            lines = counts.setdefault(file["file"], {})
            for line in file["lines"]:
                lines[line["line_number"]] = max(lines.get(line["line_number"], 0), line["count"])
    return counts


def all_counts(source, build):
    """Of every file of the project: a line counts as run where any object ran it."""
    merged = collections.defaultdict(lambda: collections.defaultdict(int))
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for counts in pool.map(counts_of, sorted(build.rglob("*.gcda"))):
            for name, lines in counts.items():
                # The build names files from the source folder on, and those of src from there.
                for path in (name, "src/" + name):
                    if (source / path).is_file() and path.split("/")[0] in ROOMS:
                        for line, count in lines.items():
                            merged[path][line] += count
                        break
    return merged


def room_of(path):
    parts = path.split("/")
    return "/".join(parts[:3] if parts[:2] == ["src", "zellab"] else parts[:2] if parts[0] in ("src", "cli", "libzel") and
                    len(parts) > 2 else parts[:1])


def ranges(lines):
    """"3-5, 9" of sorted numbers."""
    runs = []
    for line in lines:
        if runs and line <= runs[-1][1] + 1:
            runs[-1][1] = line
        else:
            runs.append([line, line])
    return ", ".join(str(a) if a == b else f"{a}-{b}" for a, b in runs)


def main():
    source, build, page = map(pathlib.Path, sys.argv[1:4])
    counts = all_counts(source.resolve(), build)
    rooms, files = collections.defaultdict(lambda: [0, 0]), []
    for path, lines in sorted(counts.items()):
        missing = sorted(line for line, count in lines.items() if count == 0)
        for total in (rooms[room_of(path)], rooms["all"]):
            total[0] += len(lines)
            total[1] += len(lines) - len(missing)
        files.append((path, len(lines), missing))
    print("| room | lines | run by the tests |\n|---|---|---|")
    for room, (lines, run) in sorted(rooms.items()):
        print(f"| {room} | {lines} | {100 * run / lines:.1f} % |")
    rows = "".join(f"<tr><td>{html.escape(path)}<td>{lines}<td>{100 * (1 - len(missing) / lines):.1f} %<td>{ranges(missing)}"
                   for path, lines, missing in files if lines)
    page.write_text(f"<!doctype html><meta charset=utf-8><title>Lines that the tests run</title><table border=1>"
                    f"<tr><th>file<th>lines<th>run<th>not reached{rows}</table>\n")


if __name__ == "__main__":
    main()
