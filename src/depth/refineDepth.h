#pragma once

#include "depth/pixelsView.h"

namespace zellab {

/// Side of the planes that the depth network and its refinement hand on.
inline constexpr int kDepthSide = 384;

/// Turns a coarse depth map into one that follows the picture's edges. Picture, mask and maps are scaled to
/// the output's size; depth is raised within the areas of the mask (depthAreas.h), solved for against the
/// picture (fastBilateralSolver.h) and cleaned by a median of 3 by 3.
/// @param mask               person mask, or none; byte 0 of each of its pixels counts
/// @param depth, confidence  larger is nearer, larger is surer
/// All rows are tightly packed.
/// @return always true. A missing plane or a size outside 1 to 32768 leaves the output as it was; a picture
///         that cannot guide leaves the scaled map.
bool refine_depth(const PixelsView& image, const PixelsView& mask, PlaneView<const Byte> depth,
                  PlaneView<const Byte> confidence, PlaneView<Byte> output);

}  // namespace zellab
