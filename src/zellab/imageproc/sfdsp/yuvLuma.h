#pragma once

#include "zellab/imageproc/core/imageView.h"

/// The Y of BT.601 limited-range YUV, bit for bit as the YUV library computes it. That library takes blue in
/// byte 0 and is handed the pixels as they stand, so blue's weight falls on red, and red's on blue.

namespace zellab {

/// Y of every pixel, into a plane of the picture's size.
void readYuvLuma(ConstImageView image, PlaneView<Byte> luma);

/// Replaces Y and keeps U and V of every pixel; byte 3 becomes 255. The two chroma planes live one row long.
void replaceYuvLuma(ImageView image, PlaneView<const Byte> luma);

}  // namespace zellab
