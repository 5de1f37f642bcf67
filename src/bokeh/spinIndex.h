#pragma once

#include "bokeh/kernelStrip.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab::Bokeh {

/// The record (0..119) of the spinning kernels that a pixel scatters with, in a width by height picture.
///
/// The direction from the picture's centre, rounded to twentieths of a turn, picks the rotation, so that a
/// shape drawn for a point right of the centre keeps its side toward the centre all around. The distance in
/// sixths of the way to the corner picks the frame. The convolution shader takes the same steps: they are
/// products and comparisons alone, which round alike everywhere.
int spinRecord(int x, int y, int width, int height);

/// spinRecord of every pixel.
Plane<Byte> spinIndexPlane(int width, int height);

}  // namespace zellab::Bokeh
