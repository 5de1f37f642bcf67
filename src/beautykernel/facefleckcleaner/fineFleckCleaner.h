#pragma once

#include "beautykernel/facefleckcleaner/fleckTypes.h"
#include "beautykernel/skinmaskstatisdetector/skinFaceRecord.h"

namespace zellab {

/// Removes spots like FaceFleckCleaner, on a copy of each face whose shorter side is at most 640 pixels.
/// Spots are the difference of two blurs whose radii follow the distance of the pupils, at two scales.
class FineFleckCleaner {
public:
    /// Chooses what is sought, and makes the cleaner ready. Moles and lines of the forehead are not sought by
    /// this version.
    void setStages(bool flecks, bool moles, bool foreheadLines);

    /// Cleans the faces of an RGBA picture in place.
    /// @param skinMask      plane of the picture's size: how much each pixel is skin
    /// @param minSizeFleck  least size of a fleck as a share of the face's shorter side
    /// @param minSizeMole   not read
    /// @param externalMask  plane of the picture's size or null: faces whose record says so are left alone
    ///                      where it is not 0
    /// @return false where the cleaner is not ready, faceCount or a size is below 1 or a buffer is null
    bool Run(unsigned char* image, int width, int height, const unsigned char* skinMask, int faceCount,
             const zelbeauty::SkinFaceRecord* faces, unsigned char protectNoseBridge, float minSizeFleck,
             float minSizeMole, const unsigned char* externalMask);

private:
    struct Search;
    void cleanOne(const Search& search, const zelbeauty::SkinFaceRecord& face) const;

    bool m_ready = false, m_useFlecks = false, m_useMoles = false, m_useForeheadLines = false;
    float m_radiusFactorSmall = 0.01f, m_radiusFactorLarge = 0.078f;  // of the pupils' distance
};

}  // namespace zellab
