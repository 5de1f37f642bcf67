#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// A separable filter scaler: 128 phases between samples, weights of 14 bits.
class ImageResampler {
public:
    /// Takes the worker count from ProcessorCount().
    ImageResampler();

    /// Scales a picture (alpha like the rest) or a plane. `quality` 0 interpolates between two samples, 3 is
    /// a cubic, 1 and others are longer filters; all but 0 average on the way down. Equal sizes copy. Returns
    /// false, the target untouched, where a view is not valid.
    bool Resize(ConstImageView source, ImageView target, int quality) const;
    bool Resize(PlaneView<const Byte> source, PlaneView<Byte> target, int quality) const;

private:
    int m_threads;
};

}  // namespace zellab
