#pragma once

#include <cmath>

#include "reference/slowTone.h"

/// The recursive Gaussian and the edge detector.

namespace slow {

/// One line of samples through both directions of the recursion.
inline void recursiveLine(std::vector<unsigned char*>& line, float sigma) {
    const float a = 1.695f / std::min(sigma, 250.0f), e = std::exp(-a), e2 = std::exp(-2.0f * a);
    const float k = (1.0f - e) * (1.0f - e) / (2.0f * a * e + 1.0f - e2);
    const float a0 = k, a1 = (a - 1.0f) * k * e, a2 = (a + 1.0f) * k * e, a3 = -k * e2;
    const float b1 = -2.0f * e, b2 = e2;
    const float cp = (a0 + a1) / (1.0f + b1 + b2), cn = (a2 + a3) / (1.0f + b1 + b2);
    const int n = static_cast<int>(line.size());
    std::vector<float> x, y(line.size()), z(line.size());
    for (const unsigned char* sample : line) x.push_back(*sample);
    for (int i = 0; i < n; ++i) {
        const float x1 = i > 0 ? x[i - 1] : x[0];
        const float y1 = i > 0 ? y[i - 1] : x[0] * cp, y2 = i > 1 ? y[i - 2] : x[0] * cp;
        y[i] = a0 * x[i] + a1 * x1 - b1 * y1 - b2 * y2;
    }
    for (int i = n - 1; i >= 0; --i) {
        const float last = x[n - 1];
        const float x1 = i + 1 < n ? x[i + 1] : last, x2 = i + 2 < n ? x[i + 2] : last;
        const float z1 = i + 1 < n ? z[i + 1] : last * cn, z2 = i + 2 < n ? z[i + 2] : last * cn;
        z[i] = a2 * x1 + a3 * x2 - b1 * z1 - b2 * z2;
    }
    for (int i = 0; i < n; ++i) *line[i] = static_cast<unsigned char>(std::clamp(y[i] + z[i], 0.0f, 255.0f));
}

inline void recursiveGaussian(Bytes& pixels, int width, int height, int rowBytes, float sigmaX,
                              float sigmaY) {
    const int channels = rowBytes / width;
    const auto at = gridOf(pixels, width, channels);
    for (int c = 0; c < (channels == 4 ? 3 : 1); ++c) {
        for (int y = 0; y < height && width > 1 && sigmaX >= 0.1f; ++y) {
            std::vector<unsigned char*> line;
            for (int x = 0; x < width; ++x) line.push_back(&at(x, y, c));
            recursiveLine(line, sigmaX);
        }
        for (int x = 0; x < width && height > 1 && sigmaY >= 0.1f; ++x) {
            std::vector<unsigned char*> line;
            for (int y = 0; y < height; ++y) line.push_back(&at(x, y, c));
            recursiveLine(line, sigmaY);
        }
    }
}

/// Steps across and down by the weights 1, 2, 1, inside a plane.
inline std::array<int, 2> sobel(const Bytes& plane, int width, int x, int y) {
    const auto at = gridOf(plane, width);
    int across = 0, down = 0;
    for (int d = -1; d <= 1; ++d) {
        across += (2 - std::abs(d)) * (at(x + 1, y + d) - at(x - 1, y + d));
        down += (2 - std::abs(d)) * (at(x + d, y + 1) - at(x + d, y - 1));
    }
    return {across, down};
}

/// Canny edges: 255 on an edge, 0 elsewhere. Both sides are above 1.
inline Bytes cannyEdges(const Bytes& plane, int width, int height, int low, int high, bool autoThreshold) {
    const auto index = [&](int x, int y) { return static_cast<std::size_t>(y * width + x); };
    std::vector<int> gx(plane.size()), gy(plane.size()), magnitude(plane.size());
    // Central differences are halved; at a border the difference to the one neighbour is taken whole.
    const auto gradient = [](int before, int here, int after, bool first, bool last) {
        return first ? after - here : last ? here - before : (after - before) / 2;
    };
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const std::size_t i = index(x, y);
            const auto at = [&](int u, int v) {
                return plane[index(std::clamp(u, 0, width - 1), std::clamp(v, 0, height - 1))];
            };
            gx[i] = gradient(at(x - 1, y), at(x, y), at(x + 1, y), x == 0, x == width - 1);
            gy[i] = gradient(at(x, y - 1), at(x, y), at(x, y + 1), y == 0, y == height - 1);
            magnitude[i] = static_cast<int>(std::sqrt(static_cast<double>(gx[i] * gx[i] + gy[i] * gy[i])));
        }

    Bytes edges(plane.size(), 0);
    for (int y = 1; y < height - 1; ++y)
        for (int x = 1; x < width - 1; ++x) {
            const std::size_t i = index(x, y);
            if (magnitude[i] == 0) continue;
            const int ax = std::abs(gx[i]), ay = std::abs(gy[i]), diagonalX = gx[i] * gy[i] >= 0 ? 1 : -1;
            const float ratio = static_cast<float>(std::min(ax, ay)) / static_cast<float>(std::max(ax, ay));
            // The two neighbours on one side: straight along the larger component, and the diagonal one.
            const int dx = ay > ax ? 0 : 1, dy = ay > ax ? 1 : 0;
            const int ex = ay > ax ? diagonalX : 1, ey = ay > ax ? 1 : diagonalX;
            const auto between = [&](int side) {
                const int straight = magnitude[index(x + side * dx, y + side * dy)];
                const int diagonal = magnitude[index(x + side * ex, y + side * ey)];
                return static_cast<float>(straight) + (diagonal - straight) * ratio;
            };
            const auto here = static_cast<float>(magnitude[i]);
            if (here >= between(1) && here >= between(-1)) edges[i] = 128;
        }

    if (autoThreshold) {
        int count = 0, sum = 0;
        std::array<int, 256> histogram{};
        for (std::size_t i = 0; i < edges.size(); ++i)
            if (edges[i] == 128) ++count, ++histogram[static_cast<std::size_t>(magnitude[i])];
        const int wanted = static_cast<int>(count * 0.9f + 0.5f);
        int bin = 1;
        for (sum = histogram[1]; sum < wanted && bin < 255; sum += histogram[static_cast<std::size_t>(bin)])
            ++bin;
        high = std::max(bin, 16);
        low = std::max(static_cast<int>(high * 0.35f + 0.5f), 1);
    } else if (low > high) {
        std::swap(low, high);
    }

    // Strong pixels, then whatever touches one and is not weak, until nothing changes.
    for (std::size_t i = 0; i < edges.size(); ++i)
        if (edges[i] == 128 && magnitude[i] >= high) edges[i] = 255;
    for (bool changed = true; changed;) {
        changed = false;
        for (int y = 1; y < height - 1; ++y)
            for (int x = 1; x < width - 1; ++x) {
                const std::size_t i = index(x, y);
                if (edges[i] != 128 || magnitude[i] < low) continue;
                for (int v = y - 1; v <= y + 1; ++v)
                    for (int u = x - 1; u <= x + 1; ++u)
                        if (edges[index(u, v)] == 255) edges[i] = 255, changed = true;
            }
    }
    for (unsigned char& e : edges) e = e == 255 ? 255 : 0;
    return edges;
}

}  // namespace slow
