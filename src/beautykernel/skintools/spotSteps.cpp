#include "beautykernel/skintools/spotSteps.h"

#include <algorithm>

#include "beautykernel/skintools/spotRepair.h"
#include "zellab/imageproc/parallelRows.h"
#include "zellab/imageproc/sfdsp/scaleBilinear.h"
#include "zellab/imageproc/stackBlur.h"

namespace zellab {

namespace {

constexpr int kSmallestRadius = 1, kRadii = 2;
constexpr int kPasteBlurRadius = 2;  // of the repaired cells, which widens the paste

SpotBox spotBoxOf(const FaceData* face) {
    // A box of no size is no box to the repair; its sides may lie too far apart to subtract.
    if (!face || face->left < 0 || face->top < 0 || face->right <= face->left || face->bottom <= face->top)
        return {};
    return {face->left, face->top, face->right - face->left, face->bottom - face->top};
}

}  // namespace

void repairSpots(ImageView image, PlaneView<const Byte> skinMask, const FaceData* face, Byte* spotMask) {
    CSpotRepair::Run(image.data, image.width, image.height, image.width * 4, skinMask.data, kSmallestRadius,
                     kRadii, spotBoxOf(face), spotMask);
}

void repairSpotsOnCopy(ImageView image, ImageView small, PlaneView<const Byte> smallSkinMask,
                       const FaceData* smallFace) {
    Plane<Byte> spots(small.width, small.height);
    repairSpots(small, smallSkinMask, smallFace, spots.data());
    if (std::all_of(spots.data(), spots.data() + spots.size(), [](Byte s) { return s == 0; })) return;
    StackBlurGray(spots.data(), small.width, small.height, kPasteBlurRadius);
    Plane<Byte> where(image.width, image.height);
    ScaleBilinearThreaded(spots.data(), small.width, small.height, where.data(), image.width, image.height,
                          1);
    std::vector<Byte> repaired(sampleCount(image.width, image.height, 4));
    ScaleBilinearThreaded(small.data, small.width, small.height, repaired.data(), image.width, image.height,
                          4);
    const ConstImageView source(repaired.data(), image.width, image.height);
    parallelRows(image.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            for (int x = 0; x < image.width; ++x)
                if (where.view().row(y)[x] != 0) std::copy_n(source.at(x, y), 3, image.at(x, y));
    });
}

}  // namespace zellab
