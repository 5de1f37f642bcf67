#include "beautykernel/blackeyecleaner/cheekRows.h"

#include <algorithm>

#include "zellab/imageproc/blur/stackBlur.h"

namespace zellab {

namespace {

constexpr float kBelowLid = 0.08f;  // of the face's height, from the lid to the cheek
constexpr int kBelowLidRows = 2;

int lowestLid(const EyeRegion& region, int first, int last) {
    float lowest = 0.0f;
    for (int i = first; i <= last; ++i)
        lowest = std::max(lowest, region.points[static_cast<std::size_t>(i)].y);
    return static_cast<int>(lowest);
}

}  // namespace

CheekRows::CheekRows(ConstImageView image, const EyeRegion& region) : m_colours(region.crop.width, 1) {
    const int below = static_cast<int>(static_cast<float>(region.face.height) * kBelowLid) + kBelowLidRows;
    const int radius = std::max(20, region.face.width / 120 + 8);
    // The band starts this far below the lids; in its blur a row looks as far up as down. It ends with the
    // crop: what lies below the cheeks has no say.
    const int cropEnd = region.crop.y + region.crop.height;
    const auto rowUnder = [&](int lid) {
        return std::clamp(region.face.y + lid + below + radius, region.crop.y, cropEnd - 1);
    };
    const int leftRow = rowUnder(lowestLid(region, 6, 9)), rightRow = rowUnder(lowestLid(region, 16, 19));
    const int top = std::max(std::min(leftRow, rightRow) - radius, region.crop.y);
    const int bottom = std::min(std::max(leftRow, rightRow) + radius + 1, cropEnd);
    const int width = region.crop.width;
    RgbaImage band = copyOf(image.crop(region.crop.x, top, width, bottom - top));
    StackBlurRGBA(band.view(), radius);

    const float between = (region.inCrop(region.points[5]).x + region.inCrop(region.points[10]).x) / 2.0f;
    for (int x = 0; x < width; ++x) {
        const int row = static_cast<float>(x) < between ? leftRow : rightRow;
        std::copy_n(band.view().at(x, row - top), 4, m_colours.view().at(x, 0));
    }
}

}  // namespace zellab
