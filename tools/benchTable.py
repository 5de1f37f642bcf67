#!/usr/bin/env python3
"""Prints a table of ratios from the JSON of a benchmark run, and writes its rows.
Usage: benchTable.py RESULTS.json [TABLE.json]

Rows are named PREFIX/WHO/ARGUMENTS, as in stack_blur/ours/radius:20/MP:12/threads:2. Every row of this library
is set beside the peers that share its prefix and arguments, and beside a plain copy of the picture. On one thread
the least processor time counts, which other programs disturb least; on more, the median of wall-clock time."""
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


def times_of(results):
    """The time of each row in milliseconds, by (prefix, who, arguments)."""
    times = {}
    scale = {"ns": 1e-6, "us": 1e-3, "ms": 1.0, "s": 1e3}
    for entry in results["benchmarks"]:
        if entry.get("run_type") != "iteration" or entry.get("error_occurred"):
            continue
        parts = [p for p in entry["run_name"].split("/") if p not in ("real_time", "process_time")]
        words = [p for p in parts if ":" not in p]
        arguments = dict(p.split(":", 1) for p in parts if ":" in p)
        arguments.pop("iterations", None)
        key = ("/".join(words[:-1]) or words[0], words[-1], tuple(sorted(arguments.items())))
        one = arguments.get("threads", "1") == "1"
        times.setdefault(key, []).append(entry["cpu_time" if one else "real_time"] * scale[entry["time_unit"]])
    return {
        key: min(values) if dict(key[2]).get("threads", "1") == "1" else statistics.median(values)
        for key, values in times.items()
    }


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


def copy_times(rows):
    """The time of a copy of the picture by its megapixels."""
    return {dict(a).get("MP"): time for (prefix, _, a), time in rows.items() if prefix == "memcpy"}


def compared(rows):
    """One entry a row of this library and peer; a row without a peer has one entry."""
    copies = copy_times(rows)
    entries = []
    for (prefix, who, arguments), ours in sorted(rows.items(), key=order):
        if who.startswith(PEERS):
            continue
        copy = None if "hole" in dict(arguments) else copies.get(dict(arguments).get("MP"))
        entry = {
            "row": "/".join([prefix] + ([] if who in OURS else [who])),
            "arguments": dict(arguments),
            "ours_ms": ours,
            "copies": ours / copy if copy else None,
        }
        peers = [(other, time) for (p, other, a), time in rows.items()
                 if p == prefix and a == arguments and other.startswith(PEERS) and other != "memcpy"]
        entries += [{**entry, "peer": other, "peer_ms": time, "times_as_fast": time / ours}
                    for other, time in sorted(peers)] or [entry]
    return entries


def table(entries, trusted):
    lines = [("row", "ours ms", "copies", "peer", "peer ms", "times as fast")]
    for entry in entries:
        arguments = entry["arguments"]
        mark = "" if trusted or arguments.get("threads", "1") == "1" else " untrusted"
        name = "/".join([entry["row"]] + [f"{k}:{v}" for k, v in arguments.items()])
        copies = f"{entry['copies']:.2f}" if entry["copies"] else "-"
        peer = (entry["peer"], f"{entry['peer_ms']:.3f}", f"{entry['times_as_fast']:.2f}") if "peer" in entry else ("-", "-", "-")
        lines.append((name, f"{entry['ours_ms']:.3f}", copies, *peer[:2], peer[2] + mark))
    return lines


def print_columns(lines):
    widths = [max(len(line[i]) for line in lines) for i in range(len(lines[0]))]
    for line in lines:
        print("  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip())


def main():
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    with open(sys.argv[1], encoding="utf-8") as file:
        rows = times_of(json.load(file))
    gain = second_thread_gain(rows)
    trusted = gain is not None and gain >= TRUSTED_GAIN
    entries = compared(rows)
    print_columns(table(entries, trusted))
    if len(sys.argv) == 3:
        with open(sys.argv[2], "w", encoding="utf-8") as file:
            json.dump({"second_thread_gain": gain, "copies_ms": copy_times(rows), "rows": entries}, file, indent=1)
    if gain is None:
        print("\nThe yardstick of the second thread did not run: figures on two threads are untrusted.")
    else:
        verdict = "trusted" if trusted else "untrusted, the machine was busy"
        print(f"\nGain of {'/'.join(YARDSTICK)} at radius 20 from its second thread: {gain:.2f}"
              f" (wanted {TRUSTED_GAIN}); figures on two threads are {verdict}.")


if __name__ == "__main__":
    main()
