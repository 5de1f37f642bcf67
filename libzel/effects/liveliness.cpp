#include "libzel/effects/liveliness.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace zel {

namespace {

// In levels of nearness: up to the first a pixel belongs to the subject, from the second on to the ground.
constexpr float kSubjectWithin = 24.0f, kGroundFrom = 72.0f;
// In levels of the strongest channel: a light begins at the first and is a full one at the second.
constexpr float kLightFrom = 150.0f, kLightFull = 235.0f;
constexpr float kSaturation = 0.8f;  // at full strength colours lie this much farther from grey
constexpr float kLightGain = 0.18f;  // and full lights are this much brighter

float smoothStep(float from, float to, float value) {
    const float t = std::clamp((value - from) / (to - from), 0.0f, 1.0f);
    return t * t * (3.0f - 2.0f * t);
}

void enlivenPixel(unsigned char* pixel, float weight) {
    const float r = pixel[0], g = pixel[1], b = pixel[2];
    const float grey = 0.299f * r + 0.587f * g + 0.114f * b;
    const float strongest = std::max({r, g, b});
    const float gain = 1.0f + kLightGain * weight * smoothStep(kLightFrom, kLightFull, strongest);
    // No farther than the strongest channel reaches, so that a colour keeps its hue.
    const float most = strongest > grey ? (255.0f / gain - grey) / (strongest - grey) : 1.0f;
    const float saturation = std::min(1.0f + kSaturation * weight, std::max(most, 1.0f));
    for (int c = 0; c < 3; ++c) {
        const float value = (grey + (static_cast<float>(pixel[c]) - grey) * saturation) * gain;
        pixel[c] = static_cast<unsigned char>(std::clamp(value + 0.5f, 0.0f, 255.0f));
    }
}

}  // namespace

void enliven(Image& image, const std::vector<unsigned char>& nearness, int inFocus, float amount) {
    const std::size_t pixels = image.rgba.size() / 4;
    for (std::size_t i = 0; i < pixels; ++i) {
        const float off =
            nearness.empty() ? kGroundFrom : static_cast<float>(std::abs(int{nearness[i]} - inFocus));
        const float weight = amount * smoothStep(kSubjectWithin, kGroundFrom, off);
        if (weight > 0.0f) enlivenPixel(&image.rgba[4 * i], weight);
    }
}

int nearnessAround(const std::vector<unsigned char>& nearness, int width, int height, int x, int y) {
    const int reach = std::max(std::min(width, height) / 40, 1);  // the window has a twentieth of the side
    std::vector<unsigned char> around;
    for (int row = std::max(y - reach, 0); row <= std::min(y + reach, height - 1); ++row)
        for (int column = std::max(x - reach, 0); column <= std::min(x + reach, width - 1); ++column)
            around.push_back(nearness[static_cast<std::size_t>(row) * static_cast<std::size_t>(width) +
                                      static_cast<std::size_t>(column)]);
    const auto middle = around.begin() + static_cast<std::ptrdiff_t>(around.size() / 2);
    std::nth_element(around.begin(), middle, around.end());
    return around.empty() ? 0 : *middle;
}

}  // namespace zel
