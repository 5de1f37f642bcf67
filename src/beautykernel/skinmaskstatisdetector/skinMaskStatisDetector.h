#pragma once

#include <span>

#include "beautykernel/skinmaskstatisdetector/skinFaceRecord.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/poisson/markedBox.h"

namespace zelbeauty {

/// A picture as luma and chroma: three planes of one size.
struct YCbCrView {
    zellab::PlaneView<const zellab::Byte> y, cb, cr;

    bool valid() const { return y.valid() && cb.valid() && cr.valid(); }
};

/// What one face says about skin: the mean colour of its bright pixels, and the range of brightness that
/// counts as skin.
struct FaceColour {
    int y = 0, cb = 0, cr = 0, low = 0, high = 0;
};

/// A colour in luma and chroma.
struct YCbCrColour {
    zellab::Byte y = 0, cb = 0, cr = 0;
};

/// The skin model: statistics of the faces, a chroma map around their colour and a weight by brightness, so
/// that each pixel costs two table reads.
class SkinMaskStatisDetector {
public:
    /// Writes the map, a plane of the picture's size.
    /// @param altTable  the chroma model that leans towards smaller Cb
    /// @param mean      becomes the mean of the sure skin of the first face: 0 with no face, left alone where
    ///                  no pixel is sure. May be null
    static void Detect(const YCbCrView& picture, zellab::PlaneView<zellab::Byte> map,
                       std::span<const SkinFaceRecord> faces, bool altTable, YCbCrColour* mean);

    /// The map of one face within a box of the picture, which holds at least areaRead().
    static void DetectWithin(const zellab::PixelBox& box, const YCbCrView& picture,
                             zellab::PlaneView<zellab::Byte> map, const SkinFaceRecord& face);

    /// The box that holds every pixel that is read to learn from a face.
    static zellab::PixelBox areaRead(int width, int height, const SkinFaceRecord& face);

    /// Measures one face. All is 0, with a line in the log, where the box or the patch below the eyes is
    /// empty.
    static FaceColour GetFaceColorYuv(const YCbCrView& picture, const SkinFaceRecord& face);
};

}  // namespace zelbeauty
