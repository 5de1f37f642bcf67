#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "zel_effects/zel_records.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// How far the eyes of one face grow; see CEyeZoomRender::autoZoomEye.
struct EyeZoomFactors {
    float strength = 0.0f;
    float eyeRatioLimit = 0.9f;  // both eyes' width to the face's width at which nothing is left of the zoom
    float zoomFactor = 0.2f;
    float ringScale = 1.0f;  // distance of the fixed ring beyond the outline
};

/// The triangle mesh over both eyes. Per eye 20 outline vertices (0 to 19, 20 to 39: 11 along the upper lid,
/// 9 back along the lower one), which are scaled about the eye's centre, and a ring around them that stays
/// (vertex 40 + i belongs to outline vertex i).
class EyeMeshWarp {
public:
    static constexpr std::size_t kEyeVertices = 20, kVertexCount = 80, kTriangleCount = 116;

    /// Builds both meshes from the 310 points of a face.
    EyeMeshWarp(const Vector2f* facePoints, const EyeZoomFactors& factors);

    /// Redraws the picture from the source mesh to the target mesh.
    void draw(const ImageView& image) const;

    const std::array<Vector2f, kVertexCount>& source() const { return m_source; }
    const std::array<Vector2f, kVertexCount>& target() const { return m_target; }
    static std::span<const std::uint16_t, 3 * kTriangleCount> triangles();

private:
    void traceEye(const Vector2f* facePoints, std::size_t firstPosition, std::size_t firstVertex);
    void scaleEye(Vector2f centre, std::size_t firstVertex, float zoom, float ringScale);

    std::array<Vector2f, kVertexCount> m_source, m_target;
};

/// Enlarges the eyes of one face in place by their mesh. Null points or an empty picture change nothing.
void zoomEyesByMesh(ImageView image, const Vector2f* facePoints, const EyeZoomFactors& factors);

}  // namespace zellab
