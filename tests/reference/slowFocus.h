#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

/// Focus decision and radii once more, slowly: medians by sorting, radii one disparity at a time.

namespace slow {

struct Focus {
    int lowest = 255, highest = 0;
    bool onFace = false;
    float perDisparity = 0;
};

struct Point {
    float y, x;
};

/// The level below which half of the window lies, as the running sum from below finds it.
inline int windowMedian(const std::vector<unsigned char>& plane, int width, int height, Point at) {
    const int cx = static_cast<int>(at.x * static_cast<float>(width)),
              cy = static_cast<int>(at.y * static_cast<float>(height));
    std::vector<unsigned char> window;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            if (std::abs(x - cx) <= 20 && std::abs(y - cy) <= 20)
                window.push_back(plane[static_cast<std::size_t>(y * width + x)]);
    std::sort(window.begin(), window.end());
    const std::size_t half = window.size() / 2;  // so many must be counted; with none, level 0 does
    return half == 0 ? 0 : window[half - 1];
}

/// The plane with its lowest and highest percent cut off, value by value from either end.
inline std::vector<unsigned char> withoutEnds(std::vector<unsigned char> plane) {
    std::vector<unsigned char> sorted = plane;
    std::sort(sorted.begin(), sorted.end());
    const auto cut = static_cast<std::size_t>(static_cast<float>(plane.size()) * 0.01f);
    if (cut == 0) return plane;
    const unsigned char low = sorted[cut - 1], high = sorted[sorted.size() - cut];
    for (unsigned char& value : plane) value = std::clamp(value, low, high);
    return plane;
}

inline float nearEnd(float m, float k) {
    return std::max(m + 1.0f - k * m / (k + 1.0f), 0.0f);
}
inline float farEnd(float m, float k) {
    return std::min(k * m / (1.0f - k) + m + 2.0f, 255.0f);
}

inline Focus decide(const std::vector<unsigned char>& plane, int width, int height,
                    const std::vector<Point>& faces, Point focus, float radius, float perDisparity) {
    float a = 255, b = 0, n = 0;
    for (const Point face : faces) {
        const auto m = static_cast<float>(windowMedian(plane, width, height, face));
        if (m <= 30) continue;
        const float k = m * 0.0013333333f;
        n = std::max(n, nearEnd(m, k));
        a = std::min(a, nearEnd(m, k));
        b = std::max(b, farEnd(m, k));
    }
    const auto f = static_cast<float>(windowMedian(plane, width, height, focus));
    Focus result;
    result.onFace = a <= f && f <= b;
    result.perDisparity = perDisparity;
    if (result.onFace) {
        result.lowest = static_cast<int>(a), result.highest = static_cast<int>(b);
        if (result.lowest > 0) {
            const float t = radius / static_cast<float>(result.lowest);
            result.perDisparity =
                perDisparity <= t ? n / static_cast<float>(result.lowest) * perDisparity : t;
        }
        return result;
    }
    const float k = f * 0.00066666666f;
    result.lowest = static_cast<int>(std::clamp(nearEnd(f, k), 0.0f, 255.0f));
    result.highest = static_cast<int>(std::clamp(farEnd(f, k), 0.0f, 255.0f));
    if (result.lowest > 0)
        result.perDisparity = std::min(perDisparity, radius / static_cast<float>(result.lowest));
    return result;
}

struct Radius {
    int working, full;
};

/// The radius of one disparity, from nothing that another one found out.
inline Radius radiusOf(int disparity, const Focus& focus, int least, int most, float ratio) {
    const float gain = (1.0f - static_cast<float>(focus.lowest) / 255.0f) * 0.5f + 0.8f;
    float slope = focus.perDisparity / ratio;
    const auto behind = static_cast<float>(std::max(1, focus.lowest - least)),
               before = static_cast<float>(std::max(1, most - focus.highest));
    if (behind * slope * gain >= 30.0f) slope = 30.0f / (behind * gain);
    if (before * slope * 0.2f >= 30.0f) slope = 30.0f / (before * 0.2f);
    const auto distance = [&](int i) {
        return static_cast<float>(i < focus.lowest ? focus.lowest - i : std::max(0, i - focus.highest));
    };
    const auto front = [&](int i) { return distance(i) * slope * 0.2f; };
    const auto back = [&](int i) {
        const float straight = distance(i) * slope * gain, top = distance(least) * slope * gain;
        if (focus.onFace) return straight;
        return top > 0 ? std::max(std::pow(straight / top, 1.2f) * top, 0.0f) : 0.0f;
    };
    const float largest = std::max(front(most), back(least));
    const float radius = std::min(disparity < focus.lowest ? back(disparity) : front(disparity), largest);
    return {std::max(static_cast<int>(radius) - 2, 0),
            static_cast<int>(std::clamp(radius * ratio, 0.0f, 255.0f))};
}

}  // namespace slow
