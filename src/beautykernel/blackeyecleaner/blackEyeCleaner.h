#pragma once

#include "zel_effects/zel_records.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Where the two methods differ.
struct DarkCircleMethod {
    float middleDrop;        // of the crescent's upper edge below the lid, as a share of the eye's opening;
                             // below 0 it starts above, so that the blurs leave the lid its full weight
    float endDrop;           // of its ends below the corners, likewise
    float reach;             // of its ends beyond the corners, as a share of the eye's width
    float band;              // its height, as a multiple of the way from its middle to the under-eye ring
    float repairShare;       // of the strength that goes to the seamless repair
    float fullLift;          // share of the cheek's level up to which a pixel is lifted in full
    int softDivisor;         // the weight of the mix is blurred by faceWidth / softDivisor ...
    int softExtra, softMin;  // ... + softExtra, at least softMin pixels
    int keepDivisor, keepExtra, keepMin;  // likewise how much a pixel keeps
    bool keepsTexture;  // the mix moves the smooth colour and rounds; else the colour itself, by shifts.
                        // Lashes are what is dark beside the cheek; else what is dark in the face
};

/// What one run of the dark-circle removal is given.
struct DarkCircleRun {
    const Vector2f* points = nullptr;  // the interpolated points of the face, in pixels of the picture
    int rectX = 0, rectY = 0, rectWidth = 0, rectHeight = 0;  // the face
    float coreStrength = 0.4f;                                // 0..1, close to the lid
    float strength = 0.0f;                                    // 0..1, in the rest of the crescent
    float ringWeight = 0.2f;  // height of the core as a share of the crescent's
    bool useEdges = true;     // false leaves out the seamless repair
};

/// Lightens the shadows under both eyes: a Poisson repair from the cheek where the skin is even enough, then
/// a mix of the dark pixels towards the blurred cheek colour of their column.
class CBlackEyeCleaner {
public:
    /// Works on an RGBA picture in place. A rectangle smaller than the eye region is no face: it is logged,
    /// and nothing is done.
    static void Run(ImageView image, const DarkCircleRun& run);
};

/// The second method, in the same order of stages: crescents that begin right below the lid and reach a
/// little beyond the eye's corners, narrower blurs, and a mix that rounds.
class CBlackEyeCleanerB {
public:
    static void Run(ImageView image, const DarkCircleRun& run);
};

}  // namespace zellab
