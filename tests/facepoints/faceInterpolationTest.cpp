#include "facepoints/faceInterpolation.h"

#include <gtest/gtest.h>

#include <vector>

#include "beautykernel/skintools/featureMaskPainter.h"
#include "portrait/portrait.h"
#include "support/mirrorPairs.h"
#include "support/standardFace.h"
#include "zellab/geometry/linearSolve.h"
#include "zellab/imageproc/shapes/polygonFill.h"

namespace {

using zellab::CInterFacePoint;
using zellab::Vector2f;
using namespace zeltest;
using Points = std::array<Vector2f, CInterFacePoint::kBlockPoints>;
using Positions = std::vector<std::size_t>;

constexpr float kPupils = 100.0f;  // pixels between the pupils of the faces here

Points pointsOf(const Landmarks& landmarks) {
    Points points;
    EXPECT_EQ(zellab::interpolateFace(landmarks.data(), points.data()), 310);
    return points;
}

Positions range(std::size_t first, std::size_t last) {
    Positions positions;
    for (std::size_t i = first; i <= last; ++i) positions.push_back(i);
    return positions;
}
Positions join(Positions a, const Positions& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

const Positions kEyes[2] = {{0, 1, 2, 3, 4, 5, 9, 8, 7, 6}, {10, 11, 12, 13, 14, 15, 19, 18, 17, 16}};
const Positions kBrows[2] = {{20, 21, 22, 23, 24, 25, 29, 28, 27, 26},
                             {30, 31, 32, 33, 34, 35, 39, 38, 37, 36}};
const Positions kMouth = {50, 51, 52, 53, 54, 55, 56, 57, 58, 79, 78, 77, 76, 75, 74, 73};
const Positions kFace = join(join({80, 81, 82, 83, 84}, range(89, 107)), {88, 87, 86, 85});

float cross(Vector2f a, Vector2f b, Vector2f c) {
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

bool isSimple(const Points& p, const Positions& polygon) {
    const std::size_t n = polygon.size();
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = i + 2; j < n; ++j) {
            if (i == 0 && j == n - 1) continue;
            const Vector2f a = p[polygon[i]], b = p[polygon[i + 1]], c = p[polygon[j]],
                           d = p[polygon[(j + 1) % n]];
            if (cross(a, b, c) * cross(a, b, d) < 0 && cross(c, d, a) * cross(c, d, b) < 0) return false;
        }
    return true;
}

bool contains(const Points& p, const Positions& polygon, Vector2f v) {
    bool inside = false;
    for (std::size_t i = 0, j = polygon.size() - 1; i < polygon.size(); j = i++) {
        const Vector2f a = p[polygon[i]], b = p[polygon[j]];
        if ((a.y > v.y) != (b.y > v.y) && v.x < (b.x - a.x) * (v.y - a.y) / (b.y - a.y) + a.x)
            inside = !inside;
    }
    return inside;
}

/// The outline around the lips, a fifth of the way to the ring about the mouth, half of it at the corners.
Points widenedMouth(const Points& p) {
    const Positions lips = {50, 51, 52, 53, 55, 56, 57, 58, 79, 78, 77, 76, 75, 74, 73};
    const Positions ring = {123, 153, 154, 155, 156, 156, 157, 143, 168, 167, 165, 163, 161, 159, 158};
    Points wide{};
    for (std::size_t i = 0; i < lips.size(); ++i) {
        const float share = i == 0 || i == 7 ? 0.5f : 0.2f;
        wide[i] = {p[lips[i]].x + (p[ring[i]].x - p[lips[i]].x) * share,
                   p[lips[i]].y + (p[ring[i]].y - p[lips[i]].y) * share};
    }
    return wide;
}

/// The position that takes a position's place in a mirrored face.
std::size_t partner(std::size_t i) {
    const auto swapped = [i](std::size_t a, std::size_t b, std::size_t count) {
        return i >= a && i < a + count ? i - a + b : i - b + a;
    };
    const auto reversed = [i](std::size_t first, std::size_t last) { return first + last - i; };
    if (i <= 5 || (i >= 10 && i <= 15)) return reversed(0, 15);
    if (i <= 19) return reversed(6, 19);
    if ((i >= 20 && i <= 25) || (i >= 30 && i <= 35)) return reversed(20, 35);
    if (i <= 39) return reversed(26, 39);
    if (i >= 42 && i <= 47) return swapped(42, 45, 3);
    if (i >= 50 && i <= 58) return reversed(50, 58);
    if (i >= 59 && i <= 65) return reversed(59, 65);
    if (i >= 66 && i <= 72) return reversed(66, 72);
    if (i >= 73 && i <= 79) return reversed(73, 79);
    if (i >= 81 && i <= 88) return swapped(81, 85, 4);
    if (i >= 89 && i <= 107) return reversed(89, 107);
    if (i >= 108 && i <= 112) return reversed(108, 112);
    if ((i >= 113 && i <= 127) || (i >= 133 && i <= 147)) return swapped(113, 133, 15);
    if (i >= 128 && i <= 152) return reversed(128, 152);
    if (i >= 153 && i <= 157) return reversed(153, 157);
    if (i >= 158 && i <= 168) return reversed(158, 168);
    if (i == 169 || i == 170) return reversed(169, 170);
    if (i >= 175 && i <= 214) return i - (i - 175) % 8 + 7 - (i - 175) % 8;
    if (i >= 215 && i <= 298) {
        const std::size_t ring = (i - 215) / 28 * 28 + 215, at = (i - 215) % 28 + 80;
        const std::size_t mirrored = at >= 89 ? 80 + 116 - at : at >= 85 ? at - 4 : at >= 81 ? at + 4 : at;
        return ring + mirrored - 80;
    }
    if (i >= 302 && i <= 309) return reversed(302, 309);
    return i;
}

Landmarks mirroredLandmarks(const Landmarks& face) {
    Landmarks mirrored = Placing{1, 0, 0, 0, -1}(face);
    for (const auto& [a, b] : kMirrorPairs) std::swap(mirrored[a], mirrored[b]);
    return mirrored;
}

TEST(FaceInterpolation, HoldsTheToldPlaces) {
    const Landmarks face = variedFace(standardFace(400, 500, kPupils), 3);
    const Points p = pointsOf(face);
    const auto same = [](Vector2f a, Vector2f b) { return a.x == b.x && a.y == b.y; };
    EXPECT_TRUE(same(p[169], face[24]) && same(p[170], face[70]));
    EXPECT_TRUE(same(p[48], face[64]) && same(p[49], face[58]) && same(p[98], face[0]));
    EXPECT_TRUE(same(p[89], face[1]) && same(p[107], face[10]));
    for (std::size_t i = 171; i <= 174; ++i) EXPECT_TRUE(same(p[i], {}));
    EXPECT_NEAR(p[40].x, (face[75].x + face[33].x) / 2, 1e-3);
    EXPECT_NEAR(p[44].y, face[62].y, 1e-3);
    EXPECT_NEAR(p[43].x, p[41].x + (face[62].x - p[41].x) * 2 / 3, 1e-3);
    EXPECT_NEAR(p[298].x, p[107].x + (p[107].x - p[48].x) * 0.3f, 1e-3);
    EXPECT_NEAR(p[0].x, face[21].x, 1e-2);
    EXPECT_NEAR(p[15].y, face[71].y, 1e-2);
    for (Vector2f zero : pointsOf({})) EXPECT_TRUE(same(zero, {})) << "a face of zeros";
}

TEST(FaceInterpolation, FollowsASimilarityTransform) {
    const Landmarks face = variedFace(standardFace(0, 0, kPupils), 8);
    const Points before = pointsOf(face);
    for (const Placing& move : {Placing{1, 0, 900, -40, 1}, Placing{7.5f, 0.6f, 200, 3000, 1},
                                Placing{0.2f, -2.0f, 5, 5, 1}, Placing{1.3f, 3.1f, 0, 0, 1}}) {
        const Points after = pointsOf(move(face));
        for (std::size_t i = 0; i < after.size(); ++i) {
            if (i >= 171 && i <= 174) continue;
            const Vector2f expected = move(before[i]);
            ASSERT_NEAR(after[i].x, expected.x, 2e-3f * kPupils * move.scale) << i;
            ASSERT_NEAR(after[i].y, expected.y, 2e-3f * kPupils * move.scale) << i;
        }
    }
}

TEST(FaceInterpolation, AMirroredFaceGivesTheMirroredList) {
    for (unsigned seed = 0; seed < 20; ++seed) {
        const Landmarks face = variedFace(standardFace(0, 0, kPupils), seed);
        const Points plain = pointsOf(face), mirrored = pointsOf(mirroredLandmarks(face));
        for (std::size_t i = 0; i < plain.size(); ++i) {
            ASSERT_EQ(partner(partner(i)), i);
            // The template itself is not quite symmetric.
            ASSERT_NEAR(mirrored[partner(i)].x, -plain[i].x, 0.015f * kPupils) << seed << ": " << i;
            ASSERT_NEAR(mirrored[partner(i)].y, plain[i].y, 0.015f * kPupils) << seed << ": " << i;
        }
    }
}

/// The four landmarks of an eye's outline and the positions of its points: the upper lid's between the
/// corners, and the lower ones under them.
struct EyeOutline {
    std::size_t outer, upperLid, inner, lowerLid, first;
};
constexpr EyeOutline kOutlines[2] = {{21, 26, 25, 19, 0}, {71, 72, 67, 65, 10}};

/// The ten points by the fit of the corners and one lid's landmark.
std::array<Vector2f, 10> fittedOutline(const Landmarks& face, const EyeOutline& eye, std::size_t lid) {
    const std::size_t fit[3] = {eye.outer, lid, eye.inner};
    double matrix[6][6] = {}, map[6];
    for (std::size_t row = 0; row < 6; ++row) {
        const Vector2f from = zellab::kTemplateLandmarks[fit[row / 2]], to = face[fit[row / 2]];
        double* place = &matrix[row][row % 2 * 3];
        place[0] = static_cast<double>(from.x), place[1] = static_cast<double>(from.y), place[2] = 1;
        map[row] = static_cast<double>(row % 2 ? to.y : to.x);
    }
    EXPECT_NE(zellab::SolveLinearGauss(matrix[0], sizeof matrix[0], 6, map, sizeof map[0], 1), 0);
    std::array<Vector2f, 10> points;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const auto x = static_cast<double>(zellab::kTemplateEyes[eye.first + i].x),
                   y = static_cast<double>(zellab::kTemplateEyes[eye.first + i].y);
        points[i] = {static_cast<float>(map[0] * x + map[1] * y + map[2]),
                     static_cast<float>(map[3] * x + map[4] * y + map[5])};
    }
    return points;
}

// Only where the upper lid hangs below the corners does an outline leave the fit of that lid; it then follows
// the lower lid, and its rows never cross. However the head leans, also in a mirror.
TEST(FaceInterpolation, NarrowEyesKeepTheirLidsInOrderAndOthersTheirFit) {
    std::mt19937 engine(17);
    std::uniform_real_distribution<float> lids(-0.3f, 0.3f), turns(-3.0f, 3.0f);
    int hanging = 0, open = 0;
    for (unsigned seed = 0; seed < 200; ++seed) {
        SCOPED_TRACE(seed);
        Landmarks face = variedFace(standardFace(0, 0, kPupils), seed);
        std::array<bool, 2> hangs;
        for (std::size_t k = 0; k < 2; ++k) {
            const EyeOutline& eye = kOutlines[k];
            // Lids at random heights about the corners, the lower one below the upper one or on it.
            const Vector2f a = face[eye.outer], b = face[eye.inner];
            const float middle = (a.y + b.y) / 2, width = std::abs(a.x - b.x), height = lids(engine);
            for (std::size_t lid : {eye.upperLid, eye.lowerLid}) face[lid].x = (a.x + b.x) / 2;
            face[eye.upperLid].y = middle + height * width;
            face[eye.lowerLid].y = middle + (seed % 4 ? std::max(height, lids(engine)) : height) * width;
            hangs[k] = height > 0;
        }
        face = Placing{1, turns(engine), 40, 70, seed % 3 ? 1.0f : -1.0f}(face);
        const Points p = pointsOf(face);
        for (std::size_t k = 0; k < 2; ++k) {
            const EyeOutline& eye = kOutlines[k];
            const auto told = fittedOutline(face, eye, eye.upperLid),
                       low = fittedOutline(face, eye, eye.lowerLid);
            const auto same = [&](std::size_t i, const std::array<Vector2f, 10>& fit) {
                return p[eye.first + i].x == fit[i].x && p[eye.first + i].y == fit[i].y;
            };
            ++(hangs[k] ? hanging : open);
            if (!hangs[k]) {
                for (std::size_t i = 0; i < 10; ++i) ASSERT_TRUE(same(i, told)) << i;
                continue;
            }
            const Vector2f a = face[eye.outer], b = face[eye.inner];
            const float down = cross(a, b, face[0]) > 0 ? 1.0f : -1.0f;
            for (std::size_t i = 6; i < 10; ++i) {
                ASSERT_TRUE(same(i, low)) << i;
                ASSERT_TRUE(same(i - 5, told) || (p[eye.first + i - 5].x == p[eye.first + i].x &&
                                                  p[eye.first + i - 5].y == p[eye.first + i].y))
                    << i;
                ASSERT_GE(cross(a, b, p[eye.first + i]) * down, cross(a, b, p[eye.first + i - 5]) * down)
                    << i;
            }
        }
    }
    EXPECT_GT(std::min(hanging, open), 100);
}

TEST(FaceInterpolation, EachListLiesOnItsFeature) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        const Landmarks face = variedFace(standardFace(0, 0, kPupils), seed);
        const Points p = pointsOf(face);
        for (const Positions& polygon : {kEyes[0], kEyes[1], kBrows[0], kBrows[1], kMouth, kFace})
            EXPECT_TRUE(isSimple(p, polygon)) << polygon[0];
        EXPECT_TRUE(contains(p, kEyes[0], p[169]) && contains(p, kEyes[1], p[170]));
        for (std::size_t i : join(range(60, 64), range(67, 71))) EXPECT_TRUE(contains(p, kMouth, p[i])) << i;
        // A brow's outline may stand out over the temple at its outer end.
        const Positions brows = {22, 23, 24, 25, 27, 28, 29, 30, 31, 32, 33, 36, 37, 38};
        for (const Positions& inner : {kEyes[0], kEyes[1], brows, kMouth, range(40, 49), range(108, 170),
                                       range(175, 214), range(299, 309)})
            for (std::size_t i : inner) EXPECT_TRUE(contains(p, kFace, p[i])) << i;
        const Points wide = widenedMouth(p);
        EXPECT_TRUE(isSimple(wide, range(0, 14)));
        for (std::size_t i : kMouth) EXPECT_TRUE(contains(wide, range(0, 14), p[i])) << i;
        for (std::size_t i = 215; i <= 298; ++i) EXPECT_FALSE(contains(p, kFace, p[i])) << i;
    }
}

// Skin masks take the hull of a brow's points, the search for flecks the closed outline.
TEST(FaceInterpolation, OutlinesHoldTheWholeBrow) {
    constexpr int kWidth = 300, kHeight = 400;
    for (unsigned seed = 101; seed <= 108; ++seed) {
        SCOPED_TRACE(seed);
        zel::PortraitParams params;
        params.seed = seed;
        params.width = kWidth, params.height = kHeight;
        const zel::Portrait portrait = drawPortrait(params);
        Landmarks face = portrait.faces.faces.front().points;
        for (Vector2f& p : face) p = {p.x * kWidth, p.y * kHeight};
        const Points points = pointsOf(face);
        std::vector<unsigned char> hulls(portrait.brows.samples.size()), outlines = hulls;
        zellab::CFeatureMaskPainter::Paint({hulls.data(), kWidth, kHeight}, points.data(), zellab::kBrows, 1);
        for (const Positions& brow : kBrows) {
            std::vector<Vector2f> polygon;
            for (std::size_t i : brow) polygon.push_back(points[i]);
            zellab::FillPolygonMask({outlines.data(), kWidth, kHeight}, polygon, 1);
        }
        double all = 0, inHulls = 0, inOutlines = 0, onEyes = 0;
        for (std::size_t i = 0; i < hulls.size(); ++i) {
            all += portrait.brows.samples[i];
            inHulls += hulls[i] * portrait.brows.samples[i];
            inOutlines += outlines[i] * portrait.brows.samples[i];
            onEyes += hulls[i] * portrait.eyes.samples[i];
        }
        EXPECT_GT(inHulls, 0.97 * all);
        EXPECT_GT(inOutlines, 0.97 * all);
        EXPECT_EQ(onEyes, 0);
    }
}

// Height along the face's own axis, from the chin (0) to between the eyes (1).
TEST(FaceInterpolation, UnderEyePointsLieBetweenLidAndNoseAndTheForeheadAboveTheBrows) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        const Points p = pointsOf(variedFace(standardFace(0, 0, kPupils), seed));
        const Vector2f axis{p[41].x - p[98].x, p[41].y - p[98].y};
        const auto height = [&](std::size_t i) {
            return ((p[i].x - p[98].x) * axis.x + (p[i].y - p[98].y) * axis.y) /
                   (axis.x * axis.x + axis.y * axis.y);
        };
        const auto below = [&](const Positions& low, const Positions& high) {
            for (std::size_t a : low)
                for (std::size_t b : high) EXPECT_LT(height(a), height(b)) << a << " and " << b;
        };
        below(range(129, 131), {7, 8});
        below(range(149, 151), {17, 18});
        below({115}, range(129, 131));
        below({135}, range(149, 151));
        below({44, 47}, join(range(113, 116), join(range(128, 136), range(148, 152))));
        below(range(20, 39), range(176, 181));
        for (std::size_t line = 175; line + 8 <= 207; line += 8)
            below({line + 3, line + 4}, {line + 11, line + 12});
    }
}

TEST(InterFacePoint, AddFaceSetsTheCountAndOverwritesTheBlock) {
    CInterFacePoint faces;
    const Landmarks landmarks = standardFace(100, 200, 40);
    EXPECT_EQ(faces.GetInterPointCount(), 0);
    faces.AddFace(nullptr, 0);
    faces.AddFace(landmarks.data(), -1);
    EXPECT_EQ(faces.GetInterPoints(0), nullptr);
    faces.AddFace(standardFace(300, 300, 60).data(), 2);
    EXPECT_EQ(faces.GetInterPointCount(), 310);
    EXPECT_EQ(faces.GetInterPoints(1), nullptr) << "the slots below stay empty";
    const Vector2f* block = faces.GetInterPoints(2);
    const Points moved = pointsOf(landmarks);
    faces.AddFace(landmarks.data(), 2);
    ASSERT_EQ(faces.GetInterPoints(2), block);
    for (std::size_t i = 0; i < moved.size(); ++i) EXPECT_EQ(block[i].x, moved[i].x);
    for (const auto& [index, face] : {std::pair{-1, 0}, {2, 2}, {3, 0}})
        EXPECT_EQ(zellab::clampFaceIndex(index, 3), face) << "out of range is face 0";
}

}  // namespace
