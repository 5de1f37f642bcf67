#pragma once

#include "beautykernel/skintools/overlayTable.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

/// What the smoothing is decided on: planes of one size, that of the picture or of a smaller copy of it.
struct SmoothPlanes {
    RgbaImage blurred;     // the colours that are blended in
    Plane<Byte> weight;    // of the blurred colours
    Plane<Byte> edges;     // 255 keeps the picture
    Plane<Byte> highPass;  // blend of the overlay
};

/// Blends the blurred colours into the picture by weight and edges and overlays the result with the high
/// pass, at level / 10 of the difference. Planes smaller than the picture are sampled bilinearly, from their
/// top left corner on.
void mixSmooth(ImageView image, const SmoothPlanes& planes, const OverlayTable& overlay, int level);

}  // namespace zellab
