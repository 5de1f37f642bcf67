"""The stubs: what mypy takes and refuses by them, and whether they are what the module is."""

import os
import pathlib
import shutil
import subprocess
import sys


def check(tmp_path, *words):
    """Runs mypy or its kin on the stubs alone: the package's own modules are no affair of who uses it."""
    stubs = tmp_path / "stubs/zel"
    stubs.mkdir(parents=True)
    for stub in pathlib.Path(os.environ["ZEL_PACKAGE"], "zel").glob("*.pyi"):
        shutil.copy(stub, stubs)
    run = subprocess.run([sys.executable, "-m", *words], cwd=tmp_path, text=True, capture_output=True,
                         env=dict(os.environ, MYPYPATH=str(stubs.parent), PYTHONPATH=os.environ["ZEL_PACKAGE"]))
    assert run.returncode == 0, run.stdout + run.stderr


def test_mypy_takes_right_calls_and_refuses_wrong_ones(tmp_path):
    check(tmp_path, "mypy", "--strict", "--warn-unused-ignores", str(pathlib.Path(__file__).with_name("typed.py")))


def test_they_tell_what_is_there(tmp_path):
    # Of compiled classes nobody can tell what makes them, or makes their objects.
    classes = ("Context", "Effect", "Faces", "Network", "Parameter", "Portrait")
    known = tmp_path / "known"
    known.write_text("".join(rf"zel\.{name}(\.__init__)?" + "\n" for name in classes))
    check(tmp_path, "mypy.stubtest", "zel", "--ignore-missing-stub", "--ignore-unused-allowlist", "--allowlist", str(known))
