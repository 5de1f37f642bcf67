#pragma once

namespace zellab {

/// Brightens by the detail that a blur takes away: where a sample o is darker than its blur b, o is burnt
/// by the high pass 2 (o - b + 128), and the result mixed with o. Colour bytes of RGBA pixels, in place.
///
/// @param radius  of the stack blur, limited as in CStackBlur::StackBlurEx
/// @param level   0..10, limited to that range: tenths of the burnt picture; 0 changes nothing
///
/// A null picture or a size below 1 changes nothing.
void HighPassBrighten(unsigned char* rgba, int width, int height, int radius, int level);

}  // namespace zellab
