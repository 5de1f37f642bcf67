#include "bokeh/lookParameters.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace zellab::Bokeh {

LookValues lookValues(const Look& look) {
    return {look.amount, std::pow(look.intensity, 10.3f), std::sqrt(look.highlights) * look.intensity * 4.0f,
            look.vivid};
}

std::array<float, 256> brightnessCurve(float amount) {
    std::array<float, 256> curve;
    for (int i = 0; i < 256; ++i)
        curve[static_cast<std::size_t>(i)] = std::pow(static_cast<float>(i) / 255.0f, amount);
    return curve;
}

std::vector<float> ratioTable(const LookValues& look) {
    const std::array<float, 256> curve = brightnessCurve(look.amount);
    const float base = std::exp(look.highlights);
    std::vector<float> table(256 * 256);
    for (std::size_t i = 0; i < 256; ++i)
        for (std::size_t j = 0; j < 256; ++j) {
            const float exponent = weightExponent(curve[i], curve[std::min(i, j)], look.vivid);
            const float weight = std::pow(base, exponent);
            table[i * 256 + j] = weight > 0.0f ? std::min(weight, kLargestRatio) : 0.0f;
        }
    return table;
}

}  // namespace zellab::Bokeh
