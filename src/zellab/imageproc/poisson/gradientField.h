#pragma once

#include <array>
#include <cstdint>

#include <vector>

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Forward differences of red, green and blue of a picture. In the last column (row) the difference is the
/// negative of the one before it, so that the field ends like a mirrored picture. Differences of bytes less
/// a mean of such differences stay far inside 16 bits.
class GradientField {
public:
    explicit GradientField(ConstImageView picture);

    int width() const { return m_width; }
    int height() const { return m_height; }

    /// One sample: the steps to the right and down of each colour.
    struct Sample {
        std::array<std::int16_t, 3> right{}, down{};
    };
    Sample& at(int x, int y) { return m_samples[index(x, y)]; }
    const Sample& at(int x, int y) const { return m_samples[index(x, y)]; }

    /// Second differences at an interior sample: what the Poisson solve takes.
    int divergence(int x, int y, int channel) const {
        const auto c = static_cast<std::size_t>(channel);
        const Sample& here = at(x, y);
        return here.right[c] - at(x - 1, y).right[c] + here.down[c] - at(x, y - 1).down[c];
    }

private:
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width) + static_cast<std::size_t>(x);
    }
    int m_width, m_height;
    std::vector<Sample> m_samples;
};

}  // namespace zellab
