#!/usr/bin/python3
"""The dialog in a real GIMP, by keys and mouse on a display of its own.

Usage: dialogTest.py ZEL PLUG_IN WORK
"""
import json
import shutil
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

    def __init__(self, desktop, still=True):
        """still: waits for the first preview."""
        self.desktop = desktop
        self.window, self.x, self.y, self.width, self.height = desktop.window()
        desktop.xdotool("windowfocus", "--sync", self.window)
        if still:
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
        shutil.rmtree(self.work / "gimp" / "zel", ignore_errors=True)  # no values of another test
        desktop = Desktop(self.session)
        self.addCleanup(desktop.close)
        desktop.environment.update(environment or {})
        steps = ""
        for number, call in enumerate(calls):
            result = self.work / f"call{number}.png"
            result.unlink(missing_ok=True)
            steps += f"{call} (zel-save image layer {quoted(result)})\n"
        desktop.start(f"""
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
            except (OSError, SyntaxError):
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
            '(zel-open "auto-slim-face" image layer)', '(zel-open "mosaic" image layer)', '(zel-open "auto-slim-face" image layer)',
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
        desktop.settle(main[0])
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

    def test_presets_are_kept_by_name(self):
        desktop = self.open('(zel-open "mosaic" image layer)', '(zel-open "mosaic" image layer)')
        dialog = Dialog(desktop)
        dialog.setNumber(0, 40)
        dialog.click(-300, -123)  # the preset's name
        desktop.type("Large")
        dialog.click(-95, -123)  # Save
        dialog.settle()
        dialog.answer("r")  # Reset
        dialog.settle()
        desktop.screenshot("preset", dialog.window)
        dialog.answer("o")
        self.assertSame(self.result(desktop, 0), self.expected("mosaic"))
        self.assertIn("[preset Large]", (self.work / "gimp" / "zel" / "mosaic.ini").read_text())

        dialog = Dialog(desktop)
        dialog.click(-130, -123)  # the list of presets
        time.sleep(1)
        desktop.keys("Down", "Return")
        dialog.settle()
        desktop.screenshot("preset-chosen", dialog.window)
        dialog.answer("o")
        self.assertSame(self.result(desktop, 1),
                        self.expected("mosaic", "blockSize=40", source=self.work / "call0.png"))

    def test_long_work_leaves_the_window_alive_and_can_be_cancelled(self):
        # Both calls scale the picture up and down again, so that the small one tells whether it was changed between.
        again = f"(set! image (zel-load {quoted(self.picture)})) (set! layer (car (gimp-image-get-active-layer image)))"
        large, small = "(gimp-image-scale image 3000 4000)", "(gimp-image-scale image 450 600)"
        desktop = self.open(large + small,
                            again + large + '(gimp-display-new image) (zel-open "defocus" image layer)' + small)
        unchanged = self.result(desktop, 0)
        dialog = Dialog(desktop, still=False)
        lags = []
        for letter in "qqqqq":  # while the first preview is being made; no effect alone is left, or it would be chosen
            shown = desktop.screenshot("busy", dialog.window)
            start = time.monotonic()
            desktop.type(letter)
            desktop.until("a letter", lambda: ImageChops.difference(
                desktop.screenshot("alive", dialog.window).crop((0, 0, 240, 40)), shown.crop((0, 0, 240, 40))).getbbox())
            lags.append(time.monotonic() - start)
        print("seconds until a letter stood there:", *(f"{lag:.2f}" for lag in lags))
        self.assertLess(max(lags), 10)  # the preview takes longer, and machines may be busy
        dialog.answer("r")  # however fast the first one was, the result has to be made anew
        dialog.answer("o")
        time.sleep(0.3)
        dialog.answer("c")  # no more of it, but the dialog stays
        dialog.settle()
        self.assertFalse((self.work / "call1.png").exists())
        dialog.answer("c")
        self.assertSame(self.result(desktop, 1), unchanged)

    def test_what_is_missing_is_a_sentence_in_the_dialog(self):
        # The inference module, and with it the finder of faces.
        desktop = self.open('(zel-open "auto-slim-face" image layer)', environment={"ZEL_NETWORKS_MODULE": ""})
        dialog = Dialog(desktop)
        desktop.screenshot("no-finder", dialog.window)
        dialog.answer("o")
        dialog.settle()
        desktop.window()  # still there
        dialog.answer("c")
        self.assertSame(self.result(desktop, 0), pixels(self.picture))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
