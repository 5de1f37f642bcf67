#pragma once

#include <cstdlib>
#include <memory>

namespace zellab {

/// Pixels that end with the host, which releases them with free(): every buffer of the loader comes from
/// malloc.
struct FreeDeleter {
    void operator()(unsigned char* pixels) const { std::free(pixels); }
};
using ImageBuffer = std::unique_ptr<unsigned char[], FreeDeleter>;

/// Width and height in pixels.
struct ImageSize {
    int width = 0, height = 0;

    bool operator==(const ImageSize&) const = default;
};

}  // namespace zellab
