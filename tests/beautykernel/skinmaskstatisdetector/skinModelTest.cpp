#include <gtest/gtest.h>

#include <cmath>

#include "beautykernel/skinmaskstatisdetector/skinMaskManager.h"
#include "beautykernel/skinmaskstatisdetector/skinMaskStatisDetector.h"
#include "reference/slowSkinModel.h"
#include "support/everyMachine.h"

namespace {

using zelbeauty::SkinFaceRecord;
using zelbeauty::SkinMaskManager;
using zelbeauty::SkinMaskStatisDetector;
using namespace zeltest;

/// Planes around a skin colour, wide enough that every branch of the model is met.
slow::SkinPlanes planesOf(int width, int height, unsigned seed, int y, int cb, int cr) {
    slow::SkinPlanes p{width, height, randomPlane(width, height, seed), randomPlane(width, height, seed + 1),
                       randomPlane(width, height, seed + 2)};
    for (std::size_t i = 0; i < p.y.size(); ++i) {
        const bool face = i % static_cast<std::size_t>(width) > static_cast<std::size_t>(width) / 4;
        p.y[i] = static_cast<unsigned char>(std::clamp(face ? y + p.y[i] / 5 - 25 : p.y[i], 0, 255));
        p.cb[i] = static_cast<unsigned char>(std::clamp(cb + p.cb[i] / 4 - 32, 0, 255));
        p.cr[i] = static_cast<unsigned char>(std::clamp(cr + p.cr[i] / 4 - 32, 0, 255));
    }
    return p;
}

zelbeauty::YCbCrView viewOf(const slow::SkinPlanes& p) {
    return {
        {p.y.data(), p.width, p.height}, {p.cb.data(), p.width, p.height}, {p.cr.data(), p.width, p.height}};
}

SkinFaceRecord recordIn(int left, int top, int right, int bottom) {
    SkinFaceRecord face;
    face.left = left, face.top = top, face.right = right, face.bottom = bottom;
    const auto w = static_cast<float>(right - left), h = static_cast<float>(bottom - top);
    const auto at = [&](float u, float v) {
        return zellab::Vector2f{static_cast<float>(left) + u * w + 0.7f,
                                static_cast<float>(top) + v * h + 0.9f};
    };
    face.points[169] = at(0.3f, 0.35f), face.points[170] = at(0.7f, 0.36f), face.points[48] = at(0.5f, 0.65f);
    return face;
}

/// Colours at the middle and at the rims of the chroma plane, dark and bright, boxes inside, at the edge and
/// beyond it.
TEST(SkinModelMatchesSlow, StatisticsAndMap) {
    struct Colour {
        int y, cb, cr;
    };
    const SkinFaceRecord faces[] = {recordIn(10, 8, 60, 70), recordIn(0, 0, 90, 80), recordIn(40, 30, 90, 80),
                                    recordIn(-30, -20, 70, 60)};
    unsigned seed = 1;
    for (const Colour c : {Colour{180, 110, 150}, {90, 118, 143}, {225, 20, 240}, {60, 240, 12}})
        for (const SkinFaceRecord& face : faces)
            for (const bool alt : {false, true}) {
                const slow::SkinPlanes p = planesOf(90, 80, seed += 3, c.y, c.cb, c.cr);
                SCOPED_TRACE(testing::Message()
                             << c.y << ' ' << c.cb << ' ' << c.cr << ", left " << face.left);
                const zelbeauty::YCbCrView picture = viewOf(p);
                const zelbeauty::FaceColour found = SkinMaskStatisDetector::GetFaceColorYuv(picture, face);
                const slow::FaceColour colour = slow::faceColour(p, face);
                EXPECT_EQ((std::array{found.y, found.cb, found.cr, found.low, found.high}),
                          (std::array{colour.y, colour.cb, colour.cr, colour.low, colour.high}));
                ASSERT_GT(colour.low, 3);
                const Bytes expected = slow::skinMap(p, colour, true, alt),
                            faceless = slow::skinMap(p, slow::pictureColour(p), false, alt);
                onEveryMachine([&] {
                    Bytes map(expected.size(), 1);
                    const auto detect = [&](std::size_t count) {
                        SkinMaskStatisDetector::Detect(picture, {map.data(), 90, 80}, {&face, count}, alt,
                                                       nullptr);
                    };
                    detect(1);
                    ASSERT_TRUE(sameSamples(expected, map, 90));
                    detect(0);
                    ASSERT_TRUE(sameSamples(faceless, map, 90));
                });
                ASSERT_FALSE(HasFailure());
            }
}

/// The mean of the sure skin is the colour itself on a picture of one colour, and the fixed one without
/// faces.
TEST(SkinMaskManager, MeanColourAndFeatures) {
    const int w = 120, h = 100;
    const auto count = static_cast<std::size_t>(w * h);
    const slow::SkinPlanes planes{w, h, Bytes(count, 150), Bytes(count, 112), Bytes(count, 147)};
    const zelbeauty::YCbCrView picture = viewOf(planes);
    SkinFaceRecord face = recordIn(20, 10, 100, 90);
    for (int i = 50; i < 80; ++i) {
        const float angle = static_cast<float>(i) * 0.21f;
        face.points[i] = {60 + 15 * std::cos(angle), 70 + 8 * std::sin(angle)};
    }
    SkinMaskManager manager(0);
    EXPECT_FALSE(manager.GetSkinMask().valid());
    manager.DetectSkin(picture, {&face, 1}, 8, false);
    EXPECT_EQ((std::array<int, 3>{manager.meanY, manager.meanCb, manager.meanCr}),
              (std::array{150, 112, 147}));
    EXPECT_GT(manager.meanR, manager.meanG);
    EXPECT_EQ(manager.GetSkinMask().row(70)[60], 100) << "the mouth";
    EXPECT_GT(manager.GetSkinMask().row(40)[60], 230);
    EXPECT_LT(manager.GetSmoothMask().row(70)[46], 230) << "the border of the mouth is soft";

    SkinFaceRecord narrow = recordIn(55, 10, 65, 90);  // measured, but too narrow to be painted
    std::copy_n(face.points + 50, 30, narrow.points + 50);
    manager.DetectSkin(picture, {&narrow, 1}, 8, false);
    EXPECT_GT(manager.GetSkinMask().row(70)[60], 230);
    manager.DetectSkin(picture, {}, 8, false);
    EXPECT_EQ((std::array<int, 6>{manager.meanY, manager.meanCb, manager.meanCr, manager.meanR, manager.meanG,
                                  manager.meanB}),
              (std::array{139, 121, 143, 160, 130, 126}));
}

}  // namespace
