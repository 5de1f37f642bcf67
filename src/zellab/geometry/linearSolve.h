#pragma once

#include <cstddef>

namespace zellab {

/// Solves matrix * X = rhs in place by Gaussian elimination with partial pivoting; X stands in `rhs`.
/// @param matrix      n rows of n doubles, rowBytes apart; destroyed
/// @param rhs         n rows of rhsColumns doubles, rhsRowBytes apart
/// @return 0 where a pivot is below 2.220446049250313e-16 (both arrays are then left as the elimination had
///         them), non-zero otherwise
int SolveLinearGauss(double* matrix, std::size_t rowBytes, int n, double* rhs, std::size_t rhsRowBytes,
                     int rhsColumns);

/// Builds the affine map that takes the three points `from` to the three points `to` (x, y pairs each).
/// @param out  3 by 3 floats in row order, the last row 0, 0, 1. Collinear `from` points have no map: the
///             rows then hold the right side as the elimination left it.
/// @return false where there is no map
bool TriangleAffineMap(float* out, const float* from, const float* to);

}  // namespace zellab
