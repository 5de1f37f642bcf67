#include "cli/files/pixelRows.h"

#include <algorithm>

namespace zelcli {

namespace {

bool isOpaque(std::span<const unsigned char> rgba) {
    for (std::size_t i = 3; i < rgba.size(); i += 4)
        if (rgba[i] != 255) return false;
    return true;
}

bool isGrey(std::span<const unsigned char> rgba) {
    for (std::size_t i = 0; i < rgba.size(); i += 4)
        if (rgba[i] != rgba[i + 1] || rgba[i] != rgba[i + 2]) return false;
    return true;
}

/// The first channels of each pixel.
template <std::size_t kChannels>
void copyFirst(std::span<const unsigned char> rgba, unsigned char* out) {
    for (std::size_t i = 0; i < rgba.size(); i += 4, out += kChannels)
        std::copy_n(rgba.data() + i, kChannels, out);
}

/// The first channels of each pixel as they look on white.
template <std::size_t kChannels>
void layOnWhite(std::span<const unsigned char> rgba, unsigned char* out) {
    for (std::size_t i = 0; i < rgba.size(); i += 4, out += kChannels) {
        const int alpha = rgba[i + 3];
        if (alpha == 255)
            std::copy_n(rgba.data() + i, kChannels, out);
        else
            for (std::size_t c = 0; c < kChannels; ++c)
                out[c] = static_cast<unsigned char>((rgba[i + c] * alpha + 255 * (255 - alpha) + 127) / 255);
    }
}

}  // namespace

PackedPixels packPixels(const Image& image, std::span<const unsigned char> rgba, bool keepAlpha) {
    const bool alpha = keepAlpha && !isOpaque(rgba);
    // Grey with alpha is rare enough to travel as colour.
    const bool grey = image.origin && image.origin->traits.grey && !alpha && isGrey(rgba);
    PackedPixels packed{image.width, image.height, grey ? 1 : alpha ? 4 : 3, {}};
    if (alpha) {
        packed.bytes.assign(rgba.begin(), rgba.end());
        return packed;
    }
    packed.bytes.resize(rgba.size() / 4 * static_cast<std::size_t>(packed.channels));
    const auto pack =
        grey ? (keepAlpha ? copyFirst<1> : layOnWhite<1>) : (keepAlpha ? copyFirst<3> : layOnWhite<3>);
    pack(rgba, packed.bytes.data());
    return packed;
}

}  // namespace zelcli
