#include "libzel/faces/meshLandmarks.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

#include "libzel/faces/meshParts.h"
#include "libzel/faces/polyline.h"
#include "zellab/imageproc/shapes/convexHull.h"

namespace zel {

using zellab::Vector2f;

namespace {

// Lines of mesh points. Left and right are the picture's; lids and lips run from the corners, brows from the left.
using Numbers = std::initializer_list<short>;

constexpr Numbers kLeftLowerLid{33, 7, 163, 144, 145, 153, 154, 155, 133},
    kLeftUpperLid{33, 246, 161, 160, 159, 158, 157, 173, 133},
    kRightLowerLid{362, 382, 381, 380, 374, 373, 390, 249, 263},
    kRightUpperLid{362, 398, 384, 385, 386, 387, 388, 466, 263};

constexpr Numbers kLeftBrowLower{46, 53, 52, 65, 55}, kLeftBrowUpper{70, 63, 105, 66, 107},
    kRightBrowLower{285, 295, 282, 283, 276}, kRightBrowUpper{336, 296, 334, 293, 300};

/// One half of the mouth. Each line runs from the corner to the middle, the uppermost to the lip's peak.
struct HalfMouth {
    Numbers toPeak, upperInner, lowerInner, bottom;
};
constexpr HalfMouth kLeftMouth{{61, 185, 40, 39, 37},
                               {61, 78, 191, 80, 81, 82, 13},
                               {61, 78, 95, 88, 178, 87, 14},
                               {61, 146, 91, 181, 84, 17}},
    kRightMouth{{291, 409, 270, 269, 267},
                {291, 308, 415, 310, 311, 312, 13},
                {291, 308, 324, 318, 402, 317, 14},
                {291, 375, 321, 405, 314, 17}};

/// From above the eyes down to the chin.
constexpr Numbers kLeftContour{162, 127, 234, 93, 132, 58, 172, 136, 150, 149, 176, 148, 152},
    kRightContour{389, 356, 454, 323, 361, 288, 397, 365, 379, 378, 400, 377, 152};

// Where the mesh has other features than the landmarks, by shares of the distance of the eyes: medians over marks that
// were set by hand on 16 faces of photographs.
constexpr float kUpperBrowDrop = 0.02f, kLowerBrowDrop = 0.037f;
/// The mesh draws brows longer at their outer ends, by this share of their length.
constexpr float kBrowTail = 0.03f;
constexpr float kCornerDrop = 0.016f, kOuterCornerOutwards = 0.045f;  // of the eyes; less along the lids
constexpr float kWingRise = 0.03f, kTipDrop = 0.02f;

constexpr float kThird = 1 / 3.0f;
constexpr std::size_t kContourSteps = 9;

class Placing {
public:
    explicit Placing(const FaceMesh& mesh)
        : m_mesh(mesh),
          m_hull(faceHull(mesh)),
          m_eyes(between(362, 263) - between(33, 133)),
          m_down{-m_eyes.y, m_eyes.x} {}

    Landmarks landmarks() {
        m_out[0] = at(152);
        placeContour(kLeftContour, 1, -1);
        placeContour(kRightContour, 10, 1);
        placeEye(kLeftLowerLid, kLeftUpperLid, 19, -1);
        placeEye(kRightLowerLid, kRightUpperLid, 65, 1);
        placeBrow(kLeftBrowLower, kLeftBrowUpper, 29, kBrowTail, 1);
        placeBrow(kRightBrowLower, kRightBrowUpper, 75, 0, 1 - kBrowTail);
        placeMouth();
        placeNose();
        const auto& irises = m_mesh.irises;
        m_out[24] = irises ? irises->front() : m_out[20];
        m_out[70] = irises ? irises->back() : m_out[66];
        return m_out;
    }

private:
    Vector2f at(int number) const { return m_mesh.points[static_cast<std::size_t>(number)]; }
    Vector2f between(int a, int b) const { return zellab::mix(at(a), at(b), 0.5f); }

    Polyline line(Numbers numbers) const {
        Polyline points;
        for (const short number : numbers) points.push_back(at(number));
        return points;
    }

    /// Outline, lids, brows and lips; the nose, which may stick out beyond the cheek, has no say.
    static Polyline faceHull(const FaceMesh& mesh) {
        Polyline points;
        for (const auto part : {kMeshOutline, kMeshLips, kMeshLeftEye, kMeshRightEye})
            for (const short number : part) points.push_back(mesh.points[static_cast<std::size_t>(number)]);
        return zellab::convexHull(points);
    }

    /// Even steps from the level of the eyes to the chin.
    /// @param outwards  -1 to the picture's left, 1 to its right
    void placeContour(Numbers numbers, std::size_t first, float outwards) {
        const Vector2f eyes = between(33, 263), down = at(152) - at(10);
        const auto below = [&](Vector2f p) { return (p.x - eyes.x) * down.x + (p.y - eyes.y) * down.y; };
        Polyline points = line(numbers);
        while (points.size() > 2 && below(points[1]) < 0) points.erase(points.begin());
        const float above = below(points[0]), under = below(points[1]);
        if (above < 0 && under > 0) points[0] = zellab::mix(points[0], points[1], above / (above - under));
        for (Vector2f& p : points) p = pushedOut(p, outwards);
        for (std::size_t i = 0; i < kContourSteps; ++i)
            m_out[first + i] = along(points, static_cast<float>(i) / kContourSteps);
    }

    /// The point moved along the line of the eyes to the hull: on a turned face the far side of the mesh's outline
    /// lies behind the cheek, and brows and lips reach beyond it.
    Vector2f pushedOut(Vector2f p, float outwards) const {
        const Vector2f eyes = at(263) - at(33);
        const float length = std::hypot(eyes.x, eyes.y);
        if (!(length > 0)) return p;
        const Vector2f axis = eyes * (outwards / length), level{-axis.y, axis.x};
        const auto height = [&](Vector2f q) { return q.x * level.x + q.y * level.y; };
        float furthest = 0;
        for (std::size_t i = 0; i < m_hull.size(); ++i) {
            const Vector2f a = m_hull[i] - p, b = m_hull[(i + 1) % m_hull.size()] - p;
            const float heightA = height(a), heightB = height(b);
            if ((heightA > 0) == (heightB > 0)) continue;
            const Vector2f crossing = zellab::mix(a, b, heightA / (heightA - heightB));
            furthest = std::max(furthest, crossing.x * axis.x + crossing.y * axis.y);
        }
        return p + axis * furthest;
    }

    /// @param outwards  -1 to the picture's left, 1 to its right
    void placeEye(Numbers lowerLid, Numbers upperLid, std::size_t first, float outwards) {
        Polyline lower = line(lowerLid), upper = line(upperLid);
        const bool outerFirst = outwards < 0;
        for (Polyline* lid : {&lower, &upper}) {
            const Vector2f outer = outerFirst ? lid->front() : lid->back(),
                           inner = outerFirst ? lid->back() : lid->front();
            const Vector2f width = outer - inner;
            const float square = std::max(width.x * width.x + width.y * width.y, 1e-6f);
            for (Vector2f& p : *lid) {
                // From the middle of the lid on.
                const Vector2f way = p - inner;
                const float share = (way.x * width.x + way.y * width.y) / square;
                p = p + m_eyes * (outwards * kOuterCornerOutwards * std::max(2 * share - 1, 0.0f)) +
                    m_down * (kCornerDrop * std::abs(2 * share - 1));
            }
        }
        m_out[first] = across(lower, 0.5f);
        m_out[first + 2] = lower.front();
        m_out[first + 3] = across(lower, 0.25f);
        m_out[first + 4] = across(lower, 0.75f);
        m_out[first + 6] = lower.back();
        m_out[first + 7] = across(upper, 0.5f);
        m_out[first + 8] = across(upper, 0.25f);
        m_out[first + 9] = across(upper, 0.75f);
        m_out[first + 1] = zellab::mix(m_out[first], m_out[first + 7], 0.5f);
    }

    /// @param first  the landmark at the brow's end at the picture's left
    /// @param from, to  where the brow begins and ends, as shares of the mesh's lines
    void placeBrow(Numbers lowerEdge, Numbers upperEdge, std::size_t first, float from, float to) {
        const Polyline lower = line(lowerEdge), upper = line(upperEdge);
        const auto end = [&](float t) { return zellab::mix(across(lower, t), across(upper, t), 0.5f); };
        m_out[first] = end(from);
        m_out[first + 4] = end(to);
        for (std::size_t i = 1; i <= 3; ++i) {
            const float t = from + (to - from) * 0.25f * static_cast<float>(i);
            m_out[first + i] = across(lower, t) + m_down * kLowerBrowDrop;
            m_out[first + 4 + i] = across(upper, t) + m_down * kUpperBrowDrop;
        }
    }

    void placeMouth() {
        m_out[38] = at(17);
        m_out[45] = at(14);
        m_out[47] = at(13);
        m_out[54] = at(0);
        placeHalfMouth(kLeftMouth, {37, 39, 40, 41, 48, 49, 50});
        placeHalfMouth(kRightMouth, {46, 42, 43, 44, 51, 52, 53});
    }

    struct HalfMouthLandmarks {
        std::size_t corner, lowerInner, bottomOuter, bottomInner, peak, top, upperInner;
    };

    void placeHalfMouth(const HalfMouth& half, const HalfMouthLandmarks& to) {
        const Polyline top = line(half.toPeak), bottom = line(half.bottom);
        m_out[to.corner] = top.front();
        m_out[to.peak] = top.back();
        m_out[to.top] = across(top, 0.5f);
        m_out[to.upperInner] = across(line(half.upperInner), 0.5f);
        m_out[to.lowerInner] = across(line(half.lowerInner), 0.5f);
        m_out[to.bottomOuter] = across(bottom, kThird);
        m_out[to.bottomInner] = across(bottom, 2 * kThird);
    }

    void placeNose() {
        m_out[55] = between(193, 245);
        m_out[59] = between(417, 465);
        m_out[56] = at(131);
        m_out[60] = at(360);
        m_out[57] = at(97);
        m_out[61] = at(326);
        m_out[58] = at(2);
        m_out[64] = at(4) + m_down * kTipDrop;
        m_out[62] = at(64) - m_down * kWingRise;
        m_out[63] = at(294) - m_down * kWingRise;
    }

    const FaceMesh& m_mesh;
    const Polyline m_hull;
    const Vector2f m_eyes, m_down;  // from eye to eye, and as long downwards
    Landmarks m_out{};
};

}  // namespace

Landmarks meshLandmarks(const FaceMesh& mesh) {
    return Placing(mesh).landmarks();
}

}  // namespace zel
