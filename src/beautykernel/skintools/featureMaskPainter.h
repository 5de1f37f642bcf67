#pragma once

#include <vector>

#include "zel_effects/zel_records.h"
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
    /// @param mask    plane of width by height bytes
    /// @param points  the interpolated points of the face, in pixels of the mask
    /// @param hull    what reduces the points of a feature to its outline
    /// @return false where the mask or the points are null or no bit is set
    static bool Paint(unsigned char* mask, int width, int height, const Vector2f* points, int flags,
                      int value, Hull* hull = convexHull);
};

}  // namespace zellab
