"""The process that works on the pictures of one farm worker, so that a picture which takes it down takes nothing else.

Jobs come as lines of JSON on standard input; each is answered by a line on standard output. It ends with its input.
"""

import json
import os
import sys

from ._errors import Error


def retouch(job, recipes):
    from . import _picture
    from .recipe import Recipe

    if os.path.exists(job["target"]):
        return
    text = job["recipe"]
    if text not in recipes:
        recipes[text] = Recipe.of_text(text)
    pixels, meta = _picture.read(job["source"])
    _picture.write(job["target"], recipes[text].apply(pixels), meta)


def main():
    answers = os.fdopen(os.dup(1), "w")
    os.dup2(2, 1)  # whoever prints does not answer
    recipes = {}
    for line in sys.stdin:
        job, answer = json.loads(line), {}
        try:
            retouch(job, recipes)
        except (Error, OSError, MemoryError, ValueError) as problem:
            # What the library says of a picture it says again; a disk or the memory may have a better day.
            answer = {"why": str(problem) or type(problem).__name__, "final": isinstance(problem, Error)}
        print(json.dumps(answer), file=answers, flush=True)


if __name__ == "__main__":
    main()
