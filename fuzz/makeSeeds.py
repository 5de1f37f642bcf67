#!/usr/bin/env python3
"""Writes the seed corpus of the fuzzers: for the loader one tiny file of every image format, each behind the two
option bytes that its fuzzers read (flags, size limit), face data of no, one and two faces, shader files,
style assets, networks and landmarks for the reshapers. Each fuzzer gets a folder of its own name.
Usage: makeSeeds.py FOLDER"""
import json
import math
import pathlib
import random
import struct
import sys
import zlib

WIDTH, HEIGHT = 6, 5
# Flags of an input, as in loadOptions.h: alpha kept, flattened, scrambled, raw file that claims to be
# scrambled; with a size limit that reduces, one that halves, and none.
OPTIONS = [(1, 0), (0, 0), (3, 0), (7, 0), (1, 4), (1, 3), (0, 4), (2, 3)]


# The passes of an interlaced PNG: first column, first row, and the steps to the next.
PASSES = [(0, 0, 8, 8), (4, 0, 8, 8), (0, 4, 4, 8), (2, 0, 4, 4), (0, 2, 2, 4), (1, 0, 2, 2), (0, 1, 1, 2)]


def pixel(x, y, channel):
    return (x * 40 + y * 25 + channel * 60) % 256


def rows(channels):
    return [bytes(pixel(x, y, c) for x in range(WIDTH) for c in range(channels)) for y in range(HEIGHT)]


def png(colour_type, channels, depth=8, interlace=0, palette=b"", transparency=b"", body=None):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    if body is None and depth < 8:
        body = b"".join(bytes([y % 5]) + bytes([0xA5] * ((WIDTH * depth + 7) // 8)) for y in range(HEIGHT))
    elif body is None:
        body = b"".join(bytes([y % 5]) + b"".join(bytes([v]) * (depth // 8) for v in row)
                        for y, row in enumerate(rows(channels)))
    if interlace:
        body = b"".join((b"\0" + bytes(channels * len(range(x, WIDTH, dx)))) * len(range(y, HEIGHT, dy))
                        for x, y, dx, dy in PASSES if x < WIDTH and y < HEIGHT)
    head = struct.pack(">IIBBBBB", WIDTH, HEIGHT, depth, colour_type, 0, 0, interlace)
    chunks = chunk(b"IHDR", head)
    if palette:
        chunks += chunk(b"PLTE", palette)
    if transparency:
        chunks += chunk(b"tRNS", transparency)
    return (b"\x89PNG\r\n\x1a\n" + chunks + chunk(b"IDAT", zlib.compress(body)) + chunk(b"IEND", b""))


def bmp(bits):
    stride = (WIDTH * bits // 8 + 3) // 4 * 4
    palette = bytes(range(256)) * 4 if bits == 8 else b""
    body = b"".join((row * 4)[: WIDTH * bits // 8].ljust(stride, b"\0") for row in rows(4))
    offset = 54 + len(palette)
    return (b"BM" + struct.pack("<IHHI", offset + len(body), 0, 0, offset)
            + struct.pack("<IiiHHIIiiII", 40, WIDTH, HEIGHT, 1, bits, 0, len(body), 0, 0, 0, 0) + palette + body)


def bmp_palette(bits, colours):
    """Numbers of all colours that the bits can tell, of which the palette has the first few."""
    body = b"".join(bytes((y * 77 + x * 50) % 256 for x in range(4)) for y in range(HEIGHT))
    offset = 54 + 4 * colours
    return (b"BM" + struct.pack("<IHHI", offset + len(body), 0, 0, offset)
            + struct.pack("<IiiHHIIiiII", 40, 32 // bits, HEIGHT, 1, bits, 0, len(body), 0, 0, colours, 0)
            + bytes(range(1, 4 * colours + 1)) + body)


def tga(bits, packed):
    kind = (3 if bits == 8 else 2) + (8 if packed else 0)
    head = struct.pack("<BBBHHBHHHHBB", 0, 0, kind, 0, 0, 0, 0, 0, WIDTH, HEIGHT, bits, 0x28 if bits == 32 else 0x20)
    if not packed:
        return head + b"".join((row * 4)[: WIDTH * bits // 8] for row in rows(4))
    # A run of all but one pixel, then one literal pixel, for each row.
    one = bytes(range(1, bits // 8 + 1))
    return head + (bytes([0x80 | (WIDTH - 2)]) + one + b"\x00" + one) * HEIGHT


def gif():
    # Nine-bit codes with a clear code before the table can grow.
    codes = [256]
    for y in range(HEIGHT):
        codes += [pixel(x, y, 0) & 3 for x in range(WIDTH)] + [256]
    codes.append(257)
    bits = sum(code << (9 * i) for i, code in enumerate(codes))
    data = bits.to_bytes((9 * len(codes) + 7) // 8, "little")
    blocks = b"".join(bytes([len(data[i:i + 255])]) + data[i:i + 255] for i in range(0, len(data), 255))
    palette = bytes([255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255])
    frame = struct.pack("<BHHHHB", 0x2C, 0, 0, WIDTH, HEIGHT, 0) + b"\x08" + blocks + b"\0"
    control = b"\x21\xF9\x04\x05\x00\x00\x01\x00"
    return b"GIF89a" + struct.pack("<HHBBB", WIDTH, HEIGHT, 0x81, 0, 0) + palette + control + frame * 2 + b";"


def jpeg(progressive, components=1):
    """Flat grey blocks: code 0 is 'no change' for DC and 'end of block' for AC."""
    def segment(marker, data):
        return bytes([0xFF, marker]) + struct.pack(">H", len(data) + 2) + data

    ids = range(1, components + 1)
    frame = struct.pack(">BHHB", 8, HEIGHT, WIDTH, components) + b"".join(bytes([i, 0x11, 0]) for i in ids)
    tables = b"".join(segment(0xC4, bytes([kind, 1, 1]) + bytes(14) + bytes([0, 4])) for kind in (0x00, 0x10))
    def scan(first, last, high_low):
        return (segment(0xDA, bytes([components]) + b"".join(bytes([i, 0]) for i in ids)
                        + bytes([first, last, high_low])) + b"\x2A\x00\x15\x7F\x00")
    scans = scan(0, 0, 1) + scan(0, 0, 0x10) if progressive else scan(0, 63, 0)
    return (b"\xFF\xD8" + segment(0xDB, bytes([0]) + bytes([3] * 64)) + segment(0xC2 if progressive else 0xC0, frame)
            + tables + scans + b"\xFF\xD9")


def pnm(kind, depth):
    channels = 1 if kind == 5 else 3
    body = b"".join(rows(channels)) * (2 if depth > 255 else 1)
    return b"P%d\n# seed\n%d %d\n%d\n" % (kind, WIDTH, HEIGHT, depth) + body


def psd(packed):
    head = b"8BPS" + struct.pack(">H6xHIIHH", 1, 4, HEIGHT, WIDTH, 8, 3) + struct.pack(">III", 0, 0, 0)
    if not packed:
        return head + b"\0\0" + b"".join(rows(1)) * 4
    row = bytes([257 - WIDTH, 77])
    return head + b"\0\1" + struct.pack(">H", 2) * (4 * HEIGHT) + row * (4 * HEIGHT)


def hdr():
    text = b"#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y %d +X %d\n" % (HEIGHT, WIDTH)
    return text + b"".join(bytes([90, 120, 30, 129]) * WIDTH for _ in range(HEIGHT))


def hdr_packed():
    """Two rows, each channel as one run, as plain values, or as both."""
    width, values = 9, [90, 120, 30, 129]
    run = lambda v: bytes([128 + width, v])
    plain = lambda v: bytes([width]) + bytes([v] * width)
    both = lambda v: bytes([0, 128 + 5, v, 4]) + bytes([v] * 4)
    row = bytes([2, 2, 0, width])
    rows_of = row + b"".join(run(v) for v in values) + row + plain(values[0]) + b"".join(both(v) for v in values[1:])
    return b"#?RGBE\nFORMAT=32-bit_rle_rgbe\n\n-Y 2 +X %d\n" % width + rows_of


def pic():
    head = b"\x53\x80\xF6\x34" + bytes(84) + b"PICT" + struct.pack(">HHIHH", WIDTH, HEIGHT, 0, 3, 0)
    packet = bytes([0, 8, 1, 0xF0])  # run-length coded, all four channels
    return head + packet + (bytes([WIDTH]) + bytes([10, 20, 30, 200])) * HEIGHT


def files():
    yield "png_rgba", png(6, 4)
    yield "png_rgb16", png(2, 3, depth=16)
    yield "png_grey1", png(0, 1, depth=1)
    yield "png_key", png(2, 3, transparency=bytes([0, 0, 0, 60, 0, 120]))
    yield "png_palette", png(3, 1, depth=2, palette=bytes(range(12)), transparency=bytes([0, 128]))
    yield "png_interlaced", png(6, 4, interlace=1)
    for bits in (8, 24, 32):
        yield f"bmp{bits}", bmp(bits)
    for bits in (8, 24, 32):
        yield f"tga{bits}", tga(bits, packed=False)
    yield "tga_packed", tga(32, packed=True)
    yield "gif", gif()
    yield "jpeg", jpeg(progressive=False)
    yield "jpeg_colour", jpeg(progressive=False, components=3)
    yield "jpeg_progressive", jpeg(progressive=True)
    yield "pgm", pnm(5, 255)
    yield "ppm16", pnm(6, 65535)
    yield "psd", psd(packed=False)
    yield "psd_packed", psd(packed=True)
    yield "hdr", hdr()
    yield "hdr_packed", hdr_packed()
    yield "pic", pic()
    # Damage that shows in pixels: files cut short, and numbers past the palette.
    numbers = b"".join(b"\0" + bytes((x + y * WIDTH) * 9 % 256 for x in range(WIDTH)) for y in range(HEIGHT))
    yield "png_past_palette", png(3, 1, palette=bytes(range(6)), body=numbers)
    yield "png_past_alphas", png(3, 1, palette=bytes(range(30)), transparency=bytes([0, 128]), body=numbers)
    for bits in (1, 4, 8):
        yield f"bmp{bits}_past_palette", bmp_palette(bits, 1)
    for name, whole in (("tga", tga(24, packed=False)), ("tga_packed", tga(32, packed=True)), ("pgm", pnm(5, 255)),
                        ("ppm", pnm(6, 255)), ("hdr", hdr()), ("hdr_packed", hdr_packed()), ("psd", psd(packed=False)),
                        ("psd_packed", psd(packed=True)), ("gif", gif()), ("pic", pic()), ("bmp24", bmp(24)),
                        ("jpeg_colour", jpeg(progressive=False, components=3))):
        yield name + "_cut", whole[: -max(9, len(whole) // 4)]
    yield "empty", b""


def face_data():
    points = [[round(0.3 + 0.005 * i, 3), round(0.4 + 0.003 * i, 3)] for i in range(83)]
    face = {"rect": [0.25, 0.2, 0.5, 0.6], "points": points}
    for name, faces in (("none", []), ("one", [face]), ("found", [dict(face, confidence=0.9), face])):
        yield name, json.dumps({"image": {"width": WIDTH, "height": HEIGHT}, "faces": faces}).encode()


def write_face_seeds(folder):
    folder.mkdir(parents=True, exist_ok=True)
    for name, data in face_data():
        (folder / name).write_bytes(data)


def shader_file(entries):
    """An index of (key, size) and texts of those sizes; what they say does not matter, they are enciphered."""
    offset = 4 + 12 * len(entries)
    index, texts = struct.pack("<i", len(entries)), b""
    for key, size in entries:
        index += struct.pack("<III", key, offset + len(texts), size)
        texts += bytes(pixel(i, size, 1) for i in range(size))
    return index + texts


def write_shader_seeds(folder):
    folder.mkdir(parents=True, exist_ok=True)
    whole = shader_file([(1, 16), (2, 17), (2, 48), (0xFFFFFFFF, 1)])
    seeds = {"whole": whole, "truncated": whole[:-1], "none": shader_file([]), "negative": struct.pack("<i", -1),
             "overlapping": struct.pack("<iIIIIII", 2, 1, 0, 28, 2, 4, 24),
             "edge": struct.pack("<iIII", 1, 1, 0xFFFFFFFF, 0xFFFFFFFF), "empty_text": shader_file([(7, 0)])}
    for name, data in seeds.items():
        (folder / name).write_bytes(data)


def wire(number, value):
    """One field of the network's file format: a number, or bytes behind their length (seeds keep below 128)."""
    return bytes([number << 3, value]) if isinstance(value, int) else bytes([number << 3 | 2, len(value)]) + value


def edge(name, *sides):
    """An input or output: its name, and a tensor of floats with these sides; a text names a side of any size."""
    shape = b"".join(wire(1, wire(1, s) if isinstance(s, int) else wire(2, s)) for s in sides)
    return wire(1, name) + wire(2, wire(1, wire(1, 1) + wire(2, shape)))


def write_model_seeds(folder):
    folder.mkdir(parents=True, exist_ok=True)
    node = wire(1, wire(1, b"in") + wire(2, b"out") + wire(4, b"Relu"))
    into, out = wire(11, edge(b"in", 1, 3, 4, 4)), wire(12, edge(b"out", 1, 1, 4, 4))
    weights = wire(5, wire(1, 3) + wire(8, b"w") + wire(9, bytes(12)))
    graphs = {"plain": node + into + out, "weights": weights + node + into + out, "no_output": node + into,
              "free_side": node + wire(11, edge(b"in", b"n", 3)) + out, "two_inputs": node + into + into + out,
              "weight_as_input": weights + node + wire(11, edge(b"w", 3)) + into + out,
              "no_shape": wire(11, wire(1, b"in")) + out}
    for name, graph in graphs.items():
        (folder / name).write_bytes(wire(1, 8) + b"\x3a" + bytes([len(graph) & 127 | 128, len(graph) >> 7]) + graph)


def write_style_seeds(folder):
    """Style assets behind the byte that says how many bytes a pixel has."""
    folder.mkdir(parents=True, exist_ok=True)
    for channels in (1, 3, 4):
        body = bytes(pixel(i, 3, 1) for i in range(WIDTH * HEIGHT * channels))
        head = bytes([channels]) + struct.pack("<ii", WIDTH, HEIGHT)
        (folder / f"whole{channels}").write_bytes(head + body)
        (folder / f"short{channels}").write_bytes(head + body[:-3])
    (folder / "negative").write_bytes(bytes([3]) + struct.pack("<ii", -WIDTH, HEIGHT))


def write_reshape_seeds(folder):
    """Sides, eight factors and 83 landmarks: a face of a ring of points, and nothing but a picture."""
    folder.mkdir(parents=True, exist_ok=True)
    ring = [side + (20 + i % 5) * math.sin(i / 83 * 2 * math.pi + phase) for i in range(83)
            for side, phase in ((32.0, 0.0), (30.0, math.pi / 2))]
    coarse = [round(value * 4) / 4 for value in ring]  # so that the lowest byte is even
    for name, factors in (("gentle", [0.5] * 8), ("strong", [1.0] * 8), ("places", [24.0, 30.0, 40.0, 30.0, 8.0, 0.5, 0, 0])):
        (folder / name).write_bytes(bytes([63, 59]) + struct.pack("<174f", *factors, *coarse))
    (folder / "empty").write_bytes(bytes([7, 0]))


def write_studio_seeds(folder):
    """A question and an order of the page, and chains."""
    folder.mkdir(parents=True, exist_ok=True)
    head = "{} /s/api/{}\nHost: 127.0.0.1:80\n"
    body = "Origin: http://127.0.0.1:80\nContent-Type: application/json\nContent-Length: 9\n"
    step = {"effect": "defocus", "values": {"focus": "0.5,0.5"}, "off": False, "strength": 0.5, "mask": "m", "depth": "d"}
    for name, text in (("question", head.format("GET", "folder")), ("order", head.format("POST", "open") + body),
                       ("chain", json.dumps({"steps": [step, {"effect": "inpaint"}], "faces": None}))):
        (folder / name).write_bytes(text.encode())


def write_text_seeds(folder):
    """Colour lookups and recipes."""
    step = {"effect": "defocus", "set": {"blurLevel": 40, "focus": "0.5,0.5", "ring": True}}
    corners = "".join(f"{r} {g} {b}\n" for b in (0, 1) for g in (0, 1) for r in (0, 0.5))
    texts = {"fuzz_cube": {"plain": "LUT_3D_SIZE 2\n" + corners,
                           "full": 'TITLE "a b"\n# c\nLUT_3D_SIZE 2\nDOMAIN_MIN 0 0 -1\nDOMAIN_MAX 1 2 1\n' + corners,
                           "range": "LUT_3D_INPUT_RANGE 0 1\nLUT_3D_SIZE 2\n" + corners, "short": "LUT_3D_SIZE 3\n" + corners},
             "fuzz_recipe": {"steps": json.dumps({"recipe": 1, "name": "n", "steps": [step, {"effect": "inpaint"}]}),
                             "later": '{"recipe": 2, "steps": []}', "none": "{}"}}
    for target, seeds in texts.items():
        (folder / target).mkdir(parents=True, exist_ok=True)
        for name, text in seeds.items():
            (folder / target / name).write_text(text)


def write_effect_seeds(folder):
    """Choices long enough for a whole call, many of them the plain ones."""
    for target in ("fuzz_operation", "fuzz_effect"):
        (folder / target).mkdir(parents=True, exist_ok=True)
        for seed in range(8):
            source = random.Random(seed)
            data = bytes(source.choice((0, 1, source.randrange(256))) for _ in range(500))
            (folder / target / f"choices{seed}").write_bytes(data)


def main():
    write_effect_seeds(pathlib.Path(sys.argv[1]))
    write_text_seeds(pathlib.Path(sys.argv[1]))
    write_studio_seeds(pathlib.Path(sys.argv[1]) / "fuzz_studio")
    write_reshape_seeds(pathlib.Path(sys.argv[1]) / "fuzz_reshape")
    for target in ("fuzz_model_head", "fuzz_network"):
        write_model_seeds(pathlib.Path(sys.argv[1]) / target)
    write_style_seeds(pathlib.Path(sys.argv[1]) / "fuzz_style_asset")
    write_shader_seeds(pathlib.Path(sys.argv[1]) / "fuzz_shader_store")
    write_face_seeds(pathlib.Path(sys.argv[1]) / "fuzz_face_data")
    for target in ("fuzz_load_memory", "fuzz_load_file"):
        folder = pathlib.Path(sys.argv[1]) / target
        folder.mkdir(parents=True, exist_ok=True)
        for number, (name, data) in enumerate(files()):
            for i, options in enumerate((OPTIONS[number % len(OPTIONS)], OPTIONS[0], OPTIONS[6])):
                (folder / f"{name}_{i}").write_bytes(bytes(options) + data)
    folder = pathlib.Path(sys.argv[1]) / "fuzz_picture_file"
    folder.mkdir(parents=True, exist_ok=True)
    for name, data in files():
        (folder / name).write_bytes(data)


if __name__ == "__main__":
    main()
