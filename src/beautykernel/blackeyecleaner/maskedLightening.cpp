#include "beautykernel/blackeyecleaner/maskedLightening.h"

#include <algorithm>
#include <cstring>

#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/luma.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/poisson/markedBox.h"

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
    lighten(area, {smooth.data(), area.width, area.height}, weight.view());
}

}  // namespace

void lightenUnderMask(unsigned char* image, int width, int height, const unsigned char* mask) {
    const ImageView picture(image, width, height);
    const PlaneView<const Byte> marks(mask, width, height);
    if (!picture.valid() || !marks.valid()) return;
    const PixelBox marked = markedBox(marks, 0);
    if (marked.empty()) return;
    // The surroundings, twice as large as the marks, give the colour.
    const int reach = std::max({marked.x.length(), marked.y.length(), 8});
    const Span xs = widen(marked.x, reach / 2, width), ys = widen(marked.y, reach / 2, height);
    Plane<Byte> weight(xs.length(), ys.length());
    for (int y = 0; y < weight.height(); ++y)
        std::memcpy(weight.view().row(y), marks.row(ys.begin + y) + xs.begin,
                    static_cast<std::size_t>(weight.width()));
    StackBlurGray(weight.view(), std::max(reach / 16, 2));
    lightenArea(picture.crop(xs.begin, ys.begin, xs.length(), ys.length()), weight, reach / 4);
}

void lightenRectangle(unsigned char* image, int width, int height, int x, int y, int rectWidth,
                      int rectHeight) {
    const ImageView picture(image, width, height);
    const Span xs{std::clamp(x, 0, std::max(width, 0)), std::clamp(x + rectWidth, 0, std::max(width, 0))};
    const Span ys{std::clamp(y, 0, std::max(height, 0)), std::clamp(y + rectHeight, 0, std::max(height, 0))};
    if (!picture.valid() || xs.length() < 1 || ys.length() < 1) return;
    const int radius = std::max(std::min(xs.length(), ys.length()) / 4, 1);
    Plane<Byte> weight(xs.length(), ys.length());
    for (int row = 0; row < weight.height(); ++row)
        for (int column = 0; column < weight.width(); ++column) {
            const int border =
                std::min({row, column, weight.height() - 1 - row, weight.width() - 1 - column});
            weight.view().row(row)[column] = static_cast<Byte>(std::min(border * 255 / radius, 255));
        }
    lightenArea(picture.crop(xs.begin, ys.begin, xs.length(), ys.length()), weight, radius);
}

}  // namespace zellab
