#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zellab {

/// The filter of one axis: for every output sample a first source sample, and a row of weights picked by
/// the phase, the position between two samples in 128ths.
struct AxisFilter {
    int taps = 0;       // even
    int rowLength = 0;  // taps, with zeros up to a multiple of 4
    std::vector<std::int16_t> weights;

    std::vector<int> first;              // source index of the first tap; may lie outside the source
    std::vector<unsigned char> phase;    // 0..127
    std::vector<std::size_t> weightRow;  // where in `weights` the output's row starts

    const std::int16_t* weightsOf(std::size_t output) const { return weights.data() + weightRow[output]; }
};

/// Weights are 14-bit fixed point: every row sums to 16384.
inline constexpr int kWeightBits = 14, kWeightSum = 1 << kWeightBits;
/// Phases between two samples.
inline constexpr int kPhaseBits = 7, kPhases = 1 << kPhaseBits;

/// Builds the filter that takes `source` samples to `target` samples, both above 0. Quality 0 interpolates
/// between two samples; 3 is a cubic of four taps; 1 and all other numbers are windowed sincs of six taps.
/// On the way down all but quality 0 widen with the ratio, so that fine detail averages out.
AxisFilter buildAxisFilter(int source, int target, int quality);

}  // namespace zellab
