#include "bokeh/radiusMap.h"

#include <algorithm>
#include <cmath>

#include "bokeh/sceneLog.h"
#include "zellab/imageproc/core/pixelMath.h"

namespace zellab::Bokeh {
namespace {

constexpr int kSharpRadius = 2;   // working pixels that the eye doesn't see
constexpr float kStretch = 1.2f;  // bends the background's radii where no face is in focus

/// Of the slope behind the band: the nearer the band, the less.
float gainBehind(const FocusBand& band) {
    return (1.0f - static_cast<float>(band.lowest) / 255.0f) * 0.5f + 0.8f;
}

/// Steps of disparity from the band to the farthest and to the nearest, 1 at least.
float stepsBehind(const DisparityMap& map, const FocusBand& band) {
    return static_cast<float>(std::max(1, band.lowest - map.minimum()));
}
float stepsBefore(const DisparityMap& map, const FocusBand& band) {
    return static_cast<float>(std::max(1, map.maximum() - band.highest));
}

/// Lowers the slope to where the disparity that lies `steps` outside the band reaches the largest radius.
float limitSlope(float slope, float steps, float gain) {
    if (steps * slope * gain < kLargestWorkingRadius) return slope;
    const float limited = kLargestWorkingRadius / (steps * gain);
    sceneLog().debug("blur ratio is %f", static_cast<double>(limited));
    return limited;
}

Byte workingByte(float radius, const BlurStrength& strength, const RadiusRule& rule) {
    const int seen = rule.inProportion ? static_cast<int>(std::lround(radius - unseenRadius(strength)))
                                       : static_cast<int>(radius) - kSharpRadius;
    return static_cast<Byte>(std::max(seen, 0));
}

Byte fullByte(float radius, float ratio) {
    return truncateToByte(radius * ratio);
}

}  // namespace

RadiusTables radiiByDepth(const DisparityMap& map, const FocusBand& band, const BlurStrength& strength,
                          const RadiusRule& rule) {
    sceneLog().debug("compute filter radius and alpha mask");
    sceneLog().debug("minimum_disparity = %d", band.lowest);
    const float backgroundGain = gainBehind(band);
    float slope = strength.radiusPerDisparity / strength.ratio;
    sceneLog().debug("blur ratio is %f", static_cast<double>(slope));
    slope = limitSlope(slope, stepsBehind(map, band), backgroundGain);
    slope = limitSlope(slope, stepsBefore(map, band), rule.foregroundSlope);

    std::array<float, 256> front{}, back{};
    for (int i = 0; i < 256; ++i) {
        const int steps = i < band.lowest ? band.lowest - i : std::max(i - band.highest, 0);
        front[static_cast<std::size_t>(i)] = static_cast<float>(steps) * slope * rule.foregroundSlope;
        back[static_cast<std::size_t>(i)] = static_cast<float>(steps) * slope * backgroundGain;
    }
    if (!band.onFace) {
        sceneLog().debug("stretch disp");
        const float top = back[static_cast<std::size_t>(map.minimum())];
        // Without anything behind the band there is no top to stretch to, and the background stays sharp.
        for (float& radius : back)
            radius = top > 0.0f ? std::max(std::pow(radius / top, kStretch) * top, 0.0f) : 0.0f;
    }
    RadiusTables tables;
    const float frontmost = front[static_cast<std::size_t>(map.maximum())];
    const float rearmost = back[static_cast<std::size_t>(map.minimum())];
    tables.largest = std::max(frontmost, rearmost);
    sceneLog().debug("max radius is %f and %f", static_cast<double>(frontmost),
                     static_cast<double>(rearmost));
    sceneLog().debug("max search radius: %f", static_cast<double>(tables.largest));
    for (std::size_t i = 0; i < 256; ++i) {
        const float radius = std::min(static_cast<int>(i) < band.lowest ? back[i] : front[i], tables.largest);
        tables.working[i] = workingByte(radius, strength, rule);
        tables.full[i] = fullByte(radius, strength.ratio);
    }
    return tables;
}

float largestRadius(const DisparityMap& map, const FocusBand& band, const BlurStrength& strength,
                    const RadiusRule& rule) {
    return strength.radiusPerDisparity *
           std::max(stepsBehind(map, band) * gainBehind(band), stepsBefore(map, band) * rule.foregroundSlope);
}

RadiusTables constantRadii(const BlurStrength& strength, const RadiusRule& rule) {
    const float bounded = std::min(strength.radius / strength.ratio, kLargestWorkingRadius);
    const auto pixels = static_cast<float>(workingByte(bounded, strength, rule));
    RadiusTables tables;
    tables.largest = pixels;
    tables.working.fill(static_cast<Byte>(pixels));
    tables.full.fill(fullByte(pixels, strength.ratio));
    return tables;
}

}  // namespace zellab::Bokeh
