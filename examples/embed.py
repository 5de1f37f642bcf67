#!/usr/bin/python3
"""The C interface from Python with nothing but its standard library: pixels in, pixels out.

Usage: embed.py LIBZEL.so OUT.ppm
"""
import ctypes
import sys


class Pixels(ctypes.Structure):
    _fields_ = [("data", ctypes.c_void_p), ("width", ctypes.c_int), ("height", ctypes.c_int),
                ("stride", ctypes.c_size_t), ("format", ctypes.c_int), ("flags", ctypes.c_uint)]


library, out = ctypes.CDLL(sys.argv[1]), sys.argv[2]
library.zel_message.restype = ctypes.c_char_p


def call(function, *arguments):
    if function(*arguments) != 0:
        sys.exit("embed.py: " + library.zel_message().decode())


width, height = 256, 256
rgba = ctypes.create_string_buffer(bytes(v for y in range(height) for x in range(width) for v in (x, y, 128, 255)))
pixels = Pixels(ctypes.addressof(rgba), width, height, 0, 0, 0)
context = ctypes.c_void_p()
call(library.zel_context_create, None, ctypes.byref(context))
call(library.zel_apply, context, b"mosaic", ctypes.byref(pixels), None)
library.zel_context_destroy(context)
with open(out, "wb") as file:
    file.write(b"P6 %d %d 255\n" % (width, height))
    file.write(b"".join(rgba.raw[i:i + 3] for i in range(0, 4 * width * height, 4)))
