#pragma once

namespace zellab {

// Edge-preserving smoothing by the recursive form of the domain transform (Gastal and Oliveira, "Domain
// transform for edge-aware image and video processing", 2011), in place, on 8-bit samples: along rows and
// columns every sample moves towards its neighbour by a share that falls with their difference in the
// picture as it came. `sigmaSpace` is in pixels, `sigmaRange` in levels; each of `iterations` passes is
// narrower than the one before. `threaded` splits the work over ProcessorCount() workers; the bytes are the
// same without. Calls may overlap on different pictures.
//
// A null image, a size of 0 or less, a row size below what the pixels need, no iterations, or sigmas that are
// 0 or NaN change nothing.

/// Filters bytes 0 to 2 of RGBA pixels; byte 3 stays. The difference is the sum over the three bytes.
void DomainTransformRGBA(unsigned char* image, int width, int height, int rowBytes, float sigmaSpace,
                         float sigmaRange, int iterations, bool threaded);

/// Filters one byte a pixel, pixels lying rowBytes / width bytes apart. The difference counts three times,
/// so that a grey picture is filtered alike in both forms, but for the rounding: here shares of a level are
/// dropped.
void DomainTransformPlane(unsigned char* image, int width, int height, int rowBytes, float sigmaSpace,
                          float sigmaRange, int iterations, bool threaded);

}  // namespace zellab
