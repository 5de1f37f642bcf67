#include "zellab/imageproc/poisson/poissonEdit.h"

#include <algorithm>

#include "frame/zel_log.h"
#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/core/luma.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/pixelMath.h"
#include "zellab/imageproc/poisson/boxSolve.h"
#include "zellab/imageproc/poisson/markedBox.h"

namespace zellab {

namespace {

constexpr int kMarkedAbove = 254;     // mask values above this are repainted
constexpr int kSourceRowsBelow = 10;  // where the paint comes from
constexpr int kMargin = 10;           // pixels around the marked box that take part in the solve
constexpr int kLumaLead = 10;         // the source may be this much darker and still be taken
constexpr int kSeamRadius = 5;        // blur of the blend mask, pixels
constexpr int kColours = 3;

/// Takes the paint into the private copy: in place and in reading order, so that the fallback spreads pixels
/// that were repainted before.
void repaint(ImageView patch, PlaneView<const Byte> patchMask, ConstImageView imageBelow) {
    for (int y = 0; y < patch.height; ++y)
        for (int x = 0; x < patch.width; ++x) {
            if (patchMask.row(y)[x] <= kMarkedAbove) continue;
            Byte* p = patch.at(x, y);
            const Byte* source = imageBelow.at(x, y);
            if (lumaOf(source) + kLumaLead > lumaOf(p)) {
                std::copy_n(source, kColours, p);
            } else if (x >= 3 && x + 2 < patch.width && y >= 3) {
                const Byte* above = patch.at(x, y - 1);
                for (int c = 0; c < kColours; ++c)
                    p[c] = static_cast<Byte>((p[c - 4] + above[c - 4] + above[c] + above[c + 4]) >> 2);
            }
        }
}

/// The step from one sample to the next, 0 where it crosses the rim of the mask.
int gradient(Byte from, Byte to, Byte maskFrom, Byte maskTo) {
    const bool crosses = (maskFrom > 128 && maskTo < 128) || (maskFrom < 128 && maskTo > 128);
    return crosses ? 0 : to - from;
}

/// Solves the colours of the repainted patch from its own gradients, cut along the rim of the mask.
void solveColours(ImageView patch, PlaneView<const Byte> mask) {
    const auto stepBetween = [=](int x0, int y0, int x1, int y1, int channel) {
        return gradient(patch.at(x0, y0)[channel], patch.at(x1, y1)[channel], mask.row(y0)[x0],
                        mask.row(y1)[x1]);
    };
    solveInterior(patch, 0.0f, [&](int x, int y, int channel) {
        return stepBetween(x, y, x + 1, y, channel) - stepBetween(x - 1, y, x, y, channel) +
               stepBetween(x, y, x, y + 1, channel) - stepBetween(x, y - 1, x, y, channel);
    });
}

void blend(ImageView image, ConstImageView solved, PlaneView<const Byte> weights) {
    for (int y = 0; y < image.height; ++y) {
        Byte* row = image.row(y);
        const Byte* from = solved.row(y);
        for (int x = 0; x < image.width; ++x) {
            const float a = static_cast<float>(weights.row(y)[x]) / 255.0f;
            for (int c = 4 * x; c < 4 * x + kColours; ++c)
                row[c] =
                    truncateToByte(static_cast<float>(from[c]) * a + static_cast<float>(row[c]) * (1.0f - a));
        }
    }
}

}  // namespace

bool PoissonEdit(ImageView image, PlaneView<const Byte> mask, float strength) {
    if (!image.valid() || !mask.valid()) return false;
    const PixelBox marked = markedBox(mask, kMarkedAbove);
    if (marked.empty()) return false;

    const PixelBox box{growToTransformSize(widen(marked.x, kMargin, image.width), image.width),
                       growToTransformSize(widen(marked.y, kMargin, image.height), image.height)};
    if (box.empty() || image.height < box.y.end + kSourceRowsBelow) {
        printRemark("ERROR PoissonEdit  left = %d top=%d right=%d bottom=%d ", box.x.begin, box.y.begin,
                    box.x.end, box.y.end);
        return false;
    }

    const int w = box.x.length(), h = box.y.length();
    const ImageView area = image.crop(box.x.begin, box.y.begin, w, h);
    RgbaImage copy = copyOf(area);
    const ImageView patch = copy.view();
    Plane<Byte> patchMask = copyOf(mask.crop(box.x.begin, box.y.begin, w, h));

    repaint(patch, patchMask.view(), image.crop(box.x.begin, box.y.begin + kSourceRowsBelow, w, h));
    solveColours(patch, patchMask.view());

    const Byte weight = truncateToByte(strength * 255.0f);
    std::replace_if(
        patchMask.data(), patchMask.data() + patchMask.size(), [](Byte m) { return m > kMarkedAbove; },
        weight);
    StackBlurGray(patchMask.view(), kSeamRadius);
    blend(area, patch, patchMask.view());
    return true;
}

}  // namespace zellab
