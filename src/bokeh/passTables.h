#pragma once

#include <array>
#include <vector>

#include "bokeh/kernelStrip.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab::Bokeh {

/// Cosine, sine and frame of each spin record, as the convolution shaders read them. Without spin all
/// rotations are 0; the frames stay.
std::array<float, 3 * kRecords> spinTable(bool spin);

/// The kernels of the composition's small blur: of 1, 9, 25, 49 and 81 values, radius 0 to 4, one after the
/// other.
extern const std::array<float, 165> kBokehData;

/// The colour table that changes nothing: 512 by 512 RGBA, 8 by 8 tiles of 64 by 64, one for each blue level,
/// red across and green down.
RgbaImage identityLut();

inline constexpr int kNoiseSide = 256;
/// Noise of the scene: 256 by 256 RGBA of rand() modulo 256, red, green, blue in that order; alpha 255.
/// The generator is the process's and is not seeded here.
std::vector<Byte> noisePixels();

}  // namespace zellab::Bokeh
