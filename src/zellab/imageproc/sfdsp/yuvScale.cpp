#include "zellab/imageproc/sfdsp/yuvScale.h"

#include <libyuv/scale.h>
#include <libyuv/scale_argb.h>

#include <algorithm>

#include "zellab/imageproc/core/memoryReserve.h"

namespace zellab {

namespace {

template <typename View>
bool scalable(const View& view) {
    return view.valid() && view.width <= kYuvScaleLongestSide && view.height <= kYuvScaleLongestSide;
}

libyuv::FilterMode modeOf(YuvFilter filter) {
    switch (filter) {
        case YuvFilter::none:
            return libyuv::kFilterNone;
        case YuvFilter::linear:
            return libyuv::kFilterLinear;
        case YuvFilter::bilinear:
            return libyuv::kFilterBilinear;
        case YuvFilter::box:
            return libyuv::kFilterBox;
    }
    return libyuv::kFilterNone;
}

/// What the scaler takes beside the pictures: rows, which were measured at 16 bytes a pixel of the wider
/// picture at most, in all filters, up and down. Asked for is twice that.
void requireRows(int sourceWidth, int targetWidth) {
    constexpr std::size_t kBase = 4096, kPerPixel = 32;
    requireMemory(kBase + kPerPixel * static_cast<std::size_t>(std::max(sourceWidth, targetWidth)));
}

}  // namespace

bool scaleArgb(ConstImageView source, ImageView target, YuvFilter filter) {
    if (!scalable(source) || !scalable(target)) return false;
    requireRows(source.width, target.width);
    return libyuv::ARGBScale(source.data, static_cast<int>(source.stride), source.width, source.height,
                             target.data, static_cast<int>(target.stride), target.width, target.height,
                             modeOf(filter)) == 0;
}

bool scalePlane(PlaneView<const Byte> source, PlaneView<Byte> target, YuvFilter filter) {
    if (!scalable(source) || !scalable(target)) return false;
    requireRows(source.width, target.width);
    libyuv::ScalePlane(source.data, static_cast<int>(source.stride), source.width, source.height, target.data,
                       static_cast<int>(target.stride), target.width, target.height, modeOf(filter));
    return true;
}

}  // namespace zellab
