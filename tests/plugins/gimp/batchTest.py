#!/usr/bin/python3
"""Every effect through a real GIMP, without a window, against the zel command: the same bytes.

Usage: batchTest.py ZEL PLUG_IN WORK
"""
import json
import subprocess
import sys
import unittest

from PIL import Image, ImageChops

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
    "wrinkle-cleaner": {"mask": "wrinkles", "strength": 70},
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

    def call(self, effect, given, layers=None, image="image", layer="layer"):
        layers = layers or {name: f"(zel-layer image {quoted(self.file(given[name]))})" for name in INPUTS
                            if name in given}
        arguments = named(self.effects[effect], given, layers)
        if self.effects[effect]["faces"] != "no":
            arguments = f'(cons (list "faces" {quoted(self.faces)}) {arguments})'
        return f"(zel-call {quoted(effect)} {image} {layer} {arguments})"

    def test_every_effect_gives_the_bytes_of_the_command(self):
        script = ""
        for effect in self.effects:
            script += f"""
(let* ((image (zel-load {quoted(self.file("portrait"))}))
       (layer (car (gimp-image-get-active-layer image))))
  {self.call(effect, GIVEN.get(effect, {}))}
  (zel-save image layer {quoted(self.file("gimp-" + effect))}))"""
        said = self.session.batch(script)
        for effect in self.effects:
            with self.subTest(effect):
                self.assertTrue(self.file("gimp-" + effect).exists(), said)
                got = pixels(self.file("gimp-" + effect))
                self.assertSame(got, self.expected(effect, GIVEN.get(effect, {})), effect)
                if effect != "color-mixing":
                    self.assertGreater(farthest(got, pixels(self.file("portrait"))), 0, effect)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
