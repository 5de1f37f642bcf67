#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// How the shadows on skin are lifted: along a curve that takes 128 to `target`.
struct CurveLift {
    int target;
    int rounding;  // added to the product before its division by 255
};

/// The lift of a picture that decides on a smaller copy, and of one that is small itself, by the brightness
/// of the mean skin colour: the darker, the more.
CurveLift largeLift(int skinBrightness);
CurveLift smallLift(int skinBrightness);

/// Moves bytes 0 to 2 towards the curve by shadow / 255. The plane has the picture's size.
void liftShadows(ImageView image, PlaneView<const Byte> shadow, const CurveLift& lift);

}  // namespace zellab
