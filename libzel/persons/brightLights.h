#pragma once

#include "zellab/imageproc/core/ownedImage.h"

namespace zel {

/// Side of the plane of lights.
inline constexpr int kLightsSide = 384;

/// Lamps and the like behind people: small, near white, before a dark ground, and nobody's by the person network. The
/// depth network takes them for as near as the person whom they touch.
/// @param shares  of the person network, 0 to 1, of the picture's proportions
/// @param depth   larger is nearer
/// @return the most that the depth may be in a place, kLightsSide squared: that of the ground around a light on the
///         light and its glow, 255 elsewhere
zellab::Plane<zellab::Byte> depthOfLights(zellab::ConstImageView picture,
                                          zellab::PlaneView<const float> shares,
                                          zellab::PlaneView<const zellab::Byte> depth);

}  // namespace zel
