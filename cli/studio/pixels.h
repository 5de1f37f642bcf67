#pragma once

#include <optional>

#include "cli/files/image.h"

namespace zelcli::studio {

/// A part of a picture, in its pixels.
struct Rect {
    int left, top, width, height;
};

/// The part, in a size that is no larger: each pixel is the mean of what it covers, weighed by alpha. At its own
/// size it is a copy.
Image reduced(const Image& image, const Rect& part, int width, int height);

/// The whole picture with its longer side at most this long.
Image reducedTo(const Image& image, int longestSide);

/// The picture in any size: reduced, or enlarged by straight lines between pixels.
Image scaledTo(const Image& image, int width, int height);
Mask scaledTo(const Mask& mask, int width, int height);

/// Puts `share` (0 to 1) of `after` over `before`; the result stands in `after`. Of the same size.
void blend(const Image& before, Image& after, double share);

}  // namespace zelcli::studio
