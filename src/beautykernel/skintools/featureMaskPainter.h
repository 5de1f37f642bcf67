#pragma once

#include <vector>

#include "zel_effects/zel_records.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/shapes/convexHull.h"

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
    using Hull = std::vector<Vector2f>(const std::vector<Vector2f>&);

    /// Fills the hull of each feature whose bit is set, in the order of the bits, with `value`.
    /// @param points  the interpolated points of the face, in pixels of the mask
    /// @param hull    what reduces the points of a feature to its outline
    /// @return false where the mask is not valid, the points are null or no bit is set
    static bool Paint(PlaneView<Byte> mask, const Vector2f* points, int flags, Byte value,
                      Hull* hull = convexHull);
};

}  // namespace zellab
