"""Recipes: effects one after another, in the small files that zel apply --recipe takes and --save-recipe writes.

    {"recipe": 1,
     "name": "Soft portrait",
     "steps": [{"effect": "auto-face-inpaint"},
               {"effect": "nature-smooth", "set": {"amount": 0.5}}]}
"""

import dataclasses
import json
import os

from . import _api, _zel
from ._errors import ArgumentError, Error

VERSION = 1


@dataclasses.dataclass(frozen=True)
class Step:
    """One effect with its values, checked."""

    effect: str
    values: dict

    def __post_init__(self):
        _zel._meaning(self.effect, self.values)

    def uses_faces(self):
        return _zel._meaning(self.effect, self.values)[0]


def _refuse_unknown(entry, known, where):
    if unknown := sorted(set(entry) - set(known)):
        raise ArgumentError(f"{where} has no '{unknown[0]}'")


def _step(entry, where, folder):
    if not isinstance(entry, dict) or not isinstance(entry.get("effect"), str):
        raise ArgumentError(f"{where} has no effect")
    values = entry.get("set", {})
    if not isinstance(values, dict):
        raise ArgumentError(f'{where}: "set" must hold names and values')
    _refuse_unknown(entry, ("effect", "set"), where)
    needs = next((effect for effect in _zel.effects() if effect.name == entry["effect"]), None)
    # Files that a recipe names lie beside it.
    files = {p.name for p in needs.parameters if p.kind == "file"} if needs else ()
    values = {name: os.path.join(folder, value) if name in files and value else value for name, value in values.items()}
    try:
        step = Step(entry["effect"], values)
    except (Error, TypeError) as problem:
        raise ArgumentError(f"{where}: {problem}") from None
    if lacking := [name for name in ("mask", "second") if getattr(needs, name) == "required"]:
        raise ArgumentError(f"{where}: {step.effect} needs a {lacking[0]}, which a recipe has not")
    return step


@dataclasses.dataclass(frozen=True)
class Recipe:
    """Checked as a whole when it is made. Raises ArgumentError with one sentence."""

    steps: tuple
    name: str = ""

    @classmethod
    def of_text(cls, text, folder=""):
        """folder: where files that it names lie."""
        try:
            whole = json.loads(text)
        except ValueError as problem:
            raise ArgumentError(f"is no JSON: {problem}") from None
        if not isinstance(whole, dict) or "recipe" not in whole:
            raise ArgumentError('is no recipe: it has no "recipe": 1')
        if whole["recipe"] != VERSION:
            raise ArgumentError("is a recipe of a later version than this program reads")
        _refuse_unknown(whole, ("recipe", "name", "steps"), "a recipe")
        entries, name = whole.get("steps"), whole.get("name", "")
        if not isinstance(name, str):
            raise ArgumentError("its name must be a text")
        if not isinstance(entries, list) or not entries:
            raise ArgumentError('has no "steps"')
        return cls(tuple(_step(entry, f"step {number}", folder) for number, entry in enumerate(entries, 1)), name)

    @classmethod
    def load(cls, path):
        with open(path, encoding="utf-8") as file:
            text = file.read()
        try:
            return cls.of_text(text, os.path.dirname(os.path.abspath(path)))
        except ArgumentError as problem:
            raise ArgumentError(f"{os.fspath(path)}: {problem}") from None

    def text(self):
        """As a file has it, but for the folder: files are named whole."""
        return json.dumps({"recipe": VERSION, "name": self.name,
                           "steps": [{"effect": step.effect, "set": step.values} for step in self.steps]})

    def apply(self, image, *, faces=None, context=None):
        """The picture after all steps. Faces are searched for once, where a step follows them and none are given."""
        picture = _api._array(image, "image").copy()
        for step in self.steps:
            given = {}
            if step.uses_faces():
                if faces is None:
                    faces = _api.find_faces(picture, context=context)
                if len(faces) == 0 and any(e.name == step.effect and e.faces == "required" for e in _zel.effects()):
                    raise ArgumentError(f"no face was found, and {step.effect} needs one", "ZEL_MISSING_INPUT")
                given["faces"] = faces
            _api.apply(step.effect, picture, out=picture, context=context, **given, **step.values)
        return picture
