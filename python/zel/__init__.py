"""Portrait effects on numpy arrays.

    import numpy, zel
    from PIL import Image

    picture = numpy.array(Image.open("portrait.jpg").convert("RGB"))
    faces = zel.find_faces(picture)
    picture = zel.nature_smooth(picture)                       # a function per effect; help(zel.nature_smooth)
    zel.apply("auto-slim-face", picture, faces=faces, out=picture)   # by name, in place
    Image.fromarray(picture).save("slim.jpg")
"""

from ._api import (apply, decode, default_context, draw_portrait, estimate_depth, find_faces, networks, person_mask,
                   skin_mask)
from ._errors import ArgumentError, Cancelled, Error, FileError, UnavailableError
from ._functions import FUNCTIONS as _FUNCTIONS
from ._zel import (Context, Effect, Faces, Network, Parameter, Portrait, __version__, effects, portrait_parameters,
                   portrait_planes)

__all__ = ["ArgumentError", "Cancelled", "Context", "Effect", "Error", "Faces", "FileError", "Network", "Parameter",
           "Portrait", "UnavailableError", "apply", "decode", "default_context", "draw_portrait", "effects",
           "estimate_depth", "find_faces", "networks", "person_mask", "portrait_parameters", "portrait_planes",
           "skin_mask", *_FUNCTIONS]

# The names of the interface come first: an effect of such a name is there by zel.apply alone.
globals().update({name: function for name, function in _FUNCTIONS.items() if name not in globals()})
