#include "libzel/faces/guessedGroups.h"

#include <gtest/gtest.h>

#include <cmath>

#include "portrait/portrait.h"
#include "zel/zel.h"

namespace {

zel::Portrait portraitOf(unsigned seed) {
    zel::PortraitParams params;
    params.seed = seed, params.width = 360, params.height = 450;
    params.skinTone = static_cast<zel::SkinTone>(seed % 7);
    return zel::drawPortrait(params);
}

std::array<float, zel::kFaceGroups> guessedOn(const zel::Portrait& portrait) {
    const zel::Image& image = portrait.image;
    const zel::ColourPyramid picture({image.rgba.data(), image.width, image.height});
    return zel::guessedGroups(picture, zel::landmarksInPixels(portrait.faces.faces[0], image));
}

/// Lays an oval over the left eye, as wide as two eyes; colourAt(x, y) is its grey level.
template <typename Colour>
void cover(zel::Portrait& portrait, const Colour& colourAt) {
    zel::Image& image = portrait.image;
    const zel::Landmarks p = zel::landmarksInPixels(portrait.faces.faces[0], image);
    const float length = p[25].x - p[21].x;
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x) {
            const float dx = static_cast<float>(x) - p[20].x, dy = static_cast<float>(y) - p[20].y;
            if (dx * dx + dy * dy > length * length) continue;
            unsigned char* pixel = &image.rgba[static_cast<std::size_t>(4 * (y * image.width + x))];
            for (int c = 0; c < 3; ++c) pixel[c] = static_cast<unsigned char>(colourAt(x, y));
        }
}

// In every skin tone; the eye that nothing covers is never called a guess.
TEST(GuessedGroups, TellOfEyesBehindDarkGlassesAndHairAlone) {
    for (unsigned seed = 1; seed <= 14; ++seed) {
        SCOPED_TRACE(seed);
        const zel::Portrait clear = portraitOf(seed);
        EXPECT_LT(guessedOn(clear)[ZEL_GROUP_LEFT_EYE], 0.3f);
        zel::Portrait glasses = clear, hair = clear;
        cover(glasses, [](int, int) { return 12; });
        EXPECT_GT(guessedOn(glasses)[ZEL_GROUP_LEFT_EYE], 0.5f);
        EXPECT_LT(guessedOn(glasses)[ZEL_GROUP_RIGHT_EYE], 0.3f);
        cover(hair, [](int x, int y) { return 25 + 15 * std::sin(0.8 * x + 0.3 * y); });
        const auto guessed = guessedOn(hair);
        EXPECT_GT(guessed[ZEL_GROUP_LEFT_EYE], 0.5f);
        EXPECT_LT(guessed[ZEL_GROUP_RIGHT_EYE], 0.3f);
    }
}

}  // namespace
