#include "bokeh/blurStrength.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace zellab::Bokeh {
namespace {

constexpr float kFullOverWorking = 2.2777779f;  // 1640 pixels of the picture work at 720
constexpr float kShortestWorkingSide = 720.0f;
constexpr float kReferenceSide = 3840.0f;      // the strengths were tuned on pictures this long
constexpr float kReducedStretch = 1.2698413f;  // where the working picture isn't the picture's own size
constexpr float kStrengthPerLevel = 0.625f;
constexpr float kStrengthGain = 1.4f;
constexpr float kStrengthWithoutFaces = 0.6f;

/// Of the longer side: two and a half working pixels of a picture of 12 megapixels.
constexpr float kUnseenShare = 2.5f / 1756.0f;
/// The largest working radius that is asked for, less what is left out; with that it stays below the bound.
constexpr float kMostInProportion = 27.0f;

/// The nearest multiple of 4 from `side` on, at least 4.
int roundUpTo4(int side) {
    return 4 * ((side - 1) / 4) + 4;
}

/// Spends more of the slider on weak blurs.
float mappedLevel(std::int64_t level) {
    if (level < 20) return static_cast<float>(2 * level);
    if (level < 60) return static_cast<float>(level + 20);
    const std::int64_t strong = (3 * level - 180) / 2;  // in whole numbers
    return static_cast<float>(strong + 80);
}

}  // namespace

BlurStrength computeBlurStrength(int width, int height, float resolutionFactor, int blurLevel,
                                 bool hasFocusPoints, bool inProportion) {
    BlurStrength strength;
    const auto longest = static_cast<float>(std::max(width, height));
    strength.scaleFactor = std::max(longest / kFullOverWorking * resolutionFactor, kShortestWorkingSide) /
                           longest * kFullOverWorking;
    strength.scaleRatio = kFullOverWorking / strength.scaleFactor;
    strength.smallWidth = roundUpTo4(static_cast<int>(static_cast<float>(width) / strength.scaleRatio));
    strength.smallHeight = roundUpTo4(static_cast<int>(static_cast<float>(height) / strength.scaleRatio));
    strength.halfWidth = roundUpTo4(width / 2);
    strength.halfHeight = roundUpTo4(height / 2);
    strength.ratio = static_cast<float>(width) / static_cast<float>(strength.smallWidth);

    const float stretch = longest / kReferenceSide / strength.scaleFactor *
                          (strength.scaleRatio == 1.0f && !inProportion ? 1.0f : kReducedStretch);
    const float base = std::round(mappedLevel(blurLevel) * kStrengthPerLevel *
                                  (hasFocusPoints ? 1.0f : kStrengthWithoutFaces) * kStrengthGain) *
                       strength.scaleFactor;
    strength.radius = base * stretch;
    strength.radiusPerDisparity = base * 0.01f * stretch;
    return strength;
}

float factorInProportion(int width, int height, float resolutionFactor, float largestRadius) {
    const auto longest = static_cast<float>(std::max(width, height));
    const float seen = largestRadius / longest - kUnseenShare;
    if (!(seen > 0.0f)) return resolutionFactor;
    const float side = std::max(longest / kFullOverWorking * resolutionFactor, kShortestWorkingSide);
    const float radius = std::min(std::ceil(side * seen), kMostInProportion);
    return radius / seen / longest * kFullOverWorking;
}

float unseenRadius(const BlurStrength& strength) {
    return kUnseenShare * static_cast<float>(std::max(strength.smallWidth, strength.smallHeight));
}

}  // namespace zellab::Bokeh
