#pragma once

#include <vector>

#include "beautykernel/skintools/overlayTable.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

/// Which channels the lightness plane overlays. The two differ on purpose.
enum class LightnessOf { greenAndBlue, greenAlone };

/// The overlay of the green channel with the blue one, or with itself.
Plane<Byte> overlayLightness(ConstImageView image, const OverlayTable& overlay, LightnessOf channels);

/// A high pass of the lightness, centred on 128, and the shadows that it shows on skin.
struct ShadowPlanes {
    Plane<Byte> highPass;
    Plane<Byte> shadow;  // weight of the shadow, 0 off the skin
};

/// @param radius  of the blur that the high pass takes away, pixels
ShadowPlanes shadowPlanes(const Plane<Byte>& lightness, PlaneView<const Byte> skinMask, int radius);

/// Brightness to which the middle of the curve that lifts shadows is raised, by the brightness of the skin.
int shadowLiftTarget(int skinBrightness);

/// Maps bytes 0 to 2 of a row of RGBA pixels through row weight[x] of `table`, 256 rows of 256 bytes.
void mapRowByWeight(Byte* pixels, const Byte* weight, int width, const std::vector<Byte>& table);

/// The same for a whole picture, with a weight a pixel.
void mapByPlane(ImageView image, PlaneView<const Byte> plane, const std::vector<Byte>& table);

}  // namespace zellab
