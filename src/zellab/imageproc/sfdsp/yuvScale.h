#pragma once

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

/// Scales interleaved four-byte pixels, rows tightly packed; all four bytes alike, in whatever order they
/// stand. Returns false, the target untouched, on a null buffer or a side outside 1..kYuvScaleLongestSide.
bool scaleArgb(const unsigned char* source, int sourceWidth, int sourceHeight, unsigned char* target,
               int targetWidth, int targetHeight, YuvFilter filter);

/// Scales a plane of one byte a pixel, in the same way.
bool scalePlane(const unsigned char* source, int sourceWidth, int sourceHeight, unsigned char* target,
                int targetWidth, int targetHeight, YuvFilter filter);

}  // namespace zellab
