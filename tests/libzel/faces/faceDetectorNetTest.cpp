#include "libzel/faces/faceDetectorNet.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace {

using namespace zel::detector;
using zel::DetectedFace;
using zel::TurnedSquare;

TEST(FaceDetectorNet, AnchorsStandInTheMiddlesOfTheirCells) {
    const auto expectAt = [](std::size_t anchor, float x, float y) {
        EXPECT_FLOAT_EQ(anchorAt(anchor).x, x) << anchor;
        EXPECT_FLOAT_EQ(anchorAt(anchor).y, y) << anchor;
    };
    expectAt(0, 0.5f / 16, 0.5f / 16);
    expectAt(1, 0.5f / 16, 0.5f / 16);      // two a cell
    expectAt(2, 1.5f / 16, 0.5f / 16);      // then to the right
    expectAt(33, 0.5f / 16, 1.5f / 16);     // then down
    expectAt(511, 15.5f / 16, 15.5f / 16);  // the last of the fine ones
    expectAt(512, 0.5f / 8, 0.5f / 8);      // six a cell
    expectAt(517, 0.5f / 8, 0.5f / 8);
    expectAt(518, 1.5f / 8, 0.5f / 8);
    expectAt(895, 7.5f / 8, 7.5f / 8);
}

/// What the network gives where one anchor sees a face and the others see none.
struct Outputs {
    std::vector<float> boxes = std::vector<float>(kAnchors * kPerAnchor, 0.0f);
    std::vector<float> scores = std::vector<float>(kAnchors, -20.0f);

    explicit Outputs(std::size_t anchor, std::vector<float> row, float score = 2) {
        std::copy(row.begin(), row.end(), boxes.begin() + static_cast<std::ptrdiff_t>(kPerAnchor * anchor));
        scores[anchor] = score;
    }
    std::vector<DetectedFace> in(const TurnedSquare& window) const {
        return decode(boxes, scores, window, 1000, 1000);
    }
};

/// Middle, size, left and right eye, nose, mouth, ears; from the anchor, in samples.
const std::vector<float> kRow{2, -4, 40, 36, -8, -10, 12, -10, 2, 0, 2, 8, -16, -6, 20, -6};

TEST(FaceDetectorNet, DecodesOneAnchorByHand) {
    // Anchor 512 + 6 * (8 * 3 + 4) stands at sample 72, 56 of 128; the window takes two pixels a sample.
    const Outputs outputs(512 + 6 * 28, kRow);
    const auto faces = outputs.in({{400, 300}, 256, 0});
    ASSERT_EQ(faces.size(), 1u);
    const DetectedFace& face = faces[0];
    EXPECT_NEAR(face.score, 1 / (1 + std::exp(-2.0f)), 1e-6f);
    EXPECT_NEAR(face.centre.x, 400 + 2 * (72 + 2 - 64), 1e-3f);
    EXPECT_NEAR(face.centre.y, 300 + 2 * (56 - 4 - 64), 1e-3f);
    EXPECT_NEAR(face.width, 80, 1e-3f);
    EXPECT_NEAR(face.height, 72, 1e-3f);
    EXPECT_NEAR(face.marks[1].x, 400 + 2 * (72 + 12 - 64), 1e-3f);
    EXPECT_NEAR(face.square().side, 120, 1e-3f);
    EXPECT_NEAR(face.square().turn, 0, 1e-6f);

    // The same window upside down: all lies on the other side of its middle.
    const auto turned = outputs.in({{400, 300}, 256, std::numbers::pi_v<float>});
    ASSERT_EQ(turned.size(), 1u);
    EXPECT_NEAR(turned[0].centre.x, 400 - 20, 1e-2f);
    EXPECT_NEAR(turned[0].centre.y, 300 + 24, 1e-2f);
    EXPECT_NEAR(std::abs(turned[0].square().turn), std::numbers::pi_v<float>, 1e-4f);
}

TEST(FaceDetectorNet, LeavesOutWhatIsWeakCutOrNoNumber) {
    EXPECT_TRUE(Outputs(680, kRow, -0.1f).in({{400, 300}, 256, 0}).empty());
    // At the window's left edge the left eye lies outside: a face where the picture ends, none where it goes on.
    EXPECT_TRUE(Outputs(512, kRow).in({{500, 500}, 256, 0}).empty());
    EXPECT_EQ(Outputs(512, kRow).in({{128, 128}, 256, 0}).size(), 1u);
    for (const float wrong :
         {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(), -40.0f, 1e30f})
        for (const std::size_t place : {2u, 3u}) {
            auto row = kRow;
            row[place] = wrong;
            EXPECT_TRUE(Outputs(680, row).in({{400, 300}, 256, 0}).empty()) << wrong << " at " << place;
        }
}

TEST(FaceDetectorNet, MergesWhatOverlapsAndKeepsWhatDoesNot) {
    const auto faceAt = [](float x, float score, float size = 100) {
        DetectedFace face;
        face.centre = {x, 50};
        face.width = face.height = size;
        face.marks.fill({x, 40});
        face.score = score;
        return face;
    };
    // 110 lies much upon 100, 150 shares half of its box, 300 stands alone.
    const auto merged = merge(
        {faceAt(300, 0.7f), faceAt(110, 0.6f), faceAt(100, 0.9f), faceAt(150, 0.8f), faceAt(104, 0.5f)});
    ASSERT_EQ(merged.size(), 2u);
    EXPECT_FLOAT_EQ(merged[0].score, 0.9f);
    EXPECT_NEAR(merged[0].centre.x, (0.9f * 100 + 0.6f * 110) / 1.5f, 1e-3f)
        << "150 and the weak one have no say";
    EXPECT_NEAR(merged[0].marks[5].x, merged[0].centre.x, 1e-3f);
    EXPECT_NEAR(merged[1].centre.x, 300, 1e-3f);
    // A small box within a large one is the same face.
    EXPECT_EQ(merge({faceAt(100, 0.9f), faceAt(90, 0.8f, 30)}).size(), 1u);
    EXPECT_TRUE(merge({}).empty());
}

}  // namespace
