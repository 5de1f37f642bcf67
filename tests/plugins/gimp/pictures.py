#!/usr/bin/python3
"""Takes the pictures of docs/gimp.md: the dialog in a real GIMP, on a display of its own.

Usage: pictures.py ZEL PLUG_IN WORK OUT [SCALE]
"""
import pathlib
import subprocess
import sys

from desktop import Desktop
from gimpSession import Session, quoted

ZEL, PLUG_IN, WORK, OUT = sys.argv[1:5]
SCALE = int(sys.argv[5]) if len(sys.argv) > 5 else 1
# Places at scale 1, in the window.
FACE_POINTS, CHOOSE = (542, -117), (-160, 277)

# The effect, what is clicked, and the picture's name.
PICTURES = [("auto-slim-face", FACE_POINTS, "gimp-dialog"), ("defocus", CHOOSE, "gimp-depth-of-field")]


def main():
    session = Session(PLUG_IN, WORK)
    portrait = session.work / "portrait.png"
    subprocess.run([ZEL, "portrait", "-o", portrait, "--size", "900x1200", "--seed", "7", "--set", "moles=6", "--set",
                    "darkCircles=0.6", "--quiet"], check=True)
    for effect, place, name in PICTURES:
        desktop = Desktop(session, SCALE)
        try:
            desktop.start(f"""
(let* ((image (zel-load {quoted(portrait)})) (layer (car (gimp-image-get-active-layer image))))
  (gimp-display-new image) (zel-open {quoted(effect)} image layer))""")
            window, x, y, width, height = desktop.window()
            desktop.settle(window)
            click = [at * SCALE for at in place]
            desktop.click(x + click[0] + (width if click[0] < 0 else 0), y + click[1] + (height if click[1] < 0 else 0))
            desktop.xdotool("mousemove", 5, 5)
            desktop.settle(window).save(pathlib.Path(OUT) / f"{name}.png", optimize=True)
        finally:
            desktop.close()


main()
