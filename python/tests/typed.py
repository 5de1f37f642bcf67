"""What mypy must take, and, in the lines that say so, must refuse."""

import numpy
import numpy.typing

import zel

picture = zel.draw_portrait((300, 400), seed=3).picture
faces: zel.Faces = zel.find_faces(picture)
out: "numpy.typing.NDArray[numpy.uint8]" = zel.auto_slim_face(picture, strength=0.5, faces=faces, progress=lambda fraction, stage: None)
zel.scenario(picture, type="food", alpha=0.5)
zel.defocus(picture, focus=(0.5, 0.5), useDepth=True, out=picture)
zel.scenario(picture, type="foot")  # type: ignore[arg-type]
zel.auto_slim_face(picture)  # type: ignore[call-arg]
zel.gauss_blur(picture, raduis=3)  # type: ignore[call-arg]
zel.effects()[0].name = "other"  # type: ignore[misc]
