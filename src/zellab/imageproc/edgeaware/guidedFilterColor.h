#pragma once

#include <array>

#include "zellab/imageproc/edgeaware/guidedFilterRows.h"

namespace zellab {

/// Smooths colours and keeps edges: the colours of a pixel's window have a mean and a covariance, and the
/// pixel's distance from the mean shrinks along each eigenvector of the covariance by a gain of its own.
/// Directions in which the window hardly varies shrink by about `factor`; strong ones stay.
class GuidedFilterColor {
public:
    GuidedFilterColor();

    /// Filters RGBA pixels in place; byte 3 of every pixel becomes 255. A variance e along an eigenvector has
    /// the gain (a * factor + e^exponent) / (a + e^exponent), a = 65025^exponent * scale. The window has
    /// 2 * radius + 1 pixels a side; outside the picture its rim goes on. `smoothCoefficients` averages the
    /// windows' models once more over the same window. A radius below 0 or a float that is not finite leaves
    /// the picture as it is; a radius counts as 32767 at most.
    void Run(ImageView image, float exponent, float scale, float factor, int radius,
             bool smoothCoefficients) const;

private:
    std::array<int, 256> m_squares;
    RootTables m_roots;
};

}  // namespace zellab
