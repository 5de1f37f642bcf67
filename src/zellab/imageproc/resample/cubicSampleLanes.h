#pragma once

#include "zellab/imageproc/resample/cubicSample.h"

/// The two forms of sampleCubicRun; both give the same bytes.

namespace zellab::cubic {

constexpr int kTaps = 4;

/// Integer positions and weights of `Lanes` samples along one axis.
template <int Lanes>
struct AxisTaps {
    alignas(32) std::int32_t base[Lanes];  // of the first tap, in pixels of the picture
    alignas(32) float weights[kTaps][Lanes];
};

void sampleRunPlain(const CubicSource& source, const float* x, const float* y, int count, Byte* out);

void sampleRunAvx2(const CubicSource& source, const float* x, const float* y, int count, Byte* out);

}  // namespace zellab::cubic
