#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

/// The processor's convolution as it is told, one obvious loop a step.

namespace slow {

using Bytes = std::vector<unsigned char>;

struct BokehLook {
    float amount, intensity, highlights, vivid;
};

/// Kernel of odd size n; rows of n bytes. Frame 0 as it stands, or a turned frame.
inline Bytes bokehKernel(const Bytes& strip, int n, bool turned, int record) {
    if (n == 1) return {1};
    Bytes kernel;
    const float a = static_cast<float>(record / 6) * 18.0f / 180.0f * 3.1415927f;
    const float f = static_cast<float>(record % 6), s = 0.6875f;
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) {
            if (!turned) {
                // In whole numbers: ((i / (n - 1) - 0.5) * 0.6875 + 0.5) * 176 = 27.5 + 121 i / (n - 1).
                const auto place = [n](int k) {
                    return static_cast<std::size_t>((55 * (n - 1) + 242 * k) / (2 * (n - 1)));
                };
                kernel.push_back(strip[place(i) * 1056 + place(j)]);
                continue;
            }
            const float u = (static_cast<float>(i) / static_cast<float>(n - 1) - 0.5f) * s;
            const float v = (static_cast<float>(j) / static_cast<float>(n - 1) - 0.5f) * s;
            const float tiny = 1.0f / 1024.0f;  // whole but for rounding is whole
            const float column =
                std::floor((v * std::cos(a) - u * std::sin(a) + 0.5f + f) / 6.0f * 1056.0f + tiny);
            const float row = std::floor((v * std::sin(a) + u * std::cos(a) + 0.5f) * 176.0f + tiny);
            kernel.push_back(strip[static_cast<std::size_t>(row) * 1056 + static_cast<std::size_t>(column)]);
        }
    return kernel;
}

inline std::vector<std::uint16_t> bokehWeights(const Bytes& rgba, const BokehLook& look) {
    const float base = std::exp(std::sqrt(look.highlights) * look.intensity * 4.0f);
    const auto g = [&](int i) { return std::pow(static_cast<float>(i) / 255.0f, look.amount); };
    std::vector<std::uint16_t> weights;
    for (std::size_t i = 0; i < rgba.size(); i += 4) {
        const int high = std::max({rgba[i], rgba[i + 1], rgba[i + 2]});
        const int low = std::min({rgba[i], rgba[i + 1], rgba[i + 2]});
        const float w = std::pow(base, (g(high) - g(low)) * look.vivid + g(high) * 1.08f) * 16.0f;
        weights.push_back(static_cast<std::uint16_t>(w > 65535.0f ? 65535 : std::lroundf(w)));
    }
    return weights;
}

/// `records` may be empty: no spin. The whole picture, no tiles.
inline Bytes bokehGather(const Bytes& rgba, int width, int height, const Bytes& radius, int maximum,
                         const Bytes& strip, const Bytes& records, const BokehLook& look) {
    std::vector<std::vector<Bytes>> kernels(records.empty() ? 1 : 120);
    for (std::size_t k = 0; k < kernels.size(); ++k)
        for (int r = 0; r <= 30; ++r)
            kernels[k].push_back(bokehKernel(strip, 2 * r + 1, !records.empty(), static_cast<int>(k)));
    const std::vector<std::uint16_t> weights = bokehWeights(rgba, look);
    const auto at = [&](int x, int y) {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
    };
    Bytes out;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int r = std::min<int>(radius[at(x, y)], maximum);
            std::uint64_t sum[4] = {};
            for (int ny = y - r; ny <= y + r; ++ny)
                for (int nx = x - r; nx <= x + r; ++nx) {
                    if (nx < 0 || ny < 0 || nx >= width || ny >= height) continue;
                    const std::size_t n = at(nx, ny);
                    const int rn = radius[n];
                    if (std::max(std::abs(nx - x), std::abs(ny - y)) > rn) continue;
                    const Bytes& kernel =
                        kernels[records.empty() ? 0 : records[n]][static_cast<std::size_t>(rn)];
                    const int place = (rn - (ny - y)) * (2 * rn + 1) + rn - (nx - x);
                    const std::uint64_t w =
                        std::uint64_t{kernel[static_cast<std::size_t>(place)]} * weights[n];
                    for (std::size_t c = 0; c < 3; ++c) sum[c] += rgba[4 * n + c] * w;
                    sum[3] += w;
                }
            float c[3];
            for (std::size_t i = 0; i < 3; ++i)
                c[i] = sum[3] == 0 ? rgba[4 * at(x, y) + i]
                                   : static_cast<float>(sum[i]) / static_cast<float>(sum[3]);
            if (look.vivid > 0.0f && sum[3] != 0) {
                const float f = std::pow(look.intensity, 10.3f) * look.vivid * 0.3f + 1.0f;
                const float grey = (0.2125f * c[0] + 0.7154f * c[1] + 0.0721f * c[2]) * f;
                for (float& v : c) v = (1.0f - f) * v + grey;
            }
            for (const float v : c)
                out.push_back(static_cast<unsigned char>(std::clamp(std::round(v), 0.0f, 255.0f)));
            out.push_back(255);
        }
    return out;
}

}  // namespace slow
