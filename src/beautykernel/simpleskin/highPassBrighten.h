#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Brightens by the detail that a blur takes away: where a sample o is darker than its blur b, o is burnt
/// by the high pass 2 (o - b + 128), and the result mixed with o. Colour bytes of RGBA pixels, in place.
///
/// @param radius  of the stack blur, limited as in CStackBlur::StackBlurEx
/// @param level   0..10, limited to that range: tenths of the burnt picture; 0 changes nothing
///
/// An empty picture changes nothing.
void HighPassBrighten(ImageView image, int radius, int level);

}  // namespace zellab
