#include "beautykernel/facefleckcleaner/contrastStretch.h"

#include <array>

#include "zellab/imageproc/core/pixelMath.h"

namespace zellab {

namespace {

constexpr float kShare = 0.005f;  // of the samples, at either end

struct Limits {
    int low = 0, high = 255;
};

Limits limitsOf(PlaneView<const Byte> plane) {
    std::array<int, 256> histogram{};
    for (int y = 0; y < plane.height; ++y)
        for (int x = 0; x < plane.width; ++x) ++histogram[plane.row(y)[x]];
    std::array<float, 256> fraction{};
    int count = 0;
    const auto total = static_cast<float>(sampleCount(plane.width, plane.height));
    for (std::size_t i = 0; i < 256; ++i) {
        count += histogram[i];
        fraction[i] = static_cast<float>(count) / total;
    }
    Limits limits;
    for (int i = 0; i < 256; ++i)
        if (fraction[static_cast<std::size_t>(i)] >= kShare) {
            limits.low = i;
            break;
        }
    for (int i = 255; i >= 1; --i)
        if (1.0f - fraction[static_cast<std::size_t>(i)] >= kShare) {
            limits.high = i;
            break;
        }
    return limits;
}

}  // namespace

void stretchContrast(PlaneView<Byte> plane) {
    const Limits limits = limitsOf(plane);
    std::array<Byte, 256> curve{};
    for (int v = 0; v < 256; ++v) {
        Byte& out = curve[static_cast<std::size_t>(v)];
        if (limits.high <= limits.low) {
            out = v > limits.low ? 255 : 0;
            continue;
        }
        const float factor = 255.0f / static_cast<float>(limits.high - limits.low);
        out = truncateToByte(static_cast<float>(v - limits.low) * factor + 0.5f);
    }
    for (int y = 0; y < plane.height; ++y)
        for (Byte *p = plane.row(y), *end = p + plane.width; p < end; ++p) *p = curve[*p];
}

}  // namespace zellab
