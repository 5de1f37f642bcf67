#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

#include "CrossPlateform/platform_win/stb_image_util/sizeLimit.h"
#include "readAll.h"

namespace zelfuzz {

/// What the first two bytes of an input choose; the image file follows them.
struct LoadOptions {
    static constexpr std::size_t kBytes = 2;

    bool keepAlpha, scrambled, rawFile;
    int maxSize;

    explicit LoadOptions(const unsigned char* input)
        : keepAlpha(input[0] & 1), scrambled(input[0] & 2), rawFile(input[0] & 4), maxSize(input[1]) {
        if (input[0] & 8) maxSize = -maxSize;
        if (input[0] & 16) maxSize <<= 8;
    }
};

/// Reads every byte that the caller of the loader may read, then frees the pixels. Ends the program where a
/// flattened picture is not opaque.
inline void checkAndFree(unsigned char* pixels, int width, int height, const LoadOptions& options) {
    const std::unique_ptr<unsigned char, decltype(&std::free)> owner(pixels, std::free);
    if (!pixels || width <= 0 || height <= 0) return;
    zellab::ImageSize size{width, height};
    // A side above 32768 is not scaled; the reduced size is then only the part that a host would read.
    if (options.keepAlpha && options.maxSize > 0) size = zellab::limitedSize(size, options.maxSize);
    const std::size_t count = zellab::sampleCount(size.width, size.height);
    readAll(pixels, 4 * count);
    unsigned opaque = 0xFF;
    for (std::size_t i = 0; i < count; ++i) opaque &= pixels[4 * i + 3];
    if (!options.keepAlpha && opaque != 0xFF) std::abort();
}

}  // namespace zelfuzz
