#pragma once

#include "reference/slowStackBlur.h"

#include <array>
#include <cmath>

/// The smoothers that keep edges, from their definitions.

namespace slow {

/// The recursive filter, its feedback held in a table of signed bytes. `channels` is 4 or 1.
inline void domainTransform(Bytes& pixels, int width, int height, int channels, float sigmaSpace,
                            float sigmaRange, int iterations) {
    const auto at = gridOf(pixels, width, channels);
    const int colours = channels == 4 ? 3 : 1;
    const Bytes original = pixels;
    const auto before = gridOf(original, width, channels);
    const auto difference = [&](int x, int y, int x2, int y2) {
        int sum = 0;
        for (int c = 0; c < colours; ++c) sum += std::abs(before(x, y, c) - before(x2, y2, c));
        return channels == 4 ? sum : 3 * sum;
    };
    for (int i = iterations - 1; i >= 0; --i) {
        const float p = std::pow(2.0f, static_cast<float>(i));
        const float sigma = sigmaSpace * std::sqrt(3.0f) * p /
                            std::sqrt(std::pow(4.0f, static_cast<float>(iterations)) - 1.0f);
        const float a = std::exp(-std::sqrt(2.0f) / sigma);
        std::vector<std::array<signed char, 511>> table(766);
        for (int d = 0; d < 766; ++d) {
            const int e = static_cast<int>(static_cast<float>(d) * (sigmaSpace / sigmaRange) + 1.0f);
            const float w = e == 2 ? a * a : static_cast<float>(std::pow(static_cast<double>(a), e));
            for (int k = 0; k < 511; ++k)
                table[static_cast<std::size_t>(d)][static_cast<std::size_t>(k)] = static_cast<signed char>(
                    static_cast<int>(static_cast<float>(k - 255) * w + (channels == 4 ? 0.5f : 0.0f)));
        }
        const auto follow = [&](int x, int y, int fromX, int fromY) {
            const auto& row = table[static_cast<std::size_t>(difference(x, y, fromX, fromY))];
            for (int c = 0; c < colours; ++c) {
                unsigned char& value = at(x, y, c);
                value = static_cast<unsigned char>(
                    value + row[static_cast<std::size_t>(at(fromX, fromY, c) - value + 255)]);
            }
        };
        for (int y = 0; y < height; ++y) {
            for (int x = 1; x < width; ++x) follow(x, y, x - 1, y);
            for (int x = width - 2; x >= 0; --x) follow(x, y, x + 1, y);
        }
        for (int x = 0; x < width; ++x) {
            for (int y = 1; y < height; ++y) follow(x, y, x, y - 1);
            for (int y = height - 2; y >= 0; --y) follow(x, y, x, y + 1);
        }
    }
}

/// The disc slides along a serpentine; what enters and leaves is found by comparing both discs.
inline void surfaceBlur(Bytes& rgba, int width, int height, int radius, int threshold, const Bytes& mask) {
    const int r = std::min(radius, 100), s = ((2 * r + 1) * (2 * r + 1) + 2) >> 2;
    const Bytes original = rgba;
    std::vector<int> weights;
    for (double v = 255.0; weights.size() < 256; v -= 96.0 / threshold) {
        if (v < -0.4) break;
        weights.push_back(static_cast<int>(v + 0.4));
    }
    const auto inside = [&](int dx, int dy, float more) {
        if (std::abs(dy) > r) return false;
        const float reach = std::sqrt(static_cast<float>(s - dy * dy)) + more;
        return std::abs(dx) <= static_cast<int>(std::min(reach, static_cast<float>(r)));
    };
    std::array<std::array<int, 256>, 3> histograms{};
    const auto count = [&](int x, int y, int by) {
        const bool rim = x < 0 || y < 0 || x >= width || y >= height;
        for (std::size_t c = 0; c < 3; ++c)
            histograms[c][rim ? 0 : original[static_cast<std::size_t>(y * width + x) * 4 + c]] += by;
    };
    for (int dy = -r; dy <= r; ++dy)
        for (int dx = -r; dx <= r; ++dx)
            if (inside(dx, dy, 0.4f)) count(dx, dy, 1);
    int x = 0, y = 0;
    for (int step = 0; step < width * height; ++step) {
        const auto pixel = static_cast<std::size_t>(y * width + x);
        for (std::size_t c = 0; mask[pixel] != 0 && c < 3; ++c) {
            const int centre = original[pixel * 4 + c], reach = static_cast<int>(weights.size());
            long long sum = 0, moment = 0;
            const auto add = [&](int k) {
                const long long n =
                    static_cast<long long>(weights[static_cast<std::size_t>(std::abs(k - centre))]) *
                    histograms[c][static_cast<std::size_t>(k)];
                sum += n, moment += n * k;
            };
            for (int k = std::max(centre, 1); k < std::min(centre + reach, 256); ++k) add(k);
            for (int k = centre; k > std::max(centre - reach, 0); --k) add(k);
            if (sum > 0) rgba[pixel * 4 + c] = static_cast<unsigned char>((moment + sum / 2) / sum);
        }
        const int right = y % 2 == 0 ? 1 : -1, end = y % 2 == 0 ? width - 1 : 0;
        const int moveX = x == end ? 0 : right, moveY = x == end ? 1 : 0;
        for (int dy = -r - 1; dy <= r + 1; ++dy)
            for (int dx = -r - 1; dx <= r + 1; ++dx) {
                const bool before = inside(dx, dy, 0), after = inside(dx - moveX, dy - moveY, 0);
                if (before != after) count(x + dx, y + dy, after ? 1 : -1);
            }
        x += moveX, y += moveY;
    }
}

}  // namespace slow
