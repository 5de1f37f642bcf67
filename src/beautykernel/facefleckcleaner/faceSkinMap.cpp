#include "beautykernel/facefleckcleaner/faceSkinMap.h"

#include <algorithm>

#include "beautykernel/facefleckcleaner/faceCrop.h"
#include "beautykernel/skinmaskstatisdetector/skinMaskManager.h"
#include "beautykernel/skinmaskstatisdetector/skinMaskStatisDetector.h"
#include "zellab/imageproc/colour/yCbCr.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace zellab {

namespace {

using zelbeauty::SkinFaceRecord;
using zelbeauty::SkinMaskManager;
using zelbeauty::SkinMaskStatisDetector;

constexpr int kAllParts = 15;  // brows, eyes, nose and mouth are marked in the skin map

/// What the statistics and the search of a face read.
PixelBox areaOf(const SkinFaceRecord& face, int width, int height) {
    PixelBox area = SkinMaskStatisDetector::areaRead(width, height, face);
    if (const std::optional<FaceBox> box = faceBoxOf(face, width, height)) {
        area.x = {std::min(area.x.begin, box->left), std::max(area.x.end, box->left + box->width)};
        area.y = {std::min(area.y.begin, box->top), std::max(area.y.end, box->top + box->height)};
    }
    return area;
}

}  // namespace

FaceSkinMap::FaceSkinMap(ImageView image, const SkinFaceRecord& face, bool onlyFace)
    : m_map(image.width, image.height) {
    const int width = image.width, height = image.height;
    LazyPlane luma(width, height), blue(width, height), red(width, height);
    const PixelBox area = onlyFace ? areaOf(face, width, height) : PixelBox{{0, width}, {0, height}};
    const auto inArea = [&](const auto& view) {
        return view.crop(area.x.begin, area.y.begin, area.x.length(), area.y.length());
    };
    RGBAToYCbCrPlanes(inArea(image), inArea(luma.view()), inArea(blue.view()), inArea(red.view()));
    SkinMaskStatisDetector::DetectWithin(area, {luma.view(), blue.view(), red.view()}, view(), face);
    SkinMaskManager::PaintParts(view(), face, kAllParts);
}

}  // namespace zellab
