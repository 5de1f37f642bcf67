#pragma once

#include <cstdint>
#include <vector>

#include "zellab/imageproc/core/imageView.h"

namespace zellab::Bokeh {

/// The grain of unit strength that the composition's shader makes of its noise texture. It repeats after
/// kWidth by kHeight pixels.
class NoiseTile {
public:
    static constexpr int kWidth = 400, kHeight = 250;  // pixels
    static constexpr int kOverhang = 32;
    static constexpr int kValues = 4;  // red, green and blue about the brightness, brightness
    static constexpr float kUnit = 2.4494897f / 255.0f;  // a value's worth in deviations

    /// `pixels` is noisePixels().
    explicit NoiseTile(const std::vector<Byte>& pixels);

    /// Sums of two noise bytes less their mean, -255..255, four a pixel. Its first kOverhang pixels follow again
    /// on its last.
    const std::int16_t* row(int y) const {
        return m_values.data() + static_cast<std::ptrdiff_t>(y % kHeight) * kPitch * kValues;
    }

private:
    static constexpr int kPitch = kWidth + kOverhang;

    std::vector<std::int16_t> m_values;
};

}  // namespace zellab::Bokeh
