#pragma once

#include <algorithm>
#include <vector>

#include "bokeh/cpuTiles.h"
#include "support/randomImage.h"

namespace zeltest {

/// A small working picture with all that its convolution needs.
struct BokehCase {
    int width, height;
    Bytes rgba, radius, strip, records;  // records empty: no spin
    zellab::Bokeh::Look look;
    int maximum = 30;

    zellab::Bokeh::ConvolutionSource source() const {
        const auto plane = [&](const Bytes& bytes) {
            return bytes.empty() ? zellab::PlaneView<const unsigned char>{}
                                 : zellab::PlaneView<const unsigned char>(bytes.data(), width, height);
        };
        return {{rgba.data(), width, height},
                plane(radius),
                maximum,
                {strip.data(), zellab::Bokeh::kStripWidth, zellab::Bokeh::kStripHeight},
                plane(records),
                zellab::Bokeh::lookValues(look)};
    }
};

/// A strip whose frames are random within a disc, so that every turn stays inside its frame.
inline Bytes randomStrip(unsigned seed) {
    Bytes strip = randomPlane(1056, 176, seed);
    for (int i = 0; i < 1056 * 176; ++i) {
        const int x = i % 1056 % 176 - 88, y = i / 1056 - 88;
        if (x * x + y * y > 80 * 80) strip[static_cast<std::size_t>(i)] = 0;
    }
    return strip;
}

/// Patches of one radius with hard steps between them, some pixels alone: what depth edges make.
inline Bytes patchyRadius(int width, int height, int largest, unsigned seed) {
    Bytes noise = randomPlane(width, height, seed), radius(noise.size());
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const auto i = static_cast<std::size_t>(y * width + x);
            const int patch = (x / 23 * 7 + y / 17 * 11 + static_cast<int>(seed)) % (largest + 1);
            radius[i] = static_cast<unsigned char>(noise[i] < 16 ? noise[i] % (largest + 1) : patch);
        }
    return radius;
}

/// The tiles put together; every pixel must have been written by exactly one.
inline Bytes assemble(const std::vector<zellab::Bokeh::CpuTile>& tiles, int width, int height) {
    Bytes picture(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4, 0);
    for (const auto& tile : tiles)
        for (int y = 0; y < tile.place.height; ++y) {
            const auto from = tile.pixels.begin() + std::ptrdiff_t{4} * tile.place.width * y;
            const auto to = picture.begin() + 4 * (std::ptrdiff_t{tile.place.y + y} * width + tile.place.x);
            if (to[3] != 0) return {};
            std::copy_n(from, std::ptrdiff_t{4} * tile.place.width, to);
        }
    return picture;
}

}  // namespace zeltest
