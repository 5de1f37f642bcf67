#include "cli/files/orientation.h"

#include <cstddef>
#include <cstring>
#include <utility>

namespace zelcli {

namespace {

/// Where upright pixel (x, y) comes from: start + x * perColumn + y * perRow, in pixels of the stored
/// picture.
struct Walk {
    std::ptrdiff_t start = 0, perColumn = 0, perRow = 0;
};

Walk walkOf(int orientation, std::ptrdiff_t width, std::ptrdiff_t height) {
    const std::ptrdiff_t right = width - 1, bottom = (height - 1) * width;
    switch (orientation) {
        case 2:
            return {right, -1, width};
        case 3:
            return {bottom + right, -1, -width};
        case 4:
            return {bottom, 1, -width};
        case 5:
            return {0, width, 1};
        case 6:
            return {bottom, -width, 1};
        case 7:
            return {bottom + right, -width, -1};
        case 8:
            return {right, width, -1};
        default:
            return {0, 1, width};
    }
}

}  // namespace

void turnUpright(Image& image, int orientation) {
    if (orientation < 2 || orientation > 8) return;
    const Walk walk = walkOf(orientation, image.width, image.height);
    if (orientation >= 5) std::swap(image.width, image.height);

    std::vector<unsigned char> upright(image.rgba.size());
    unsigned char* target = upright.data();
    for (std::ptrdiff_t y = 0; y < image.height; ++y)
        for (std::ptrdiff_t x = 0; x < image.width; ++x, target += 4)
            std::memcpy(target, image.rgba.data() + 4 * (walk.start + x * walk.perColumn + y * walk.perRow),
                        4);
    image.rgba = std::move(upright);
}

}  // namespace zelcli
