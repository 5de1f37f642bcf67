#pragma once

namespace zellab::Bokeh {

/// The working sizes of one render and the strength of its blur.
struct BlurStrength {
    float scaleFactor = 1.0f;         ///< of the strength, against a picture whose working size is its own
    float scaleRatio = 1.0f;          ///< full size over working size, before rounding
    int smallWidth = 4;               ///< working picture, pixels; a multiple of 4
    int smallHeight = 4;              ///< likewise
    int halfWidth = 4;                ///< hair mask, pixels; a multiple of 4
    int halfHeight = 4;               ///< likewise
    float ratio = 1.0f;               ///< full-size pixels to a working pixel, along x
    float radius = 0.0f;              ///< of the blur, full-size pixels
    float radiusPerDisparity = 0.0f;  ///< growth of the radius per step of disparity, full-size pixels
};

/// @param width, height     of the picture, at least 1
/// @param resolutionFactor  above 0; below 1 works on a smaller picture, which is never made shorter than 720
/// @param blurLevel         0..100
/// @param hasFocusPoints    whether faces were given; without any the blur is weaker
/// @param inProportion      the radius is the same share of every picture's longer side; otherwise it is smaller where
///                          the working picture is the picture itself
BlurStrength computeBlurStrength(int width, int height, float resolutionFactor, int blurLevel,
                                 bool hasFocusPoints, bool inProportion = false);

/// The factor with which a blur whose largest radius has so many pixels of the picture comes out as strong at every
/// size: a coarser working picture than the factor's own where that many working pixels would be too many to blur
/// over, else a slightly finer one, in which the radius is a whole number of pixels.
float factorInProportion(int width, int height, float resolutionFactor, float largestRadius);

/// Working pixels of the radius that are left out, since what is that little out of focus looks sharp: the same
/// share of every picture.
float unseenRadius(const BlurStrength& strength);

}  // namespace zellab::Bokeh
