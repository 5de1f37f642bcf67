#include "zellab/imageproc/resample/resamplePhases.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace zellab {

namespace {

/// The shape of a filter. `support` and the shape numbers are in source samples, or in target samples where
/// the picture shrinks; `scale` widens the shrinking kernel further, against ringing.
struct FilterShape {
    double support, scale;
    double enlarging, shrinking;  // slope of the cubic at 1, or decay of the window
};

constexpr double kCubicSupport = 2.0;

FilterShape shapeOf(int quality) {
    switch (quality) {
        case 3:
            return {kCubicSupport, 1.0, -0.75, -0.75};
        case 1:
            return {3.0, 1.15, -0.625, -1.0};
        default:
            return {4.0, 1.05, -1.0, -2.2};
    }
}

/// Taps of the enlarging kernels of a support above 2. The tails beyond are below 1 in 16384 or nearly so.
constexpr int kWideTaps = 6;

/// Cubic convolution with slope -0.75 at the first zero, in single precision.
float cubicTap(float x) {
    const float d = std::fabs(x);
    if (d < 1.0f) return d * d * (1.25f * d - 2.25f) + 1.0f;
    if (d < 2.0f) return ((3.75f - 0.75f * d) * d - 6.0f) * d + 3.0f;
    return 0.0f;
}

/// sinc(x) under a Gaussian window that has fallen to exp(decay) at half the support.
double windowedSinc(double x, double support, double decay) {
    const double d = std::fabs(x);
    if (d >= support) return 0.0;
    const double halves = 2.0 * d / support, angle = std::numbers::pi * d;
    const double sinc = d < 1e-9 ? 1.0 : std::sin(angle) / angle;
    return sinc * std::exp(decay * halves * halves);
}

/// Turns a row of single-precision weights into 14 bits: truncated, and what is lost goes to the largest.
void quantiseShort(const float* row, int taps, std::int16_t* out) {
    float sum = 0.0f;
    for (int k = 0; k < taps; ++k) sum += row[k];
    const float scale = static_cast<float>(kWeightSum) / sum;
    int rest = kWeightSum;
    for (int k = 0; k < taps; ++k) rest -= out[k] = static_cast<std::int16_t>(row[k] * scale);
    std::int16_t& largest = *std::max_element(out, out + taps);
    largest = static_cast<std::int16_t>(largest + rest);
}

/// The same for rows of any length: the running sum is rounded, not the weight. A row of thousands of taps
/// has weights below 1 in 16384, which truncation alone would drop, leaving the centre tap with the sum.
void quantiseLong(const std::vector<double>& row, std::int16_t* out) {
    double sum = 0.0;
    for (const double w : row) sum += w;
    double running = 0.0;
    long before = 0;
    for (std::size_t k = 0; k < row.size(); ++k) {
        running += row[k];
        const long now = std::lround(running / sum * kWeightSum);
        out[k] = static_cast<std::int16_t>(now - before);
        before = now;
    }
}

/// Fills the weight row of one phase. Tap k lies k - (taps / 2 - 1) samples right of the index.
class RowBuilder {
public:
    RowBuilder(int source, int target, int quality) : m_shape(shapeOf(quality)), m_source(source) {
        m_twoTap = quality == 0;
        m_shrinks = target < source;
        m_stretch = m_shrinks ? m_shape.scale * source / target : 1.0;
    }

    int taps() const {
        if (m_twoTap) return 2;
        if (!m_shrinks) return m_shape.support > kCubicSupport ? kWideTaps : 4;
        const double half = std::ceil(m_shape.support * m_stretch);
        // No reach beyond a whole source on either side; it would see replicated ends only.
        return 2 * static_cast<int>(std::min(half, std::min(std::max<double>(m_source, 4), 1e9)));
    }

    void build(int phase, std::int16_t* out) const {
        if (m_twoTap) {
            out[0] = static_cast<std::int16_t>((kPhases - phase) << (kWeightBits - kPhaseBits));
            out[1] = static_cast<std::int16_t>(phase << (kWeightBits - kPhaseBits));
        } else if (m_shrinks) {
            buildShrinking(phase, out);
        } else {
            buildEnlarging(phase, out);
        }
    }

private:
    void buildEnlarging(int phase, std::int16_t* out) const {
        std::array<float, kWideTaps> row{};
        const int count = taps(), middle = count / 2 - 1;
        for (int k = 0; k < count; ++k) {
            const float distance = static_cast<float>(k - middle) - static_cast<float>(phase) / kPhases;
            row[static_cast<std::size_t>(k)] =
                m_shape.support > kCubicSupport
                    ? static_cast<float>(windowedSinc(distance, m_shape.support, m_shape.enlarging))
                    : cubicTap(distance);
        }
        quantiseShort(row.data(), count, out);
    }

    void buildShrinking(int phase, std::int16_t* out) const {
        const int count = taps(), middle = count / 2 - 1;
        std::vector<double> row(static_cast<std::size_t>(count));
        for (int k = 0; k < count; ++k) {
            const double distance = (k - middle - static_cast<double>(phase) / kPhases) / m_stretch;
            row[static_cast<std::size_t>(k)] =
                m_shape.support > kCubicSupport ? windowedSinc(distance, m_shape.support, m_shape.shrinking)
                                                : static_cast<double>(cubicTap(static_cast<float>(distance)));
        }
        quantiseLong(row, out);
    }

    FilterShape m_shape;
    int m_source;
    bool m_twoTap, m_shrinks;
    double m_stretch;
};

/// Positions in 128ths of a sample, in single precision throughout, truncated toward zero.
int positionOf(int output, int source, int target, int quality) {
    constexpr float kLargest = 2147483520.0f;  // the largest float that an int holds
    const float centre = (static_cast<float>(output) + 0.5f) / static_cast<float>(target);
    const auto samples = static_cast<float>(source);
    const float at = quality == 0 ? centre * (samples - 0.5f) : centre * samples - 0.5f;
    const int position = static_cast<int>(std::min(at * kPhases + 0.5f, kLargest));
    if (quality != 0) return position;
    // The two-tap form ends one whole sample before the last one. A source of one sample has no such place.
    const std::int64_t last = (std::int64_t{source} - 1) * kPhases - kPhases;
    return static_cast<int>(std::clamp<std::int64_t>(position, 0, std::max<std::int64_t>(last, 0)));
}

}  // namespace

AxisFilter buildAxisFilter(int source, int target, int quality) {
    const RowBuilder builder(source, target, quality);
    AxisFilter filter;
    filter.taps = builder.taps();
    filter.rowLength = (filter.taps + 3) / 4 * 4;

    // Rows are built for the phases that occur: a long kernel serves few outputs.
    constexpr auto kNotBuilt = static_cast<std::size_t>(-1);
    std::array<std::size_t, kPhases> rowOfPhase;
    rowOfPhase.fill(kNotBuilt);
    for (int i = 0; i < target; ++i) {
        const int position = positionOf(i, source, target, quality);
        const int index = position >> kPhaseBits, phase = position & (kPhases - 1);
        std::size_t& row = rowOfPhase[static_cast<std::size_t>(phase)];
        if (row == kNotBuilt) {
            row = filter.weights.size();
            filter.weights.resize(row + static_cast<std::size_t>(filter.rowLength));
            builder.build(phase, filter.weights.data() + row);
        }
        filter.first.push_back(index - (filter.taps / 2 - 1));
        filter.phase.push_back(static_cast<unsigned char>(phase));
        filter.weightRow.push_back(row);
    }
    return filter;
}

}  // namespace zellab
