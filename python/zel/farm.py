"""Retouches pictures on many machines, over Dask distributed: paths travel, pixels do not.

    python -m zel.farm photos/ out/ --recipe soft.json                          # workers of this machine
    python -m zel.farm list.txt out/ --recipe soft.json --scheduler tcp://10.0.0.1:8786

Every machine sees the pictures and OUT under the same paths. A picture is written whole or not at all; those that are
there are left alone, so that a run that was interrupted is simply started again. Workers that die are done without, and
their pictures done again; a picture that takes its process down is tried three times.
"""

import argparse
import collections
import contextlib
import hashlib
import json
import os
import pathlib
import select
import subprocess
import sys
import threading
import time

from ._errors import Error
from ._picture import PART, target_name
from .recipe import Recipe

TRIES = 3
SUFFIXES = {".png", ".jpg", ".jpeg", ".bmp", ".gif", ".tga", ".psd", ".hdr", ".pic", ".pnm", ".ppm", ".pgm"}
IN_FLIGHT = 4  # jobs for each worker: enough that none waits, few enough for a scheduler of thousands
MOST_IN_BUNDLE = 16  # pictures of a job: a job costs scheduler and farm some 3 ms, however many it holds
ROUNDS = 8  # of bundles for each worker at least, so that all end at about the same time


class Lost(Exception):
    """The process that worked on a picture died, or took too long."""


# ---- In a worker ----

_hands = threading.local()


class Hand:
    """A process that retouches, of one thread of a worker."""

    def __init__(self):
        self._process = subprocess.Popen([sys.executable, "-m", "zel._hand"], stdin=subprocess.PIPE,
                                         stdout=subprocess.PIPE)

    def ask(self, job, seconds):
        try:
            self._process.stdin.write(json.dumps(job).encode() + b"\n")
            self._process.stdin.flush()
            # One answer a job: nothing is left in the buffer to be read before.
            ready, _, _ = select.select([self._process.stdout], [], [], seconds)
            line = self._process.stdout.readline() if ready else None
        except OSError:
            line = b""
        if line:
            return json.loads(line)
        self._process.kill()
        code = self._process.wait()
        raise Lost(f"its process died of signal {-code}" if line is not None and code < 0 else
                   f"its process ended with status {code}" if line is not None else f"it took longer than {seconds} s")


def retouch(picture, target, recipe, seconds):
    """What is wrong with a picture, or nothing."""
    if not hasattr(_hands, "hand"):
        _hands.hand = Hand()
    try:
        return _hands.hand.ask({"source": picture, "target": target, "recipe": recipe}, seconds)
    except Lost as problem:
        del _hands.hand
        return {"why": str(problem), "final": False}


def work(bundle, recipe, seconds):
    """Retouches a few pictures; runs in a worker. Gives an answer for each."""
    return [retouch(picture, target, recipe, seconds) for picture, target in bundle]


# ---- Where the farm is led from ----


class Usage(Exception):
    """The farm was not understood; nothing was done."""


def jobs_of(source, out):
    """(picture, result) of a folder's pictures, or of the paths in a list. No two results are one."""
    source = pathlib.Path(source)
    if source.is_dir():
        pictures = sorted(entry.path for entry in os.scandir(source)
                          if entry.is_file() and os.path.splitext(entry.name)[1].lower() in SUFFIXES)
    elif source.is_file():
        pictures = [os.path.join(source.parent, line) for line in source.read_text().splitlines() if line]
    else:
        raise Usage(f"{source}: is neither a folder nor a list of pictures")
    owners = {}
    for picture in map(os.path.abspath, pictures):
        target = os.path.join(os.path.abspath(out), target_name(os.path.basename(picture)))
        if owners.setdefault(target, picture) != picture:
            raise Usage(f"{target} would be written twice, for {owners[target]} and {picture}")
    return [(picture, target) for target, picture in owners.items()]


def claim(out, recipe):
    """Marks the folder as this recipe's, so that no other's results pass for it."""
    os.makedirs(out, exist_ok=True)
    mark = os.path.join(out, ".zel-recipe")
    digest = hashlib.sha256(recipe.text().encode()).hexdigest()
    with contextlib.suppress(FileNotFoundError), open(mark, encoding="ascii") as file:
        if file.read() != digest:
            raise Usage(f"{out} holds pictures of another recipe")
    with open(mark, "w", encoding="ascii") as file:
        file.write(digest)


class Progress:
    """A line now and then, on standard error."""

    def __init__(self, total, quiet):
        self._total, self._quiet, self._start, self._last = total, quiet, time.monotonic(), 0.0
        self.done, self.failed = 0, []

    def seconds(self):
        return time.monotonic() - self._start

    def rate(self):
        return self.done / max(self.seconds(), 1e-9)

    def tell(self, always=False):
        now = time.monotonic()
        if self._quiet or (now - self._last < 2 and not always):
            return
        self._last = now
        left = self._total - self.done - len(self.failed)
        ends = f", {left / self.rate():.0f} s left" if self.done and left else ""
        print(f"zel.farm: {self.done} of {self._total} done, {len(self.failed)} failed, {self.rate():.2f} a second{ends}",
              file=sys.stderr)


def bundle_of(waiting, size):
    """The next pictures with how often they were tried. What failed before goes alone."""
    bundle = [waiting.popleft()]
    while bundle[0][1] == 1 and waiting and waiting[0][1] == 1 and len(bundle) < size:
        bundle.append(waiting.popleft())
    return bundle


def run(client, jobs, recipe, progress, options):
    """Has the workers do the jobs. A few are under way at a time, however many there are."""
    from distributed import as_completed

    def workers():
        return max(1, sum(client.nthreads().values()))

    size = options.bundle or max(1, min(MOST_IN_BUNDLE, len(jobs) // (ROUNDS * workers())))
    waiting = collections.deque((job, 1) for job in jobs)
    under_way, results = {}, as_completed()

    def send():
        wanted = IN_FLIGHT * workers()
        while waiting and len(under_way) < wanted:
            bundle = bundle_of(waiting, size)
            future = client.submit(work, [job for job, _ in bundle], recipe.text(), options.seconds, pure=False)
            under_way[future.key] = bundle
            results.add(future)

    send()
    for future in results:
        bundle = under_way.pop(future.key)
        if future.status == "finished":
            answers = future.result()
        else:  # a scheduler that lost several workers over a bundle gives it up
            answers = [{"why": str(future.exception()), "final": False}] * len(bundle)
        future.release()
        for (job, attempt), answer in zip(bundle, answers):
            if not answer:
                progress.done += 1
            elif answer["final"] or attempt == TRIES:
                progress.failed.append({"picture": job[0], "tries": attempt, "why": answer["why"]})
            else:
                waiting.append((job, attempt + 1))
        progress.tell()
        send()


@contextlib.contextmanager
def cluster(options, out):
    """The scheduler's address, or a cluster of this machine's for the time."""
    if options.scheduler:
        yield options.scheduler
        return
    from distributed import LocalCluster

    with LocalCluster(n_workers=options.workers, threads_per_worker=1, host="127.0.0.1", dashboard_address=None,
                      local_directory=os.path.join(out, ".dask")) as local:
        yield local


def clean(out):
    """Takes away what processes that died had begun."""
    for entry in os.scandir(out):
        if entry.name.endswith(PART):
            with contextlib.suppress(FileNotFoundError):
                os.remove(entry.path)


def farm(options):
    from distributed import Client

    try:
        recipe = Recipe.load(options.recipe)
    except (Error, OSError) as problem:
        raise Usage(str(problem)) from None
    jobs = jobs_of(options.source, options.out)
    claim(options.out, recipe)
    open_jobs = [job for job in jobs if not os.path.exists(job[1])]
    progress = Progress(len(open_jobs), options.quiet)
    if open_jobs:
        with cluster(options, options.out) as address, Client(address) as client:
            run(client, open_jobs, recipe, progress, options)
        clean(options.out)
    progress.tell(always=True)
    report = {"done": progress.done, "skipped": len(jobs) - len(open_jobs), "failed": progress.failed,
              "seconds": round(progress.seconds(), 2), "picturesPerSecond": round(progress.rate(), 3)}
    with open(options.report or os.path.join(options.out, "farm-report.json"), "w", encoding="utf-8") as file:
        json.dump(report, file, indent=1)
    for failure in progress.failed:
        print(f"zel.farm: {failure['picture']}: {failure['why']} (tried {failure['tries']} times)", file=sys.stderr)
    return 1 if progress.failed else 0


def parsed(words=None):
    parser = argparse.ArgumentParser(prog="python -m zel.farm", description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("source", metavar="IN", help="a folder with pictures, or a text file with a path a line")
    parser.add_argument("out", metavar="OUT", help="the folder of the results, called like their pictures")
    parser.add_argument("--recipe", required=True, metavar="R", help="the effects, as JSON: as zel apply --recipe takes them")
    parser.add_argument("--scheduler", metavar="ADDRESS", help="a scheduler that runs already")
    parser.add_argument("--workers", type=int, default=os.cpu_count(), metavar="N",
                        help="processes of this machine, where no scheduler is named; one for each processor")
    parser.add_argument("--seconds", type=float, default=600, metavar="S", help="what a picture may take; 600")
    parser.add_argument("--bundle", type=int, default=0, metavar="N", help="pictures of a job; by itself 1 to 16")
    parser.add_argument("--report", metavar="FILE", help="in place of OUT/farm-report.json")
    parser.add_argument("--quiet", action="store_true", help="only failures on standard error")
    return parser.parse_args(words)


def main():
    options = parsed()
    try:
        return farm(options)
    except (Usage, OSError) as problem:
        print(f"zel.farm: {problem}", file=sys.stderr)
        return 2


if __name__ == "__main__":
    # Workers look the functions up by the module's name, which `python -m` hides.
    from zel import farm as module

    sys.exit(module.main())
