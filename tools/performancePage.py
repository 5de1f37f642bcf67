#!/usr/bin/env python3
"""Fills the tables of docs/performance.md from figures.
Usage: performancePage.py [--machine TEXT] [FIGURES.json...]

Takes tables from what benchTable.py, zel_effect_costs and jobCosts.py wrote into docs/performance.json, the page's
own figures, and writes them between the marks of the page. Without a file the page is made anew from its figures."""
import argparse
import json
import os

DOCS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "docs")
FIGURES, PAGE = os.path.join(DOCS, "performance.json"), os.path.join(DOCS, "performance.md")
SIGNIFICANT = 3


def number(value):
    """Three digits, without an exponent."""
    if value is None:
        return ""
    rounded = float(f"{value:.{SIGNIFICANT}g}")
    return f"{rounded:.0f}" if abs(rounded) >= 100 else f"{rounded:g}"


def markdown(head, rows, texts=1):
    """A table whose first `texts` columns are text."""
    lines = ["| " + " | ".join(head) + " |", "|" + "---|" * texts + "--:|" * (len(head) - texts)]
    return "\n".join(lines + ["| " + " | ".join(row) + " |" for row in rows])


def take(figures, path):
    """Adds the figures of one file, in the place of those it renews."""
    with open(path, encoding="utf-8") as file:
        new = json.load(file)
    if isinstance(new, list):  # of zel_effect_costs
        renewed = {(row["effect"], round(row["megapixels"])) for row in new}
        kept = [row for row in figures.get("effects", []) if (row["effect"], round(row["megapixels"])) not in renewed]
        figures["effects"] = kept + new
    elif "rows" in new:
        renewed = {row["row"] for row in new["rows"]}
        figures["rows"] = [row for row in figures.get("rows", []) if row["row"] not in renewed] + new["rows"]
        figures["rows"].sort(key=lambda row: row["row"])
        figures["copies_ms"] = {**figures.get("copies_ms", {}), **new["copies_ms"]}
    else:
        figures.update(new)


def shortened(value):
    """The figures as they are kept: no more digits than a measurement has."""
    if isinstance(value, float):
        return float(f"{value:.4g}")
    if isinstance(value, list):
        return [shortened(item) for item in value]
    if isinstance(value, dict):
        return {key: shortened(item) for key, item in value.items()}
    return value


def text_of(figures):
    """JSON with one line an entry of a list, so that a new measurement shows line by line."""
    parts = []
    for key, value in figures.items():
        if isinstance(value, list):
            told = "[\n " + ",\n ".join(json.dumps(item) for item in value) + "\n]"
        else:
            told = json.dumps(value)
        parts.append(f"{json.dumps(key)}: {told}")
    return "{\n" + ",\n".join(parts) + "\n}\n"


def peers(figures):
    """One thread, beside a peer."""
    rows = []
    for entry in figures.get("rows", []):
        arguments = dict(entry["arguments"])
        if "peer" not in entry or arguments.pop("threads", "1") != "1":
            continue
        told = " ".join([entry["row"]] + [f"{name} {value}" for name, value in arguments.items()])
        rows.append((told, entry["peer"].replace("_", " "), number(entry["ours_ms"]), number(entry["copies"]),
                     number(entry["peer_ms"]), number(entry["times_as_fast"])))
    return markdown(("row", "peer", "ours, ms", "copies", "peer, ms", "times as fast"), rows, 2)


def alone(figures):
    """One thread, without a peer."""
    rows = []
    for entry in figures.get("rows", []):
        arguments = dict(entry["arguments"])
        if "peer" in entry or arguments.pop("threads", "1") != "1":
            continue
        told = " ".join([entry["row"]] + [f"{name} {value}" for name, value in arguments.items()])
        rows.append((told, number(entry["ours_ms"]), number(entry["copies"])))
    return markdown(("row", "ms", "copies"), rows)


def by_effect(figures):
    """{effect: {(megapixels, threads): row}} in the order of the figures, and the sizes."""
    effects = {}
    for row in figures.get("effects", []):
        effects.setdefault(row["effect"], {})[(round(row["megapixels"]), row["threads"])] = row
    sizes = sorted({size for rows in effects.values() for size, _ in rows})
    return effects, sizes


def memory(figures):
    """Peaks in pictures, the larger one of both numbers of threads."""
    effects, sizes = by_effect(figures)
    rows = []
    for effect, costs in effects.items():
        peaks = [max((costs[(size, t)]["pictures"] for t in (1, 2) if (size, t) in costs), default=None)
                 for size in sizes]
        rows.append([effect] + ["" if peak is None else f"{peak:.2f}" for peak in peaks])
    return markdown(["effect"] + [f"{size} MP" for size in sizes], rows)


def scaling(figures):
    """Processor time a pixel, its growth, and both numbers of threads."""
    effects, sizes = by_effect(figures)
    first, last = 12, sizes[-1]
    rows = []
    for effect, costs in effects.items():
        def of(size, threads, what):
            return costs[(size, threads)][what] if (size, threads) in costs else None

        def per_pixel(size):
            time = of(size, 1, "processor_ms")
            return None if time is None else time / costs[(size, 1)]["megapixels"]

        growth = per_pixel(last) / per_pixel(first) if per_pixel(last) and per_pixel(first) else None
        one, two = of(first, 1, "processor_ms"), of(first, 2, "processor_ms")
        walls = of(first, 1, "wall_ms"), of(first, 2, "wall_ms")
        gain = walls[0] / walls[1] if None not in walls else None
        rows.append([effect, number(one), number(two), number(gain), number(per_pixel(first)), number(per_pixel(last)),
                     number(growth)])
    head = ["effect", f"{first} MP, 1 thread, ms", "2 threads, ms of both", "wall gain", f"ns a pixel, {first} MP",
            f"{last} MP", "growth"]
    return markdown(head, rows)


def jobs(figures):
    rows = [(row["job"], number(row["processor_s"]), number(row["wall_s"]), number(row["peak_MB"]))
            for row in figures.get("jobs", [])]
    return markdown(("job", "processor, s", "wall, s", "peak, MB"), rows)


def batches(figures):
    rows = [(str(row["pictures"]), number(row["processor_s"]), number(row["peak_MB"]))
            for row in figures.get("batches", [])]
    return markdown(("pictures", "processor, s", "peak, MB"), rows)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--machine", help="what it ran on and how busy that was")
    parser.add_argument("files", nargs="*", metavar="FIGURES.json")
    told = parser.parse_args()
    figures = {}
    if os.path.exists(FIGURES):
        with open(FIGURES, encoding="utf-8") as file:
            figures = json.load(file)
    if told.machine:
        figures["machine"] = told.machine
    for path in told.files:
        take(figures, path)
    with open(FIGURES, "w", encoding="utf-8") as file:
        file.write(text_of(shortened(figures)))
    with open(PAGE, encoding="utf-8") as file:
        page = file.read()
    parts = {"machine": lambda f: f.get("machine", ""), "peers": peers, "alone": alone, "memory": memory,
             "scaling": scaling, "jobs": jobs, "batches": batches}
    for name, part in parts.items():
        begin, end = f"<!-- {name}: begin -->\n", f"<!-- {name}: end -->"
        before, rest = page.split(begin)
        page = before + begin + part(figures) + "\n" + end + rest.split(end)[1]
    with open(PAGE, "w", encoding="utf-8") as file:
        file.write(page)


if __name__ == "__main__":
    main()
