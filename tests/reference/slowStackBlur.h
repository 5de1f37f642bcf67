#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <vector>

/// The stack blur written as its meaning: a triangle-weighted mean around every sample, rounded down, along
/// rows and then along columns. The line repeats its end samples.

namespace slow {

using Bytes = std::vector<unsigned char>;

/// The samples of a picture or plane by their place.
template <typename Samples>
struct Grid {
    Samples& samples;
    int width, channels;
    auto& operator()(int x, int y, int channel = 0) const {
        return samples[static_cast<std::size_t>((y * width + x) * channels + channel)];
    }
};
template <typename Samples>
Grid<Samples> gridOf(Samples& samples, int width, int channels = 1) {
    return {samples, width, channels};
}

inline int triangleMean(const std::vector<int>& line, int centre, int radius) {
    const int last = static_cast<int>(line.size()) - 1;
    long long sum = 0;
    for (int d = -radius; d <= radius; ++d)
        sum += static_cast<long long>(radius + 1 - std::abs(d)) *
               line[static_cast<std::size_t>(std::clamp(centre + d, 0, last))];
    return static_cast<int>(sum / (static_cast<long long>(radius + 1) * (radius + 1)));
}

inline void stackBlurChannel(Bytes& pixels, int width, int height, int channels, int channel, int radius) {
    const auto grid = gridOf(pixels, width, channels);
    const auto at = [&](int x, int y) -> unsigned char& { return grid(x, y, channel); };
    for (int y = 0; y < height; ++y) {
        std::vector<int> line;
        for (int x = 0; x < width; ++x) line.push_back(at(x, y));
        for (int x = 0; x < width; ++x) at(x, y) = static_cast<unsigned char>(triangleMean(line, x, radius));
    }
    for (int x = 0; x < width; ++x) {
        std::vector<int> line;
        for (int y = 0; y < height; ++y) line.push_back(at(x, y));
        for (int y = 0; y < height; ++y) at(x, y) = static_cast<unsigned char>(triangleMean(line, y, radius));
    }
}

/// The radius that the class form really uses: a large one becomes a little less than a quarter of the side.
inline int limitedStackRadius(int width, int height, int radius) {
    const int half = std::min(width, height) / 2;
    return radius > half / 2 ? (half - 1) / 2 : radius;
}

inline void stackBlurEx(Bytes& pixels, int width, int height, int rowBytes, int radius) {
    const int used = limitedStackRadius(width, height, radius);
    if (used <= 0) return;
    const bool plane = rowBytes / width == 1;
    for (int c = 0; c < (plane ? 1 : 3); ++c) stackBlurChannel(pixels, width, height, plane ? 1 : 4, c, used);
}

inline void stackBlurAllChannels(Bytes& pixels, int width, int height, int radius) {
    for (int c = 0; c < 4; ++c) stackBlurChannel(pixels, width, height, 4, c, radius);
}

inline void maskStackBlur(Bytes& pixels, int width, int height, int radius) {
    stackBlurChannel(pixels, width, height, 4, 0, radius);
}

}  // namespace slow
