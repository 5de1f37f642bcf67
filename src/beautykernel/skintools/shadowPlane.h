#pragma once

#include <span>
#include <vector>

#include "beautykernel/skintools/overlayTable.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/tone/toneTables.h"

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

/// A table for each of the 256 weights. On the heap: 64 KB are much for a worker's stack.
using WeightTables = std::vector<ByteTable>;

/// The tables whose entries are entryOf(weight, sample).
template <typename Entry>
WeightTables weightTables(const Entry& entryOf) {
    WeightTables tables(256);
    for (int weight = 0; weight < 256; ++weight)
        for (int sample = 0; sample < 256; ++sample)
            tables[static_cast<std::size_t>(weight)][static_cast<std::size_t>(sample)] =
                entryOf(weight, sample);
    return tables;
}

/// Maps bytes 0 to 2 of a row of RGBA pixels, each pixel through the table of its weight.
void mapRowByWeight(Byte* pixels, std::span<const Byte> weights, const WeightTables& tables);

/// The same for a whole picture, with a weight a pixel.
void mapByPlane(ImageView image, PlaneView<const Byte> weights, const WeightTables& tables);

}  // namespace zellab
