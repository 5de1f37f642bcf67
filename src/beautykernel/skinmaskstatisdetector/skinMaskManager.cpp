#include "beautykernel/skinmaskstatisdetector/skinMaskManager.h"

#include <algorithm>

#include "beautykernel/skinmaskstatisdetector/skinMaskStatisDetector.h"
#include "beautykernel/skintools/featureMaskPainter.h"
#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/colour/yCbCr.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/resample/imageResampler.h"

namespace zelbeauty {

namespace {

constexpr int kPartValue = 100;    // what features are marked with
constexpr int kSmallestFace = 10;  // boxes up to this side get no marks
constexpr int kBlurSide = 800;     // longer side of the copy that is blurred, at most
constexpr int kSameSize = 5;       // copies closer than this to the picture's size are not made
constexpr int kBlurShare = 40;     // the blur radius is the shorter side of the copy divided by this
constexpr int kShrinkQuality = 0, kEnlargeQuality = 3;

struct Size {
    int width, height;
};

Size blurSize(int width, int height) {
    if (width <= kBlurSide && height <= kBlurSide) return {width, height};
    const float fx = static_cast<float>(width) / kBlurSide, fy = static_cast<float>(height) / kBlurSide;
    if (fx > fy) return {kBlurSide, static_cast<int>(static_cast<float>(height) / fx + 0.5f)};
    return {static_cast<int>(static_cast<float>(width) / fy + 0.5f), kBlurSide};
}

/// Blurs a map, through a copy of at most 800 pixels where the map is larger.
void blurMap(zellab::PlaneView<zellab::Byte> whole) {
    const Size work = blurSize(whole.width, whole.height);
    const int radius = std::max(std::min(work.width, work.height) / kBlurShare, 1);
    if (whole.width - work.width < kSameSize && whole.height - work.height < kSameSize) {
        zellab::StackBlurGray(whole, radius);
        return;
    }
    // A very long picture has a copy of no height: it keeps one row.
    zellab::Plane<zellab::Byte> small(std::max(work.width, 1), std::max(work.height, 1));
    const zellab::ImageResampler resampler;
    resampler.Resize(whole, small.view(), kShrinkQuality);
    zellab::StackBlurGray(small.view(), radius);
    resampler.Resize(small.view(), whole, kEnlargeQuality);
}

}  // namespace

SkinMaskManager::SkinMaskManager(int kind) : detectorKind(kind) {}

void SkinMaskManager::DetectSkin(const YCbCrView& picture, std::span<const SkinFaceRecord> faces,
                                 int partFlags, bool altTable) {
    skinMask = zellab::Plane<zellab::Byte>(picture.y.width, picture.y.height);
    if (!picture.valid()) {
        smoothMask = copyOf(skinMask.view());
        return;
    }
    YCbCrColour mean{meanY, meanCb, meanCr};
    SkinMaskStatisDetector::Detect(picture, skinMask.view(), faces, altTable, &mean);
    meanY = mean.y, meanCb = mean.cb, meanCr = mean.cr;
    if (faces.empty()) {
        meanY = 139, meanCb = 121, meanCr = 143;
        meanR = 160, meanG = 130, meanB = 126;
    } else {
        zellab::YCbCrToRGB(&meanY, &meanCb, &meanCr, &meanR, &meanG, &meanB);
    }
    for (const SkinFaceRecord& face : faces) PaintParts(skinMask.view(), face, partFlags);
    smoothMask = copyOf(skinMask.view());
    blurMap(smoothMask.view());
}

void SkinMaskManager::PaintParts(zellab::PlaneView<zellab::Byte> map, const SkinFaceRecord& face,
                                 int partFlags) {
    if (face.right - face.left > kSmallestFace && face.bottom - face.top > kSmallestFace)
        zellab::CFeatureMaskPainter::Paint(map, face.points, partFlags, kPartValue, zellab::wholeTurnHull);
}

}  // namespace zelbeauty
