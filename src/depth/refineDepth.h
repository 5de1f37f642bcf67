#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Side of the planes that the depth network and its refinement hand on.
inline constexpr int kDepthSide = 384;

/// Turns a coarse depth map into one that follows the picture's edges. Picture, mask and maps are scaled to
/// the output's size; depth is raised within the areas of the mask (depthAreas.h), solved for against the
/// picture (fastBilateralSolver.h) and cleaned by a median of 3 by 3.
/// @param image              4 channels (RGBA) or 1 (grey)
/// @param mask               person mask, or null; byte 0 of each of its pixels counts
/// @param depth, confidence  384 by 384 bytes each, larger is nearer, larger is surer
/// @param output             outHeight * outWidth bytes
/// @return always true. A null plane or a size outside 1 to 32768 leaves the output as it was; a picture
///         that cannot guide leaves the scaled map.
bool refine_depth(Byte* image, int imageChannels, int imageHeight, int imageWidth, Byte* mask,
                  int maskChannels, int maskHeight, int maskWidth, Byte* depth, Byte* confidence,
                  Byte* output, int outHeight, int outWidth);

}  // namespace zellab
