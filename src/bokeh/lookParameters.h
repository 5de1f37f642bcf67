#pragma once

#include <array>
#include <vector>

namespace zellab::Bokeh {

/// How points of light are drawn. Plain data, as the host gave it.
struct Look {
    float amount = 0.0f;      // exponent of the brightness curve; 1 is straight
    float intensity = 0.0f;   // strength of highlights and colour, 0..1
    float highlights = 0.0f;  // how far bright pixels outweigh the rest; 0 not at all
    float vivid = 0.0f;       // how far saturated pixels outweigh grey ones, and the colour's lift
};

/// What the convolutions compute with.
struct LookValues {
    float amount, intensity, highlights, vivid;
    /// Share of the averaged colour's lift away from its grey; 1 leaves the colour.
    float saturation() const { return intensity * vivid * 0.3f + 1.0f; }
};

LookValues lookValues(const Look& look);

/// The 256 levels of the brightness curve: (i / 255) to the power `amount`.
std::array<float, 256> brightnessCurve(float amount);

/// Exponent of the highlight weight exp(highlights) for a pixel whose largest colour has curve value
/// `largest` and whose smallest has `smallest`.
inline float weightExponent(float largest, float smallest, float vivid) {
    return (largest - smallest) * vivid + largest * 1.08f;
}

/// The largest weight that half precision holds; weights beyond it stop here, and NaN counts nothing.
inline constexpr float kLargestRatio = 65504.0f;

/// The 256 by 256 table of highlight weights that the ratio pass reads: row the largest colour of a pixel,
/// column the smallest. Columns above the diagonal repeat its value.
std::vector<float> ratioTable(const LookValues& look);

}  // namespace zellab::Bokeh
