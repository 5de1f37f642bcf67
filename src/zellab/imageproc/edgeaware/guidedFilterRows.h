#pragma once

#include <array>
#include <cstddef>

#include "zellab/imageproc/core/imageView.h"

/// The colour guided filter's arithmetic on rows: from the windows' moments to models, from models to bytes.

namespace zellab {

/// Positions of the moments of a window: means of r, g, b, rr, rg, rb, gg, gb, bb.
inline constexpr std::size_t kMoments = 9;
/// Numbers of a window's model: rr, rg, rb, gg, gb, bb of a symmetric matrix, then an offset for r, g, b.
inline constexpr std::size_t kCoefficients = 9;

/// Nine rows of floats, one below the other.
template <typename T>
struct NineRows {
    T* first;
    std::size_t stride;  // floats from a row to the next

    T* operator[](std::size_t i) const { return first + i * stride; }
    operator NineRows<const T>() const { return {first, stride}; }
};

/// Closed form of the eigenvalues of a symmetric 3 by 3 matrix with trace 0: entry k belongs to
/// r = (k - 1000) / 500 and holds the cosines of acos(r / 2) / 3 and of that angle + 2 pi / 3.
struct RootTables {
    static constexpr int kEntries = 2000;
    std::array<float, kEntries> first, second;

    RootTables();
};

/// From the variance e along an eigenvector to the gain (b + t) / (a + t) with t = e^exponent.
struct GainCurve {
    float exponent, a, b;

    GainCurve(float exponentOfVariance, float scale, float factor);
    float operator()(float variance) const;
    /// e^exponent
    float power(float variance) const;
};

inline constexpr float kLeastRoot = 1e-6f;
inline constexpr float kThird = 0.333333f, kSixth = 0.166667f;
/// Below this part of its square length a vector's rest, without what lies along another, is noise.
inline constexpr float kNoDirection = 1e-6f;

/// The models of windows [begin, end) of a row.
void coefficientRow(const RootTables& roots, const GainCurve& curve, NineRows<const float> moments,
                    NineRows<float> models, int begin, int end);
/// Applies models [begin, end) to the pixels that start at `rgba`, in place; byte 3 becomes 255.
void applyModelRow(NineRows<const float> models, Byte* rgba, int begin, int end);

/// The AVX2 loops do eight pixels at a time from 0 on and return how many were done.
int coefficientRowAvx2(const RootTables& roots, const GainCurve& curve, NineRows<const float> moments,
                       NineRows<float> models, int count);
int applyModelRowAvx2(NineRows<const float> models, Byte* rgba, int count);

}  // namespace zellab
