#include <algorithm>

#include "beautykernel/facefleckcleaner/faceFleckCleaner.h"
#include "beautykernel/facefleckcleaner/faceSkinMap.h"
#include "beautykernel/facefleckcleaner/fineFleckCleaner.h"
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/core/floatToInt.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace ZelImageCore {

namespace {

using zelbeauty::SkinFaceRecord;

constexpr int kFleckMethod = 0, kFineMethod = 1;

SkinFaceRecord recordOf(const CGRect& rect, const zellab::Vector2f* points, int pointCount, int width,
                        int height) {
    const auto limit = [](float position, int size) {
        return std::clamp(zellab::truncateToInt(position), 0, size - 1);
    };
    SkinFaceRecord record;
    record.left = limit(rect.x, width);
    record.right = limit(rect.x + rect.width, width);
    record.top = limit(rect.y, height);
    record.bottom = limit(rect.y + rect.height, height);
    std::copy_n(points, zellab::CInterFacePoint::kBlockPoints, record.points);
    record.pointCount = pointCount;
    return record;
}

/// Clears the map where the caller's plane is 0, and hands it back through that plane.
void narrow(zellab::PlaneView<zellab::Byte> map, zellab::PlaneView<zellab::Byte> callersMask) {
    zellab::parallelRows(map.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            zellab::Byte *m = map.row(y), *c = callersMask.row(y);
            for (int x = 0; x < map.width; ++x) c[x] = m[x] = c[x] ? m[x] : zellab::Byte{0};
        }
    });
}

}  // namespace

void TableSkin::ImageProcessWithAutoFaceInpaint(unsigned char* image, unsigned char* skinMask, int width,
                                                int height, CGRect& faceRect, void* points, int faceIndex,
                                                int method) {
    const zellab::ImageView picture(image, width, height);
    if (!picture.valid() || !points || !(faceRect.width > 0.0f) || !(faceRect.height > 0.0f)) return;
    const auto* faces = static_cast<const zellab::CInterFacePoint*>(points);
    const zellab::Vector2f* facePoints =
        faces->GetInterPoints(zellab::clampFaceIndex(faceIndex, faces->GetFaceCount()));
    if (!facePoints) return;

    const SkinFaceRecord face = recordOf(faceRect, facePoints, faces->GetInterPointCount(), width, height);
    // Without a mask to hand back, nobody sees the map beyond the face.
    zellab::FaceSkinMap skin(picture, face, skinMask == nullptr);
    if (skinMask) narrow(skin.view(), {skinMask, width, height});
    if (method == kFleckMethod) {
        zellab::FaceFleckCleaner().CleanFace(picture, skin.view(), {&face, 1}, {}, false);
    } else if (method == kFineMethod) {
        zellab::FineFleckCleaner cleaner;
        cleaner.setStages({.flecks = true});
        cleaner.Run(picture, skin.view(), {&face, 1}, {});
    }
}

}  // namespace ZelImageCore
