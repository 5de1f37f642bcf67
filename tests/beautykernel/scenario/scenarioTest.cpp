#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/hostFaces.h"
#include "support/workingFolder.h"
#include "zel_effects/zel_effects.h"

namespace {

using ZelImageCore::eScenarioType;
using namespace zeltest;

constexpr int kWidth = 160, kHeight = 200;

/// A face in the middle of the picture.
struct OneFace : HostFaces {
    explicit OneFace(int count = 1) : HostFaces({kWidth, kHeight}, count) {}
};

Bytes picture() {
    return patternRgba(kWidth, kHeight, 7);
}

Bytes ran(eScenarioType type, float alpha, unsigned char* lookup, ImageCoreFaceInfo* faces,
          bool expected = true) {
    Bytes pixels = picture();
    EXPECT_EQ(ZelImageCore::CScenarioBeauty().Run(pixels.data(), kWidth, kHeight, type, alpha, lookup, faces),
              expected)
        << "type " << type << ", alpha " << alpha;
    return pixels;
}

Bytes portrait(float alpha, ImageCoreFaceInfo* faces) {
    Bytes lookup = cubePicture(2);  // halves every channel
    return ran(ZelImageCore::eScenario2, alpha, lookup.data(), faces);
}

const float kNaN = std::numeric_limits<float>::quiet_NaN();
const float kNoBlend = 0x1.ffffdep-1f;  // from here on nothing is blended

TEST(PortraitScenario, AtFullStrengthTheLookAloneShows) {
    const WithAssets assets;
    OneFace face;
    const Bytes lookAlone = portrait(1.0f, nullptr);
    EXPECT_NE(lookAlone, picture());
    EXPECT_EQ(portrait(1.0f, face.info()), lookAlone);
    EXPECT_EQ(portrait(1.7f, face.info()), lookAlone);
    EXPECT_EQ(portrait(kNoBlend, face.info()), lookAlone);
    // One step below, the face is reshaped and retouched.
    EXPECT_NE(portrait(std::nextafter(kNoBlend, 0.0f), face.info()), lookAlone);
}

TEST(PortraitScenario, AtZeroTheFaceIsReshapedAndNothingElse) {
    const WithAssets assets;
    OneFace face;
    const Bytes reshaped = portrait(0.0f, face.info());
    EXPECT_NE(reshaped, picture());
    // The corner lies beyond every reshaping: no look is there.
    const Bytes before = picture();
    EXPECT_TRUE(std::equal(before.begin(), before.begin() + kWidth * 4, reshaped.begin()));
    for (float alpha : {-3.0f, kNaN, -0.0f}) EXPECT_EQ(portrait(alpha, face.info()), reshaped) << alpha;
    // Without a face nothing is left to do, and that is no failure.
    OneFace nobody(0);
    EXPECT_EQ(portrait(0.0f, nobody.info()), before);
    EXPECT_EQ(portrait(0.0f, nullptr), before);
}

TEST(PortraitScenario, InBetweenSkinAndLookAreMixedOverTheReshapedPicture) {
    const WithAssets assets;
    OneFace face;
    const Bytes reshaped = portrait(0.0f, face.info());
    const Bytes nearlyFull = portrait(std::nextafter(kNoBlend, 0.0f), face.info());
    const Bytes half = portrait(0.5f, face.info());
    for (std::size_t i = 0; i < half.size(); ++i) {
        const int expected = i % 4 == 3 ? half[i] : (reshaped[i] + nearlyFull[i]) / 2;
        ASSERT_NEAR(half[i], expected, 1) << "byte " << i;
    }
}

TEST(PortraitScenario, WithoutAFaceTheLookIsMixedOverThePicture) {
    OneFace nobody(0);
    const Bytes look = portrait(1.0f, nullptr), before = picture();
    Bytes expected = before;
    for (std::size_t i = 0; i < expected.size(); ++i)
        if (i % 4 != 3) expected[i] = static_cast<unsigned char>((look[i] + before[i]) / 2);
    EXPECT_EQ(portrait(0.5f, nobody.info()), expected);
    EXPECT_EQ(portrait(0.5f, nullptr), expected);
}

TEST(PortraitScenario, WithoutTheSkinAssetTheReshapedPictureStays) {
    const Bytes before = picture();
    OneFace face;
    Bytes withAssets;
    {
        const WithAssets assets;
        withAssets = portrait(0.0f, face.info());
    }
    const WorkingFolder elsewhere(std::filesystem::temp_directory_path());
    EXPECT_EQ(portrait(0.0f, face.info()), withAssets);
    // The skin step is missing, the look is there.
    const Bytes half = portrait(0.5f, face.info());
    const WithAssets assets;
    EXPECT_NE(half, portrait(0.5f, face.info()));
    EXPECT_LT(half[0], before[0]);
}

TEST(OtherScenarios, ZeroStrengthIsRefusedAndUnknownNumbersDoNothing) {
    Bytes lookup = cubePicture(2);  // halves every channel
    for (int type : {0, 1, 3, 4, 5, 6, 7, 8})
        for (float alpha : {0.0f, -3.0f, kNaN})
            EXPECT_EQ(ran(static_cast<eScenarioType>(type), alpha, lookup.data(), nullptr, false), picture());
    for (int type : {0, 8, -1})
        for (float alpha : {0.5f, 1.0f})
            EXPECT_EQ(ran(static_cast<eScenarioType>(type), alpha, lookup.data(), nullptr), picture());
}

TEST(OtherScenarios, EachRecipeTakesTheLookButForHaze) {
    Bytes lookup = cubePicture(2);  // halves every channel
    for (int type = 1; type <= 7; ++type) {
        const Bytes full = ran(static_cast<eScenarioType>(type), 1.0f, lookup.data(), nullptr);
        long sumBefore = 0, sumAfter = 0;
        const Bytes before = picture();
        for (std::size_t i = 0; i < full.size(); ++i) {
            if (i % 4 != 3) sumBefore += before[i], sumAfter += full[i];
        }
        const double ratio = static_cast<double>(sumAfter) / static_cast<double>(sumBefore);
        if (type == 6) {
            EXPECT_GT(ratio, 0.85);  // stretched, not halved
        } else {
            EXPECT_NEAR(ratio, 0.5, 0.04) << type;
        }
        EXPECT_EQ(ran(static_cast<eScenarioType>(type), 1.7f, lookup.data(), nullptr), full) << type;
    }
}

}  // namespace
