#pragma once

#include <cstddef>
#include <vector>

#include "zel/zel.h"

namespace zelgimp {

/// Packed samples, top row first.
/// Channels 4: straight RGBA in the numbers of the layer's own colour space. Channels 1: a mask or a depth map.
template <int channels>
struct Samples {
    int width = 0, height = 0;
    std::vector<unsigned char> bytes;

    Samples() = default;
    Samples(int w, int h)
        : width(w),
          height(h),
          bytes(static_cast<std::size_t>(channels) * static_cast<std::size_t>(w) *
                static_cast<std::size_t>(h)) {}

    const unsigned char* at(int x, int y) const {
        return bytes.data() + static_cast<std::size_t>(channels) *
                                  (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                                   static_cast<std::size_t>(x));
    }
    bool operator==(const Samples&) const = default;
};
using Rgba = Samples<4>;
using Grey = Samples<1>;

/// What the library takes. It has one kind of pixels for reading and for writing.
inline zel_pixels pixelsOf(const Rgba& picture) {
    return {const_cast<unsigned char*>(picture.bytes.data()), picture.width, picture.height, 0, ZEL_RGBA8, 0};
}
inline zel_pixels pixelsOf(const Grey& plane) {
    return {const_cast<unsigned char*>(plane.bytes.data()), plane.width, plane.height, 0, ZEL_GRAY8, 0};
}

}  // namespace zelgimp
