#pragma once

#include <vector>

#include "zel_records.h"

namespace zellab {

/// Landmark container of one picture: per face the 83 given landmarks and the dense list of 310
/// interpolated points that the effects read, all in pixels. A host makes one by linking the static
/// library `zel_face_points`; the order of the fields is the contract between the two.
class CInterFacePoint {
public:
    static constexpr int kBlockPoints = 310;   ///< points in every block
    static constexpr int kLandmarkCount = 83;  ///< landmarks that AddFace reads
    static constexpr int kAnchorCount = 39;    ///< landmarks that become anchors

    CInterFacePoint() = default;
    ~CInterFacePoint();
    CInterFacePoint(const CInterFacePoint&) = delete;
    CInterFacePoint& operator=(const CInterFacePoint&) = delete;

    /// Stores the number of faces; allocates nothing. Operations see as many faces as were counted here.
    void SetFaceCount(int n) { faceCount = n; }
    int GetFaceCount() const { return faceCount; }

    /// Valid points in each block of GetInterPoints; set by the last AddFace.
    int GetInterPointCount() const { return interPointCount; }

    /// The 310 points of a face, owned by this object; null where no face was added at that index. A caller
    /// clamps its index with clampFaceIndex; a face count that promises more than was added, or an index
    /// below 0, gets null too.
    /// @param face  index from 0 on
    Vector2f* GetInterPoints(int face) const {
        const auto index = static_cast<std::size_t>(face);
        return index < interPoints.size() ? interPoints[index] : nullptr;
    }

    /// Copies 83 landmarks and derives the interpolated list of the face. Grows the object so that index
    /// `face` exists; faces left out stay null. The same index again overwrites the face. Does not set the
    /// face count: call SetFaceCount as well, or operations see no face.
    /// @param points83  83 points in pixels, in the order told at ImageCoreFace; null does nothing
    /// @param face      index from 0 on; negative does nothing
    void AddFace(const Vector2f* points83, int face);

private:
    std::vector<Vector2f*> anchorPoints;
    std::vector<Vector2f*> sourcePoints;
    std::vector<Vector2f*> reservedSets[4];  // stay empty; freed all the same
    std::vector<Vector2f*> interPoints;
    int interPointCount = 0;
    int faceCount = 0;
};

/// A face index out of range (negative, or not below the face count) selects face 0.
/// @param face       an index
/// @param faceCount  how many there are
inline int clampFaceIndex(int face, int faceCount) {
    return face < 0 || face >= faceCount ? 0 : face;
}

}  // namespace zellab
