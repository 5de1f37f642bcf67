"""What the tests of the networks share."""

import importlib
import pathlib
import sys

SKIPPED = 77


def skip_without(folders, modules):
    """Ends the test as skipped where a folder or a Python package is missing."""
    for folder in folders:
        if not any(pathlib.Path(folder).glob("*")):
            print(f"skipped: {folder} is empty or not there (scripts/networks)")
            sys.exit(SKIPPED)
    for module in modules:
        try:
            importlib.import_module(module)
        except ImportError as missing:
            print(f"skipped: {missing} (scripts/install networks)")
            sys.exit(SKIPPED)
