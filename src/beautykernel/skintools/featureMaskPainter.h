#pragma once

#include "zel_effects/zel_records.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Bits of the features that CFeatureMaskPainter knows.
enum FeatureFlags : int {
    kBrows = 1,
    kEyes = 2,
    kNose = 4,
    kMouth = 8,
    kAllFeatures = kBrows | kEyes | kNose | kMouth,
};

/// Paints eyes, brows, nose and mouth of a face into a mask, so that repairs keep away from them.
class CFeatureMaskPainter {
public:
    /// Fills the convex hull of each feature whose bit is set, in the order of the bits, with `value`.
    /// @param points  the interpolated points of the face, in pixels of the mask
    /// @return false where the mask is not valid, the points are null or no bit is set
    static bool Paint(PlaneView<Byte> mask, const Vector2f* points, int flags, Byte value);
};

}  // namespace zellab
