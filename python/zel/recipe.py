"""Recipes: effects one after another, from a small file that people can read.

    {"steps": [{"effect": "nature-smooth", "values": {"amount": 0.5}},
               {"effect": "auto-slim-face", "values": {"strength": 0.3}}]}
"""

import dataclasses
import json
import os

from . import _api, _zel
from ._errors import ArgumentError, Error


@dataclasses.dataclass(frozen=True)
class Step:
    """One effect with its values, checked."""

    effect: str
    values: dict

    def __post_init__(self):
        _zel._meaning(self.effect, self.values)

    def uses_faces(self):
        return _zel._meaning(self.effect, self.values)[0]


def _step(entry, where):
    if not isinstance(entry, dict) or not isinstance(entry.get("effect"), str):
        raise ArgumentError(f"{where} has no effect")
    values = entry.get("values", {})
    if not isinstance(values, dict):
        raise ArgumentError(f"{where}: the values must stand by name")
    if unknown := sorted(set(entry) - {"effect", "values"}):
        raise ArgumentError(f"{where} knows no '{unknown[0]}'")
    try:
        step = Step(entry["effect"], values)
    except (Error, TypeError) as problem:
        raise ArgumentError(f"{where}: {problem}") from None
    needs = next(effect for effect in _zel.effects() if effect.name == step.effect)
    if lacking := [name for name in ("mask", "second") if getattr(needs, name) == "required"]:
        raise ArgumentError(f"{where}: {step.effect} needs a {lacking[0]}, which a recipe has not")
    return step


@dataclasses.dataclass(frozen=True)
class Recipe:
    """Checked as a whole when it is made. Raises ArgumentError with one sentence."""

    steps: tuple

    @classmethod
    def of_text(cls, text):
        try:
            entries = json.loads(text)
        except ValueError as problem:
            raise ArgumentError(f"is no JSON: {problem}") from None
        entries = entries.get("steps") if isinstance(entries, dict) else None
        if not isinstance(entries, list) or not entries:
            raise ArgumentError("has no steps")
        return cls(tuple(_step(entry, f"step {number}") for number, entry in enumerate(entries, 1)))

    @classmethod
    def load(cls, path):
        with open(path, encoding="utf-8") as file:
            text = file.read()
        try:
            return cls.of_text(text)
        except ArgumentError as problem:
            raise ArgumentError(f"{os.fspath(path)}: {problem}") from None

    def text(self):
        return json.dumps({"steps": [dataclasses.asdict(step) for step in self.steps]})

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
