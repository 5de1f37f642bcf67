#include "beautykernel/vignette/vignette.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "zellab/imageproc/core/parallelRows.h"

namespace zellab {

namespace {

/// Half the square of how far each of `count` samples lies from the middle, in halves of the whole. The sum of a
/// column's and a row's share is the square of the distance, 1 at the corners.
std::vector<float> halfSquares(int count) {
    std::vector<float> shares(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const float off = (static_cast<float>(i) + 0.5f) * 2.0f / static_cast<float>(count) - 1.0f;
        shares[static_cast<std::size_t>(i)] = 0.5f * off * off;
    }
    return shares;
}

/// 0 below `radius`, 1 from a width beyond it on, a cubic that is level at both ends between.
float rise(float distance, float radius, float perWidth) {
    const float t = std::clamp((distance - radius) * perWidth, 0.0f, 1.0f);
    return t * t * (3.0f - 2.0f * t);
}

void darkenRow(Byte* pixel, const std::vector<float>& columns, float row, const VignetteParams& params) {
    // A softness of 0 is an edge of a width that no two pixels lie within.
    constexpr float kLeastSoftness = 1.0f / (1 << 16);
    const float perWidth = 1.0f / std::max(params.softness, kLeastSoftness);
    const float untouched = params.radius * params.radius;
    for (const float column : columns) {
        const float square = column + row;
        if (square > untouched) {
            const float gain = 1.0f - params.strength * rise(std::sqrt(square), params.radius, perWidth);
            for (int c = 0; c < 3; ++c)
                pixel[c] = static_cast<Byte>(static_cast<float>(pixel[c]) * gain + 0.5f);
        }
        pixel += ImageView::kChannels;
    }
}

}  // namespace

void vignette(ImageView image, const VignetteParams& params) {
    if (!image.valid() || !params.valid()) return;
    const std::vector<float> columns = halfSquares(image.width), rows = halfSquares(image.height);
    parallelRows(image.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            darkenRow(image.row(y), columns, rows[static_cast<std::size_t>(y)], params);
    });
}

}  // namespace zellab
