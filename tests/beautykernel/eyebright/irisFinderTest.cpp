#include <gtest/gtest.h>

#include "support/syntheticEyes.h"

namespace {

// Every third pair is half closed; landmarks of pupils are a tenth of the eye's width off.
TEST(IrisFinder, FindsSyntheticIrisesOfEveryColour) {
    int pairs = 0, found = 0;
    for (unsigned seed = 201; seed <= 214; ++seed) {
        const zel::Portrait portrait = zel::drawPortrait(zeltest::eyesToMeasure(seed));
        const auto errors = zeltest::irisErrors(portrait, zeltest::FacePoints(portrait, seed, 0.1f));
        ++pairs;
        found += std::all_of(errors.begin(), errors.end(), [](const zeltest::IrisError& e) {
            return e.found && e.centre <= zeltest::kCentreLimit && e.radius <= zeltest::kRadiusLimit;
        });
    }
    EXPECT_GE(found, pairs - 1);
}

// As on photographs of small or shaded faces: most of the contrast is gone, but the landmark is right.
TEST(IrisFinder, FindsFadedIrisesWhereTheLandmarkSays) {
    for (unsigned seed : {201u, 204u, 207u, 210u}) {
        zel::PortraitParams params = zeltest::eyesToMeasure(seed);
        params.eyeOpen = 1;
        zel::Portrait portrait = zel::drawPortrait(params);
        for (std::size_t i = 0; i < portrait.image.rgba.size(); ++i)
            if (i % 4 != 3)
                portrait.image.rgba[i] = static_cast<unsigned char>(110 + (portrait.image.rgba[i] - 110) / 4);
        for (const auto& e : zeltest::irisErrors(portrait, zeltest::FacePoints(portrait, seed, 0))) {
            EXPECT_TRUE(e.found) << seed;
            EXPECT_LE(e.centre, zeltest::kCentreLimit) << seed;
        }
    }
}

// Where the eye is shut, also under landmarks that take it for open.
TEST(IrisFinder, RefusesClosedEyes) {
    for (unsigned seed : {3u, 6u, 15u, 22u, 301u, 305u}) {
        zel::PortraitParams params = zeltest::eyesToMeasure(seed);
        const zeltest::FacePoints openPoints(zel::drawPortrait(params), seed, 0);
        params.eyeOpen = 0;
        const zel::Portrait closed = zel::drawPortrait(params);
        for (const auto& e : zeltest::irisErrors(closed, openPoints)) EXPECT_FALSE(e.found) << seed;
        for (const auto& e : zeltest::irisErrors(closed, zeltest::FacePoints(closed, seed, 0)))
            EXPECT_FALSE(e.found) << seed;
    }
}

}  // namespace
