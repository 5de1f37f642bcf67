#include "beautykernel/facefleckcleaner/featureExclusion.h"

#include <algorithm>
#include <array>

#include "zellab/geometry/vector2.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/shapes/polygonFill.h"

namespace zellab {

namespace {

using Points = std::array<Vector2f, kFleckPointCount>;
using Polygon = std::vector<Vector2f>;

constexpr Byte kExcluded = 1;      // fails every test of skin, and is still not 0
constexpr Byte kFeatureRim = 100;  // below skin, but no reason to turn a spot away
constexpr Byte kSet = 255;

/// A vertex on the way from one point of the face to another.
struct MixedVertex {
    int inner, outer;
    float outwards;  // 0 at the inner point, 1 at the outer one
};

constexpr MixedVertex kFirstEye[] = {{0, 84, 0.3f},  {1, 26, 0.33f}, {2, 27, 0.33f}, {3, 28, 0.33f},
                                     {4, 29, 0.33f}, {5, 41, 0.3f},  {9, 132, 0.9f}, {8, 131, 1.0f},
                                     {7, 130, 1.0f}, {6, 129, 1.0f}, {0, 84, 0.3f}};
constexpr MixedVertex kSecondEye[] = {{10, 41, 0.3f},  {11, 36, 0.33f}, {12, 37, 0.33f}, {13, 38, 0.33f},
                                      {14, 39, 0.33f}, {15, 88, 0.3f},  {19, 152, 1.0f}, {18, 151, 1.0f},
                                      {17, 150, 1.0f}, {16, 149, 0.9f}, {10, 41, 0.3f}};
constexpr MixedVertex kMouth[] = {{50, 123, 0.5f}, {51, 153, 0.2f}, {52, 154, 0.2f}, {53, 155, 0.2f},
                                  {55, 156, 0.2f}, {56, 156, 0.2f}, {57, 157, 0.2f}, {58, 143, 0.5f},
                                  {79, 168, 0.2f}, {78, 167, 0.2f}, {77, 165, 0.2f}, {76, 163, 0.2f},
                                  {75, 161, 0.2f}, {74, 159, 0.2f}, {73, 158, 0.2f}, {50, 123, 0.5f}};
constexpr int kFirstBrow[] = {20, 21, 22, 23, 24, 25, 29, 28, 27, 26, 20};
constexpr int kSecondBrow[] = {30, 31, 32, 33, 34, 35, 39, 38, 37, 36, 30};
constexpr int kOutline[] = {80, 81,  82,  83,  84,  89,  90,  91,  92,  93, 94, 95, 96, 97, 98,
                            99, 100, 101, 102, 103, 104, 105, 106, 107, 88, 87, 86, 85, 80};

/// @param widened  false keeps the inner points
template <std::size_t N>
Polygon polygonOf(const Points& p, const MixedVertex (&vertices)[N], bool widened) {
    Polygon polygon;
    for (const MixedVertex& v : vertices)
        polygon.push_back(mix(p[static_cast<std::size_t>(v.inner)], p[static_cast<std::size_t>(v.outer)],
                              widened ? v.outwards : 0.0f));
    return polygon;
}

template <std::size_t N>
Polygon polygonOf(const Points& p, const int (&vertices)[N]) {
    Polygon polygon;
    for (const int v : vertices) polygon.push_back(p[static_cast<std::size_t>(v)]);
    return polygon;
}

Polygon nose(const Points& p) {
    return {p[44], mix(p[44], p[153], 0.5f), p[49], mix(p[47], p[157], 0.5f),
            p[47], mix(p[43], p[46], 0.5f),  p[44]};
}

Polygon noseBridge(const Points& p) {
    const Vector2f first = mix(p[40], p[10], 0.5f);
    return {first,
            mix(p[40], p[30], 0.5f),
            mix(p[40], p[111], 0.75f),
            mix(p[40], p[109], 0.75f),
            mix(p[40], p[25], 0.5f),
            mix(p[40], p[5], 0.5f),
            first};
}

Polygon betweenEyesAndNose(const Points& p) {
    const Vector2f first = mix(p[40], p[41], 0.5f);
    return {first, p[10], mix(p[46], p[148], 0.5f), mix(p[43], p[132], 0.5f), p[5], first};
}

/// Draws on a plane of the crop's size.
class FeaturePlane {
public:
    explicit FeaturePlane(const FaceCrop& crop) : m_plane(crop.width, crop.height) {}

    void fill(const Polygon& polygon, Byte value) { FillPolygonMask(m_plane.view(), polygon, value); }
    void fillFeatures(const Points& p, bool widened, Byte value) {
        fill(polygonOf(p, kFirstEye, widened), value);
        fill(polygonOf(p, kSecondEye, widened), value);
        fill(polygonOf(p, kMouth, widened), value);
        fill(polygonOf(p, kFirstBrow), value);
        fill(polygonOf(p, kSecondBrow), value);
        fill(nose(p), value);
    }
    /// Calls change(mask sample, plane sample) for every pixel.
    template <typename Change>
    void apply(Plane<Byte>& mask, const Change& change) const {
        for (std::size_t i = 0; i < m_plane.size(); ++i) change(mask.data()[i], m_plane.data()[i]);
    }

private:
    Plane<Byte> m_plane;
};

void clearOutsideFace(FaceCrop& crop) {
    Polygon outline = polygonOf(crop.points, kOutline);
    for (Vector2f& p : outline)
        p = {std::clamp(p.x, 0.0f, static_cast<float>(crop.width - 1)),
             std::clamp(p.y, 0.0f, static_cast<float>(crop.height - 1))};
    FeaturePlane plane(crop);
    plane.fill(outline, kSet);
    plane.apply(crop.mask, [](Byte& mask, Byte inside) { mask = inside ? mask : Byte{0}; });
}

}  // namespace

void excludeFeatures(FaceCrop& crop, bool withNoseBridge) {
    FeaturePlane plane(crop);
    plane.fillFeatures(crop.points, true, kSet);
    if (withNoseBridge) plane.fill(noseBridge(crop.points), kSet);
    plane.fill(betweenEyesAndNose(crop.points), kSet);
    plane.apply(crop.mask, [](Byte& mask, Byte excluded) { mask = excluded ? kExcluded : mask; });
    clearOutsideFace(crop);
}

void excludeFeaturesFinely(FaceCrop& crop, bool withNoseBridge) {
    FeaturePlane bridges(crop), rims(crop), features(crop);
    if (withNoseBridge) bridges.fill(noseBridge(crop.points), kSet);
    bridges.fill(betweenEyesAndNose(crop.points), kSet);
    rims.fillFeatures(crop.points, true, kSet);
    features.fillFeatures(crop.points, false, kSet);
    bridges.apply(crop.mask, [](Byte& mask, Byte excluded) { mask = excluded ? kExcluded : mask; });
    rims.apply(crop.mask, [](Byte& mask, Byte rim) { mask = rim ? kFeatureRim : mask; });
    features.apply(crop.mask, [](Byte& mask, Byte feature) { mask = feature ? Byte{0} : mask; });
    clearOutsideFace(crop);
}

}  // namespace zellab
