#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// The everyday blur: a triangle of half-width radius + 1 along rows, then along columns, that looks like a
/// Gaussian and costs the same for every radius. All members work in place with the same integer arithmetic:
/// the sum of the weighted samples divided by (radius + 1)^2, truncated to a byte after either direction;
/// beyond the picture its edge samples repeat.
///
/// A view that is not valid or a negative radius changes nothing. The bytes do not depend on the number of
/// workers. Holds no data.
class CStackBlur {
public:
    /// Bytes 0, 1 and 2 of RGBA pixels, or a plane, on as many workers as pay.
    /// @param radius  limited by stackBlurRadius(); 0 changes nothing
    static void StackBlurEx(ImageView image, int radius);
    static void StackBlurEx(PlaneView<Byte> plane, int radius);

    /// Bytes 0, 1 and 2 of RGBA pixels, with the radius as it stands.
    /// @param threads  1, or more to use all processors
    static void StackBlurExOptimized(ImageView image, int radius, int threads);

    /// A plane, with the radius as it stands.
    static void StackBlurExGray(PlaneView<Byte> plane, int radius, int threads);
};

/// StackBlurEx under the names that say what they take.
void StackBlurRGBA(ImageView image, int radius);
void StackBlurGray(PlaneView<Byte> plane, int radius);

/// All four bytes of RGBA pixels. The radius has no limit.
void StackBlurAllChannels(ImageView image, int radius);

/// Byte 0 of RGBA pixels; the others stay. The radius has no limit. Runs on the caller's thread.
void MaskStackBlur(ImageView image, int radius);

/// The radius that StackBlurEx uses: above a quarter of the shorter side it becomes
/// (shorter side / 2 - 1) / 2, in integers.
int stackBlurRadius(int width, int height, int radius);

/// How many workers StackBlurEx gives a picture of four bytes a pixel: one below 12101 pixels.
int stackBlurWorkers(int width, int height);

}  // namespace zellab
