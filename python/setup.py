"""Packs what the build has made: the module with libzel, its inference module and assets, found from their own place.

ZEL_BUILD names the build folder; without it the release preset is configured and built first.
"""

import os
import pathlib
import re
import subprocess

from setuptools import Distribution, setup
from setuptools.command.build_py import build_py

ROOT = pathlib.Path(__file__).resolve().parent.parent


def built():
    if folder := os.environ.get("ZEL_BUILD"):
        return folder
    subprocess.run(["cmake", "--preset", "release"], cwd=ROOT, check=True)
    subprocess.run(["cmake", "--build", "--preset", "release", "--target", "zel_python_package", "zel_networks",
                    "zel_assets"], cwd=ROOT, check=True)
    return ROOT / "build/release"


class Install(build_py):
    """Has CMake lay out the package."""

    def run(self):
        subprocess.run(["cmake", "--install", built(), "--component", "python", "--prefix",
                        os.path.abspath(self.build_lib)], check=True, stdout=subprocess.DEVNULL)


class Compiled(Distribution):
    """So that the wheel is told to be for this system and Python."""

    def has_ext_modules(self):
        return True


setup(
    name="zel",
    version=re.search(r"project\(.* VERSION ([0-9.]+)", (ROOT / "CMakeLists.txt").read_text())[1],
    description="Portrait effects on numpy arrays",
    license="MIT",
    python_requires=">=3.9",
    install_requires=["numpy"],
    extras_require={"farm": ["distributed", "pillow"]},
    packages=["zel"],
    cmdclass={"build_py": Install},
    distclass=Compiled,
    zip_safe=False,
)
