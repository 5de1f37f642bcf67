#include "facepoints/faceInterpolation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>
#include <vector>

#include "facepoints/faceTemplate.h"
#include "zellab/geometry/curveTools.h"
#include "zellab/geometry/linearSolve.h"
#include "zellab/geometry/pointDeform.h"
#include "zellab/geometry/vector2.h"

namespace zellab {

namespace {

Vector2f middle(Vector2f a, Vector2f b) {
    return mix(a, b, 0.5f);
}

/// An affine map in double precision, x and y rows.
struct Affine {
    double m[6] = {};
    Vector2f operator()(Vector2f p) const {
        const auto x = static_cast<double>(p.x), y = static_cast<double>(p.y);
        return {static_cast<float>(m[0] * x + m[1] * y + m[2]),
                static_cast<float>(m[3] * x + m[4] * y + m[5])};
    }
};

/// The map that takes three source points to three target points. Where there is none, everything falls on
/// the first target, so that the list stays finite.
Affine AffineByThreePoints(const Vector2f src[3], const Vector2f dst[3]) {
    constexpr int kUnknowns = 6;
    double matrix[kUnknowns][kUnknowns] = {};
    Affine map;
    for (int i = 0; i < 3; ++i)
        for (int axis = 0; axis < 2; ++axis) {
            double* row = matrix[2 * i + axis] + 3 * axis;
            row[0] = static_cast<double>(src[i].x);
            row[1] = static_cast<double>(src[i].y);
            row[2] = 1.0;
            map.m[2 * i + axis] = static_cast<double>(axis == 0 ? dst[i].x : dst[i].y);
        }
    if (!SolveLinearGauss(matrix[0], sizeof matrix[0], kUnknowns, map.m, sizeof map.m[0], 1))
        return {{0, 0, static_cast<double>(dst[0].x), 0, 0, static_cast<double>(dst[0].y)}};
    return map;
}

/// The fit of three landmarks to their template points.
Affine fitOf(const Vector2f* landmarks, const std::array<std::size_t, 3>& fit) {
    Vector2f src[3], dst[3];
    for (std::size_t i = 0; i < 3; ++i) {
        src[i] = kTemplateLandmarks[fit[i]];
        dst[i] = landmarks[fit[i]];
    }
    return AffineByThreePoints(src, dst);
}

/// Maps template points by the fit of three landmarks and appends them.
template <std::size_t Count>
int appendFitted(const Vector2f* landmarks, const std::array<std::size_t, 3>& fit, const Vector2f* extra,
                 Vector2f* out, int count) {
    const Affine map = fitOf(landmarks, fit);
    for (std::size_t i = 0; i < Count; ++i) out[count++] = map(extra[i]);
    return count;
}

/// Samples a curve through the points evenly along its chord and appends samples first .. first + keep - 1.
int appendCurve(std::initializer_list<Vector2f> points, int samples, int first, int keep, Vector2f* out,
                int count) {
    std::array<Vector2f, 3> line;
    std::array<Vector2f, 13> sampled;
    std::copy(points.begin(), points.end(), line.begin());
    ChordLagrangeResample(line.data(), static_cast<int>(points.size()), sampled.data(), samples);
    std::copy_n(sampled.data() + first, keep, out + count);
    return count + keep;
}

/// The landmarks that an eye's outline hangs on.
struct EyeLandmarks {
    std::size_t outer, upperLid, inner, lowerLid;
};

/// The upper lid's points take the lower ones with them in the fit: below the line of the corners, where a
/// narrow eye's lid hangs, they turn the outline upside down. There the lower row has a fit of its own, by
/// the corners and the lower lid, and the upper row ends on it.
void rightenEye(const Vector2f* landmarks, const EyeLandmarks& eye, const Vector2f* extra,
                Vector2f* outline) {
    constexpr std::size_t kUpper = 1, kLower = 6,
                          kPairs = 4;  // points without the corners, one above another
    constexpr std::size_t kChin = 0;
    const Vector2f outer = landmarks[eye.outer], chord = landmarks[eye.inner] - outer;
    const auto side = [&](Vector2f p) { return chord.x * (p.y - outer.y) - chord.y * (p.x - outer.x); };
    const float down = side(landmarks[kChin]), hang = side(landmarks[eye.upperLid]);
    if (!std::isfinite(hang) || !((down > 0.0f && hang > 0.0f) || (down < 0.0f && hang < 0.0f))) return;
    const Affine map = fitOf(landmarks, {eye.outer, eye.lowerLid, eye.inner});
    for (std::size_t i = 0; i < kPairs; ++i) {
        const Vector2f lower = outline[kLower + i] = map(extra[kLower + i]);
        Vector2f& upper = outline[kUpper + i];
        if (down > 0.0f ? side(upper) > side(lower) : side(upper) < side(lower)) upper = lower;
    }
}

/// 0 to 19: outlines of both eyes, by corners and upper lid.
int appendEyes(const Vector2f* landmarks, Vector2f* out, int count) {
    for (const EyeLandmarks& eye : {EyeLandmarks{21, 26, 25, 19}, EyeLandmarks{71, 72, 67, 65}}) {
        const Vector2f* extra = &kTemplateEyes[static_cast<std::size_t>(count)];
        Vector2f* outline = out + count;
        count = appendFitted<10>(landmarks, {eye.outer, eye.upperLid, eye.inner}, extra, out, count);
        rightenEye(landmarks, eye, extra, outline);
    }
    return count;
}

/// 20 to 39: outlines of both brows, by the middles of both edges and the inner end.
int appendBrows(const Vector2f* landmarks, Vector2f* out, int count) {
    count = appendFitted<10>(landmarks, {31, 33, 35}, kTemplateBrows.data(), out, count);
    return appendFitted<10>(landmarks, {77, 75, 81}, &kTemplateBrows[10], out, count);
}

/// 40 to 49: between the brows, between the eyes, down both sides of the nose to its wings, tip and base.
int appendNose(const Vector2f* landmarks, Vector2f* out, int count) {
    constexpr int kSamples = 4;
    out[count++] = middle(landmarks[75], landmarks[33]);
    const Vector2f root = middle(landmarks[67], landmarks[25]);
    count = appendCurve({root, landmarks[62]}, kSamples, 0, kSamples, out, count);
    count = appendCurve({root, landmarks[63]}, kSamples, 1, kSamples - 1, out, count);
    out[count++] = landmarks[64];
    out[count++] = landmarks[58];
    return count;
}

/// Some points of the template's mouth and the landmarks that carry them.
struct ControlGroup {
    std::size_t first, count;
    std::vector<std::size_t> landmarks;
};

/// 50 to 79: the four edges of the lips. A group is carried by landmarks of its own edge alone, so that a
/// mouth that opens does not pull one lip's points after the other's.
int appendMouth(const Vector2f* landmarks, Vector2f* out, int count) {
    static const std::array<ControlGroup, 7> groups = {{{0, 3, {37, 49, 48, 54}},
                                                        {3, 3, {49, 48, 54, 51, 52}},
                                                        {6, 3, {46, 52, 51, 54}},
                                                        {9, 14, {37, 50, 47, 53, 46, 42, 45, 39}},
                                                        {23, 3, {37, 40, 41, 38}},
                                                        {26, 1, {40, 41, 38, 44, 43}},
                                                        {27, 3, {46, 43, 44, 38}}}};
    for (const ControlGroup& group : groups) {
        PointLists from, to, points;
        for (std::size_t landmark : group.landmarks) {
            from.append(kTemplateLandmarks[landmark].x, kTemplateLandmarks[landmark].y);
            to.append(landmarks[landmark].x, landmarks[landmark].y);
        }
        for (std::size_t i = 0; i < group.count; ++i)
            points.append(kTemplateMouth[group.first + i].x, kTemplateMouth[group.first + i].y);
        AffineMlsDeform(points, points, from, to, static_cast<int>(from.size()),
                        static_cast<int>(points.size()));
        for (std::size_t i = 0; i < points.size(); ++i) out[count++] = {points.x[i], points.y[i]};
    }
    return count;
}

/// The forehead above the landmarks: its top and what lies between the eyes, the face's own axis.
struct Forehead {
    Vector2f root, top;

    explicit Forehead(const Vector2f* landmarks)
        : root(middle(landmarks[25], landmarks[67])), top(landmarks[0] + (root - landmarks[0]) * kTopShare) {}

    /// The corner between the top and a temple: a third of the way in from the temple across the face's axis,
    /// but a third of the way down from the top along it.
    Vector2f corner(Vector2f temple) const {
        const Vector2f axis = top - root, out = top - temple;
        const float length2 = std::max(axis.x * axis.x + axis.y * axis.y, kShortestAxis);
        const Vector2f along = axis * ((out.x * axis.x + out.y * axis.y) / length2);
        return temple + (out - along) * (1.0f / 3.0f) + along * (2.0f / 3.0f);
    }

private:
    static constexpr float kTopShare = 1.7f;  // chin to hairline against chin to eyes
    static constexpr float kShortestAxis = 1e-6f;
};

/// 80 to 107: forehead from its top down the left (81 to 84) and the right (85 to 88), then the contour from
/// the left temple through the chin (98) to the right temple.
int appendOutline(const Vector2f* landmarks, Vector2f* out, int count) {
    constexpr int kSamples = 6;
    const Forehead forehead(landmarks);
    out[count++] = forehead.top;
    for (std::size_t temple : {std::size_t{1}, std::size_t{10}}) {
        const Vector2f end = landmarks[temple];
        count = appendCurve({forehead.top, forehead.corner(end), end}, kSamples, 1, 4, out, count);
    }
    for (std::size_t i = 1; i <= 9; ++i) out[count++] = landmarks[i];
    out[count++] = landmarks[0];
    for (std::size_t i = 18; i >= 10; --i) out[count++] = landmarks[i];
    return count;
}

/// 108 to 112: across the forehead from left to right, at half its height.
int appendForeheadLine(Vector2f* out, int count) {
    return appendCurve({out[83], middle(out[40], out[80]), out[87]}, 7, 1, 5, out, count);
}

/// The points of the list so far on which one cheek is built.
struct CheekSide {
    Vector2f outerCorner, innerCorner;  // of the eye
    Vector2f lid;                       // middle of the lower lid
    Vector2f flank, wing;               // of the nose
    Vector2f mouth;                     // corner
    std::array<Vector2f, 6> contour;    // from the temple down
};

CheekSide leftCheek(const Vector2f* p) {
    return {p[0], p[5], middle(p[7], p[8]), p[43], p[44], p[50], {p[89], p[90], p[91], p[92], p[93], p[94]}};
}
CheekSide rightCheek(const Vector2f* p) {
    return {p[15],
            p[10],
            middle(p[17], p[18]),
            p[46],
            p[47],
            p[58],
            {p[107], p[106], p[105], p[104], p[103], p[102]}};
}

/// 113 to 132 and 133 to 152: rows across a cheek from its contour inwards, the first along the lower end of
/// the shadow under the eye, the last but one beside the mouth; the last five right below the lower lid, from
/// the picture's left to its right.
int appendCheek(const CheekSide& side, bool left, Vector2f* out, int count) {
    const int start = count;
    const auto row = [&](int i) { return out[start + i]; };
    // Below the lid, towards the mouth's corner: follows the face, also where the eye is closed.
    const auto belowLid = [&](float share) { return mix(side.lid, side.mouth, share); };
    count = appendCurve({mix(side.outerCorner, side.contour[1], 0.45f), belowLid(0.17f),
                         mix(side.innerCorner, side.flank, 0.3f)},
                        6, 1, 4, out, count);
    count = appendCurve({side.contour[2], belowLid(0.42f), side.wing}, 5, 1, 3, out, count);
    count = appendCurve({side.contour[3], mix(side.wing, side.mouth, 0.4f)}, 4, 1, 3, out, count);
    count = appendCurve({side.mouth, side.contour[5]}, 4, 1, 2, out, count);
    count = appendCurve({row(7), row(10)}, 3, 1, 1, out, count);
    count = appendCurve({row(3), mix(row(3), side.wing, 2.0f / 3.0f)}, 3, 1, 2, out, count);
    const Vector2f outer = mix(side.outerCorner, side.contour[1], 0.15f);
    const Vector2f inner = mix(side.innerCorner, side.flank, 0.15f);
    return appendCurve({left ? outer : inner, belowLid(0.1f), left ? inner : outer}, 7, 1, 5, out, count);
}

/// 153 to 168: around the mouth, from left to right between nose and upper lip, then below the lower lip.
int appendMouthRing(Vector2f* out, int count) {
    count =
        appendCurve({mix(out[44], out[50], 0.55f), middle(out[49], out[54]), mix(out[47], out[58], 0.55f)}, 7,
                    1, 5, out, count);
    return appendCurve({middle(out[50], out[123]), mix(out[76], out[98], 0.35f), middle(out[58], out[143])},
                       13, 1, 11, out, count);
}

/// 175 to 214: five lines of eight points across the forehead, from left to right, from above the brows up.
int appendForehead(const Vector2f* landmarks, Vector2f* out, int count) {
    const Forehead forehead(landmarks);
    const Vector2f between = middle(landmarks[33], landmarks[75]);
    const Vector2f left = forehead.corner(landmarks[1]), right = forehead.corner(landmarks[10]);
    for (float share : {0.32f, 0.44f, 0.56f, 0.68f, 0.8f})
        count = appendCurve({mix(landmarks[29], left, share), mix(between, forehead.top, share),
                             mix(landmarks[79], right, share)},
                            10, 1, 8, out, count);
    return count;
}

/// 215 to 298: the outline pushed away from the nose's tip three times.
int appendOuterRings(Vector2f* out, int count) {
    constexpr float kRingStep = 0.1f;
    constexpr int kCentre = 48, kOutlineFirst = 80, kOutlineLast = 107, kRings = 3;
    float factor = 0.0f;
    for (int ring = 0; ring < kRings; ++ring) {
        factor += kRingStep;
        for (int i = kOutlineFirst; i <= kOutlineLast; ++i)
            out[count++] = out[i] + (out[i] - out[kCentre]) * factor;
    }
    return count;
}

/// 299 to 309: down the nose's ridge, then from left to right between the lower lip and the chin.
int appendRidgeAndChin(const Vector2f* landmarks, Vector2f* out, int count) {
    count = appendCurve({middle(landmarks[25], landmarks[67]), landmarks[64]}, 5, 1, 3, out, count);
    return appendCurve({landmarks[7], mix(landmarks[38], landmarks[0], 0.5f), landmarks[16]}, 10, 1, 8, out,
                       count);
}

}  // namespace

int interpolateFace(const Vector2f* landmarks, Vector2f* out) {
    int count = 0;
    count = appendEyes(landmarks, out, count);
    count = appendBrows(landmarks, out, count);
    count = appendNose(landmarks, out, count);
    count = appendMouth(landmarks, out, count);
    count = appendOutline(landmarks, out, count);
    count = appendForeheadLine(out, count);
    count = appendCheek(leftCheek(out), true, out, count);
    count = appendCheek(rightCheek(out), false, out, count);
    count = appendMouthRing(out, count);
    out[count++] = landmarks[24];  // pupils
    out[count++] = landmarks[70];
    for (int i = 0; i < 4; ++i) out[count++] = {};  // reserved
    count = appendForehead(landmarks, out, count);
    count = appendOuterRings(out, count);
    return appendRidgeAndChin(landmarks, out, count);
}

}  // namespace zellab
