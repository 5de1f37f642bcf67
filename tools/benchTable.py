#!/usr/bin/env python3
"""Prints a table of ratios from the JSON of a benchmark run. Usage: benchTable.py RESULTS.json

Rows are named PREFIX/WHO/ARGUMENTS, as in stack_blur/ours/radius:20/MP:12/threads:2. Every row of this library
is set beside the peers that share its prefix and arguments, and beside a plain copy of the picture."""
import json
import statistics
import sys

# From how many times the speed on the second thread the machine counts as quiet, and the row that tells.
TRUSTED_GAIN = 1.6
YARDSTICK = ("stack_blur", "opencv_gaussian")
# Whose row it is: these beginnings name peers, everything else is this library's. A row that is only called
# one of OURS goes by its prefix alone.
PEERS = ("opencv", "libyuv", "yuv", "fftw", "memcpy", "plain", "eigen", "gegl")
OURS = ("ours", "own", "zel")


def medians(results):
    """Median real time in milliseconds of each row, by (prefix, who, arguments)."""
    times = {}
    scale = {"ns": 1e-6, "us": 1e-3, "ms": 1.0, "s": 1e3}
    for entry in results["benchmarks"]:
        if entry.get("run_type") != "iteration" or entry.get("error_occurred"):
            continue
        parts = [p for p in entry["run_name"].split("/") if p not in ("real_time", "process_time")]
        words = [p for p in parts if ":" not in p]
        arguments = dict(p.split(":", 1) for p in parts if ":" in p)
        key = ("/".join(words[:-1]) or words[0], words[-1], tuple(sorted(arguments.items())))
        times.setdefault(key, []).append(entry["real_time"] * scale[entry["time_unit"]])
    return {key: statistics.median(values) for key, values in times.items()}


def second_thread_gain(rows):
    """The smallest gain of the yardstick row from its second thread, over all sizes; None without it."""
    gains = []
    for (prefix, who, arguments), time in rows.items():
        values = dict(arguments)
        if (prefix, who) == YARDSTICK and values.get("radius") == "20" and values.get("threads") == "1":
            two = rows.get((prefix, who, tuple(sorted({**values, "threads": "2"}.items()))))
            if two:
                gains.append(time / two)
    return min(gains) if gains else None


def order(item):
    """Sorts rows by name, then by their arguments as numbers."""
    prefix, who, arguments = item[0]
    return prefix, who, [(name, float(value) if value.replace(".", "", 1).isdigit() else 0.0) for name, value in arguments]


def table(rows, trusted):
    copies = {dict(arguments).get("MP"): time for (prefix, _, arguments), time in rows.items() if prefix == "memcpy"}
    lines = [("row", "ours ms", "x memcpy", "peer", "peer ms", "times as fast")]
    for (prefix, who, arguments), ours in sorted(rows.items(), key=order):
        if who.startswith(PEERS):
            continue
        values = dict(arguments)
        name = "/".join([prefix] + ([] if who in OURS else [who]) + [f"{k}:{v}" for k, v in arguments])
        copy = copies.get(values.get("MP"))
        against_copy = f"{ours / copy:.2f}" if copy else "-"
        mark = "" if trusted or values.get("threads", "1") == "1" else " untrusted"
        peers = [(other, time) for (p, other, a), time in rows.items()
                 if p == prefix and a == arguments and other.startswith(PEERS)]
        for other, time in sorted(peers) or [("-", None)]:
            ratio = f"{time / ours:.2f}{mark}" if time else "-" + mark
            lines.append((name, f"{ours:.3f}", against_copy, other, f"{time:.3f}" if time else "-", ratio))
    return lines


def print_columns(lines):
    widths = [max(len(line[i]) for line in lines) for i in range(len(lines[0]))]
    for line in lines:
        print("  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip())


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__.splitlines()[0])
    with open(sys.argv[1], encoding="utf-8") as file:
        rows = medians(json.load(file))
    gain = second_thread_gain(rows)
    trusted = gain is not None and gain >= TRUSTED_GAIN
    print_columns(table(rows, trusted))
    if gain is None:
        print("\nThe yardstick of the second thread did not run: figures on two threads are untrusted.")
    else:
        verdict = "trusted" if trusted else "untrusted, the machine was busy"
        print(f"\nGain of {'/'.join(YARDSTICK)} at radius 20 from its second thread: {gain:.2f}"
              f" (wanted {TRUSTED_GAIN}); figures on two threads are {verdict}.")


if __name__ == "__main__":
    main()
