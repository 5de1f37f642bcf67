#include "beautykernel/facefleckcleaner/faceCrop.h"

#include <algorithm>
#include <cmath>

#include "zellab/imageproc/core/floatToInt.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab {

namespace {

constexpr int kFirstOutline = 80, kLastOutline = 107;  // points of the face's outline
constexpr int kSmallestSide = 20;                      // pixels of a box
constexpr int kBorder = 5;                             // pixels of the scaled mask that are cleared

bool allFinite(const Vector2f* points) {
    return std::all_of(points, points + kFleckPointCount,
                       [](Vector2f p) { return std::isfinite(p.x) && std::isfinite(p.y); });
}

void clearBorder(PlaneView<Byte> mask) {
    for (int y = 0; y < mask.height; ++y) {
        Byte* row = mask.row(y);
        const bool outer = mask.height > kBorder && (y < kBorder || y >= mask.height - kBorder);
        if (outer) {
            std::fill_n(row, mask.width, Byte{0});
        } else if (mask.width > kBorder) {
            std::fill_n(row, kBorder, Byte{0});
            std::fill_n(row + mask.width - kBorder, kBorder, Byte{0});
        }
    }
}

/// Rounds a scaled side.
int scaledSide(int side, float factor) {
    return truncateToInt(static_cast<float>(side) / factor + 0.5f);
}

}  // namespace

std::optional<FaceBox> faceBoxOf(const zelbeauty::SkinFaceRecord& face, int width, int height) {
    if (!allFinite(face.points)) return std::nullopt;
    Vector2f low = face.points[kFirstOutline], high = low;
    for (int i = kFirstOutline + 1; i <= kLastOutline; ++i) {
        const Vector2f p = face.points[i];
        low = {std::min(low.x, p.x), std::min(low.y, p.y)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y)};
    }
    FaceBox box;
    box.left = std::max(truncateToInt(low.x), 0);
    box.top = std::max(truncateToInt(low.y), 0);
    // A box that begins beyond the picture has a negative side here.
    box.width = std::clamp(truncateToInt(high.x), -1, width - 1) - box.left;
    box.height = std::clamp(truncateToInt(high.y), -1, height - 1) - box.top;
    if (box.width < kSmallestSide || box.height < kSmallestSide) return std::nullopt;
    return box;
}

WorkingSize workingSize(const FaceBox& box, int side) {
    if (box.width <= side || box.height <= side) return {box.width, box.height};
    const float fx = static_cast<float>(box.width) / static_cast<float>(side);
    const float fy = static_cast<float>(box.height) / static_cast<float>(side);
    if (fx > fy) return {scaledSide(box.width, fy), side};
    return {side, scaledSide(box.height, fx)};
}

Plane<Byte> scaledBox(PlaneView<const Byte> plane, const FaceBox& box, int width, int height,
                      YuvFilter filter) {
    const Plane<Byte> cut = copyOf(plane.crop(box.left, box.top, box.width, box.height));
    Plane<Byte> scaled(width, height);
    scalePlane(cut.view(), scaled.view(), filter);
    return scaled;
}

std::optional<FaceCrop> cutFace(ConstImageView image, PlaneView<const Byte> skinMask,
                                const zelbeauty::SkinFaceRecord& face, int side, YuvFilter filter) {
    const std::optional<FaceBox> found = faceBoxOf(face, image.width, image.height);
    if (!found || std::max(found->width, found->height) > kYuvScaleLongestSide) return std::nullopt;
    const FaceBox box = *found;
    const auto [width, height] = workingSize(box, side);
    FaceCrop crop;
    crop.box = box;
    crop.width = width;
    crop.height = height;
    const RgbaImage cut = copyOf(image.crop(box.left, box.top, box.width, box.height));
    crop.pixels = RgbaImage(width, height);
    scaleArgb(cut.view(), crop.view(), filter);
    crop.mask = scaledBox(skinMask, box, width, height, filter);
    clearBorder(crop.mask.view());
    for (std::size_t i = 0; i < crop.points.size(); ++i)
        crop.points[i] = {(face.points[i].x - static_cast<float>(box.left)) * static_cast<float>(width) /
                              static_cast<float>(box.width),
                          (face.points[i].y - static_cast<float>(box.top)) * static_cast<float>(height) /
                              static_cast<float>(box.height)};
    return crop;
}

}  // namespace zellab
