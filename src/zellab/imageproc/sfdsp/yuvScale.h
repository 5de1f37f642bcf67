#pragma once

#include "zellab/imageproc/core/imageView.h"

/// The scaler of the YUV library, behind checked sizes. The effects name it, with the filter, wherever its
/// exact bytes matter; the library's own scalers stand in scaleBilinear.h and imageResampler.h.

namespace zellab {

enum class YuvFilter {
    none,      ///< nearest sample
    linear,    ///< interpolates along rows only
    bilinear,  ///< interpolates along both axes
    box,       ///< averages on the way down, interpolates on the way up
};

/// Longest side that the scaler takes, in pixels.
inline constexpr int kYuvScaleLongestSide = 32768;

/// Scales four-byte pixels, all four bytes alike, in whatever order they stand. Returns false, the target
/// untouched, for a view that is not valid or a side above kYuvScaleLongestSide. The scaler reads from null
/// where its rows cannot be had: their memory is asked for first, and std::bad_alloc thrown where there is
/// none. What other threads take between the question and the call is not held back.
bool scaleArgb(ConstImageView source, ImageView target, YuvFilter filter);

/// Scales a plane in the same way.
bool scalePlane(PlaneView<const Byte> source, PlaneView<Byte> target, YuvFilter filter);

}  // namespace zellab
