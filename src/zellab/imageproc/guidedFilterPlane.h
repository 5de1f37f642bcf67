#pragma once

namespace zellab {

/// Draws the edges of a plane to those of a picture: the guided filter with a colour guide, in its fast form.
/// In each window the plane is taken for a linear function of the picture's red, green and blue.
///
/// Filters `plane` (a byte a pixel, tightly packed) in place; `guideRgba` has the same size and is only read.
/// Statistics are taken on both pictures shrunk `scale` times, in windows of 2 * radius + 1 shrunk pixels a
/// side that end at the picture's rim. `epsilon` is added to the variances of the guide, whose colours count
/// from 0 to 1: what varies much less than that is smoothed away. A null buffer or a size of 0 or less does
/// nothing; a radius below 0 counts as 0, a scale below 1 as 1, an epsilon that is not above 0 as 0.
void GuidedFilterPlane(unsigned char* plane, const unsigned char* guideRgba, int width, int height,
                       int radius, float epsilon, float scale);

}  // namespace zellab
