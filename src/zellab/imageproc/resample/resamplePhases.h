#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zellab {

/// A plan for reading the samples of a block of neighbouring outputs by one load and one shuffle, made once
/// an axis and used on every row. Empty where the outputs lie too far apart for it.
struct ShuffleBlocks {
    std::vector<int> base;               // sample that the load starts at, one a block
    std::vector<unsigned char> shuffle;  // 16 a block
    std::vector<std::int16_t> weights;   // planes: for every block and pair of taps, 2 for each of 8 outputs
    std::vector<unsigned char> shares;   // pixels: 16 a block, left and right share of every byte

    bool usable() const { return !base.empty(); }
};

/// The filter of one axis: for every output sample a first source sample, and a row of weights picked by
/// the phase, the position between two samples in 128ths.
struct AxisFilter {
    int taps = 0;       // even
    int rowLength = 0;  // taps, with zeros up to a multiple of 4
    std::vector<std::int16_t> weights;

    std::vector<int> first;              // source index of the first tap; may lie outside the source
    std::vector<unsigned char> phase;    // 0..127
    std::vector<std::size_t> weightRow;  // where in `weights` the output's row starts
    ShuffleBlocks blocks;
    int slack = 0;  // samples that a kernel may read past the last tap's place

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
