#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zelfilteronline {

/// Edge-aware sharpener: makes lashes, hair, cloth and outlines crisper without rims of light, and leaves
/// flat skin and its noise alone. It works on brightness; colours move with it, so no coloured fringes arise.
///
/// How: brightness is split into fine detail (a 3 by 3 kernel) and structure (a stack blur of radius 2); both
/// are raised where the neighbourhood holds an edge or strong texture, and the result is held between the
/// darkest and the brightest sample of the 3 by 3 neighbourhood, give or take two levels: an edge grows
/// steeper, never higher.
class CZellabSharp {
public:
    CZellabSharp() = default;
    ~CZellabSharp() = default;

    /// Sharpens an RGBA picture in place; alpha stays.
    /// @param fine       0..1, gain of the finest detail (lashes, single hairs); limited, NaN acts as 0
    /// @param structure  0..1, gain of detail of a few pixels (brows, folds, cloth); limited, NaN acts as 0
    /// @param protectFlat  true leaves flat areas alone up to usual sensor noise; false sharpens them as well
    /// The bytes do not depend on the number of workers.
    void Run(zellab::ImageView image, float fine, float structure, bool protectFlat);
};

}  // namespace zelfilteronline
