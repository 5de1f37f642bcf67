#pragma once

#include <optional>
#include <span>

#include "beautykernel/facefleckcleaner/fleckTypes.h"
#include "beautykernel/skinmaskstatisdetector/skinFaceRecord.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// What is sought. Moles and lines of the forehead are not sought by this version.
struct FineFleckStages {
    bool flecks = false, moles = false, foreheadLines = false;
};

/// How one run seeks.
struct FineFleckParams {
    bool protectNoseBridge = false;  // nothing is sought on the ridge of the nose
    float minSizeFleck = 0.001f;     // least size of a fleck as a share of the face's shorter side
    /// Plane of the picture's size, or an empty one: faces whose record says so are left alone where it is
    /// not 0.
    PlaneView<const Byte> externalMask;
};

/// Removes spots like FaceFleckCleaner, on a copy of each face whose shorter side is at most 640 pixels.
/// Spots are the difference of two blurs whose radii follow the distance of the pupils, at two scales.
class FineFleckCleaner {
public:
    /// Chooses what is sought, and makes the cleaner ready.
    void setStages(const FineFleckStages& stages);

    /// Cleans the faces of an RGBA picture in place.
    /// @param skinMask  plane of the picture's size: how much each pixel is skin
    /// @return false where the cleaner is not ready, there is no face, or the picture or the skin mask is not
    ///         valid
    bool Run(ImageView image, PlaneView<const Byte> skinMask,
             std::span<const zelbeauty::SkinFaceRecord> faces, const FineFleckParams& params);

private:
    struct Search;
    void cleanOne(const Search& search, const zelbeauty::SkinFaceRecord& face) const;

    std::optional<FineFleckStages> m_stages;
    float m_radiusFactorSmall = 0.01f, m_radiusFactorLarge = 0.078f;  // of the pupils' distance
};

}  // namespace zellab
