// TableBase::ImageProcessWithAlphaMix: a second picture mixed into a region by a blurred mask.
#include <algorithm>
#include <cmath>
#include <cstdint>

#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/core/floatToInt.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace zellab {

namespace {

/// The region in the picture, which is also the size of the mask.
struct MixRegion {
    int left, top, width, height;
};

/// source * weight + image * (1 - weight), truncated; double precision. A strength beyond 0..1 leaves the
/// byte range and is limited.
Byte mixByte(Byte source, Byte image, double weight) {
    const double mixed = source * weight + image * (1.0 - weight);
    return static_cast<Byte>(mixed >= 255.0 ? 255.0 : mixed > 0.0 ? mixed : 0.0);
}

void mixRow(Byte* image, const Byte* source, const Byte* mask, int width, const double* weights) {
    for (int x = 0; x < width; ++x, image += 4, source += 4, mask += 4) {
        if (mask[0] == 0) continue;
        const double weight = weights[mask[0]];
        for (int c = 0; c < 3; ++c) image[c] = mixByte(source[c], image[c], weight);
    }
}

/// Mixes the part of the region that lies inside the picture; the mask keeps its place in the region.
void mixRegion(ImageView image, ConstImageView source, ConstImageView mask, const MixRegion& region,
               float strength) {
    double weights[256];
    for (int m = 0; m < 256; ++m) weights[m] = static_cast<double>(static_cast<float>(m) * strength);

    const int skipX = std::max(-std::max(region.left, -region.width), 0);
    const int skipY = std::max(-std::max(region.top, -region.height), 0);
    const int left = std::max(region.left, 0), top = std::max(region.top, 0);
    const int width = std::min(region.width - skipX, image.width - left);
    const int height = std::min(region.height - skipY, image.height - top);
    if (width < 1 || height < 1) return;
    const ImageView part = image.crop(left, top, width, height);
    const ConstImageView from = source.crop(left, top, width, height);
    const ConstImageView weigh = mask.crop(skipX, skipY, width, height);
    parallelRows(height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) mixRow(part.row(y), from.row(y), weigh.row(y), width, weights);
    });
}

}  // namespace

}  // namespace zellab

namespace ZelImageCore {

void TableBase::ImageProcessWithAlphaMix(unsigned char* image, int width, int height, unsigned char* source,
                                         unsigned char* mask, float* params) {
    using namespace zellab;
    const ImageView target(image, width, height);
    const ConstImageView from(source, width, height);
    if (!target.valid() || !from.valid() || !mask || !params) return;
    if (!std::all_of(params, params + 6, [](float p) { return std::isfinite(p); })) return;
    const MixRegion region{truncateToInt(params[0]), truncateToInt(params[1]), truncateToInt(params[2]),
                           truncateToInt(params[3])};
    if (region.width < 1 || region.height < 1) return;
    const auto strength = static_cast<float>(static_cast<double>(params[5]) / 255.0);
    MaskStackBlur({mask, region.width, region.height}, std::max(truncateToInt(params[4]), 0));
    // A region that overhangs the picture is mixed where both are; nothing outside either is touched.
    mixRegion(target, from, {mask, region.width, region.height}, region, strength);
}

}  // namespace ZelImageCore
