#pragma once

#include <algorithm>
#include <cstdlib>

#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/pixelMath.h"

/// The pieces of UnsharpMask, for callers that hold a blurred copy already.

namespace zellab {

/// The blur radius in pixels that UnsharpMask takes for its `radius`. NaN counts as the least.
int unsharpBlurRadius(float radius);

/// One byte sharpened against its blurred value.
struct Sharpen {
    float share;  // of the difference that is added; single precision
    int threshold;

    /// @param amount  percent; at most 500, below 2 counts as 1
    Sharpen(int amount, int least)
        : share(static_cast<float>(amount > 500 ? 500
                                   : amount < 2 ? 1
                                                : amount) /
                100.0f),
          threshold(least) {}
    [[gnu::always_inline]] Byte operator()(int in, int blurred) const {
        const int raw = static_cast<int>(static_cast<float>(in - blurred) * share);
        const int size = std::max(std::abs(raw) - threshold, 0);
        return clampToByte(in + (raw < 0 ? -size : size));
    }
};

}  // namespace zellab
