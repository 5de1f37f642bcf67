#pragma once

#include <cstdlib>
#include <memory>

#include "beautykernel/skinmaskstatisdetector/skinFaceRecord.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// How much each pixel of a picture is skin, learnt from one face, with the face's features marked.
class FaceSkinMap {
public:
    /// @param onlyFace  find the map only where a search of the face reads it; elsewhere it is 0. Its cost is
    ///                  then that of the face's box, whatever the picture's size
    FaceSkinMap(ImageView image, const zelbeauty::SkinFaceRecord& face, bool onlyFace);

    /// A plane of the picture's size.
    PlaneView<Byte> view() { return {m_map.get(), m_width, m_height}; }

private:
    struct Free {
        void operator()(Byte* plane) const { std::free(plane); }
    };
    /// Memory that holds 0 and costs nothing where nobody touches it.
    using LazyPlane = std::unique_ptr<Byte, Free>;
    static LazyPlane makePlane(std::size_t pixels);

    LazyPlane m_map;
    int m_width, m_height;
};

}  // namespace zellab
