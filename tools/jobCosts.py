#!/usr/bin/env python3
"""Times the command's main jobs from file to file on a drawn portrait of 24 megapixels, and watches the memory
of a batch. Usage: jobCosts.py ZEL OUT.json"""
import json
import os
import resource
import subprocess
import sys
import tempfile
import time

RUNS = 3  # the least time counts
SIZE = (4243, 5657)
BATCHES = (10, 100)  # copies of a portrait of BATCH_SIZE
BATCH_SIZE = (1500, 2000)
# The words of each job after the command; IN and OUT stand for files.
JOBS = {
    "nothing but reading and writing (color-mixing)": "apply color-mixing IN.jpg -o OUT.jpg",
    "faces": "faces IN.jpg -o OUT.json",
    "scenario": "apply scenario IN.jpg -o OUT.jpg",
    "skin smoothing (qorn-skin-retouch)": "apply qorn-skin-retouch IN.jpg -o OUT.jpg",
    "repairs (auto-face-inpaint)": "apply auto-face-inpaint IN.jpg -o OUT.jpg",
    "depth": "depth IN.jpg -o OUT.png",
    "depth of field (defocus)": "apply defocus IN.jpg -o OUT.jpg",
}


def run(words):
    """Wall-clock and processor seconds, and the peak in megabytes, of one process."""
    begin = time.monotonic()
    with subprocess.Popen(words, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE) as process:
        message = process.stderr.read().decode(errors="replace")
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(f"{' '.join(words)}: {message.strip()[-300:]}")
    return time.monotonic() - begin, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1024


def draw(zel, folder, name, size):
    """A portrait as JPEG; the command draws PNG and turns it by the cheapest effect."""
    drawn = os.path.join(folder, "drawn.png")
    run([zel, "portrait", "--quiet", "--size", f"{size[0]}x{size[1]}", "-o", drawn])
    target = os.path.join(folder, name)
    run([zel, "apply", "color-mixing", drawn, "-o", target])
    os.remove(drawn)
    return target


def job_rows(zel, folder):
    picture = draw(zel, folder, "portrait.jpg", SIZE)
    for name, words in JOBS.items():
        out = os.path.join(folder, "out")
        wall, processor, peak = float("inf"), float("inf"), 0.0
        for _ in range(RUNS):
            command = [zel] + [picture if w == "IN.jpg" else w.replace("OUT", out) for w in words.split()]
            times = run(command)
            os.remove(command[-1])
            wall, processor, peak = min(wall, times[0]), min(processor, times[1]), max(peak, times[2])
        yield {"job": name, "wall_s": wall, "processor_s": processor, "peak_MB": peak}


def batch_rows(zel, folder):
    source = draw(zel, folder, "one.jpg", BATCH_SIZE)
    for count in BATCHES:
        names = []
        for i in range(count):
            names.append(os.path.join(folder, f"b{i}.jpg"))
            os.link(source, names[-1])
        out = tempfile.mkdtemp(dir=folder)
        wall, processor, peak = run([zel, "apply", "scenario", *names, "-o", out])
        for name in names:
            os.remove(name)
        yield {"pictures": count, "wall_s": wall, "processor_s": processor, "peak_MB": peak}


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    zel = os.path.abspath(sys.argv[1])
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    with tempfile.TemporaryDirectory() as folder:
        result = {"jobs": list(job_rows(zel, folder)), "batches": list(batch_rows(zel, folder))}
    with open(sys.argv[2], "w", encoding="utf-8") as file:
        json.dump(result, file, indent=1)


if __name__ == "__main__":
    main()
