"""The package as it was installed: ZEL_PACKAGE names the folder, ZEL_PROGRAM the command."""

import os
import subprocess
import sys

sys.path.insert(0, os.environ["ZEL_PACKAGE"])

import pytest  # noqa: E402

import zel  # noqa: E402


@pytest.fixture(scope="session")
def portrait():
    return zel.draw_portrait((300, 400), seed=9, moles=12, wrinkles=0.6, darkCircles=0.8)


@pytest.fixture(scope="session")
def command():
    """Runs the zel command, which must do well."""

    def run(*words):
        subprocess.run([os.environ["ZEL_PROGRAM"], *map(str, words)], check=True, capture_output=True)

    return run
