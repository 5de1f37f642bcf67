#pragma once

#include "platform/simdLevel.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Pixels that a warp reads: a window on a picture, or a copy of one.
struct CubicSource {
    ConstImageView pixels;                              // the window
    int left = 0, top = 0;                              // its place in the picture
    int imageWidth = 0, imageHeight = 0;                // size of the whole picture
    platform::SimdLevel level = platform::simdLevel();  // asked for on the caller's thread
};

/// Bicubic samples (CubicConvolutionWeights, 4 by 4 taps) for a run of pixels of one row.
///
/// Position i is (x[i], y[i]) in pixels of the picture. A position whose truncated value lies outside the
/// picture is moved to the nearest pixel (not-a-number to 0); one in -1..0 keeps its negative fraction. Taps
/// are clamped to the window. Each channel is summed row by row in single precision, starting from 0.5, then
/// truncated and limited to 0..255.
/// @param out  `count` pixels of four bytes; bytes 0 to 2 are written, byte 3 is kept
void sampleCubicRun(const CubicSource& source, const float* x, const float* y, int count, Byte* out);

}  // namespace zellab
