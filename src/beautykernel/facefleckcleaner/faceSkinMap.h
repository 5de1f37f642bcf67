#pragma once

#include "beautykernel/skinmaskstatisdetector/skinFaceRecord.h"
#include "zellab/imageproc/core/lazyPlane.h"

namespace zellab {

/// How much each pixel of a picture is skin, learnt from one face, with the face's features marked.
class FaceSkinMap {
public:
    /// @param onlyFace  find the map only where a search of the face reads it; elsewhere it is 0. Its cost is
    ///                  then that of the face's box, whatever the picture's size
    FaceSkinMap(ImageView image, const zelbeauty::SkinFaceRecord& face, bool onlyFace);

    /// A plane of the picture's size.
    PlaneView<Byte> view() { return m_map.view(); }

private:
    LazyPlane m_map;
};

}  // namespace zellab
