#pragma once

#include "beautykernel/blackeyecleaner/eyeRegion.h"

namespace zellab {

/// Whether the skin around the eyes is even enough for the seamless repair: no strong edges on the cheeks
/// (glasses, hair, beards), no dark strip at the inner corner, and a face that is not turned far aside.
bool allowsSeamlessRepair(ConstImageView image, const EyeRegion& region, const Vector2f* points);

}  // namespace zellab
