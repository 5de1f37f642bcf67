#pragma once

#include <array>

#include "reference/slowTone.h"

/// Fills, morphology and labels on byte planes.

namespace slow {

/// Sets every zero pixel that the seed reaches through its four neighbours.
inline void floodFill(Bytes& mask, int width, int height, int seedX, int seedY) {
    std::vector<std::array<int, 2>> open = {
        {std::clamp(seedX, 0, width - 1), std::clamp(seedY, 0, height - 1)}};
    while (!open.empty()) {
        const auto [x, y] = open.back();
        open.pop_back();
        if (x < 0 || y < 0 || x >= width || y >= height) continue;
        unsigned char& pixel = mask[static_cast<std::size_t>(y * width + x)];
        if (pixel != 0) continue;
        pixel = 255;
        open.insert(open.end(), {{x - 1, y}, {x + 1, y}, {x, y - 1}, {x, y + 1}});
    }
}

/// Calls visit(byte) for the samples of one channel in a window that is cut at the picture's sides.
template <typename Visit>
void eachInWindow(const Bytes& pixels, int width, int height, int channels, int channel, int left, int right,
                  int top, int bottom, const Visit& visit) {
    for (int y = std::max(top, 0); y <= std::min(bottom, height - 1); ++y)
        for (int x = std::max(left, 0); x <= std::min(right, width - 1); ++x)
            visit(pixels[static_cast<std::size_t>((y * width + x) * channels + channel)]);
}

inline void boxMorphology(Bytes& plane, int width, int height, int radius, bool dilate) {
    const auto invert = [&] {
        for (unsigned char& b : plane) b = static_cast<unsigned char>(255 - b);
    };
    if (!dilate) invert();
    // A small plane is scanned in place, so that maxima travel in reading order; a large one is summed.
    const bool small = width <= 2 * radius + 1 || height <= 2 * radius + 1;
    const Bytes copy = plane;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            int largest = 0, sum = 0;
            eachInWindow(small ? plane : copy, width, height, 1, 0, x - radius, x + radius, y - radius,
                         y + radius, [&](int v) { largest = std::max(largest, v), sum += v; });
            plane[static_cast<std::size_t>(y * width + x)] = toByte(small ? largest : sum);
        }
    if (!dilate) invert();
}

/// The maximum over offsets -before to +after on each axis, of every channel.
inline void maxFilter(Bytes& pixels, int width, int height, int channels, std::array<int, 2> alongX,
                      std::array<int, 2> alongY) {
    const Bytes copy = pixels;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < channels; ++c) {
                int largest = 0;
                eachInWindow(copy, width, height, channels, c, x - alongX[0], x + alongX[1], y - alongY[0],
                             y + alongY[1], [&](int v) { largest = std::max(largest, v); });
                pixels[static_cast<std::size_t>((y * width + x) * channels + c)] = toByte(largest);
            }
}

struct Labels {
    std::vector<int> labels;                // 0 for background, regions from 1 in reading order
    std::vector<std::array<int, 4>> boxes;  // first and last row, first and last column
};

/// Regions of bytes from 128 on that touch by a side or a corner.
inline Labels labelRegions(const Bytes& plane, int width, int height) {
    Labels found{std::vector<int>(plane.size()), {}};
    for (std::size_t seed = 0; seed < plane.size(); ++seed) {
        if (plane[seed] < 128 || found.labels[seed] != 0) continue;
        std::array<int, 4> box = {1000000, -1, 1000000, -1};
        std::vector<int> open = {static_cast<int>(seed)};
        while (!open.empty()) {
            const int x = open.back() % width, y = open.back() / width;
            open.pop_back();
            if (plane[static_cast<std::size_t>(y * width + x)] < 128 ||
                found.labels[static_cast<std::size_t>(y * width + x)] != 0)
                continue;
            found.labels[static_cast<std::size_t>(y * width + x)] = static_cast<int>(found.boxes.size()) + 1;
            box = {std::min(box[0], y), std::max(box[1], y), std::min(box[2], x), std::max(box[3], x)};
            for (int v = std::max(y - 1, 0); v <= std::min(y + 1, height - 1); ++v)
                for (int u = std::max(x - 1, 0); u <= std::min(x + 1, width - 1); ++u)
                    open.push_back(v * width + u);
        }
        found.boxes.push_back(box);
    }
    return found;
}

}  // namespace slow
