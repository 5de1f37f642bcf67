#!/usr/bin/python3
"""Every effect through a real GIMP, without a window, against the zel command: the same bytes.

Usage: batchTest.py ZEL PLUG_IN WORK
"""
import collections
import json
import subprocess
import sys
import unittest

from PIL import Image, ImageChops, ImageDraw, ImageFilter

from gimpSession import Session, quoted

ZEL, PLUG_IN, WORK = sys.argv[1:4]
SIZE = (360, 480)

# What an effect is given beside its defaults, so that no argument can change places with another unseen.
# mask, second and depth name pictures; the rest are parameters.
GIVEN = {
    "scenario": {"look": "soft", "alpha": 0.8},
    "auto-eye-bright": {"whiteGain": 90, "irisGain": 30},
    "slim-face": {"startX": 0.3, "startY": 0.6, "endX": 0.36, "endY": 0.58, "radius": 0.2},
    "auto-slim-face": {"strength": 1.1, "chinFactor": 0.4},
    "zoom-eye": {"centerX": 0.4, "centerY": 0.45, "radius": 0.15, "strength": 80},
    "auto-zoom-eye": {"strength": 1.2},
    "auto-face-inpaint": {"method": "flecks"},
    "auto-remove-black-circle": {"strength": 0.9, "method": 1},
    "remove-black-circle": {"mask": "dark-circles"},
    "inpaint": {"mask": "moles", "method": "patches", "seed": 7},
    "wrinkle-cleaner": {"mask": "painted", "strength": 70},
    "qorn-skin-retouch": {"strength": 0.35},
    "qorn-skin-whitening": {"level": 4, "strength": 0.8, "second": "clean", "mask": "skin"},
    "sharp": {"amount": 1.5, "radius": 3},
    "color-mixing": {"brightness": 10, "contrast": -20, "saturation": 30, "lift": 5},
    "alpha-mix": {"mask": "skin", "second": "clean", "blurRadius": 3, "strength": 0.6},
    "defocus": {"blurLevel": 80, "shape": "heart", "depth": "depth8", "focus": "0.5,0.4"},
    "mix-mask": {"mask": "skin", "second": "clean", "strength": 0.8, "blurRadius": 2},
    "vignette": {"strength": 0.9, "radius": 0.2},
}
INPUTS = ("mask", "second", "depth")


def zel(*words):
    return subprocess.run([ZEL, *map(str, words)], check=True, stdout=subprocess.PIPE, text=True).stdout


def pixels(path):
    return Image.open(path).convert("RGBA")


def farthest(one, other):
    """The largest difference of any sample."""
    return max(high for low, high in ImageChops.difference(one, other).getextrema())


def scheme(value):
    return quoted(value) if isinstance(value, str) else str(value)


def named(effect, given, layers):
    """The arguments of a call as a list of Script-Fu."""
    told = {}
    for parameter in effect["parameters"]:
        value = given.get(parameter["name"], parameter["default"])
        is_number = parameter["kind"] in ("number", "integer")
        if parameter["kind"] in ("switch", "toggle", "boolean") or value in ("true", "false"):
            told[parameter["name"]] = "TRUE" if value == "true" else "FALSE"
        else:
            told[parameter["name"]] = str(value) if is_number else scheme(str(value))
    for name in INPUTS:
        if name in given:
            told[name] = layers[name]
    return "(list " + " ".join(f"(list {quoted(name)} {value})" for name, value in told.items()) + ")"


class Batch(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.session = Session(PLUG_IN, WORK)
        cls.work = cls.session.work
        cls.effects = {effect["name"]: effect for effect in json.loads(zel("effects", "--json"))["effects"]}
        cls.faces = cls.work / "faces.json"
        zel("portrait", "-o", cls.file("portrait"), "--faces", cls.faces, "--truth", cls.work / "truth", "--size",
            "%dx%d" % SIZE, "--seed", 7, "--set", "moles=8", "--set", "wrinkles=0.8", "--set", "darkCircles=0.8",
            "--set", "noise=0.2", "--quiet")
        for plane in ("clean", "skin", "moles", "wrinkles", "dark-circles"):
            Image.open(cls.work / "truth" / f"{plane}.png").save(cls.file(plane))
        painted = Image.open(cls.file("wrinkles")).convert("L").filter(ImageFilter.MaxFilter(5))
        painted.point(lambda cover: 255 if cover > 30 else 0).save(cls.file("painted"))
        depth = Image.open(cls.work / "truth" / "depth.png")
        depth.point(lambda value: value / 257).convert("L").save(cls.file("depth8"))

    @classmethod
    def file(cls, name):
        return cls.work / f"{name}.png"

    def expected(self, effect, given, source="portrait", faces=None):
        """The command's result."""
        words = ["apply", effect, self.file(source), "-o", self.file("expected"), "--quiet"]
        if self.effects[effect]["faces"] != "no":
            words += ["--faces", faces or self.faces]
        for name, value in given.items():
            words += [f"--{name}", self.file(value)] if name in INPUTS else ["--set", f"{name}={value}"]
        zel(*words)
        return pixels(self.file("expected"))

    def assertSame(self, got, expected, what):
        self.assertEqual(got.size, expected.size, what)
        self.assertTrue(got.tobytes() == expected.tobytes(), f"{what}: {farthest(got, expected)} levels apart")

    def call(self, effect, given, layers=None):
        """Script-Fu that calls it on `layer` of `image`. layers: inputs that are there already."""
        layers = layers or {name: f"(zel-layer image {quoted(self.file(given[name]))})" for name in INPUTS
                            if name in given}
        arguments = named(self.effects[effect], given, layers)
        if self.effects[effect]["faces"] != "no":
            arguments = f'(cons (list "faces" {quoted(self.faces)}) {arguments})'
        return f"(zel-call {quoted(effect)} image layer {arguments})"

    def test_every_effect_gives_the_bytes_of_the_command(self):
        said = self.session.batch(*(self.script("gimp-" + effect, self.call(effect, GIVEN.get(effect, {})))
                                    for effect in self.effects))
        for effect in self.effects:
            with self.subTest(effect):
                self.assertTrue(self.file("gimp-" + effect).exists(), said)
                got = pixels(self.file("gimp-" + effect))
                self.assertSame(got, self.expected(effect, GIVEN.get(effect, {})), effect)
                self.assertGreater(farthest(got, pixels(self.file("portrait"))), 0, effect)

    def script(self, name, body, source="portrait"):
        """Script-Fu that opens a picture, does something to `layer` of `image`, and saves the layer."""
        return f"""
(let* ((image (zel-load {quoted(self.file(source))}))
       (layer (car (gimp-image-get-active-layer image))))
  {body}
  (zel-save image layer {quoted(self.file(name))}))"""

    def result(self, name, said):
        self.assertTrue(self.file(name).exists(), said)
        return Image.open(self.file(name))

    def test_a_selection_a_channel_and_a_layer_are_masks(self):
        box = (150, 200, 210, 250)
        mask = Image.new("L", SIZE)
        ImageDraw.Draw(mask).rectangle((box[0], box[1], box[2] - 1, box[3] - 1), fill=255)
        mask.save(self.file("box"))
        given = {"mask": "box"}
        select = f"(gimp-image-select-rectangle image CHANNEL-OP-REPLACE {box[0]} {box[1]} {box[2] - box[0]} {box[3] - box[1]})"
        selection = "(car (gimp-image-get-selection image))"
        channel = "(let ((channel (car (gimp-selection-save image)))) (gimp-selection-none image) channel)"
        bodies = {
            "mask-layer": self.call("inpaint", given),
            "mask-selection": select + self.call("inpaint", given, {"mask": selection}),
            "mask-default": select + self.call("inpaint", {}),
            "mask-channel": select + self.call("inpaint", given, {"mask": channel}),
        }
        said = self.session.batch(*(self.script(name, body) for name, body in bodies.items()))
        expected = self.expected("inpaint", given)
        for name in bodies:
            with self.subTest(name):
                self.assertSame(self.result(name, said).convert("RGBA"), expected, name)

    def test_a_soft_selection_blends(self):
        said = self.session.batch(self.script("soft", """
(gimp-image-select-ellipse image CHANNEL-OP-REPLACE 80 120 200 240) (gimp-selection-feather image 40)
""" + self.call("color-mixing", {"brightness": 60})))
        before, got = pixels(self.file("portrait")), self.result("soft", said).convert("RGBA")
        after = self.expected("color-mixing", {"brightness": 60})
        self.assertEqual(got.getpixel((5, 5)), before.getpixel((5, 5)))
        self.assertEqual(got.getpixel((180, 240)), after.getpixel((180, 240)))
        shares = []
        for x in range(SIZE[0]):
            low, high, now = (picture.getpixel((x, 240))[0] for picture in (before, after, got))
            self.assertTrue(low <= now <= high, x)
            if high - low > 30:
                shares.append((now - low) / (high - low))
        self.assertGreater(sum(0.2 < share < 0.8 for share in shares), 20, shares)

    def test_a_layer_with_alpha_at_an_offset_has_its_part_of_the_faces(self):
        left, top, width, height = 60, 90, 240, 300
        part = pixels(self.file("portrait")).crop((left, top, left + width, top + height))
        part.putalpha(Image.linear_gradient("L").resize((width, height)).point(lambda v: max(v, 1)))
        part.save(self.file("part"))
        whole = json.loads(self.faces.read_text())
        for face in whole["faces"]:
            x, y, w, h = face["rect"]
            across, down = (lambda f: (f * SIZE[0] - left) / width), (lambda f: (f * SIZE[1] - top) / height)
            face["rect"] = [across(x), down(y), w * SIZE[0] / width, h * SIZE[1] / height]
            face["points"] = [[across(a), down(b)] for a, b in face["points"]]
        whole["image"] = {"width": width, "height": height}
        moved = self.work / "moved.json"
        moved.write_text(json.dumps(whole))
        given = {"strength": 1.1}
        said = self.session.batch(self.script("offset", f"""
(set! layer (zel-layer image {quoted(self.file("part"))})) (gimp-layer-set-offsets layer {left} {top})
""" + self.call("auto-slim-face", given)))
        got = self.result("offset", said).convert("RGBA")
        expected = self.expected("auto-slim-face", given, "part", moved)
        # Fractions go through single precision once more: a landmark may lie a hundred-thousandth of a pixel aside.
        self.assertLessEqual(farthest(got, expected), 1)
        self.assertGreater(farthest(got, part), 20)

    def test_sixteen_bits_stay_where_nothing_changes(self):
        width, height = SIZE
        deep = Image.new("I;16", SIZE)
        deep.putdata([20000 + 37 * x + 11 * y for y in range(height) for x in range(width)])
        deep.save(self.file("deep"))
        said = self.session.batch(*(
            self.script("deep-" + kind, f"(zel-precision image {kind})"
                        "(gimp-image-select-rectangle image CHANNEL-OP-REPLACE 0 0 180 480)"
                        + self.call("mosaic", {"blockSize": 32})
                        + "(zel-precision image PRECISION-U16-GAMMA)", "deep")
            for kind in ("PRECISION-U16-GAMMA", "PRECISION-FLOAT-LINEAR")))
        for kind in ("PRECISION-U16-GAMMA", "PRECISION-FLOAT-LINEAR"):
            with self.subTest(kind):
                got = self.result("deep-" + kind, said)
                self.assertIn(got.mode, ("I;16", "I"), kind)
                rest = max(abs(got.getpixel((x, y)) - deep.getpixel((x, y))) for x in range(181, width, 7)
                           for y in range(0, height, 7))
                self.assertLessEqual(rest, 0 if "U16" in kind else 1)
                # A block of the mosaic has one colour, of those that 8 bits have; pixels that had it before, as far
                # as 8 bits tell, are left as they were.
                block = [got.getpixel((x, y)) for x in range(65, 95) for y in range(65, 95)]
                colour, count = collections.Counter(block).most_common(1)[0]
                self.assertGreater(count, len(block) // 2)
                self.assertLessEqual(abs(colour - round(colour / 257) * 257), 1)
                self.assertLessEqual(max(block) - min(block), 257)

    def test_what_cannot_be_done_is_refused_with_a_sentence(self):
        bodies = {
            "is a group of layers":
                "(set! layer (car (gimp-layer-group-new image))) (gimp-image-insert-layer image layer 0 -1)"
                + self.call("vignette", {}),
            "has a colour table":
                "(gimp-image-convert-indexed image CONVERT-DITHER-NONE CONVERT-PALETTE-GENERATE 16 FALSE FALSE \"\")"
                + self.call("vignette", {}),
            "are locked": "(gimp-item-set-lock-content layer TRUE)" + self.call("vignette", {}),
            "Nothing is selected": self.call("inpaint", {}),
            "needs a second layer": self.call("mix-mask", {"mask": "skin"}),
            "must be a number in 0..1": self.call("vignette", {"strength": 3}),
        }
        said = self.session.batch(*(self.script(f"refused-{number}", body)
                                    for number, body in enumerate(bodies.values())))
        for number, sentence in enumerate(bodies):
            with self.subTest(sentence):
                self.assertIn(sentence, said)
                self.assertFalse(self.file(f"refused-{number}").exists(), said)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
