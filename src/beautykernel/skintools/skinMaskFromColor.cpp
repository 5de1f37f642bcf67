#include "beautykernel/skintools/skinMaskFromColor.h"

#include <algorithm>
#include <cstdint>

#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/core/pixelMath.h"

namespace zellab {

namespace {

struct Sums {
    std::int64_t r = 0, g = 0, b = 0, count = 0;
    void add(const Byte* p) {
        r += p[0];
        g += p[1];
        b += p[2];
        ++count;
    }
};

float weighted(float r, float g, float b) {
    return 0.3f * r + 0.59f * g + 0.11f * b;
}

int pictureMean(ConstImageView image) {
    Sums sums;
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x) sums.add(image.at(x, y));
    const float sum =
        weighted(static_cast<float>(sums.r), static_cast<float>(sums.g), static_cast<float>(sums.b));
    return static_cast<int>(sum / static_cast<float>(sums.count));
}

/// The redOverBlue from which a pixel is gathered: a dark picture asks for less.
int gatherThreshold(int mean, bool hasFace) {
    if (hasFace || mean < 65) return mean;
    return mean >= 90 ? 170 : mean + 70;
}

MeanColour gatherMean(ConstImageView image, const FaceData* face) {
    const int threshold = gatherThreshold(pictureMean(image), face != nullptr);
    const int top = face ? std::max(face->top, 0) : 0,
              bottom = face ? std::min(face->bottom, image.height) : image.height;
    const int left = face ? std::max(face->left, 0) : 0,
              right = face ? std::min(face->right, image.width) : image.width;
    Sums sums;
    for (int y = top; y < bottom; ++y)
        for (int x = left; x < right; ++x) {
            const Byte* p = image.at(x, y);
            if (redOverBlue(p[0], p[2]) >= threshold) sums.add(p);
        }
    if (sums.count == 0) return {};
    const auto mean = [&](std::int64_t sum) { return static_cast<int>((sum + sums.count / 2) / sums.count); };
    return {mean(sums.r), mean(sums.g), mean(sums.b)};
}

/// Mask value of a red and a blue byte.
Byte maskValue(int r, int b, const MeanColour& mean) {
    constexpr int kSureFrom = 161, kNoneBelow = 90, kLift = 30;
    const int red = clampToByte(128 - mean.r + r);
    const int value = (red < 128 ? 2 * red : 255) - std::max(b - mean.b, 0) / 2;
    return static_cast<Byte>(value >= kSureFrom ? 255 : value < kNoneBelow ? 0 : value + kLift);
}

}  // namespace

int MeanColour::brightness() const {
    return static_cast<int>(weighted(static_cast<float>(r), static_cast<float>(g), static_cast<float>(b)));
}

SkinColourMask skinMaskFromColor(ConstImageView image, int faceCount, const FaceData* faces,
                                 const MaskBlurRadii& radii) {
    SkinColourMask result{Plane<Byte>(image.width, image.height),
                          gatherMean(image, faceCount > 0 ? faces : nullptr)};
    std::vector<Byte> table(256 * 256);
    for (int r = 0; r < 256; ++r)
        for (int b = 0; b < 256; ++b)
            table[static_cast<std::size_t>(r * 256 + b)] = maskValue(r, b, result.mean);
    parallelRows(image.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            const Byte* p = image.row(y);
            Byte* row = result.mask.view().row(y);
            for (int x = 0; x < image.width; ++x, p += 4)
                row[x] = table[static_cast<std::size_t>(p[0] * 256 + p[2])];
        }
    });
    const int side = std::min(image.width, image.height);
    StackBlurGray(result.mask.view(), side < 200 ? radii.small : side < 500 ? radii.middle : radii.large);
    return result;
}

}  // namespace zellab
