#!/usr/bin/env python3
"""The command where the world fails it: killed at any moment, a full disk, limits and assets that cannot be read.
What lay at OUT is whole after all of it, the old file or the new one; a failure is one line and status 1.
Usage: brokenWrites.py ZEL ASSETS"""
import os
import pathlib
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time

ZEL, ASSETS = (pathlib.Path(argument).absolute() for argument in sys.argv[1:3])
KILLS = 60
FAULTS = []


def fault(what):
    FAULTS.append(what)
    print("FAULT:", what)


def run(folder, words, limit=None, environment=None):
    """The command's status and what it wrote to standard error."""
    done = subprocess.run([ZEL, *words], cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                          stderr=subprocess.PIPE, text=True, timeout=300, env={**os.environ, **(environment or {})},
                          preexec_fn=limit)
    return done.returncode, done.stderr


def temporaries(folder):
    return [path for path in folder.iterdir() if path.name not in ("in.png", "out.png", "faces.json")]


def killed_while_writing(folder, words, whole):
    """Each signal, half of them at moments all over a run's time and half as soon as the new file begins to be there."""
    begin = time.monotonic()
    run(folder, words)
    length = time.monotonic() - begin
    chance = random.Random(1)
    for kind in (signal.SIGKILL, signal.SIGTERM, signal.SIGINT):
        ended, writing, left = 0, 0, 0
        for number in range(KILLS):
            (folder / "out.png").write_bytes(b"old")
            child = subprocess.Popen([ZEL, *words], cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                     stderr=subprocess.DEVNULL)
            if number % 2:
                time.sleep(chance.uniform(0, 1.1 * length))
            else:
                while child.poll() is None and not temporaries(folder):
                    pass
                writing += bool(temporaries(folder))
            child.send_signal(kind)
            ended += child.wait(60) != 0
            if (folder / "out.png").read_bytes() not in (b"old", whole):
                fault(f"half a file after {kind.name}")
            if temporaries(folder):
                left += 1
                if kind != signal.SIGKILL:
                    fault(f"a temporary file stayed after {kind.name}: {temporaries(folder)}")
                for path in temporaries(folder):
                    path.unlink()
        print(f"{kind.name}: {KILLS} runs, {ended} ended by it, {writing} while writing, {left} left a temporary file behind")


def no_room(folder, words, bytes_of_out):
    """A file may grow to every share of what it needs, and no further."""
    limits = [0, 1, 7, 100] + [bytes_of_out * share // 8 for share in range(1, 8)]
    for limit in limits:
        (folder / "out.png").write_bytes(b"old")
        status, said = run(folder, words, lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit)))
        if status != 1 or (folder / "out.png").read_bytes() != b"old" or len(temporaries(folder)) > 0:
            fault(f"a limit of {limit} bytes: status {status}, {temporaries(folder)}")
        if not re.search(r"^zel: .*out\.png: .+", said, re.MULTILINE):
            fault(f"a limit of {limit} bytes is not told: {said!r}")
    print(f"files that may not grow: {len(limits)} limits")
    status, said = run(folder, words[:-1] + ["/dev/full"])
    if status not in (1, 2) or not said:
        fault(f"/dev/full: status {status}")
    # A disk of its own, where this system lets us have one.
    disk = folder / "disk"
    disk.mkdir()
    script = 'mount -t tmpfs -o size=64k none disk && echo old > disk/out.png && "$@"; echo $? $(cat disk/out.png) $(ls -A disk)'
    done = subprocess.run(["unshare", "-rm", "sh", "-c", script, "sh", ZEL, *words[:-1], "disk/out.png"], cwd=folder,
                          capture_output=True, text=True)
    if "mount" in done.stderr or "unshare" in done.stderr:
        print("a full disk: not tried, no file system may be mounted here")
    elif done.stdout.split() != ["1", "old", "out.png"]:
        fault(f"a full disk: {done.stdout!r} {done.stderr!r}")
    else:
        print("a full disk of 64 kB:", done.stderr.strip().splitlines()[-1])
    disk.rmdir()


def damaged_assets(folder):
    """Each asset missing, empty, halved, of zeros, and a folder, under effects that read assets."""
    effects = ("scenario", "qorn-skin-retouch", "qorn-skin-whitening", "auto-face-inpaint", "defocus")
    own = folder / "assets"
    files = [path.relative_to(ASSETS) for path in sorted(ASSETS.rglob("*")) if path.is_file() and "networks" not in path.parts]
    tried = refused = 0
    for file in files:
        for damage in ("missing", "empty", "halved", "zeros", "folder"):
            shutil.copytree(ASSETS, own, ignore=shutil.ignore_patterns("networks"))
            whole = (own / file).read_bytes()
            (own / file).unlink()
            if damage == "folder":
                (own / file).mkdir()
            elif damage != "missing":
                (own / file).write_bytes({"empty": b"", "halved": whole[:len(whole) // 2], "zeros": bytes(len(whole))}[damage])
            for effect in effects:
                (folder / "out.png").write_bytes(b"old")
                status, said = run(folder, ["apply", effect, "in.png", "-o", "out.png", "--faces", "faces.json"],
                                   environment={"ZEL_ASSETS": str(own)})
                tried += 1
                refused += status != 0
                old = (folder / "out.png").read_bytes() == b"old"
                if status not in (0, 1) or old != (status == 1) or (status == 1 and not said):
                    fault(f"{effect} with {file} {damage}: status {status}, {said!r}")
            shutil.rmtree(own)
    print(f"damaged assets: {tried} runs over {len(files)} files, {refused} refused with a reason")


def main():
    with tempfile.TemporaryDirectory() as place:
        folder = pathlib.Path(place)
        status, said = run(folder, ["portrait", "-o", "in.png", "--faces", "faces.json", "--size", "300x400"])
        if status != 0:
            sys.exit(f"no portrait: {said}")
        words = ["apply", "skin", "in.png", "-o", "out.png"]
        run(folder, words)
        whole = (folder / "out.png").read_bytes()
        killed_while_writing(folder, words, whole)
        no_room(folder, words, len(whole))
        damaged_assets(folder)
    print("all as it must be" if not FAULTS else f"{len(FAULTS)} FAULTS")
    sys.exit(1 if FAULTS else 0)


if __name__ == "__main__":
    main()
