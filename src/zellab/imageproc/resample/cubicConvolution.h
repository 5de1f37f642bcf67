#pragma once

namespace zellab {

/// The four weights of cubic convolution with a = -0.75 for the taps at -1, 0, 1 and 2 around a fraction.
/// Single precision in this order of steps; the last weight makes the sum one. A fraction in -1..1 is meant:
/// a position clamped at the low edge of a picture keeps its negative fraction.
inline void CubicConvolutionWeights(float fraction, float weights[4]) {
    const float t = fraction + 1.0f;
    const float g = 1.0f - fraction;
    weights[0] = (-6.0f - (0.75f * t - 3.75f) * t) * t + 3.0f;
    weights[1] = (1.25f * fraction - 2.25f) * (fraction * fraction) + 1.0f;
    weights[2] = (1.25f * g - 2.25f) * (g * g) + 1.0f;
    weights[3] = 1.0f - weights[0] - weights[1] - weights[2];
}

}  // namespace zellab
