#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

// Masks hold 0 and 255. Every operation works in place and leaves a view that is not valid alone. Windows are
// clipped to the plane; any radius is safe.

/// Widens the set pixels by a square window of 2 * radius + 1, or (`dilate` false) the unset ones. A plane
/// that is no larger than the window is scanned in place in reading order, so that set pixels also spread
/// right and down without end. Of a plane with other values, a pixel becomes the sum of its window, at most
/// 255. A radius below 0 changes nothing.
void BoxMorphology(PlaneView<Byte> plane, int radius, bool dilate);

/// The maximum over `radius` samples on both sides along the rows. A radius below 1 changes nothing.
void MaxFilterHorizontal(PlaneView<Byte> plane, int radius);

/// The same along the columns.
void MaxFilterVertical(PlaneView<Byte> plane, int radius);

/// The maximum, per channel, over the offsets from -(size / 2) to size - size / 2 - 1 on both axes: a size of
/// 2 looks one row and column back and none ahead. A size below 2 changes nothing. Returns false only for a
/// view that is not valid.
bool MaxFilterBrute(PlaneView<Byte> plane, int size);
bool MaxFilterBrute(ImageView image, int size);

/// Thins the set (non-zero) regions to lines one pixel wide, each region staying one 8-connected region.
/// Pixels that stay keep their value, the rest become 0.
void ThinMask(PlaneView<Byte> plane);

/// That many rounds of the same: each takes a pixel off all around where that tears nothing.
void thinMaskRounds(PlaneView<Byte> plane, int rounds);

}  // namespace zellab
