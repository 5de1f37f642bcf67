"""The farm: what goes wrong with pictures, files and machines, on this machine's loopback."""

import json
import os
import pathlib
import signal
import socket
import subprocess
import sys
import time

import numpy
import pytest
from PIL import Image

import zel
from zel import farm, recipe

RECIPE = '{"recipe": 1, "steps": [{"effect": "nature-smooth"}, {"effect": "vignette", "set": {"strength": 0.5}}]}'


@pytest.fixture(autouse=True)
def package(monkeypatch):
    """For the processes that a test starts."""
    monkeypatch.setenv("PYTHONPATH", os.environ["ZEL_PACKAGE"])


def write_pictures(folder, count):
    folder.mkdir()
    for i in range(count):
        Image.fromarray(zel.draw_portrait((120, 160), seed=i + 1).picture[..., :3]).save(folder / f"p{i:02}.jpg")


def run_farm(*words, **options):
    return subprocess.run([sys.executable, "-m", "zel.farm", *map(str, words)], text=True, capture_output=True, **options)


def report_of(out):
    return json.loads((out / "farm-report.json").read_text())


def names(folder):
    """Results alone: no part of one, no hidden file but the mark of the recipe."""
    rest = sorted(p.name for p in pathlib.Path(folder).iterdir())
    assert not [name for name in rest if name.endswith(".zelpart")], rest
    return [name for name in rest if name.endswith((".jpg", ".png"))]


def test_recipes_are_checked_before_anything_is_done(portrait, tmp_path):
    own = recipe.Recipe.of_text('{"recipe": 1, "name": "own", "steps": [{"effect": "auto-slim-face", '
                                '"set": {"strength": 0.4}}, {"effect": "scenario"}]}')
    slim = zel.auto_slim_face(portrait.picture, strength=0.4, faces=zel.find_faces(portrait.picture))
    expected = zel.scenario(slim, faces=zel.find_faces(portrait.picture))
    assert numpy.array_equal(own.apply(portrait.picture), expected)
    assert recipe.Recipe.of_text(own.text()) == own
    with pytest.raises(zel.ArgumentError, match="no face was found"):
        own.apply(numpy.zeros((40, 40, 3), numpy.uint8))
    for text, says in (("", "no JSON"), ("[]", "no recipe"), ('{"steps": []}', "no recipe"), ('{"recipe": 2}', "later version")):
        with pytest.raises(zel.ArgumentError, match=says):
            recipe.Recipe.of_text(text)
    for steps, says in (("[]", 'no "steps"'), ("[{}]", "step 1"), ('[{"effect": "vignete"}]', "did you mean 'vignette'"),
                        ('[{"effect": "vignette", "set": {"strength": 9}}]', "step 1: "),
                        ('[{"effect": "vignette", "set": {"strength": null}}]', "step 1: "),
                        ('[{"effect": "vignette", "strength": 1}]', "has no 'strength'"),
                        ('[{"effect": "inpaint"}]', "needs a mask")):
        text = f'{{"recipe": 1, "steps": {steps}}}'
        (tmp_path / "r.json").write_text(text)
        with pytest.raises(zel.ArgumentError, match=f"r.json: .*{says}"):
            recipe.Recipe.load(tmp_path / "r.json")


def test_files_come_out_as_the_command_writes_them(portrait, command, tmp_path):
    from zel import _picture

    recipe_one = recipe.Recipe.of_text('{"recipe": 1, "steps": [{"effect": "nature-smooth"}]}')
    for turn in range(1, 9):
        exif = Image.Exif()
        exif[0x0112], exif[0x010E] = turn, "a portrait"
        Image.fromarray(portrait.picture[::2, ::2, :3]).save(tmp_path / "in.png", exif=exif)
        pixels, meta = _picture.read(tmp_path / "in.png")
        _picture.write(str(tmp_path / "own.png"), recipe_one.apply(pixels), meta)
        command("apply", "nature-smooth", tmp_path / "in.png", "-o", tmp_path / "out.png", "--quiet")
        own = Image.open(tmp_path / "own.png")
        assert numpy.array_equal(numpy.array(own)[..., :3], numpy.array(Image.open(tmp_path / "out.png"))[..., :3])
        assert (own.getexif()[0x0112], own.getexif()[0x010E]) == (1, "a portrait")
    clear = numpy.dstack([portrait.picture[..., :3], portrait.plane("person")])
    _picture.write(str(tmp_path / "own.jpg"), clear, {"icc_profile": b"profile"})
    own = Image.open(tmp_path / "own.jpg")
    white = 255 - (255 - clear[..., :3].astype(int)) * (clear[..., 3:] / 255)
    assert own.info["icc_profile"] == b"profile" and abs(numpy.array(own) - white).mean() < 1


def test_a_folder_is_done_once_and_wrong_pictures_are_told(tmp_path):
    write_pictures(tmp_path / "in", 4)
    (tmp_path / "in/broken.png").write_bytes(b"no picture")
    (tmp_path / "in/notes.txt").write_text("not asked for")
    (tmp_path / "r.json").write_text(RECIPE)
    words = (tmp_path / "in", tmp_path / "out", "--recipe", tmp_path / "r.json", "--workers", 1, "--bundle", 3)
    run = run_farm(*words, cwd=tmp_path)
    assert run.returncode == 1, run.stderr
    assert "broken.png: " in run.stderr and "5 a second" not in run.stderr
    report = report_of(tmp_path / "out")
    assert (report["done"], report["skipped"]) == (4, 0)
    assert [(pathlib.Path(f["picture"]).name, f["tries"]) for f in report["failed"]] == [("broken.png", 1)]
    assert names(tmp_path / "out") == [f"p{i:02}.jpg" for i in range(4)]

    (tmp_path / "in/broken.png").unlink()
    (tmp_path / "out/p01.jpg").unlink()
    before = {name: (tmp_path / "out" / name).stat().st_mtime_ns for name in names(tmp_path / "out")}
    assert run_farm(*words).returncode == 0
    report = report_of(tmp_path / "out")
    assert (report["done"], report["skipped"], report["failed"]) == (1, 3, [])
    assert all((tmp_path / "out" / name).stat().st_mtime_ns == time_then for name, time_then in before.items())

    (tmp_path / "other.json").write_text(RECIPE.replace("0.5", "0.6"))
    for source, own_recipe, says in ((tmp_path / "in", "other.json", "another recipe"), (tmp_path / "none", "r.json", "neither"),
                                     (tmp_path / "twice.txt", "r.json", "written twice"), (tmp_path / "in", "none.json", "none.json")):
        (tmp_path / "twice.txt").write_text("in/p00.jpg\nother/p00.jpg\n")
        run = run_farm(source, tmp_path / "out", "--recipe", tmp_path / own_recipe)
        assert run.returncode == 2 and says in run.stderr and run.stderr.count("\n") == 1, run.stderr


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class Machines:
    """A scheduler and workers as other machines would have them."""

    def __init__(self, folder, workers, extra):
        self.address = f"tcp://127.0.0.1:{free_port()}"
        self.processes = [self._start("scheduler", "--host", "127.0.0.1", "--port", self.address.rpartition(":")[2],
                                      "--no-dashboard")]
        environment = dict(os.environ, **extra)
        self.processes += [self._start("worker", self.address, "--host", "127.0.0.1", "--nthreads", "1", "--no-nanny",
                                       "--no-dashboard", "--local-directory", str(folder / f"w{i}"), env=environment)
                           for i in range(workers)]

    @staticmethod
    def _start(kind, *words, env=None):
        return subprocess.Popen([sys.executable, "-m", f"distributed.cli.dask_{kind}", *words], env=env,
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for process in reversed(self.processes):
            process.kill()
            process.wait()


# Every hand imports this first: it counts pictures by the worker, slows them down, and dies of one of them.
SABOTAGE = """
import os, signal, sys
if sys.argv[-1:] == ["-m"]:
    import zel._picture as own
    def read(path, inner=own.read):
        name = os.path.basename(path)
        open(os.environ["COUNTS"] + "/" + name + "." + str(os.getppid()), "a").write("x")
        if name == "p07.jpg":
            os.kill(os.getpid(), signal.SIGSEGV)
        import time; time.sleep(0.3)
        return inner(path)
    own.read = read
"""


def test_a_worker_that_is_killed_and_a_picture_that_kills(tmp_path):
    count = 24
    write_pictures(tmp_path / "in", count)
    for folder in ("counts", "sabotage"):
        (tmp_path / folder).mkdir()
    (tmp_path / "sabotage/sitecustomize.py").write_text(SABOTAGE)
    (tmp_path / "r.json").write_text(RECIPE)
    extra = {"COUNTS": str(tmp_path / "counts"), "PYTHONPATH": f"{tmp_path}/sabotage:{os.environ['ZEL_PACKAGE']}"}
    with Machines(tmp_path, 3, extra) as machines:
        farmer = subprocess.Popen([sys.executable, "-m", "zel.farm", str(tmp_path / "in"), str(tmp_path / "out"), "--recipe",
                                   str(tmp_path / "r.json"), "--scheduler", machines.address], stderr=subprocess.PIPE, text=True)
        limit = time.monotonic() + 120
        while not (tmp_path / "out").is_dir() or len(list((tmp_path / "out").glob("*.jpg"))) < 6:
            assert time.monotonic() < limit and farmer.poll() is None
            time.sleep(0.05)
        victim = machines.processes[1]
        victim.send_signal(signal.SIGKILL)
        _, said = farmer.communicate(timeout=200)
    assert farmer.returncode == 1, said
    report = report_of(tmp_path / "out")
    assert report["done"] == count - 1, "nothing is lost"
    assert [(pathlib.Path(f["picture"]).name, f["tries"]) for f in report["failed"]] == [("p07.jpg", 3)]
    assert "signal 11" in report["failed"][0]["why"]
    assert names(tmp_path / "out") == [f"p{i:02}.jpg" for i in range(count) if i != 7]
    # Worked on twice is at most what the victim had begun; a hand may live a picture longer than its worker.
    begun = {}
    for file in (tmp_path / "counts").iterdir():
        name, worker = file.name.rsplit(".", 1)
        begun.setdefault(name, []).append((int(worker), file.stat().st_size))
    again = {name: how for name, how in begun.items() if sum(times for _, times in how) > 1 and name != "p07.jpg"}
    assert len(again) <= 1 and all({victim.pid, 1} & {worker for worker, _ in how} for how in again.values()), again
    assert sum(times for _, times in begun["p07.jpg"]) in (3, 4)  # 4: the victim's own death cut one short
