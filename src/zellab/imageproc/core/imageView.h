#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>

/// Windows on pixel buffers; what owns pixels stands in ownedImage.h. Origin is the top left, x runs right, y runs down, everywhere in the library.

namespace zellab {

using Byte = unsigned char;

/// Window on interleaved 8-bit RGBA (byte 0 red); owns nothing, copies no pixel.
/// B is `Byte` (writable) or `const Byte` (read-only).
template <typename B>
struct RgbaView {
    static constexpr int kChannels = 4;

    B* data = nullptr;          // first byte of row 0
    int width = 0, height = 0;  // pixels
    std::ptrdiff_t stride = 0;  // bytes from a row to the next, >= 4 * width

    RgbaView() = default;
    RgbaView(B* d, int w, int h) : RgbaView(d, w, h, std::ptrdiff_t{kChannels} * w) {}
    RgbaView(B* d, int w, int h, std::ptrdiff_t s) : data(d), width(w), height(h), stride(s) {}

    bool valid() const { return data && width > 0 && height > 0; }
    B* row(int y) const {
        assert(y >= 0 && y < height);
        return data + y * stride;
    }
    B* at(int x, int y) const {
        assert(x >= 0 && x < width);
        return row(y) + std::ptrdiff_t{kChannels} * x;
    }
    RgbaView crop(int x, int y, int w, int h) const {
        assert(x >= 0 && y >= 0 && x + w <= width && y + h <= height);
        return {data + y * stride + std::ptrdiff_t{kChannels} * x, w, h, stride};
    }
    operator RgbaView<const B>() const { return {data, width, height, stride}; }
};
using ImageView = RgbaView<Byte>;
using ConstImageView = RgbaView<const Byte>;

/// Window on a plane of T, one sample a pixel; owns nothing.
template <typename T>
struct PlaneView {
    T* data = nullptr;
    int width = 0, height = 0;
    std::ptrdiff_t stride = 0;  // samples from a row to the next, >= width

    PlaneView() = default;
    PlaneView(T* d, int w, int h) : PlaneView(d, w, h, w) {}
    PlaneView(T* d, int w, int h, std::ptrdiff_t s) : data(d), width(w), height(h), stride(s) {}

    bool valid() const { return data && width > 0 && height > 0; }
    T* row(int y) const {
        assert(y >= 0 && y < height);
        return data + y * stride;
    }
    PlaneView crop(int x, int y, int w, int h) const {
        assert(x >= 0 && y >= 0 && x + w <= width && y + h <= height);
        return {data + y * stride + x, w, h, stride};
    }
    operator PlaneView<const T>() const { return {data, width, height, stride}; }
};

/// Number of samples of a width by height picture, computed where it cannot overflow.
constexpr std::size_t sampleCount(int width, int height, int channels = 1) {
    return width > 0 && height > 0 ? static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                                         static_cast<std::size_t>(channels)
                                   : 0;
}

}  // namespace zellab
