"""The habits of the package over the functions of the library: arrays in, arrays out."""

import os
import threading

import numpy

from . import _zel
from ._errors import FileError

_lock = threading.Lock()
_default = None


def default_context():
    """The context that calls use where none is given; made when it is first needed."""
    global _default
    with _lock:
        if _default is None:
            _default = _zel.Context()
        return _default


def _array(picture, name):
    """An array over the picture's own memory where it has any; PIL pictures and their like become arrays."""
    array = numpy.asarray(picture)
    if array.dtype.kind in "OSU":
        raise TypeError(f"{name} must be an array of uint8, not {type(picture).__name__}")
    return array


def _out_array(out, name):
    if not isinstance(out, numpy.ndarray):
        raise TypeError(f"{name} must be a numpy array, not {type(out).__name__}")
    return out


def _plane(plane, name):
    return None if plane is None else _array(plane, name)


def apply(effect, image, *, out=None, faces=None, mask=None, second=None, depth=None, mask_out=None, depth_out=None,
          progress=None, context=None, **values):
    """Changes a picture by one effect and returns the result.

    image      (height, width, 3 or 4) of uint8, of any strides; a PIL picture, or whatever numpy takes for an array
    out        where the result goes, of the image's shape; the image itself: in place. A new array where not given.
               As it was where the call fails
    faces      zel.Faces, for the effects that need them: see zel.find_faces
    mask       (height, width) of uint8 or bool, where the effect acts
    second     a second picture
    depth      (any height, any width) of uint8, nearer is larger; estimated where not given
    mask_out, depth_out  (height, width) of uint8, to be filled with what the effect used
    progress   called with fraction and stage between the stages; what is true cancels
    values     the parameters: see zel.effects(), or help() of the function with the effect's name
    """
    image = _array(image, "image")
    if out is None:
        # Rows and pixels in order, whatever the image's are.
        out = numpy.empty(image.shape, numpy.uint8)
    out = _out_array(out, "out")
    (context or default_context())._apply(
        effect, image, out, values, faces, _plane(mask, "mask"),
        None if second is None else _array(second, "second"), _plane(depth, "depth"),
        None if mask_out is None else _out_array(mask_out, "mask_out"),
        None if depth_out is None else _out_array(depth_out, "depth_out"), progress)
    return out


def find_faces(image, *, context=None):
    """The faces of a picture, the largest first."""
    return (context or default_context())._find_faces(_array(image, "image"))


def estimate_depth(image, *, person=None, network=None, raw=False, progress=None, context=None):
    """The depth of a picture, (height, width) of uint8; nearer is larger.

    person   a mask of the person, of any size, who then comes forward as a whole
    network  an ONNX file, or a folder with one, in place of the installed network
    raw      as the network gives it, unrefined
    """
    return (context or default_context())._estimate_depth(
        _array(image, "image"), _plane(person, "person"), None if network is None else os.fspath(network), raw, progress)


def person_mask(image, *, faces=None, context=None):
    """Where persons are, (height, width) of uint8.

    faces  whose persons are meant; all where not given
    """
    return (context or default_context())._mask("person", _array(image, "image"), faces)


def skin_mask(image, *, faces=None, context=None):
    """Where skin is, (height, width) of uint8.

    faces  whose skin is meant; all where not given
    """
    return (context or default_context())._mask("skin", _array(image, "image"), faces)


def decode(source, *, on_white=False, longest_side=0, scrambled=False, context=None):
    """A picture file, by its path or as bytes, as (height, width, 4) of uint8: PNG, JPEG, BMP, GIF, TGA, PSD, HDR, PIC,
    PNM. The orientation that a camera noted is not applied.

    on_white      lay what is transparent on white
    longest_side  reduce a larger picture to this many pixels; 0: no limit
    """
    try:
        return (context or default_context())._decode(source, on_white, longest_side, scrambled)
    except FileError as failure:
        if isinstance(source, bytes):
            raise
        raise FileError(f"{os.fspath(source)}: {failure}", failure.status) from None


def draw_portrait(size=(900, 1200), *, seed=1, context=None, **values):
    """Draws a portrait with its truth: planes, faces, irises, moles. The same seed gives the same picture.

    size    width and height
    values  see zel.portrait_parameters(); what is not given follows the seed
    """
    width, height = size
    return _zel._draw_portrait(context or default_context(), width, height, seed, values)


def networks(*, context=None):
    """Which networks are there, where, what each is for, and what is wrong with the others."""
    return (context or default_context()).networks()
