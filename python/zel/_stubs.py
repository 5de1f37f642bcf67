"""Writes the stubs of the package: a template, with a function for each effect.

    python -m zel._stubs TEMPLATE OUTPUT
"""

import inspect
import pathlib
import re
import sys

from . import _functions, _zel

MARK = "# FUNCTIONS\n"


def line(effect):
    """One function as stubs write it: of a default they need not tell more than that there is one."""
    words = ["image: ArrayLike", "*"]
    for parameter in list(_functions.signature(effect).parameters.values())[1:]:
        annotation = parameter.annotation
        if annotation is inspect.Parameter.empty:
            annotation = {"out": "NDArray | None", "progress": "_Progress | None", "context": "Context | None"}[parameter.name]
        elif parameter.default is None:
            annotation += " | None"
        words.append(f"{parameter.name}: {annotation}" + ("" if parameter.default is inspect.Parameter.empty else " = ..."))
    text = f"def {_functions.function_name(effect)}(\n    " + ",\n    ".join(words) + ",\n) -> NDArray: ...\n"
    return re.sub(r"\b(ArrayLike|NDArray)\b", r"_\1", text)  # names that are the stubs' alone


def main():
    template, output = (pathlib.Path(word) for word in sys.argv[1:3])
    output.write_text(template.read_text().replace(MARK, "\n".join(map(line, _zel.effects()))))


if __name__ == "__main__":
    main()
