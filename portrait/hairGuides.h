#pragma once

#include <vector>

#include "faceShape.h"

namespace zel::drawing {

/// A curve that hair follows, root to tip, in head mm; z is the height above the scalp or face beside it.
using HairGuide = std::vector<Vec3>;

/// A lock of hair between neighbouring guides, which all have the same number of points.
struct HairSection {
    std::vector<HairGuide> guides;  // from the inner edge, next to the face, to the outer one
    float share = 1;                // of all strands
    float ragged = 0.1f;            // how unequal the lengths are, 0 to 1
    float wave = 0;                 // mm of waving at the tips
    float spread = 1.5f;            // mm by which strands leave their place
};

/// Short hair that stands on the scalp, or curls, strand by strand.
struct HairPatch {
    float amount = 0;                // strands as a share of a full head
    float low = 0.8f, high = 1.04f;  // where roots lie between the head's middle (0) and its outline (1)
    float sideEndY = 2;              // how far down beside the ears it grows, mm
    float lengthMm = 14;
    float curl = 0;      // radius of curls in mm, 0 for straight hair
    Vec2 comb;           // direction added to the outward one
    float overFace = 0;  // mm by which the roots' edge lies below the hairline
};

struct HairPlan {
    std::vector<HairSection> back;  // behind neck and shoulders
    std::vector<HairSection> front;
    HairPatch patch;
    bool bun = false;
};

HairPlan planHair(const Sitter& sitter, const FaceShape& shape);

/// y of the hairline at a distance of |x| mm from the middle line.
float hairlineY(const Sitter& sitter, float x);

}  // namespace zel::drawing
