#pragma once

#include <cstdint>
#include <vector>

#include "benchPicture.h"
#include "bokeh/kernelStrip.h"

namespace zelbench {

/// The small picture that the convolution works on for a photograph of those megapixels.
inline Size workingSizeOf(std::int64_t megapixels) {
    return megapixels >= 12 ? Size{1756, 1316} : Size{720, 540};
}

/// Radii as a depth edge makes them: a sharp person before a ramp that ends at `largest`.
inline std::vector<unsigned char> benchRadii(Size size, int largest) {
    std::vector<unsigned char> radii;
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const bool person = x > size.width / 3 && x < 2 * size.width / 3 && y > size.height / 4;
            radii.push_back(
                static_cast<unsigned char>(person ? 0 : largest / 2 + largest * y / (2 * size.height)));
        }
    return radii;
}

/// A disc in every frame.
inline std::vector<unsigned char> benchStrip() {
    using namespace zellab::Bokeh;
    std::vector<unsigned char> strip(static_cast<std::size_t>(kStripWidth) * kStripHeight);
    for (int i = 0; i < kStripWidth * kStripHeight; ++i) {
        const int x = i % kStripWidth % kFrameSide - kFrameSide / 2, y = i / kStripWidth - kFrameSide / 2;
        if (x * x + y * y < 58 * 58) strip[static_cast<std::size_t>(i)] = 255;
    }
    return strip;
}

}  // namespace zelbench
