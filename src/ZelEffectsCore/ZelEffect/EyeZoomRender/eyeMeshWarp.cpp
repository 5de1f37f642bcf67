#include "ZelEffectsCore/ZelEffect/EyeZoomRender/eyeMeshWarp.h"

#include <cmath>

#include "ZelEffectsCore/ZelEffect/mesh_warp/triangleWarp.h"
#include "zellab/geometry/curveTools.h"

namespace zellab {

namespace {

constexpr std::array<std::uint16_t, 3 * EyeMeshWarp::kTriangleCount> kTriangles = {
#include "ZelEffectsCore/ZelEffect/EyeZoomRender/eyeZoomTriangles.inc"
};

/// An eye's ten positions in the face's point list, counted from its first: the lids' curves from one corner
/// to the other, and back along the lower lid.
constexpr std::array<std::size_t, 6> kUpperLid = {0, 1, 2, 3, 4, 5}, kLowerLid = {5, 9, 8, 7, 6, 0};

constexpr std::size_t kSecondEye = 10;  // first position of the second eye
constexpr std::size_t kFirstRingVertex = 40;

/// Widest points of the face's contour.
constexpr std::size_t kLeftContour = 89, kRightContour = 107;

/// Spline samples that become vertices: three a segment, of which the joints' repeats are left out; the
/// lower lid also leaves the corners to the upper one.
constexpr std::array<std::size_t, 11> kUpperSamples = {0, 1, 3, 4, 5, 7, 8, 10, 11, 13, 14};
constexpr std::array<std::size_t, 9> kLowerSamples = {1, 3, 4, 5, 7, 8, 10, 11, 13};

float distance(Vector2f a, Vector2f b) {
    const float dx = a.x - b.x, dy = a.y - b.y;
    return std::sqrt(dx * dx + dy * dy);
}

/// Centre of an eye: between the middles of its lids.
Vector2f centreOf(const Vector2f* eye) {
    const auto axis = [eye](float Vector2f::*c) {
        return ((eye[7].*c + eye[3].*c) / 2.0f + (eye[8].*c + eye[2].*c) / 2.0f) / 2.0f;
    };
    return {axis(&Vector2f::x), axis(&Vector2f::y)};
}

}  // namespace

std::span<const std::uint16_t, 3 * EyeMeshWarp::kTriangleCount> EyeMeshWarp::triangles() {
    return kTriangles;
}

EyeMeshWarp::EyeMeshWarp(const Vector2f* facePoints, const EyeZoomFactors& factors) {
    const Vector2f* second = facePoints + kSecondEye;
    traceEye(facePoints, 0, 0);
    traceEye(facePoints, kSecondEye, kEyeVertices);
    // Not limited: wide eyes shrink, and a face without width gives what the division gives.
    const float eyes = distance(facePoints[5], facePoints[0]) + distance(second[5], second[0]);
    const float ratio = eyes / distance(facePoints[kRightContour], facePoints[kLeftContour]);
    const float zoom = (factors.eyeRatioLimit - ratio) * factors.strength * factors.zoomFactor;
    scaleEye(centreOf(facePoints), 0, zoom, factors.ringScale);
    scaleEye(centreOf(second), kEyeVertices, zoom, factors.ringScale);
}

void EyeMeshWarp::traceEye(const Vector2f* facePoints, std::size_t firstPosition, std::size_t firstVertex) {
    constexpr float kTension = 0.5f;
    constexpr int kSubdivisions = 2;
    std::array<Vector2f, 15> samples;
    const auto spline = [&](const std::array<std::size_t, 6>& lid) {
        std::array<Vector2f, 6> points;
        for (std::size_t i = 0; i < points.size(); ++i) points[i] = facePoints[firstPosition + lid[i]];
        HermiteSpline(samples.data(), points.data(), static_cast<int>(points.size()), kTension,
                      kSubdivisions);
    };
    Vector2f* out = &m_source[firstVertex];
    spline(kUpperLid);
    for (std::size_t sample : kUpperSamples) *out++ = samples[sample];
    spline(kLowerLid);
    for (std::size_t sample : kLowerSamples) *out++ = samples[sample];
}

void EyeMeshWarp::scaleEye(Vector2f centre, std::size_t firstVertex, float zoom, float ringScale) {
    const auto away = [centre](Vector2f v, float share) {
        return Vector2f{v.x + (v.x - centre.x) * share, v.y + (v.y - centre.y) * share};
    };
    for (std::size_t i = firstVertex; i < firstVertex + kEyeVertices; ++i) {
        const Vector2f v = m_source[i];
        m_target[i] = away(v, zoom);
        m_source[kFirstRingVertex + i] = m_target[kFirstRingVertex + i] = away(v, ringScale);
    }
}

void EyeMeshWarp::draw(const ImageView& image) const {
    warpInPlace(image, m_source.data(), m_target.data(), kTriangles.data(), static_cast<int>(kTriangleCount));
}

void zoomEyesByMesh(ImageView image, const Vector2f* facePoints, const EyeZoomFactors& factors) {
    if (image.valid() && facePoints) EyeMeshWarp(facePoints, factors).draw(image);
}

}  // namespace zellab
