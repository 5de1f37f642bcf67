#pragma once

#include <algorithm>
#include <array>

#include "beautykernel/skintools/spotTables.h"
#include "reference/slowEdges.h"
#include "reference/slowRegions.h"

/// The search for spots: which cells each radius marks. No sums are shared; every window is added up anew.

namespace slow {

struct SpotPicture {
    int width, height;
    Bytes rgba, skin;
    int left = -1, top = -1, boxWidth = -1, boxHeight = -1;
    bool inBox(int x, int y) const {
        return left < 0 || (x >= left && y >= top && x < left + boxWidth && y < top + boxHeight);
    }
};

inline int windowSum(const Bytes& plane, int width, int height, int x, int y, int half, int mask) {
    int sum = 0;
    eachInWindow(plane, width, height, 1, 0, x - half, x + half, y - half, y + half,
                 [&](int v) { sum += v & mask; });
    return sum;
}

inline Bytes spotGrey(const SpotPicture& p) {
    Bytes grey;
    for (int y = 0; y < p.height; ++y)
        for (int x = 0; x < p.width; ++x) {
            const unsigned char* c = &p.rgba[static_cast<std::size_t>(y * p.width + x) * 4];
            const int value = p.inBox(x, y) ? (59 * c[1] + 30 * c[0] + 11 * c[2] + 50) / 100 : 0;
            grey.push_back(zellab::kSpotToneCurve[static_cast<std::size_t>(value)]);
        }
    return grey;
}

inline Bytes spotFree(const SpotPicture& p, const Bytes& grey) {
    const int w = p.width, h = p.height;
    Bytes edges(grey.size(), 0);
    std::array<int, 256> histogram{};
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const bool ring = x == 0 || y == 0 || x == w - 1 || y == h - 1;
            int e = 0;
            if (!ring) {
                const auto [gx, gy] = sobel(grey, w, x, y);
                e = std::min((std::abs(gx) + std::abs(gy)) / 2, 255);
            }
            edges[static_cast<std::size_t>(y * w + x)] = static_cast<unsigned char>(e);
            if (p.left >= 0 ? p.inBox(x, y) : !ring) ++histogram[static_cast<std::size_t>(e)];
        }
    int total = 0, reached = 0, sum = 0;
    for (std::size_t e = 13; e < 256; ++e) total += histogram[e];
    for (int e = 13; e < 256 && reached == 0; ++e)
        if ((sum += histogram[static_cast<std::size_t>(e)]) >= static_cast<int>(total * 0.8f + 0.5f))
            reached = e;
    const int threshold = std::min(std::max(reached, 20), 50);
    for (std::size_t i = 0; i < edges.size(); ++i)
        edges[i] = edges[i] < threshold && p.skin[i] >= 101 ? 0 : 255;

    const Bytes before = edges;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            if (edges[static_cast<std::size_t>(y * w + x)] == 0) continue;
            int previous = windowSum(before, w, h, x, y, 1, 1);
            for (int half = 2; half <= (std::min(w, h) >= 400 ? 6 : 5); ++half) {
                const int count = windowSum(before, w, h, x, y, half, 1);
                if (count - previous < 2) {
                    for (int j = std::max(y - half, 0); j <= std::min(y + half, h - 1); ++j)
                        for (int i = std::max(x - half, 0); i <= std::min(x + half, w - 1); ++i)
                            edges[static_cast<std::size_t>(j * w + i)] = 0;
                    break;
                }
                previous = count;
            }
        }
    stackBlurEx(edges, w, h, w, 4);
    for (unsigned char& e : edges) e = e < 20 ? 0 : 255;
    return edges;
}

/// The plane of repaired cells for the radii from the largest down.
inline Bytes spotCells(const SpotPicture& p) {
    const int w = p.width, h = p.height;
    const Bytes grey = spotGrey(p), edges = spotFree(p, grey);
    Bytes cells(grey.size(), 0);
    float ratio = 1.0f;
    if (p.left >= 0) ratio = static_cast<float>(p.boxWidth * p.boxHeight) / static_cast<float>(w * h);
    if (ratio < 0.02f) return cells;
    for (int r = ratio < 0.08f ? 1 : 2; r >= 1; --r)
        for (int y = 3 * r + 2; y < h - 3 * r - 1; ++y)
            for (int x = 3 * r + 2; x < w - 3 * r - 1; ++x) {
                const int s = 2 * r + 1, far = r + 1;
                const auto box = [&](int dx, int dy) {
                    return windowSum(grey, w, h, x + dx, y + dy, r, 255);
                };
                bool spot = edges[static_cast<std::size_t>(y * w + x)] != 255 && box(0, 0) < s * s * 220;
                for (int dy = -far; spot && dy <= far; ++dy)
                    for (int dx = -far; spot && dx <= far; ++dx) {
                        const bool outer = std::abs(dx) == far || std::abs(dy) == far;
                        const bool middle = dx == 0 || dy == 0;
                        const bool corner = std::min(std::abs(dx), std::abs(dy)) == r &&
                                            std::max(std::abs(dx), std::abs(dy)) == far;
                        if (!outer || (!middle && !corner)) continue;
                        const int amount = middle ? (s - r) * s : s * s - (r + 1) * r;
                        spot = box(dx, dy) >= box(0, 0) + amount;
                    }
                if (!spot) continue;
                for (int j = -r; j <= r; ++j)
                    for (int i = -r; i <= r; ++i) cells[static_cast<std::size_t>((y + j) * w + x + i)] = 255;
            }
    return cells;
}

}  // namespace slow
