#pragma once

#include "bokeh/grainMap.h"
#include "bokeh/noiseTile.h"
#include "bokeh/renderPasses.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab::Bokeh {

/// What the composition draws from.
struct CompositionSource {
    ConstImageView photograph;
    ConstImageView soft;           // the blurred working picture
    PlaneView<const Byte> radius;  // of the blur in pixels of the photograph, a byte a working pixel
    float scaleRatio = 1.0f;       // the photograph's pixels across a working pixel
    PlaneView<const Byte> hair;    // of half the photograph's size; none: no hair keeps the photograph
    float smallBlurRadius = kSmallBlurRadius;
    const GrainMap* grain = nullptr;
    const NoiseTile* noise = nullptr;
};

/// The composition and the hair's pass: the photograph, its small blurs and the soft picture by the radius, with
/// the photograph's grain, and where there is hair the photograph over that. What each step is for, the shaders
/// composition.frag and hair.frag say; this draws the same picture. The target does not overlap the photograph.
void composePicture(const CompositionSource& source, const ImageView& target);

}  // namespace zellab::Bokeh
