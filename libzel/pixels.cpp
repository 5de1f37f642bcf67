#include "libzel/pixels.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "libzel/call.h"

namespace zel {

namespace {

constexpr std::size_t kMostPixels = std::size_t{1} << 28;  // one gigabyte of RGBA

std::size_t bytesPerPixel(zel_format format) {
    switch (format) {
        case ZEL_RGBA8:
        case ZEL_BGRA8:
            return 4;
        case ZEL_GRAY8:
            return 1;
        case ZEL_GRAY16:
            break;
    }
    return 2;
}

void check(const zel_pixels* pointer, const char* what) {
    const zel_pixels& pixels = given(pointer, what);
    const std::string name = what;
    if (!pixels.data) throw badArgument(name + " has no data");
    if (pixels.width < 1 || pixels.height < 1 || pixels.width > ZEL_LONGEST_SIDE ||
        pixels.height > ZEL_LONGEST_SIDE)
        throw badArgument(name + " is " + std::to_string(pixels.width) + " by " +
                          std::to_string(pixels.height) + " pixels; each side must be 1 to 32767");
    if (static_cast<std::size_t>(pixels.width) * static_cast<std::size_t>(pixels.height) > kMostPixels)
        throw badArgument(name + " has more than 256 million pixels");
    if (!isOneOf(pixels.format, ZEL_RGBA8, ZEL_GRAY16)) throw badArgument(name + " has no zel_format");
    const std::size_t row = static_cast<std::size_t>(pixels.width) * bytesPerPixel(pixels.format);
    if (pixels.stride != 0 && pixels.stride < row)
        throw badArgument(name + " has a stride of " + std::to_string(pixels.stride) +
                          " bytes below its row of " + std::to_string(row));
    if (pixels.stride > SIZE_MAX / ZEL_LONGEST_SIDE)
        throw badArgument(name + " has a stride that is too large");
    if (pixels.flags & ~ZEL_PREMULTIPLIED) throw badArgument(name + " has unknown flags");
}

std::size_t strideOf(const zel_pixels& pixels) {
    return pixels.stride ? pixels.stride
                         : static_cast<std::size_t>(pixels.width) * bytesPerPixel(pixels.format);
}

unsigned char* rowOf(const zel_pixels& pixels, int y) {
    return static_cast<unsigned char*>(pixels.data) + static_cast<std::size_t>(y) * strideOf(pixels);
}

constexpr int kOpaque = 255;

/// Colour of a premultiplied pixel, rounded; multiplied gives every such pixel back.
unsigned char divided(int colour, int alpha) {
    return static_cast<unsigned char>(alpha == 0 ? 0
                                                 : std::min(kOpaque, (colour * kOpaque + alpha / 2) / alpha));
}

unsigned char multiplied(int colour, int alpha) {
    return static_cast<unsigned char>((colour * alpha + kOpaque / 2) / kOpaque);
}

/// What becomes of a colour between the caller's alpha and the straight one; null: nothing.
using Colour = unsigned char (*)(int colour, int alpha);

/// Each pixel in straight RGBA from the caller's order, or the other way round.
void convertRow(const unsigned char* from, unsigned char* to, int width, bool swaps, Colour colour) {
    for (int x = 0; x < width; ++x, from += 4, to += 4) {
        const std::array<unsigned char, 4> p{from[swaps ? 2 : 0], from[1], from[swaps ? 0 : 2], from[3]};
        for (std::size_t c = 0; c < 3; ++c) to[c] = colour ? colour(p[c], p[3]) : p[c];
        to[3] = p[3];
    }
}

}  // namespace

void checkColour(const zel_pixels* pixels, const char* what) {
    check(pixels, what);
    if (pixels->format != ZEL_RGBA8 && pixels->format != ZEL_BGRA8)
        throw badArgument(std::string(what) + " must be ZEL_RGBA8 or ZEL_BGRA8");
}

void checkGrey(const zel_pixels* pixels, const char* what) {
    check(pixels, what);
    if (pixels->format != ZEL_GRAY8) throw badArgument(std::string(what) + " must be ZEL_GRAY8");
}

void checkPlane(const zel_pixels* pixels, int width, int height, const char* what) {
    checkGrey(pixels, what);
    if (pixels->width != width || pixels->height != height)
        throw badArgument(std::string(what) + " must be of the picture's size, " + std::to_string(width) +
                          " by " + std::to_string(height));
}

Image imageOf(const zel_pixels& pixels) {
    Image image{pixels.width, pixels.height, {}};
    const std::size_t row = std::size_t{4} * static_cast<std::size_t>(pixels.width);
    // Inserted row by row, so that no byte is written twice but those that are converted.
    image.rgba.reserve(row * static_cast<std::size_t>(pixels.height));
    const bool swaps = pixels.format == ZEL_BGRA8, divides = pixels.flags & ZEL_PREMULTIPLIED;
    for (int y = 0; y < pixels.height; ++y) {
        const unsigned char* const from = rowOf(pixels, y);
        image.rgba.insert(image.rgba.end(), from, from + row);
        unsigned char* const own = image.rgba.data() + row * static_cast<std::size_t>(y);
        if (swaps || divides) convertRow(own, own, pixels.width, swaps, divides ? &divided : nullptr);
    }
    return image;
}

Mask maskOf(const zel_pixels& pixels) {
    Mask mask{pixels.width, pixels.height, {}};
    mask.samples.reserve(static_cast<std::size_t>(pixels.width) * static_cast<std::size_t>(pixels.height));
    for (int y = 0; y < pixels.height; ++y) {
        const unsigned char* const row = rowOf(pixels, y);
        mask.samples.insert(mask.samples.end(), row, row + pixels.width);
    }
    return mask;
}

void writeBack(const Image& image, const zel_pixels& pixels) {
    const std::size_t row = std::size_t{4} * static_cast<std::size_t>(pixels.width);
    const bool swaps = pixels.format == ZEL_BGRA8, multiplies = pixels.flags & ZEL_PREMULTIPLIED;
    for (int y = 0; y < pixels.height; ++y) {
        const unsigned char* const from = image.rgba.data() + row * static_cast<std::size_t>(y);
        unsigned char* const to = rowOf(pixels, y);
        if (swaps || multiplies)
            convertRow(from, to, pixels.width, swaps, multiplies ? &multiplied : nullptr);
        else
            std::copy_n(from, row, to);
    }
}

void writeBack(const Mask& mask, const zel_pixels& pixels) {
    const auto width = static_cast<std::size_t>(pixels.width);
    for (int y = 0; y < pixels.height; ++y)
        std::copy_n(mask.samples.data() + width * static_cast<std::size_t>(y), width, rowOf(pixels, y));
}

zel_pixels pixelsOver(Image& image) {
    return {image.rgba.data(), image.width, image.height, 0, ZEL_RGBA8, 0};
}

zel_pixels pixelsOver(Mask& mask) {
    return {mask.samples.data(), mask.width, mask.height, 0, ZEL_GRAY8, 0};
}

}  // namespace zel
