#include "zellab/imageproc/sfdsp/yuvScale.h"

#include <libyuv/scale.h>
#include <libyuv/scale_argb.h>

namespace zellab {

namespace {

bool scalable(int width, int height) {
    return width > 0 && height > 0 && width <= kYuvScaleLongestSide && height <= kYuvScaleLongestSide;
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

bool scaleArgb(const unsigned char* source, int sourceWidth, int sourceHeight, unsigned char* target,
               int targetWidth, int targetHeight, YuvFilter filter) {
    if (!source || !target || !scalable(sourceWidth, sourceHeight) || !scalable(targetWidth, targetHeight))
        return false;
    return libyuv::ARGBScale(source, sourceWidth * 4, sourceWidth, sourceHeight, target, targetWidth * 4,
                             targetWidth, targetHeight, modeOf(filter)) == 0;
}

bool scalePlane(const unsigned char* source, int sourceWidth, int sourceHeight, unsigned char* target,
                int targetWidth, int targetHeight, YuvFilter filter) {
    if (!source || !target || !scalable(sourceWidth, sourceHeight) || !scalable(targetWidth, targetHeight))
        return false;
    libyuv::ScalePlane(source, sourceWidth, sourceWidth, sourceHeight, target, targetWidth, targetWidth,
                       targetHeight, modeOf(filter));
    return true;
}

}  // namespace zellab
