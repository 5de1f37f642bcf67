#include <cmath>
#include <cstddef>
#include <vector>

#include "frame/zel_log.h"
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/core/pixelMath.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace DefocusCore {
namespace {

using zellab::Byte;
using zellab::ConstImageView;
using zellab::ImageView;

/// The colours of `base` become the mean of both pictures that byte 0 of the mask asks for.
void mixRows(ConstImageView top, ImageView base, ConstImageView mask, float strength, int begin, int end) {
    const float perLevel = strength / 255.0f;
    for (int y = begin; y < end; ++y) {
        const Byte* above = top.row(y);
        const Byte* cover = mask.row(y);
        Byte* pixel = base.row(y);
        for (int x = 0; x < base.width; ++x, above += 4, cover += 4, pixel += 4) {
            const float a = static_cast<float>(cover[0]) * perLevel;
            const float b = 1.0f - a;
            for (int c = 0; c < 3; ++c)
                pixel[c] = zellab::truncateToByte(static_cast<float>(above[c]) * a +
                                                  static_cast<float>(pixel[c]) * b);
        }
    }
}

}  // namespace

bool ZelDepthDefocusRender::MixWidthMask(unsigned char* top, unsigned char* base, int width, int height,
                                         unsigned char* mask, int maskWidth, int maskHeight, float strength,
                                         int blurRadius) {
    if (!top || !base || !mask || width < 1 || height < 1 || maskWidth < 1 || maskHeight < 1 ||
        std::isnan(strength)) {
        ZEL_LOG_ERROR("parameter is invalid");
        return false;
    }
    std::vector<Byte> scaled;
    if (maskWidth != width || maskHeight != height) {
        scaled.resize(zellab::sampleCount(width, height, 4));
        if (!zellab::scaleArgb({mask, maskWidth, maskHeight}, {scaled.data(), width, height},
                               zellab::YuvFilter::bilinear)) {
            ZEL_LOG_ERROR("parameter is invalid");  // a side beyond the scaler's reach
            return false;
        }
        mask = scaled.data();
    }
    if (blurRadius > 0) zellab::MaskStackBlur({mask, width, height}, blurRadius);
    const ConstImageView above(top, width, height), cover(mask, width, height);
    const ImageView below(base, width, height);
    zellab::parallelRows(height,
                         [&](int begin, int end) { mixRows(above, below, cover, strength, begin, end); });
    return true;
}

}  // namespace DefocusCore
