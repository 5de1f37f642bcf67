#include "cli/drawing/depthColours.h"

#include <array>
#include <cstddef>

namespace zelcli {

namespace {

/// Colours at even steps from far to near, chosen so that their luma rises by about 40 a step.
constexpr int kStops[][3] = {{18, 14, 66},   {32, 62, 140},  {20, 122, 150},
                             {62, 168, 112}, {206, 196, 60}, {255, 246, 214}};
constexpr int kLastStop = static_cast<int>(std::size(kStops)) - 1;

using Colours = std::array<std::array<unsigned char, 3>, 256>;

constexpr Colours buildColours() {
    Colours colours{};
    for (int v = 0; v < 256; ++v) {
        const int at = v * kLastStop, stop = at / 255 < kLastStop ? at / 255 : kLastStop - 1;
        const int share = at - 255 * stop;  // of the next stop, of 255
        for (std::size_t c = 0; c < 3; ++c)
            colours[static_cast<std::size_t>(v)][c] = static_cast<unsigned char>(
                (kStops[stop][c] * (255 - share) + kStops[stop + 1][c] * share + 127) / 255);
    }
    return colours;
}

constexpr Colours kColours = buildColours();

}  // namespace

Image colourDepth(const Mask& depth) {
    Image image{depth.width, depth.height, {}};
    image.rgba.reserve(4 * depth.samples.size());
    for (const unsigned char v : depth.samples) {
        const auto& colour = kColours[v];
        image.rgba.insert(image.rgba.end(), {colour[0], colour[1], colour[2], 255});
    }
    return image;
}

}  // namespace zelcli
