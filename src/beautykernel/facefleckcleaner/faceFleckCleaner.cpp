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

bool FaceFleckCleaner::CleanFace(unsigned char* image, int width, int height, const unsigned char* skinMask,
                                 int faceCount, const zelbeauty::SkinFaceRecord* faces,
                                 unsigned char* outMask, unsigned char protectNoseBridge) {
    if (faceCount < 1 || width < 1 || height < 1 || !image || !skinMask || !faces) return false;
    if (outMask) std::fill_n(outMask, sampleCount(width, height), kNotLookedAt);
    m_flecks.clear();
    for (int i = 0; i < faceCount; ++i)
        cleanOne({image, width, height}, {skinMask, width, height}, faces[i], {outMask, width, height},
                 protectNoseBridge != 0);
    return true;
}

void FaceFleckCleaner::cleanOne(ImageView image, PlaneView<const Byte> skinMask,
                                const zelbeauty::SkinFaceRecord& face, PlaneView<Byte> outMask,
                                bool protectNoseBridge) {
    std::optional<FaceCrop> crop = cutFace(image, skinMask, face, kWorkingSide, YuvFilter::linear);
    if (!crop) return;
    excludeFeatures(*crop, protectNoseBridge);
    FoundFlecks found = GetFaceFleckMask(crop->pixels.data(), crop->width, crop->height, crop->mask.data());
    m_flecks.clear();
    if (found.boxes.empty()) return;
    FleckRepair repair = repairFlecks(image, *crop, std::move(found));
    m_flecks = std::move(repair.records);
    if (outMask.valid())
        markLabels(outMask.crop(crop->box.left, crop->box.top, crop->box.width, crop->box.height),
                   repair.labels.view());
}

FoundFlecks FaceFleckCleaner::GetFaceFleckMask(const unsigned char* crop, int width, int height,
                                               const unsigned char* skinMask) const {
    if (width < 1 || height < 1) {
        ZEL_LOG_ERROR(
            "ERROR: FaceFleckCleaner  GetFaceFleckMask invalidate faceData faceWidth=%d faceHeight=%d", width,
            height);
        return {};
    }
    const PlaneView<const Byte> skin(skinMask, width, height);
    FoundFlecks found = shapedLikeFlecks(darkSpots({crop, width, height}, skin).view());
    keepOnSkin(found, skin);
    return found;
}

}  // namespace zellab
