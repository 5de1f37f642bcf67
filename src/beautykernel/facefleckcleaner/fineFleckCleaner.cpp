#include "beautykernel/facefleckcleaner/fineFleckCleaner.h"

#include <algorithm>
#include <cmath>

#include "beautykernel/facefleckcleaner/blobFinder.h"
#include "beautykernel/facefleckcleaner/faceCrop.h"
#include "beautykernel/facefleckcleaner/featureExclusion.h"
#include "beautykernel/facefleckcleaner/fineSpotTest.h"
#include "beautykernel/facefleckcleaner/fleckRepair.h"
#include "zellab/imageproc/core/floatToInt.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

namespace {

constexpr int kWorkingSide = 640;  // shorter side of the searched copy at most
constexpr std::size_t kFirstPupil = 169, kSecondPupil = 170;
constexpr float kPlainFactorSmall = 0.015f, kPlainFactorLarge = 0.075f;  // without the record's flag
constexpr int kFillLimit = 740, kLongLimit = 720;                        // in 1/256

Plane<Byte> greenOf(ConstImageView picture) {
    Plane<Byte> green(picture.width, picture.height);
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) green.view().row(y)[x] = picture.at(x, y)[1];
    return green;
}

/// A share of the pupils' distance. Landmarks far outside the picture give a radius that no blur takes.
int radiusOf(float factor, float distance) {
    return truncateToInt(std::floor(factor * distance));
}

}  // namespace

/// What one run is given.
struct FineFleckCleaner::Search {
    ImageView image;
    PlaneView<const Byte> skinMask;
    const FineFleckParams& params;
};

void FineFleckCleaner::setStages(const FineFleckStages& stages) {
    m_stages = stages;
}

bool FineFleckCleaner::Run(ImageView image, PlaneView<const Byte> skinMask,
                           std::span<const zelbeauty::SkinFaceRecord> faces, const FineFleckParams& params) {
    if (!m_stages || faces.empty() || !image.valid() || !skinMask.valid()) return false;
    if (!m_stages->flecks) return true;
    for (const zelbeauty::SkinFaceRecord& face : faces) cleanOne({image, skinMask, params}, face);
    return true;
}

void FineFleckCleaner::cleanOne(const Search& search, const zelbeauty::SkinFaceRecord& face) const {
    std::optional<FaceCrop> crop =
        cutFace(search.image, search.skinMask, face, kWorkingSide, YuvFilter::bilinear);
    if (!crop) return;
    Plane<Byte> protect(crop->width, crop->height);
    if (face.hasExternalMask && search.params.externalMask.valid())
        protect =
            scaledBox(search.params.externalMask, crop->box, crop->width, crop->height, YuvFilter::bilinear);
    excludeFeaturesFinely(*crop, search.params.protectNoseBridge);

    const Vector2f a = crop->points[kFirstPupil], b = crop->points[kSecondPupil];
    const float distance = std::sqrt((a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y));
    const BlobRadii radii{radiusOf(face.detectFlecks ? m_radiusFactorSmall : kPlainFactorSmall, distance),
                          radiusOf(face.detectFlecks ? m_radiusFactorLarge : kPlainFactorLarge, distance)};
    const Plane<Byte> green = greenOf(crop->view());
    const Plane<Byte> blobs =
        findBlobs(green.view(), crop->mask.view(), protect.view(), radii, search.params.minSizeFleck);
    FoundFlecks found =
        passingSpots(blobs.view(), crop->mask.view(), {kFillLimit, kLongLimit, search.params.minSizeFleck});
    if (!found.boxes.empty()) repairFlecks(search.image, *crop, std::move(found));
}

}  // namespace zellab
