#pragma once

namespace zellab {

/// Blurs in place by a recursive Gaussian whose cost does not depend on sigma.
///
/// A pixel is rowBytes / width bytes wide: of four, bytes 0 to 2 are blurred; of any other number, the first
/// byte alone. An axis with a sigma below 0.1 (or NaN), or of one pixel, is left alone; sigma is limited to
/// 250. Returns false, the pixels untouched, for a null buffer, a size of 0 or less or rowBytes below width.
bool RecursiveGaussianBlur(unsigned char* pixels, int width, int height, int rowBytes, float sigmaX,
                           float sigmaY, int reserved);

}  // namespace zellab
