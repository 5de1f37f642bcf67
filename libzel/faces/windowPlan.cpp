#include "libzel/faces/windowPlan.h"

#include <algorithm>
#include <cmath>

namespace zel {

namespace {

/// Of a window's side. A face that is cut by no more than that is whole in the next window.
constexpr float kOverlap = 0.4f;

/// A face as large as the picture is seen only with some surroundings, so the first window is larger: by these
/// shares of the picture's longer and shorter side, whichever is less.
constexpr float kOverLonger = 1.6f, kOverShorter = 2.4f;

constexpr float kSmallestFacePx = 16;  // what is smaller has no features to find
constexpr float kMostRatio = 2;        // from one size of window to the next

/// On a strip, in which windows of its height would be too many, the first are larger: this share of its length.
constexpr float kLeastOfLength = 1 / 120.0f;
constexpr std::size_t kMostWindows = 250;

/// Middles of the windows along one side of the picture.
std::vector<float> middles(float length, float side) {
    if (length <= side) return {0.5f * length};
    const int steps = static_cast<int>(std::ceil((length - side) / ((1 - kOverlap) * side)));
    std::vector<float> places;
    for (int i = 0; i <= steps; ++i)
        places.push_back(0.5f * side + (length - side) * static_cast<float>(i) / static_cast<float>(steps));
    return places;
}

WindowLevel levelOf(float width, float height, float side) {
    WindowLevel level{side, {}};
    for (const float y : middles(height, side))
        for (const float x : middles(width, side)) level.windows.push_back({{x, y}, side, 0});
    return level;
}

}  // namespace

std::vector<WindowLevel> windowPlan(int width, int height, float leastFace) {
    const auto w = static_cast<float>(width), h = static_cast<float>(height);
    const float longer = std::max(w, h), shorter = std::min(w, h);
    if (shorter < kSmallestFacePx) return {};
    const float largest =
        std::max(std::min(kOverLonger * longer, kOverShorter * shorter), kLeastOfLength * longer);
    const float smallest = std::min(largest, std::max(leastFace * shorter, kSmallestFacePx) / kLeastInWindow);
    const float steps = std::ceil(std::log(largest / smallest) / std::log(kMostRatio));
    std::vector<WindowLevel> plan;
    std::size_t count = 0;
    for (float step = 0; step <= steps; ++step) {
        const float share = step / std::max(1.0f, steps);
        WindowLevel level = levelOf(w, h, largest * std::pow(smallest / largest, share));
        count += level.windows.size();
        if (count > kMostWindows && !plan.empty()) break;
        plan.push_back(std::move(level));
    }
    return plan;
}

}  // namespace zel
