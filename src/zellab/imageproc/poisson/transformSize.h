#pragma once

namespace zellab {

/// Largest size that TransformSizes knows; beyond it a box is solved at the size that it has.
constexpr int kLargestTransformSize = 10000;

/// Columns (or rows) to add to a box side of `side` pixels so that its sine transforms run fast. The solve of
/// a side of n pixels is a transform of logical length 2n - 2, and lengths without a prime factor above 7 are
/// quick: a side that is off by one can cost ten times as much. 0 where the side fits or is too long.
int transformPadding(int side);

/// A span [begin, end) of pixels on one axis.
struct Span {
    int begin = 0, end = 0;
    int length() const { return end - begin; }
};

/// The span grown by its transformPadding inside [0, size): half of the padding in front and the rest behind,
/// moved to the other side where the picture ends. Unchanged where the padding does not fit.
Span growToTransformSize(Span span, int size);

}  // namespace zellab
