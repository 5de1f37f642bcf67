#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Full-range YCbCr in 14-bit fixed point and plain luma. Two lumas live here and stay distinct: the Y of
/// YCbCr weighs 0.3, 0.59, 0.11, RGBAToGray 0.299, 0.587, 0.114.

/// Splits a picture into three planes of its size. Nothing happens where a view is not valid.
void RGBAToYCbCrPlanes(ConstImageView image, PlaneView<Byte> y, PlaneView<Byte> cb, PlaneView<Byte> cr);

/// One pixel; no pointer is null.
void RGBToYCbCr(const unsigned char* r, const unsigned char* g, const unsigned char* b, unsigned char* y,
                unsigned char* cb, unsigned char* cr);
void YCbCrToRGB(const unsigned char* y, const unsigned char* cb, const unsigned char* cr, unsigned char* r,
                unsigned char* g, unsigned char* b);

/// The Y of RGBToYCbCr alone.
void RGBToLuma(const unsigned char* r, const unsigned char* g, const unsigned char* b, unsigned char* y);

/// The grey of a picture into a plane of its size, rounded. Nothing happens where a view is not valid.
void RGBAToGray(ConstImageView image, PlaneView<Byte> gray);

}  // namespace zellab
