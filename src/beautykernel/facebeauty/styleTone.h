#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

struct StyleTone {
    bool airy;       // the airy look, whatever the strength
    float strength;  // of the portrait look: up to 0.01 its faint form is applied, above 0.99 all of it
};

/// Grades a picture through one of the style assets tone3, tone3_1 and tone4. A missing table leaves the
/// picture as it is; for the portrait look the log says so.
void applyStyleTone(ImageView image, const StyleTone& tone);

}  // namespace zellab
