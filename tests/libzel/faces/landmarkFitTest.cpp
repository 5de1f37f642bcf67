// The search for faces against portraits whose landmarks are known, drawn from seeds that the fit has not
// seen.
#include <gtest/gtest.h>

#include <algorithm>

#include "libzel/faces/faceFinder.h"
#include "libzel/faces/faceFrame.h"
#include "libzel/faces/landmarkModel.h"
#include "support/randomImage.h"
#include "variedPortrait.h"

namespace {

zel::FaceSet find(const zel::Image& image) {
    zel::FaceDetector detector(zel::detectorFolder());
    return zel::findFaces(image, detector);
}

TEST(LandmarkFit, FindsTheTrueLandmarksOfUnseenFaces) {
    float sum = 0;
    constexpr int kFaces = 6;
    for (int i = 0; i < kFaces; ++i) {
        const auto portrait =
            zel::drawPortrait(zeltrain::variedPortrait(900u + static_cast<unsigned>(i), 200 + 60 * i));
        const zel::FaceSet found = find(portrait.image);
        ASSERT_EQ(found.faces.size(), 1u) << i;
        EXPECT_GT(found.faces[0].confidence.value_or(0), 0.5f) << i;
        const auto truth = zel::landmarksInPixels(portrait.faces.faces[0], portrait.image);
        const float error = zel::landmarkError(zel::landmarksInPixels(found.faces[0], portrait.image), truth);
        EXPECT_LT(error, 0.06f) << i;
        sum += error;
        // The rectangle is that of the same rule as the drawn one's.
        for (std::size_t k = 0; k < 4; ++k)
            EXPECT_NEAR(found.faces[0].rect[k], portrait.faces.faces[0].rect[k], 0.05f) << i << " " << k;
    }
    EXPECT_LT(sum / kFaces, 0.035f);
}

TEST(LandmarkFit, TwoFacesComeLargestFirst) {
    const auto small = zel::drawPortrait(zeltrain::variedPortrait(915, 200));
    const auto large = zel::drawPortrait(zeltrain::variedPortrait(916, 420));
    zel::Image both{small.image.width + large.image.width, 420, {}};
    both.rgba.assign(static_cast<std::size_t>(both.width) * 420 * 4, 255);
    const auto put = [&both](const zel::Image& part, int left) {
        for (int y = 0; y < part.height; ++y)
            std::copy_n(part.rgba.begin() + 4 * y * part.width, 4 * part.width,
                        both.rgba.begin() + 4 * (y * both.width + left));
    };
    put(small.image, 0);
    put(large.image, small.image.width);
    const zel::FaceSet found = find(both);
    ASSERT_EQ(found.faces.size(), 2u);
    const auto first = zel::landmarksInPixels(found.faces[0], both),
               second = zel::landmarksInPixels(found.faces[1], both);
    EXPECT_GT(zel::pupilDistance(first), zel::pupilDistance(second));
    EXPECT_GT(first[64].x, static_cast<float>(small.image.width));
    EXPECT_LT(second[64].x, static_cast<float>(small.image.width));
}

TEST(LandmarkFit, NoFaceIsSeenWhereThereIsNone) {
    for (const int side : {1, 2, 7, 24, 40, 200}) {
        const std::size_t bytes = static_cast<std::size_t>(side) * static_cast<std::size_t>(side) * 4;
        const zel::Image flat{side, side, std::vector<unsigned char>(bytes, 128)};
        EXPECT_TRUE(find(flat).faces.empty()) << side;
        const zel::Image noise{side, side, zeltest::randomBytes(bytes, 5)};
        EXPECT_TRUE(find(noise).faces.empty()) << side;
    }
    EXPECT_TRUE(find({1, 900, std::vector<unsigned char>(3600, 90)}).faces.empty());
    // A face that is transparent is not seen, whatever its hidden colours tell.
    auto hidden = zel::drawPortrait(zeltrain::variedPortrait(911, 300)).image;
    for (std::size_t i = 3; i < hidden.rgba.size(); i += 4) hidden.rgba[i] = 0;
    EXPECT_TRUE(find(hidden).faces.empty());
}

TEST(LandmarkFit, DamagedTableIsRefused) {
    const char* const cut[] = {"0.5 0.25 -0.5"};
    EXPECT_THROW(zel::decodeModel(cut, 1), std::runtime_error);
    const char* const words[] = {"0.5 nonsense"};
    EXPECT_THROW(zel::decodeModel(words, 1), std::runtime_error);
}

}  // namespace
