#pragma once

#include "beautykernel/eyebright/eyeLook.h"

namespace zellab {

/// Makes the eyes of one face clearer: cuts each out by its lids, finds the iris, lightens the iris's ring
/// and the whites within soft masks, and fuses the result back.
class EyeBright {
public:
    /// Works on an RGBA picture in place. `points` are the interpolated points of a face as x, y in pixels.
    /// The first seven floats are percentages; the last three are the exponent, the scale and the factor of
    /// the colour guided filter. An eye whose iris is not found is logged and left as it is. A null picture,
    /// null points, a size of 0 or less or a float that is not finite changes nothing.
    void Run(unsigned char* image, int width, int height, float overallGain, float bandOffset,
             float reservedShade, float highlightGain, float whiteGain, float darkTolerance, float irisGain,
             float filterRadius, float filterEps, float filterScale, const float* points);

    /// Mixes the cut-out into the picture by its distance to the lids times `overallGain`. A cut-out that
    /// does not fit where it lies is logged and moved; one as large as the picture is left out.
    static void FuseEyeProcessImage(const EyeCut& eye, ImageView picture, float overallGain);
};

}  // namespace zellab
