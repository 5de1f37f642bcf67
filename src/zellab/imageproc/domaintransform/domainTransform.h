#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

// Edge-preserving smoothing by the recursive form of the domain transform (Gastal and Oliveira, "Domain
// transform for edge-aware image and video processing", 2011), in place, on 8-bit samples: along rows and
// columns every sample moves towards its neighbour by a share that falls with their difference in the
// picture as it came. `sigmaSpace` is in pixels, `sigmaRange` in levels; each of `iterations` passes is
// narrower than the one before. `threaded` splits the work over ProcessorCount() workers; the bytes are the
// same without. Calls may overlap on different pictures.
//
// A view that is not valid, no iterations, or sigmas that are 0 or NaN change nothing.

/// Filters bytes 0 to 2 of RGBA pixels; byte 3 stays. The difference is the sum over the three bytes.
void DomainTransformRGBA(ImageView image, float sigmaSpace, float sigmaRange, int iterations, bool threaded);

/// Filters a plane. The difference counts three times, so that a grey picture is filtered alike in both
/// forms, but for the rounding: here shares of a level are dropped.
void DomainTransformPlane(PlaneView<Byte> plane, float sigmaSpace, float sigmaRange, int iterations,
                          bool threaded);

}  // namespace zellab
