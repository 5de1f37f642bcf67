#include "overlayTable.h"

namespace zelassets {

namespace {

/// 2 a b / 255, rounded to nearest. A blend of 128 is half a step above the middle, and the rounding takes
/// that back for every base.
constexpr int doubledProduct(int a, int b) {
    return (2 * 2 * a * b + 255) / (2 * 255);
}

constexpr int overlaid(int base, int blend) {
    return base < 128 ? doubledProduct(base, blend) : 255 - doubledProduct(255 - base, 255 - blend);
}

}  // namespace

std::vector<unsigned char> overlayTable() {
    std::vector<unsigned char> texels;
    texels.reserve(256 * 256 * 4);
    for (int base = 0; base < 256; ++base)
        for (int blend = 0; blend < 256; ++blend) {
            const auto value = static_cast<unsigned char>(overlaid(base, blend));
            texels.insert(texels.end(), {value, value, value, 255});
        }
    return texels;
}

}  // namespace zelassets
