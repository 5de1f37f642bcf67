#pragma once

#include "platform/simdLevel.h"
#include "zellab/imageproc/core/imageView.h"

/// What the composition adds up for a run of pixels side by side, one neighbour at a time.

namespace zellab::Bokeh {

inline constexpr int kRun = 32;  // pixels

/// Of a run: the colours that neighbours are measured against, and the sums for the radius there.
struct RadiusSums {
    float red[kRun], green[kRun], blue[kRun];  // levels
    float sum[kRun], weight[kRun];
};

/// Of a run: how far each pixel's small kernel reaches, 0..4, whether the tap is one of its kernel (1, else 0),
/// and the sums under the kernel.
struct SmallSums {
    float reach[kRun], taken[kRun];
    float red[kRun], green[kRun], blue[kRun], weight[kRun], squares[kRun];
};

/// Colours of pixels side by side, in levels.
struct ColourLine {
    const float *red, *green, *blue;
};

/// A neighbour of each pixel of a run: its colour lies `part` of the way from the line's pixel to the next.
struct RunTap {
    ColourLine line;
    float part;
    const Byte* radii;  // of the blur, pixels
};

/// A neighbour counts for the radius by how near and how alike in colour it is.
struct RadiusTap {
    RunTap run;
    float nearness;
};
/// One of the small kernel.
struct SmallTap {
    RunTap run;
    float distance;  // in taps, the larger of both axes
    float weight;
};

struct CompositionTaps {
    /// `count` pixels that lie `part` of the way from one row of RGBA to another, into three lines.
    void (*line)(const Byte* upper, const Byte* lower, float part, int count, float* const lines[3]);
    void (*radius)(const RadiusTap& tap, RadiusSums& sums);
    void (*small)(const SmallTap& tap, SmallSums& sums);
};
CompositionTaps compositionTaps(platform::SimdLevel level);

}  // namespace zellab::Bokeh
