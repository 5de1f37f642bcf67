#pragma once

#include <array>
#include <cstdint>
#include <utility>

#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

/// Forward differences of red, green and blue of a picture. In the last column (row) the difference is the
/// negative of the one before it, so that the field ends like a mirrored picture. Differences of bytes less
/// a mean of such differences stay far inside 16 bits.
class GradientField {
public:
    explicit GradientField(ConstImageView picture);

    int width() const { return m_samples.width(); }
    int height() const { return m_samples.height(); }

    /// One sample: the steps to the right and down of each colour.
    struct Sample {
        std::array<std::int16_t, 3> right{}, down{};
    };
    Sample& at(int x, int y) { return m_samples.row(y)[x]; }
    const Sample& at(int x, int y) const { return m_samples.row(y)[x]; }

    /// Second differences at an interior sample: what the Poisson solve takes.
    int divergence(int x, int y, int channel) const {
        const auto c = static_cast<std::size_t>(channel);
        const Sample& here = at(x, y);
        return here.right[c] - at(x - 1, y).right[c] + here.down[c] - at(x, y - 1).down[c];
    }

    friend GradientField copyOf(const GradientField& field) {
        return GradientField(copyOf(field.m_samples.view()));
    }

private:
    explicit GradientField(Plane<Sample> samples) : m_samples(std::move(samples)) {}

    Plane<Sample> m_samples;
};

}  // namespace zellab
