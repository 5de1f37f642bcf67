#pragma once

#include <cstddef>
#include <functional>

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// The samples that a blur reads: all four bytes of a pixel, or one byte of each.
struct BlurSource {
    const Byte* data = nullptr;   // the first sample
    int width = 0, height = 0;    // pixels, at least 1
    std::ptrdiff_t rowBytes = 0;  // from a row to the next
    int pixelBytes = 1;           // from a pixel to the next
    int channels = 1;             // samples of a pixel: 1, or 4 where pixelBytes is 4
    bool keepsAlpha = false;      // with four channels: byte 3 passes as it is

    std::ptrdiff_t rowSamples() const { return std::ptrdiff_t{channels} * width; }
};

/// Receives blurred samples: `count` of row y, from sample `first` of its width * channels on. Called on any
/// worker, once for each sample.
using BlurSink = std::function<void(int y, std::ptrdiff_t first, std::ptrdiff_t count, const Byte* blurred)>;

/// The stack blur by rows, then by columns, either result truncated to a byte. radius >= 0, without a limit:
/// beyond its ends a line repeats its end samples.
///
/// When a sample of row y goes to the sink, no row up to y will be read again, so the sink may write over
/// the source, and what lies there until then is the unblurred picture.
///
/// Where the radius is small beside the height, no full-size picture is made: bands of rows are blurred
/// along x into a ring of rows, and strips of it are blurred along y.
void stackBlur(const BlurSource& source, int radius, int workers, const BlurSink& sink);

}  // namespace zellab
