#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Colour lookup through a cube of 16 steps an axis, trilinear, in place on bytes 0 to 2 of an RGBA picture.
/// @param cube  a picture of 64 by 64 RGBA texels: 4 by 4 tiles of 16 by 16. Red runs along x within a tile,
///              green along y, and blue picks the tile, row by row.
/// Nothing happens without a cube or for a view that is not valid.
void ApplyColorCube(ImageView image, const Byte* cube);

/// The same through a cube of 64 steps in 512 by 512 texels: 8 by 8 tiles of 64 by 64.
void ApplyColorCube64(ImageView image, const Byte* cube);

}  // namespace zellab
