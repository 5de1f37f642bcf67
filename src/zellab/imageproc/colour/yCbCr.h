#pragma once

namespace zellab {

/// Full-range YCbCr in 14-bit fixed point and plain luma. Two lumas live here and stay distinct: the Y of
/// YCbCr weighs 0.3, 0.59, 0.11, RGBAToGray 0.299, 0.587, 0.114.

/// Splits RGBA pixels into three planes. Nothing happens for null pointers or a count below 1.
void RGBAToYCbCrPlanes(unsigned char* rgba, unsigned char* y, unsigned char* cb, unsigned char* cr,
                       int pixelCount);

/// One pixel; no pointer is null.
void RGBToYCbCr(const unsigned char* r, const unsigned char* g, const unsigned char* b, unsigned char* y,
                unsigned char* cb, unsigned char* cr);
void YCbCrToRGB(const unsigned char* y, const unsigned char* cb, const unsigned char* cr, unsigned char* r,
                unsigned char* g, unsigned char* b);

/// The Y of RGBToYCbCr alone.
void RGBToLuma(const unsigned char* r, const unsigned char* g, const unsigned char* b, unsigned char* y);

/// Grey of RGBA pixels into a plane, rounded. Nothing happens for null pointers or a count below 1.
void RGBAToGray(const unsigned char* rgba, unsigned char* plane, int pixelCount);

}  // namespace zellab
