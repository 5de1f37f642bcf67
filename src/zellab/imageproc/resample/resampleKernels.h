#pragma once

#include <cstddef>

#include "platform/simdLevel.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/resample/resamplePhases.h"

namespace zellab {

/// Filters one row to `count` samples. `row` points at sample 0 and can be read from filter.first[i] to
/// filter.first[i] + filter.rowLength + filter.slack - 1 for every i; the weights behind `taps` are 0.
using HorizontalKernel = void (*)(const Byte* row, const AxisFilter& filter, std::size_t count, Byte* out);

/// Mixes `taps` rows of `bytes` bytes by their weights.
using VerticalKernel = void (*)(const Byte* const* rows, const std::int16_t* weights, int taps,
                                std::size_t bytes, Byte* out);

/// The inner loops of a resampling for 1 or 4 bytes a pixel; all levels give the same bytes. The first may
/// add a plan to the filter that it will work from.
HorizontalKernel horizontalKernel(platform::SimdLevel level, int channels, AxisFilter& filter);
VerticalKernel verticalKernel(platform::SimdLevel level, int taps);

}  // namespace zellab
