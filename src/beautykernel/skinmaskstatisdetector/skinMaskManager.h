#pragma once

#include <span>

#include "beautykernel/skinmaskstatisdetector/skinFaceRecord.h"
#include "beautykernel/skinmaskstatisdetector/skinMaskStatisDetector.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zelbeauty {

/// Makes a map of how much each pixel is skin, 0..255, learnt from the faces of the picture; marks the
/// features of the faces with 100; keeps a second, blurred copy. Without a face the picture's own brightness
/// and a fixed skin colour serve.
class SkinMaskManager {
public:
    /// @param detectorKind  0; no other kind exists
    explicit SkinMaskManager(int detectorKind);
    virtual ~SkinMaskManager() = default;

    /// @param partFlags  features that are marked: 1 brows, 2 eyes, 4 nose, 8 mouth
    /// @param altTable   the chroma model that leans towards smaller Cb, with a wider range of brightness
    void DetectSkin(const YCbCrView& picture, std::span<const SkinFaceRecord> faces, int partFlags,
                    bool altTable);

    /// Marks the features of one face in a map with 100; a face of up to 10 pixels on a side gets no marks.
    static void PaintParts(zellab::PlaneView<zellab::Byte> map, const SkinFaceRecord& face, int partFlags);

    /// The map of the last detection; not valid before the first. It stays this object's.
    zellab::PlaneView<zellab::Byte> GetSkinMask() { return skinMask.view(); }
    zellab::PlaneView<const zellab::Byte> GetSmoothMask() const { return smoothMask.view(); }

    /// Mean colour of the sure skin.
    unsigned char meanY = 0, meanCb = 0, meanCr = 0;
    unsigned char meanR = 0, meanG = 0, meanB = 0;

private:
    zellab::Plane<zellab::Byte> smoothMask, skinMask;
    int detectorKind;
};

}  // namespace zelbeauty
