#include "bokeh/focusDecision.h"

#include <algorithm>
#include <array>

#include "bokeh/sceneLog.h"

namespace zellab::Bokeh {
namespace {

constexpr int kMedianReach = 20;   // pixels to each side of a point
constexpr int kFarthestFace = 30;  // a face whose disparity isn't above it lies too far back to count
constexpr float kFaceDepth = 0.0013333333f;
constexpr float kPointDepth = 0.00066666666f;

struct Ends {
    float lowest, highest;
};

/// The sharp band around a disparity: wider the nearer it is.
Ends endsAround(float median, float depth) {
    const float k = median * depth;
    return {std::max(median + 1.0f - k * median / (k + 1.0f), 0.0f),
            std::min(k * median / (1.0f - k) + median + 2.0f, 255.0f)};
}

/// The middle value of the window around (column, row), 0 where the window misses the plane.
int medianAround(PlaneView<const Byte> plane, int column, int row) {
    const int left = std::max(column - kMedianReach, 0),
              right = std::min(column + kMedianReach, plane.width - 1);
    const int top = std::max(row - kMedianReach, 0), bottom = std::min(row + kMedianReach, plane.height - 1);
    std::array<int, 256> histogram{};
    int count = 0;
    for (int y = top; y <= bottom; ++y) {
        for (int x = left; x <= right; ++x) {
            ++histogram[plane.row(y)[x]];
            ++count;
        }
    }
    int rest = count / 2;
    std::size_t bin = 0;
    while (bin < 255 && (rest -= histogram[bin]) >= 1) ++bin;
    return static_cast<int>(bin);
}

/// A pixel's place from a fraction; what no picture reaches becomes a place outside all of them.
int placeOf(float fraction, int size) {
    constexpr float kOutside = 1.0e6f;
    const float place = fraction * static_cast<float>(size);
    return place > -kOutside && place < kOutside ? static_cast<int>(place) : static_cast<int>(-kOutside);
}

int medianAround(PlaneView<const Byte> plane, FocusPoint point) {
    return medianAround(plane, placeOf(point.x, plane.width), placeOf(point.y, plane.height));
}

void fitToFaces(const FocusBand& band, float nearestFace, BlurStrength& strength) {
    if (band.lowest > 0) {
        const auto lowest = static_cast<float>(band.lowest);
        const float limit = strength.radius / lowest;
        strength.radiusPerDisparity =
            strength.radiusPerDisparity <= limit ? nearestFace / lowest * strength.radiusPerDisparity : limit;
    }
    sceneLog().debug("blur_constant is %f", static_cast<double>(strength.radiusPerDisparity));
}

void fitToPoint(const FocusBand& band, BlurStrength& strength) {
    if (band.lowest > 0)
        strength.radiusPerDisparity =
            std::min(strength.radiusPerDisparity, strength.radius / static_cast<float>(band.lowest));
    sceneLog().debug("blur_constant is %f", static_cast<double>(strength.radiusPerDisparity));
}

}  // namespace

float nearestSharp(int disparity) {
    return endsAround(static_cast<float>(disparity), kFaceDepth).highest;
}

FocusBand decideFocus(const DisparityMap& map, const std::vector<FocusPoint>& faces, FocusPoint focus,
                      BlurStrength& strength) {
    const PlaneView<const Byte> disparity = map.view();
    float lowest = 255.0f, highest = 0.0f, nearestFace = 0.0f;
    for (const FocusPoint& face : faces) {
        const int median = medianAround(disparity, face);
        sceneLog().debug("face depth median is %f", static_cast<double>(median));
        if (median <= kFarthestFace) continue;
        const Ends ends = endsAround(static_cast<float>(median), kFaceDepth);
        nearestFace = std::max(nearestFace, ends.lowest);
        lowest = std::min(lowest, ends.lowest);
        highest = std::max(highest, ends.highest);
    }
    if (!faces.empty())
        sceneLog().debug("dof_min: %f, dof_max: %f", static_cast<double>(lowest),
                         static_cast<double>(highest));
    sceneLog().debug("Focus disparity_cols_ is %d, disparity_rows_ is %d.", disparity.width,
                     disparity.height);
    const int row = placeOf(focus.y, disparity.height), column = placeOf(focus.x, disparity.width);
    sceneLog().debug("Focus row is %d, column is %d.", row, column);
    const auto median = static_cast<float>(medianAround(disparity, column, row));
    sceneLog().debug("Focus disp median is %f", static_cast<double>(median));

    if (lowest <= median && median <= highest) {
        sceneLog().debug("Focus on Face");
        const FocusBand band{true, static_cast<int>(lowest), static_cast<int>(highest)};
        fitToFaces(band, nearestFace, strength);
        return band;
    }
    sceneLog().debug("Not Focus on Face");
    const Ends ends = endsAround(median, kPointDepth);
    const FocusBand band{false, static_cast<int>(std::clamp(ends.lowest, 0.0f, 255.0f)),
                         static_cast<int>(std::clamp(ends.highest, 0.0f, 255.0f))};
    sceneLog().debug("disparity: [%d, %d]", band.lowest, band.highest);
    fitToPoint(band, strength);
    return band;
}

}  // namespace zellab::Bokeh
