#include "zel_effects/interFacePoint.h"

#include <algorithm>
#include <array>

#include "facepoints/faceInterpolation.h"

namespace zellab {

namespace {

/// The landmarks that become the anchors of a face, in anchor order.
constexpr std::array<int, CInterFacePoint::kAnchorCount> kAnchorLandmarks = {
    0,  1,  2,  4,  6,  8,  10, 11, 13, 15, 17, 19, 21, 24, 25, 26, 29, 31, 33, 35,
    37, 38, 45, 46, 47, 54, 58, 62, 63, 64, 65, 67, 70, 71, 72, 75, 77, 79, 81};

void freeBlocks(std::vector<Vector2f*>& blocks) {
    for (Vector2f*& block : blocks) {
        delete[] block;
        block = nullptr;
    }
}

/// The zero-filled block of a face, made where it is missing.
Vector2f* blockOf(std::vector<Vector2f*>& blocks, std::size_t face) {
    if (blocks.size() <= face) blocks.resize(face + 1, nullptr);
    if (!blocks[face]) blocks[face] = new Vector2f[CInterFacePoint::kBlockPoints]();
    return blocks[face];
}

}  // namespace

CInterFacePoint::~CInterFacePoint() {
    freeBlocks(anchorPoints);
    freeBlocks(sourcePoints);
    for (auto& set : reservedSets) freeBlocks(set);
    freeBlocks(interPoints);
}

void CInterFacePoint::AddFace(const Vector2f* points83, int face) {
    if (!points83 || face < 0) return;
    const auto index = static_cast<std::size_t>(face);
    Vector2f* source = blockOf(sourcePoints, index);
    std::copy_n(points83, kLandmarkCount, source);
    Vector2f* anchors = blockOf(anchorPoints, index);
    for (std::size_t i = 0; i < kAnchorLandmarks.size(); ++i) anchors[i] = source[kAnchorLandmarks[i]];
    interPointCount = interpolateFace(source, blockOf(interPoints, index));
}

}  // namespace zellab
