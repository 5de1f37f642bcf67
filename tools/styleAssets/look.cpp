#include "look.h"

#include <algorithm>

namespace zelassets {

namespace {

constexpr int kSteps = 16, kTiles = 4, kSide = kSteps * kTiles;

float luma(const Colour& c) {
    return 0.299f * c[0] + 0.587f * c[1] + 0.114f * c[2];
}

/// 1 in the middle of the range, 0 at black and white.
float midTone(float v) {
    return 4.0f * v * (1.0f - v);
}

float sCurve(float v) {
    return v * v * (3.0f - 2.0f * v);
}

/// 0 at black and white, 1 in the middle: what is left of the contrast under a full guard.
float awayFromEnds(float v) {
    constexpr float kReach = 0.35f;  // of the range, from either end
    return sCurve(std::clamp(v / kReach, 0.0f, 1.0f)) * sCurve(std::clamp((1.0f - v) / kReach, 0.0f, 1.0f));
}

/// Lift, then contrast about the middle, then the raised black.
float toned(float v, const Look& look) {
    v += look.lift * midTone(v);
    v += look.contrast * (sCurve(v) - v) * (1.0f + look.guard * (awayFromEnds(v) - 1.0f));
    return look.matte + v * (1.0f - look.matte);
}

}  // namespace

Colour graded(Colour c, const Look& look) {
    for (float& v : c) v = toned(v, look);
    const float grey = std::clamp(luma(c), 0.0f, 1.0f), tint = midTone(grey);
    const Colour shift = {look.warmth * tint, -look.rose * tint, -look.warmth * tint};
    for (std::size_t i = 0; i < c.size(); ++i)
        c[i] = std::clamp(grey + (c[i] - grey) * (1.0f + look.saturation) + shift[i], 0.0f, 1.0f);
    return c;
}

std::vector<unsigned char> lookCube(const Look& look) {
    std::vector<unsigned char> texels;
    texels.reserve(kSide * kSide * 4);
    const auto level = [](int step) { return static_cast<float>(step) / (kSteps - 1); };
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x) {
            const int blue = y / kSteps * kTiles + x / kSteps;
            const Colour c = graded({level(x % kSteps), level(y % kSteps), level(blue)}, look);
            for (const float v : c) texels.push_back(static_cast<unsigned char>(v * 255.0f + 0.5f));
            texels.push_back(255);
        }
    return texels;
}

}  // namespace zelassets
