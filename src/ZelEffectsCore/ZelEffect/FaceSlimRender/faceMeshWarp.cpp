#include "ZelEffectsCore/ZelEffect/FaceSlimRender/faceMeshWarp.h"

#include "ZelEffectsCore/ZelEffect/mesh_warp/triangleWarp.h"
#include "zellab/geometry/curveTools.h"
#include "zellab/geometry/pointDeform.h"
#include "zellab/geometry/vector2.h"

namespace zellab {

namespace {

constexpr std::array<std::uint16_t, 3 * FaceMeshWarp::kTriangleCount> kTriangles = {
#include "ZelEffectsCore/ZelEffect/FaceSlimRender/faceSlimTriangles.inc"
};

/// Positions in the face's point list that guide the mesh.
constexpr std::array<std::size_t, FaceMeshWarp::kGuideCount> kGuidePositions = {
    98, 84, 90, 92, 94, 96, 88, 106, 104, 102, 100, 8,  0,   169, 5,  3,  20, 28, 25, 23,
    50, 76, 69, 58, 62, 54, 49, 44,  47,  48,  18,  10, 170, 15,  13, 30, 37, 35, 33};
/// Guides with a part of their own: the inner corners of the eyes and the nose's centre. Guide 0 is the chin,
/// 1 to 5 run down the first side's contour, 6 to 10 down the other one's.
constexpr std::size_t kFirstEyeGuide = 14, kSecondEyeGuide = 31, kCentreGuide = 29;

constexpr std::size_t kRing = FaceMeshWarp::kRingVertices;
constexpr std::size_t kInnerRing = 4 * kRing, kCentreVertex = 5 * kRing;
constexpr std::size_t kFirstTop = 8, kSecondTop = 16, kChin = 31;  // ring positions

/// A picture offset that keeps a control from meeting a vertex, where the deformation has no value.
constexpr float kControlOffset = 0.01f;
constexpr float kAnchorOffsetY = 0.009f;

/// Ratios of the face's two sides beyond which it counts as turned.
constexpr float kTurnedToFirst = 10.0f, kTurnedToSecond = 0.1f;

/// `Samples` points on the curve through a, b and c.
template <std::size_t Samples>
std::array<Vector2f, Samples> curve(Vector2f a, Vector2f b, Vector2f c) {
    std::array<Vector2f, 3> points = {a, b, c};
    std::array<Vector2f, Samples> out;
    ChordLagrangeResample(points.data(), 3, out.data(), static_cast<int>(Samples));
    return out;
}

/// Area of the triangle a, b, c; its sign tells the turn.
float signedArea(Vector2f a, Vector2f b, Vector2f c) {
    return 0.5f * ((c.x * b.y + a.x * c.y + b.x * a.y) - (a.x * b.y + c.x * a.y + b.x * c.y));
}

/// One control of the deformation: a vertex of the mesh and how it is pulled.
struct Control {
    enum class Pull { lower, jaw, chin, upper, anchor };
    std::size_t vertex;
    std::size_t towards;  // the base ring's vertex that it is pulled to
    Pull pull;
};

constexpr std::array<Control, 9> kControls = {{{70, 24, Control::Pull::lower},
                                               {73, 27, Control::Pull::jaw},
                                               {77, 31, Control::Pull::chin},
                                               {81, 35, Control::Pull::jaw},
                                               {84, 38, Control::Pull::lower},
                                               {53, 53, Control::Pull::anchor},
                                               {61, 61, Control::Pull::anchor},
                                               {68, 22, Control::Pull::upper},
                                               {86, 40, Control::Pull::upper}}};

/// Chin and upper cheeks are computed in double precision, the others in single: both reach the same
/// place but for the last bit, which is part of the result.
float pulledSingle(float p, float towards, float factor, float strength, float weight) {
    return p + kControlOffset - (p - towards) * factor * strength * weight;
}
float pulledDouble(float p, float towards, float factor, double strength, float weight) {
    const auto from = static_cast<double>(p);
    return static_cast<float>(from + 0.01 -
                              (from - static_cast<double>(towards)) * static_cast<double>(factor) * strength *
                                  static_cast<double>(weight));
}

Vector2f controlTarget(const Control& control, Vector2f p, Vector2f towards, const FaceSlimFactors& factors,
                       float weight) {
    // The chin follows its own factor alone, in tenths.
    constexpr double kChinStrength = 0.1;
    const auto strength = static_cast<float>(static_cast<double>(factors.strength) * 1.5);
    const auto both = [&](auto pulled, float factor, auto amount) {
        return Vector2f{pulled(p.x, towards.x, factor, amount, weight),
                        pulled(p.y, towards.y, factor, amount, weight)};
    };
    switch (control.pull) {
        case Control::Pull::lower:
            return both(pulledSingle, factors.lowerFactor, strength);
        case Control::Pull::jaw:
            return both(pulledSingle, factors.jawFactor, strength);
        case Control::Pull::chin:
            return both(pulledDouble, factors.chinFactor, kChinStrength);
        case Control::Pull::upper:
            return both(pulledDouble, factors.upperFactor, static_cast<double>(strength));
        case Control::Pull::anchor:
            break;
    }
    return {p.x + weight * kControlOffset, p.y + kAnchorOffsetY};
}

}  // namespace

FaceMeshWarp::FaceMeshWarp(const Vector2f* facePoints) {
    for (std::size_t i = 0; i < kGuideCount; ++i) m_guides[i] = facePoints[kGuidePositions[i]];
    buildOutline();
    buildRings();
    m_target = m_source;
}

std::span<const std::uint16_t, 3 * FaceMeshWarp::kTriangleCount> FaceMeshWarp::triangles() {
    return kTriangles;
}

void FaceMeshWarp::buildOutline() {
    const auto& g = m_guides;
    const Vector2f middle = (g[kFirstEyeGuide] + g[kSecondEyeGuide]) * 0.5f;
    // The forehead's top mirrors the chin about the eyes, a little lower than a true mirror image.
    const Vector2f top{g[0].x + 2.0f * (middle.x - g[0].x), g[0].y + (middle.y - g[0].y) * 9.0f / 5.0f};
    // A corner lies a third of the way in from its side, but a third of the way down from the top.
    const auto corner = [top](Vector2f side) {
        return Vector2f{side.x + (top.x - side.x) / 3.0f, top.y + (side.y - top.y) / 3.0f};
    };
    const auto put = [this](std::size_t vertex, const auto& samples, std::size_t first, std::size_t last) {
        for (std::size_t i = first; i <= last; ++i) m_source[vertex++] = samples[i];
    };
    // Later runs overwrite the ends of earlier ones.
    put(0, curve<7>(top, corner(g[1]), g[1]), 0, 6);
    put(4, curve<5>(m_source[4], m_source[5], g[1]), 0, 4);
    put(9, curve<7>(top, corner(g[6]), g[6]), 1, 6);
    put(12, curve<5>(m_source[12], m_source[13], g[6]), 0, 4);
    put(17, curve<7>(g[1], g[2], g[3]), 1, 6);
    put(23, curve<7>(g[3], g[4], g[5]), 1, 6);
    put(29, curve<7>(g[5], g[0], g[10]), 1, 6);
    put(35, curve<7>(g[10], g[9], g[8]), 1, 6);
    put(41, curve<7>(g[8], g[7], g[6]), 1, 5);
}

void FaceMeshWarp::buildRings() {
    constexpr float kRingStep = 0.1f;
    const Vector2f centre = m_guides[kCentreGuide];
    for (std::size_t i = 0; i < kRing; ++i) {
        const Vector2f v = m_source[i], out = v - centre;
        for (std::size_t k = 1; k <= 3; ++k)
            m_source[kRing * k + i] = v + out * (static_cast<float>(k) * kRingStep);
        m_source[kInnerRing + i] = v - out * kRingStep;
    }
    m_source[kCentreVertex] = centre;
}

FaceMeshWarp::Pose FaceMeshWarp::pose() const {
    const Vector2f chin = m_source[kChin], centre = m_source[kCentreVertex];
    const float first = signedArea(m_source[kFirstTop], chin, centre);
    const float second = signedArea(centre, chin, m_source[kSecondTop]);
    // Not-a-number fails both tests and counts as frontal.
    const float ratio = first / second;
    if (ratio >= kTurnedToFirst) return Pose::firstSide;
    if (ratio <= kTurnedToSecond) return Pose::secondSide;
    return Pose::frontal;
}

/// Ring positions that the deformation moves, in ascending order.
std::vector<std::size_t> FaceMeshWarp::movedPositions() const {
    std::vector<std::size_t> positions;
    const auto add = [&](std::size_t first, std::size_t last) {
        for (std::size_t i = first; i <= last; ++i) positions.push_back(i);
    };
    switch (pose()) {
        case Pose::firstSide:
            add(7, 8);
            add(17, 31);
            break;
        case Pose::secondSide:
            add(15, 16);
            add(31, 45);
            break;
        case Pose::frontal:
            add(7, 8);
            add(15, 45);
            break;
    }
    return positions;
}

void FaceMeshWarp::deform(const FaceSlimFactors& factors, int width, int height) {
    deformRing(2 * kRing, factors.outerWeight, factors, width, height);
    deformRing(kRing, factors.middleWeight, factors, width, height);
    deformRing(0, factors.innerWeight, factors, width, height);
}

void FaceMeshWarp::deformRing(std::size_t firstVertex, float weight, const FaceSlimFactors& factors,
                              int width, int height) {
    PointLists from, to, points;
    for (const Control& control : kControls) {
        const Vector2f p = m_source[control.vertex];
        const Vector2f target = controlTarget(control, p, m_source[control.towards], factors, weight);
        from.append(p.x + kControlOffset, p.y + kControlOffset);
        to.append(target.x, target.y);
    }
    std::vector<std::size_t> vertices;
    for (std::size_t position : movedPositions()) {
        const Vector2f v = m_source[firstVertex + position];
        if (!(v.x >= 0.0f && v.x < static_cast<float>(width))) continue;
        if (!(v.y >= 0.0f && v.y < static_cast<float>(height))) continue;
        vertices.push_back(firstVertex + position);
        points.append(v.x, v.y);
    }
    RigidMlsDeform(points, points, from, to, static_cast<int>(kControls.size()),
                   static_cast<int>(points.size()));
    for (std::size_t i = 0; i < vertices.size(); ++i) m_target[vertices[i]] = {points.x[i], points.y[i]};
}

void FaceMeshWarp::draw(const ImageView& image) const {
    warpInPlace(image, m_source.data(), m_target.data(), kTriangles.data(), static_cast<int>(kTriangleCount));
}

void slimFaceByMesh(ImageView image, const Vector2f* facePoints, const FaceSlimFactors& factors) {
    if (!image.valid() || !facePoints) return;
    FaceMeshWarp warp(facePoints);
    warp.deform(factors, image.width, image.height);
    warp.draw(image);
}

}  // namespace zellab
