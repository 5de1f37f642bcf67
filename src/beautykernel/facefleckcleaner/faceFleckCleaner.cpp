#include "beautykernel/facefleckcleaner/faceFleckCleaner.h"

#include <algorithm>

#include "beautykernel/facefleckcleaner/faceCrop.h"
#include "beautykernel/facefleckcleaner/featureExclusion.h"
#include "beautykernel/facefleckcleaner/fleckDetection.h"
#include "beautykernel/facefleckcleaner/fleckRepair.h"
#include "frame/zel_log.h"

namespace zellab {

namespace {

constexpr int kWorkingSide = 280;  // shorter side of the searched copy at most
constexpr Byte kNotLookedAt = 80;  // what outMask holds beside the faces

/// Marks where the labels are not 0.
void markLabels(PlaneView<Byte> mask, PlaneView<const int> labels) {
    for (int y = 0; y < labels.height; ++y)
        std::transform(labels.row(y), labels.row(y) + labels.width, mask.row(y),
                       [](int label) { return label != 0 ? Byte{255} : Byte{0}; });
}

}  // namespace

bool FaceFleckCleaner::CleanFace(ImageView image, PlaneView<const Byte> skinMask,
                                 std::span<const zelbeauty::SkinFaceRecord> faces, PlaneView<Byte> outMask,
                                 bool protectNoseBridge) {
    if (faces.empty() || !image.valid() || !skinMask.valid()) return false;
    for (int y = 0; outMask.valid() && y < outMask.height; ++y)
        std::fill_n(outMask.row(y), outMask.width, kNotLookedAt);
    m_flecks.clear();
    for (const zelbeauty::SkinFaceRecord& face : faces)
        cleanOne(image, skinMask, face, outMask, protectNoseBridge);
    return true;
}

void FaceFleckCleaner::cleanOne(ImageView image, PlaneView<const Byte> skinMask,
                                const zelbeauty::SkinFaceRecord& face, PlaneView<Byte> outMask,
                                bool protectNoseBridge) {
    std::optional<FaceCrop> crop = cutFace(image, skinMask, face, kWorkingSide, YuvFilter::linear);
    if (!crop) return;
    excludeFeatures(*crop, protectNoseBridge);
    FoundFlecks found = GetFaceFleckMask(crop->view(), crop->mask.view());
    m_flecks.clear();
    if (found.boxes.empty()) return;
    FleckRepair repair = repairFlecks(image, *crop, std::move(found));
    m_flecks = std::move(repair.records);
    if (outMask.valid())
        markLabels(outMask.crop(crop->box.left, crop->box.top, crop->box.width, crop->box.height),
                   repair.labels.view());
}

FoundFlecks FaceFleckCleaner::GetFaceFleckMask(ConstImageView crop, PlaneView<const Byte> skinMask) const {
    if (!crop.valid()) {
        ZEL_LOG_ERROR(
            "ERROR: FaceFleckCleaner  GetFaceFleckMask invalidate faceData faceWidth=%d faceHeight=%d",
            crop.width, crop.height);
        return {};
    }
    FoundFlecks found = shapedLikeFlecks(darkSpots(crop, skinMask).view());
    keepOnSkin(found, skinMask);
    return found;
}

}  // namespace zellab
