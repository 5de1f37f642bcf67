#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "zel_effects/zel_records.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// How far one face is reshaped; see CFaceSlimRender::autoSlimFace.
struct FaceSlimFactors {
    float strength = 0.0f;
    float outerWeight = 1.0f, middleWeight = 0.9f, innerWeight = 0.6f;  // of the rings at 1.2, 1.1 and 1.0
    float upperFactor = 0.2f, lowerFactor = 0.4f, jawFactor = 0.34f, chinFactor = -0.5f;
};

/// The ring-shaped triangle mesh around one face. Five rings of 46 vertices stand about the nose's centre:
/// the face outline itself (vertices 0 to 45), the outline scaled by 1.1, 1.2, 1.3 and 0.9, and the centre
/// last. Ring position 0 is the top of the forehead; 8 and 16 are the tops of the two cheeks' contours, 31
/// the chin. The outermost and the innermost ring never move and hold the warp between them.
class FaceMeshWarp {
public:
    static constexpr std::size_t kGuideCount = 39, kRingVertices = 46, kRings = 5;
    static constexpr std::size_t kVertexCount = kRings * kRingVertices + 1;
    static constexpr std::size_t kTriangleCount = 270;

    /// Builds both meshes, equal, from the 310 points of a face.
    explicit FaceMeshWarp(const Vector2f* facePoints);

    /// Moves the contour of the target mesh. Vertices outside a picture of that size stay.
    void deform(const FaceSlimFactors& factors, int width, int height);

    /// Redraws the picture from the source mesh to the target mesh.
    void draw(const ImageView& image) const;

    const std::array<Vector2f, kVertexCount>& source() const { return m_source; }
    const std::array<Vector2f, kVertexCount>& target() const { return m_target; }
    static std::span<const std::uint16_t, 3 * kTriangleCount> triangles();

private:
    /// Which side of the face is seen well enough to be reshaped.
    enum class Pose { frontal, firstSide, secondSide };

    void buildOutline();
    void buildRings();
    Pose pose() const;
    std::vector<std::size_t> movedPositions() const;
    void deformRing(std::size_t firstVertex, float weight, const FaceSlimFactors& factors, int width,
                    int height);

    std::array<Vector2f, kGuideCount> m_guides;
    std::array<Vector2f, kVertexCount> m_source, m_target;
};

/// Slims one face in place by its mesh. Null points or an empty picture change nothing.
void slimFaceByMesh(ImageView image, const Vector2f* facePoints, const FaceSlimFactors& factors);

}  // namespace zellab
