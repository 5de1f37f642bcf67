"""One function per effect, with a signature and a text of its own, made from the library's descriptions."""

import inspect
import keyword


from . import _zel
from ._api import apply

# What an effect may take beside the picture, and how it is annotated.
INPUTS = {"faces": "Faces", "mask": "ArrayLike", "second": "ArrayLike", "depth": "ArrayLike",
          "mask_out": "NDArray", "depth_out": "NDArray"}
ANNOTATIONS = {"number": "float", "whole number": "int", "switch": "bool", "colour": "str", "text": "str",
               "file": "str | os.PathLike[str]"}
NEEDS = {"faces": "the faces that it follows", "mask": "where it acts", "second": "the second picture",
         "depth": "the depth map, nearer is larger", "mask_out": "is filled with the mask that it used",
         "depth_out": "is filled with the depth that it used"}


def function_name(effect):
    name = effect.name.replace("-", "_")
    return name + "_" if keyword.iskeyword(name) else name


def annotation(parameter):
    """As text, for signatures and stubs."""
    words = ", ".join(repr(choice) for choice in parameter.choices)
    if parameter.kind == "choice":
        return f"Literal[{words}]"
    if parameter.kind == "point":
        return "tuple[float, float] | str"
    return ANNOTATIONS[parameter.kind]


def default(parameter):
    """As Python has it; inspect.Parameter.empty where the parameter must be given."""
    text = parameter.default
    if text is None:
        return inspect.Parameter.empty
    if parameter.kind == "number":
        return float(text)
    if parameter.kind == "whole number":
        return int(text)
    return text == "true" if parameter.kind == "switch" else text


def inputs(effect):
    """The names of what it takes beside the picture, with whether each must be given."""
    return {name: getattr(effect, name) == "required" for name in INPUTS if getattr(effect, name) != "no"}


def signature(effect):
    keyword_only, empty = inspect.Parameter.KEYWORD_ONLY, inspect.Parameter.empty
    parameters = [inspect.Parameter("image", inspect.Parameter.POSITIONAL_OR_KEYWORD, annotation="ArrayLike")]
    parameters += [inspect.Parameter(p.name, keyword_only, default=default(p), annotation=annotation(p))
                   for p in effect.parameters]
    parameters += [inspect.Parameter(name, keyword_only, default=empty if needed else None, annotation=INPUTS[name])
                   for name, needed in inputs(effect).items()]
    parameters += [inspect.Parameter(name, keyword_only, default=None) for name in ("out", "progress", "context")]
    return inspect.Signature(parameters, return_annotation="NDArray")


def _range(parameter):
    words = []
    if parameter.kind == "choice":
        words.append(", ".join(parameter.choices))
    elif parameter.minimum < parameter.maximum:
        words.append(f"{parameter.minimum:g} to {parameter.maximum:g}" + f" {parameter.unit}".rstrip())
    words.append("must be given" if parameter.default is None else f"{parameter.default or 'none'} where not given")
    return "; ".join(words)


def documentation(effect):
    lines = [effect.summary + ".", "", effect.advice, ""]
    lines += [f"{p.name}: {p.help} ({_range(p)})" for p in effect.parameters]
    lines += [f"{name}: {NEEDS[name]}{' (must be given)' if needed else ''}" for name, needed in inputs(effect).items()]
    lines += ["out, progress, context: see zel.apply", "", f"It runs {effect.operation}."]
    return "\n".join(lines)


def make(effect):
    def function(image, **options):
        return apply(effect.name, image, **options)

    function.__name__ = function.__qualname__ = function_name(effect)
    function.__module__ = "zel"
    function.__doc__ = documentation(effect)
    function.__signature__ = signature(effect)
    return function


FUNCTIONS = {function_name(effect): make(effect) for effect in _zel.effects()}
