"""docs/python.md is true: all its Python runs, and makes the figures that it shows."""

import os
import pathlib
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]


def test_the_page_runs(tmp_path):
    page = shutil.copy(ROOT / "docs/python.md", tmp_path)
    (tmp_path / "pictures").mkdir()
    subprocess.run([sys.executable, "-B", ROOT / "tools/python/runPage.py", page], check=True,
                   env=dict(os.environ, PYTHONPATH=os.environ["ZEL_PACKAGE"]))
    shown = set(re.findall(r"\((pictures/.*?)\)", (ROOT / "docs/python.md").read_text()))
    assert len(shown) == 4 and all((tmp_path / name).stat().st_size > 5000 and (ROOT / "docs" / name).is_file() for name in shown)
