#pragma once

#include "zel_effects/zel_records.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Numbers of the two methods of the dark-circle removal, as a host gives them.
enum DarkCircleMethodNumber : int { kDarkCircleMethodA = 0, kDarkCircleMethodB = 1 };

/// Limits a rectangle to a picture of that size, in place; NaN becomes 0.
void limitToPicture(CGRect& rect, int width, int height);

/// Removes the dark circles of one face in place, by the method of that number; any other number does
/// nothing, and so does an empty picture.
/// @param faceRect  the face, in pixels of the picture and inside it
/// @param points    the interpolated points of the face; null does nothing
/// @param strength  0..1
void removeDarkCircles(ImageView image, const CGRect& faceRect, const Vector2f* points, float strength,
                       int method);

}  // namespace zellab
