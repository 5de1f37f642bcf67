#include "beautykernel/facefleckcleaner/blobFinder.h"

#include <algorithm>

#include "beautykernel/facefleckcleaner/contrastStretch.h"
#include "beautykernel/facefleckcleaner/faceCrop.h"
#include "beautykernel/facefleckcleaner/fineSpotTest.h"
#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/masks/maskMorphology.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace zellab {

namespace {

constexpr int kLeastDepth = 4;   // a blob is darker than its surroundings by more than this
constexpr int kSmallSide = 320;  // shorter side of the small copy
constexpr int kSmallFillLimit = 500, kLongLimit = 720;  // in 1/256
/// Rounds of thinning after the merge. One takes off what the widening put on; to the end, thinning would
/// leave lines, of which none has a spot's area.
constexpr int kCleaningRounds = 1;

Plane<Byte> scaled(PlaneView<const Byte> plane, WorkingSize size, YuvFilter filter) {
    return scaledBox(plane, {0, 0, plane.width, plane.height}, size.width, size.height, filter);
}

/// The blobs of the small copy that look like spots, at full size.
Plane<Byte> smallBlobs(PlaneView<const Byte> plane, PlaneView<const Byte> skinMask, BlobRadii radii,
                       float sizeFactor) {
    const WorkingSize size = workingSize({0, 0, plane.width, plane.height}, kSmallSide);
    const float share = static_cast<float>(size.width) / static_cast<float>(plane.width);
    const BlobRadii smallRadii{static_cast<int>(static_cast<float>(radii.small) * share),
                               static_cast<int>(static_cast<float>(radii.large) * share)};
    const Plane<Byte> small = scaled(plane, size, YuvFilter::bilinear);
    const Plane<Byte> smallMask = scaled(skinMask, size, YuvFilter::bilinear);
    Plane<Byte> blobs = DarkBlobs(small.view(), smallRadii);
    const FoundFlecks spots =
        passingSpots(blobs.view(), smallMask.view(), {kSmallFillLimit, kLongLimit, sizeFactor});
    std::transform(spots.labels.data(), spots.labels.data() + spots.labels.size(), blobs.data(),
                   [](int label) { return label > 0 ? Byte{255} : Byte{0}; });
    return scaled(blobs.view(), {plane.width, plane.height}, YuvFilter::none);
}

}  // namespace

Plane<Byte> DarkBlobs(PlaneView<const Byte> plane, BlobRadii radii) {
    const int w = plane.width, h = plane.height;
    Plane<Byte> near = copyOf(plane);
    stretchContrast(near.view());
    StackBlurGray(near.view(), radii.small);
    Plane<Byte> far = copyOf(near.view());
    StackBlurGray(far.view(), radii.large);
    Plane<Byte> blobs(w, h);
    std::transform(near.data(), near.data() + near.size(), far.data(), blobs.data(),
                   [](Byte n, Byte f) { return f - n > kLeastDepth ? Byte{255} : Byte{0}; });
    BoxMorphology(blobs.view(), 1, true);
    return blobs;
}

Plane<Byte> findBlobs(PlaneView<const Byte> plane, PlaneView<const Byte> skinMask,
                      PlaneView<const Byte> protect, BlobRadii radii, float sizeFactor) {
    Plane<Byte> blobs = DarkBlobs(plane, radii);
    const Plane<Byte> small = smallBlobs(plane, skinMask, radii, sizeFactor);
    for (int y = 0; y < plane.height; ++y)
        for (int x = 0; x < plane.width; ++x) {
            Byte& blob = blobs.view().row(y)[x];
            if (protect.row(y)[x]) {
                blob = 0;
            } else if (small.view().row(y)[x]) {
                blob = 255;
            }
        }
    thinMaskRounds(blobs.view(), kCleaningRounds);
    return blobs;
}

}  // namespace zellab
