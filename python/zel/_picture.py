"""Picture files as the zel command treats them: upright, with their EXIF data and colour profile, whole or not at all."""

import os
import socket

import numpy
from PIL import Image

from . import _api

ORIENTATION = 0x0112
PART = ".zelpart"


def upright(pixels, turn):
    """By the orientation that a camera noted, 1 to 8: 5 to 8 mirror at the diagonal, then rows or columns turn round."""
    if not 1 <= turn <= 8:
        return pixels
    if turn >= 5:
        pixels = pixels.swapaxes(0, 1)
    if turn in (3, 4, 7, 8):
        pixels = pixels[::-1]
    if turn in (2, 3, 6, 7):
        pixels = pixels[:, ::-1]
    return numpy.ascontiguousarray(pixels)


def read(path):
    """Upright pixels, (height, width, 4), and what travels with them."""
    pixels = _api.decode(path)
    meta = {}
    try:
        with Image.open(path) as file:
            exif = file.getexif()
            turn = exif.get(ORIENTATION, 1)
            if turn != 1:
                pixels = upright(pixels, turn)
                exif[ORIENTATION] = 1
            meta = {"exif": exif.tobytes() if len(exif) else None, "icc_profile": file.info.get("icc_profile")}
    except (OSError, ValueError, SyntaxError):  # what the library decodes and PIL does not carries nothing along
        pass
    return pixels, {key: value for key, value in meta.items() if value}


def target_name(name):
    """What the result of a picture file is called."""
    stem, suffix = os.path.splitext(name)
    return name if suffix.lower() in (".png", ".jpg", ".jpeg") else stem + ".png"


def write(path, pixels, meta):
    """By its suffix: PNG, or JPEG on white."""
    part = os.path.join(os.path.dirname(path), f".{os.path.basename(path)}.{socket.gethostname()}.{os.getpid()}{PART}")
    options = dict(meta)
    if path.lower().endswith(".png"):
        options["format"] = "PNG"
    else:
        alpha = pixels[..., 3:].astype(numpy.uint16)
        pixels = ((pixels[..., :3] * alpha + 255 * (255 - alpha) + 127) // 255).astype(numpy.uint8)
        options.update(format="JPEG", quality=95, subsampling=0)
    if "exif" not in options:
        options["exif"] = b""
    try:
        Image.fromarray(pixels).save(part, **options)
        os.replace(part, path)
    finally:
        if os.path.exists(part):
            os.remove(part)
