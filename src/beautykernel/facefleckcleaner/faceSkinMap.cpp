#include "beautykernel/facefleckcleaner/faceSkinMap.h"

#include <algorithm>
#include <new>

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

FaceSkinMap::LazyPlane FaceSkinMap::makePlane(std::size_t pixels) {
    LazyPlane plane(static_cast<Byte*>(std::calloc(std::max<std::size_t>(pixels, 1), 1)));
    if (!plane) throw std::bad_alloc();
    return plane;
}

FaceSkinMap::FaceSkinMap(ImageView image, const SkinFaceRecord& face, bool onlyFace)
    : m_width(image.width), m_height(image.height) {
    const int width = image.width, height = image.height;
    const std::size_t pixels = sampleCount(width, height);
    m_map = makePlane(pixels);
    const LazyPlane luma = makePlane(pixels), blue = makePlane(pixels), red = makePlane(pixels);
    const PixelBox area = onlyFace ? areaOf(face, width, height) : PixelBox{{0, width}, {0, height}};
    const auto inArea = [&](const auto& view) {
        return view.crop(area.x.begin, area.y.begin, area.x.length(), area.y.length());
    };
    const auto planeOf = [&](const LazyPlane& plane) {
        return inArea(PlaneView<Byte>(plane.get(), width, height));
    };
    RGBAToYCbCrPlanes(inArea(image), planeOf(luma), planeOf(blue), planeOf(red));
    SkinMaskStatisDetector::DetectWithin(
        area, {{luma.get(), width, height}, {blue.get(), width, height}, {red.get(), width, height}}, view(),
        face);
    SkinMaskManager::PaintParts(view(), face, kAllParts);
}

}  // namespace zellab
