#pragma once

#include <span>
#include <vector>

#include "beautykernel/facefleckcleaner/fleckTypes.h"
#include "beautykernel/skinmaskstatisdetector/skinFaceRecord.h"

namespace zellab {

/// Removes dark spots from faces without a gesture: finds them on a copy of each face whose shorter side is
/// at most 280 pixels, fills them from the skin around, and lays the texture of a neighbouring block over the
/// repair at full resolution.
class FaceFleckCleaner {
public:
    /// Cleans the faces of an RGBA picture in place.
    /// @param skinMask  plane of the picture's size: how much each pixel is skin
    /// @param outMask   plane of the picture's size, or an empty one: becomes 80, and over each face with
    ///                  flecks 255 where there is skin or a fleck and 0 elsewhere
    /// @param protectNoseBridge  nothing is sought on the ridge of the nose
    /// @return false where there is no face, or the picture or the skin mask is not valid
    bool CleanFace(ImageView image, PlaneView<const Byte> skinMask,
                   std::span<const zelbeauty::SkinFaceRecord> faces, PlaneView<Byte> outMask,
                   bool protectNoseBridge);

    /// Finds the flecks of a crop at its working size; none, with a line in the log, where it is empty.
    FoundFlecks GetFaceFleckMask(ConstImageView crop, PlaneView<const Byte> skinMask) const;

    /// The repaired boxes of the last face, by rising area, in pixels of the picture.
    const std::vector<FleckRecord>& flecks() const { return m_flecks; }

private:
    void cleanOne(ImageView image, PlaneView<const Byte> skinMask, const zelbeauty::SkinFaceRecord& face,
                  PlaneView<Byte> outMask, bool protectNoseBridge);

    std::vector<FleckRecord> m_flecks;
};

}  // namespace zellab
