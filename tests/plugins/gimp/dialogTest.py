#!/usr/bin/python3
"""The dialog in a real GIMP, by keys and mouse on a display of its own.

Usage: dialogTest.py ZEL PLUG_IN WORK
"""
import json
import subprocess
import sys
import time
import unittest

from PIL import Image, ImageChops

from desktop import Desktop
from gimpSession import Session, quoted

ZEL, PLUG_IN, WORK = sys.argv[1:4]
SIZE = (450, 600)
GROUND = (80, 80, 80)  # beside the picture in the preview
FACE_POINTS = 273  # the switch, from the preview's left edge


def zel(*words):
    subprocess.run([ZEL, *map(str, words), "--quiet"], check=True)


def pixels(path):
    return Image.open(path).convert("RGBA")


class Dialog:
    """The open dialog. Places are those of Debian's default font at 96 dots an inch."""

    def __init__(self, desktop):
        self.desktop = desktop
        self.window, self.x, self.y, self.width, self.height = desktop.window()
        desktop.xdotool("windowfocus", "--sync", self.window)
        desktop.settle(self.window)

    def at(self, x, y):
        """A place in the window; below 0 from its right or lower edge."""
        return (self.x + x + (self.width if x < 0 else 0), self.y + y + (self.height if y < 0 else 0))

    def click(self, x, y):
        self.desktop.click(*self.at(x, y))

    def setNumber(self, row, value):
        """Of the controls' row, counted from 0, below a summary of one line."""
        self.desktop.xdotool("mousemove", *self.at(-55, 85 + 31 * row), "click", "--repeat", 3, 1)
        self.desktop.type(str(value))
        self.desktop.keys("Tab")
        self.desktop.settle(self.window)

    def pictureBox(self):
        """Where the preview shows the picture, fitted, between two stripes of its ground."""
        shown = self.desktop.screenshot("box", self.window)
        ground = [x for x in range(shown.width) if shown.getpixel((x, 150)) == GROUND]
        gap = next(i for i in range(1, len(ground)) if ground[i] > ground[i - 1] + 50)
        left, right = ground[gap - 1] + 1, ground[gap]
        return left, 13, right, 13 + round((right - left) * SIZE[1] / SIZE[0])

    def clickBelowPreview(self, x):
        """x: from the preview's left edge."""
        shown = self.desktop.screenshot("box", self.window)
        left = next(x for x in range(shown.width) if shown.getpixel((x, 150)) == GROUND)
        self.click(left + x, -117)

    def settle(self):
        return self.desktop.settle(self.window)

    def answer(self, key):
        self.desktop.keys("alt+" + key)


class DialogTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.session = Session(PLUG_IN, WORK)
        cls.work = cls.session.work
        cls.picture = cls.work / "portrait.png"
        zel("portrait", "-o", cls.picture, "--size", "%dx%d" % SIZE, "--seed", 7, "--set", "moles=8")
        cls.faces = cls.work / "faces.json"
        zel("faces", cls.picture, "-o", cls.faces)

    def open(self, *calls, environment=None):
        """A GIMP that opens the picture and makes each call in turn, `image` and `layer` being at hand; after the
        call NUMBER the layer is saved as callNUMBER.png."""
        desktop = Desktop(self.session)
        self.addCleanup(desktop.close)
        desktop.environment.update(environment or {})
        steps = ""
        for number, call in enumerate(calls):
            result = self.work / f"call{number}.png"
            result.unlink(missing_ok=True)
            steps += f"{call} (zel-save image layer {quoted(result)})\n"
        desktop.start(f"""
(define (zel-open effect)
  (set! zel-effect-name (string-append "plug-in-zel-" effect))
  (apply (eval (string->symbol zel-effect-name))
         (append (list RUN-INTERACTIVE image layer)
                 (zel-nothing zel-effect-name 3 (list-ref (gimp-procedural-db-proc-info zel-effect-name) 6)))))
(define zel-effect-name "")
(define (zel-nothing procedure from count)
  (if (= from count) '()
      (cons (let ((type (car (gimp-procedural-db-proc-arg procedure from))))
              (cond ((= type PDB-STRING) "") ((= type PDB-DRAWABLE) -1) (else 0)))
            (zel-nothing procedure (+ from 1) count))))
(define image (zel-load {quoted(self.picture)}))
(define layer (car (gimp-image-get-active-layer image)))
(gimp-display-new image)
{steps}""")
        return desktop

    def result(self, desktop, number):
        path = self.work / f"call{number}.png"

        def whole():
            try:
                with Image.open(path) as picture:
                    return picture.convert("RGBA")
            except OSError:
                return None  # not there, or not whole
        return desktop.until(path.name, whole)

    def expected(self, effect, *options, source=None, faces=None):
        out = self.work / "expected.png"
        zel("apply", effect, source or self.picture, "-o", out, *(["--faces", faces] if faces else []),
            *(word for option in options for word in ("--set", option)))
        return pixels(out)

    def assertSame(self, one, other):
        self.assertEqual(one.size, other.size)
        high = max(most for least, most in ImageChops.difference(one, other).getextrema())
        self.assertEqual(high, 0, "levels apart")

    def test_what_is_set_is_what_the_layer_becomes(self):
        keep = self.work / "kept.json"
        desktop = self.open(
            '(zel-open "auto-slim-face")', '(zel-open "mosaic")', '(zel-open "auto-slim-face")',
            f"""(with-output-to-file {quoted(keep)}
                 (lambda () (display (caddr (car (gimp-image-get-parasite image "zel-faces"))))))""")
        # The faces are those that the command finds; a value typed beside a slider counts.
        dialog = Dialog(desktop)
        dialog.setNumber(0, 1.2)
        desktop.screenshot("slim", dialog.window)
        dialog.answer("o")
        slim = self.expected("auto-slim-face", "strength=1.2", faces=self.faces)
        self.assertSame(self.result(desktop, 0), slim)

        # While another dialog is open the user undoes: one step. What is then accepted acts on the layer as it is.
        dialog = Dialog(desktop)
        main = desktop.window("portrait.*GIMP$")
        desktop.xdotool("windowfocus", "--sync", main[0])
        desktop.keys("ctrl+z")
        time.sleep(3)
        desktop.xdotool("windowfocus", "--sync", dialog.window)
        dialog.answer("o")
        mosaic = self.expected("mosaic")
        self.assertSame(self.result(desktop, 1), mosaic)

        # The last values are there again, and a landmark that is dragged changes the result.
        dialog = Dialog(desktop)
        dialog.clickBelowPreview(FACE_POINTS)
        dialog.settle()
        desktop.screenshot("points", dialog.window)
        chin = json.loads(self.faces.read_text())["faces"][0]["points"][0]
        left, top, right, bottom = dialog.pictureBox()
        x, y = round(left + chin[0] * (right - left)), round(top + chin[1] * (bottom - top))
        desktop.drag(dialog.at(x, y), dialog.at(x + 12, y + 20))
        dialog.settle()
        desktop.screenshot("dragged", dialog.window)
        dialog.answer("o")
        got = self.result(desktop, 2)
        self.result(desktop, 3)
        source = self.work / "call1.png"
        kept = json.loads(keep.read_text())["faces"][0]["points"][0]
        self.assertGreater(kept[1] - chin[1], 0.01)
        self.assertSame(got, self.expected("auto-slim-face", "strength=1.2", source=source, faces=keep))
        self.assertNotEqual(got.tobytes(), self.expected("auto-slim-face", "strength=1.2", source=source,
                                                         faces=self.faces).tobytes())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
