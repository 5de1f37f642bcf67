#include "bokeh/weightPlane.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace zellab::Bokeh {

namespace {

constexpr float kUnit = 16.0f;  // steps of a weight of 1

/// A weight that 16 bits do not hold stops at their end, and one that is no number counts nothing; wrapping
/// around would turn the brightest lights dark.
std::uint16_t toSixteenths(float weight) {
    const float scaled = weight * kUnit;
    if (!(scaled > 0.0f)) return 0;
    constexpr auto kLargest = std::numeric_limits<std::uint16_t>::max();
    return scaled >= kLargest ? kLargest : static_cast<std::uint16_t>(std::lroundf(scaled));
}

std::vector<std::uint16_t> weightTable(const LookValues& look) {
    const std::array<float, 256> curve = brightnessCurve(look.amount);
    const float base = std::exp(look.highlights);
    std::vector<std::uint16_t> table(256 * 256);
    parallelRows(256, [&](int begin, int end) {
        for (auto i = static_cast<std::size_t>(begin); i < static_cast<std::size_t>(end); ++i)
            for (std::size_t j = 0; j <= i; ++j)
                table[i * 256 + j] =
                    toSixteenths(std::pow(base, weightExponent(curve[i], curve[j], look.vivid)));
    });
    return table;
}

}  // namespace

Plane<std::uint16_t> weightPlane(const ConstImageView& image, const LookValues& look) {
    const std::vector<std::uint16_t> table = weightTable(look);
    Plane<std::uint16_t> plane(image.width, image.height);
    parallelRows(image.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            std::uint16_t* const out = plane.view().row(y);
            const Byte* pixel = image.row(y);
            for (int x = 0; x < image.width; ++x, pixel += 4) {
                const auto [low, high] = std::minmax({pixel[0], pixel[1], pixel[2]});
                out[x] = table[static_cast<std::size_t>(high) * 256 + low];
            }
        }
    });
    return plane;
}

}  // namespace zellab::Bokeh
