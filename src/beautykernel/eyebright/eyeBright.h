#pragma once

#include "beautykernel/eyebright/eyeLook.h"

namespace zellab {

/// One truth for each eye of a face.
struct EyePair {
    bool left = true, right = true;
};

/// Makes the eyes of one face clearer: cuts each out by its lids, finds the iris, lightens the iris's ring
/// and the whites within soft masks, and fuses the result back.
class EyeBright {
public:
    /// Works on an RGBA picture in place. `points` are the interpolated points of a face in pixels. An eye
    /// whose iris is not found is logged and left as it is. An empty picture, null points or a number that is
    /// not finite changes nothing.
    static void Run(ImageView image, const Vector2f* points, const EyeTuning& tuning);

    /// The same on the eyes that are wanted alone, without a word in the log.
    /// @return the eyes whose iris was found, where there was anything to do
    static EyePair RunOn(EyePair wanted, ImageView image, const Vector2f* points, const EyeTuning& tuning);

    /// Mixes the cut-out into the picture by its distance to the lids times `overallGain`. A cut-out that
    /// does not fit where it lies is logged and moved; one as large as the picture is left out.
    static void FuseEyeProcessImage(const EyeCut& eye, ImageView picture, float overallGain);
};

/// Brightens the eyes of one face by the amounts that the skin operations use. Null points change nothing.
void brightenEyes(ImageView image, const Vector2f* points);

}  // namespace zellab
