#include "zellab/imageproc/sfdsp/yuvScale.h"

#include <libyuv/scale.h>
#include <libyuv/scale_argb.h>

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

}  // namespace

bool scaleArgb(ConstImageView source, ImageView target, YuvFilter filter) {
    if (!scalable(source) || !scalable(target)) return false;
    return libyuv::ARGBScale(source.data, static_cast<int>(source.stride), source.width, source.height,
                             target.data, static_cast<int>(target.stride), target.width, target.height,
                             modeOf(filter)) == 0;
}

bool scalePlane(PlaneView<const Byte> source, PlaneView<Byte> target, YuvFilter filter) {
    if (!scalable(source) || !scalable(target)) return false;
    libyuv::ScalePlane(source.data, static_cast<int>(source.stride), source.width, source.height, target.data,
                       static_cast<int>(target.stride), target.width, target.height, modeOf(filter));
    return true;
}

}  // namespace zellab
