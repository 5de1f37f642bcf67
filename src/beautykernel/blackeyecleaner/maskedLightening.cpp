#include "beautykernel/blackeyecleaner/maskedLightening.h"

#include <algorithm>

#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/core/luma.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

namespace {

/// Moves darker pixels to the smooth picture by the weight.
void lighten(ImageView area, ConstImageView smooth, PlaneView<const Byte> weight) {
    for (int y = 0; y < area.height; ++y)
        for (int x = 0; x < area.width; ++x) {
            Byte* p = area.at(x, y);
            const Byte* s = smooth.at(x, y);
            const int w = weight.row(y)[x];
            if (w == 0 || lumaOf(p) >= lumaOf(s)) continue;
            for (int c = 0; c < 3; ++c) p[c] = static_cast<Byte>((s[c] * w + p[c] * (255 - w) + 127) / 255);
        }
}

/// Lightens a box by a weight of its size, against itself smoothed.
void lightenArea(ImageView area, const Plane<Byte>& weight, int radius) {
    RgbaImage smooth = copyOf(area);
    for (int pass = 0; pass < 2; ++pass) StackBlurRGBA(smooth.view(), radius);
    lighten(area, smooth.view(), weight.view());
}

}  // namespace

void lightenUnderMask(ImageView image, PlaneView<const Byte> mask) {
    if (!image.valid() || !mask.valid()) return;
    const PixelBox marked = markedBox(mask, 0);
    if (marked.empty()) return;
    // The surroundings, twice as large as the marks, give the colour.
    const int reach = std::max({marked.x.length(), marked.y.length(), 8});
    const Span xs = widen(marked.x, reach / 2, image.width), ys = widen(marked.y, reach / 2, image.height);
    Plane<Byte> weight = copyOf(mask.crop(xs.begin, ys.begin, xs.length(), ys.length()));
    StackBlurGray(weight.view(), std::max(reach / 16, 2));
    lightenArea(image.crop(xs.begin, ys.begin, xs.length(), ys.length()), weight, reach / 4);
}

void lightenRectangle(ImageView image, const PixelBox& rectangle) {
    if (!image.valid()) return;
    const auto limited = [](Span span, int size) {
        return Span{std::clamp(span.begin, 0, size), std::clamp(span.end, 0, size)};
    };
    const Span xs = limited(rectangle.x, image.width), ys = limited(rectangle.y, image.height);
    if (xs.length() < 1 || ys.length() < 1) return;
    const int radius = std::max(std::min(xs.length(), ys.length()) / 4, 1);
    Plane<Byte> weight(xs.length(), ys.length());
    for (int row = 0; row < weight.height(); ++row)
        for (int column = 0; column < weight.width(); ++column) {
            const int border =
                std::min({row, column, weight.height() - 1 - row, weight.width() - 1 - column});
            weight.view().row(row)[column] = static_cast<Byte>(std::min(border * 255 / radius, 255));
        }
    lightenArea(image.crop(xs.begin, ys.begin, xs.length(), ys.length()), weight, radius);
}

}  // namespace zellab
