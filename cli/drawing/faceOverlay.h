#pragma once

#include "cli/files/image.h"
#include "zel/zel.hpp"

namespace zelcli {

/// Draws what the library makes of a picture's faces: every point of the dense list, numbered, in a colour
/// by feature, with the outlines that effects close around eyes, brows, mouth and face. Points that are guessed are
/// hollow, their outlines dashed, and a legend says so.
void drawFaceOverlay(Image& image, const zel_faces* faces);

/// The same for a face whose lists reach beyond what the picture shows well: enlarges the picture first, so
/// that the numbers of the nearest two points of an eye do not meet. The longer side grows to about
/// `longSide`.
Image enlargedForOverlay(const Image& image, int longSide);

}  // namespace zelcli
