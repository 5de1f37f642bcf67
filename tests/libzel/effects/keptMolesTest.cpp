#include "libzel/effects/keptMoles.h"

#include <gtest/gtest.h>

#include <cmath>

#include "effectSupport.h"
#include "portrait/portrait.h"

namespace {

constexpr int kSide = 90;
constexpr float kPupils = 300;

/// Skin with a spot of that radius in the middle, `long` times as wide as high.
zel::Image skinWith(float radius, std::array<int, 3> colour, float width = 1) {
    zel::Image image{kSide, kSide, {}};
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x) {
            const float dx = static_cast<float>(x - kSide / 2) / width,
                        dy = static_cast<float>(y - kSide / 2);
            const bool inside = std::hypot(dx, dy) <= radius;
            for (const int c : inside ? colour : std::array{205, 160, 140})
                image.rgba.push_back(static_cast<unsigned char>(c));
            image.rgba.push_back(255);
        }
    return image;
}

bool comesBack(const zel::Image& before) {
    const zel::Image skin = skinWith(0, {205, 160, 140});
    zel::Image repaired = skin;
    zel::putBackMoles(repaired, before, kPupils);
    EXPECT_TRUE(repaired.rgba == before.rgba || repaired.rgba == skin.rgba)
        << "a spot is put back whole or not";
    return repaired.rgba == before.rgba;
}

TEST(KeptMoles, AreDarkLargeAndRound) {
    constexpr std::array kBrown{110, 70, 55}, kRed{200, 100, 90}, kFreckle{175, 130, 108};
    EXPECT_TRUE(comesBack(skinWith(6, kBrown)));
    EXPECT_FALSE(comesBack(skinWith(6, kRed))) << "a pimple";
    EXPECT_FALSE(comesBack(skinWith(6, kFreckle)));
    EXPECT_FALSE(comesBack(skinWith(2, kBrown))) << "small";
    EXPECT_FALSE(comesBack(skinWith(3, kBrown, 3))) << "a hair";
}

// Drawn moles stay, but for a few; drawn freckles go as they do without.
TEST(KeptMoles, OnAPortraitStay) {
    zel::PortraitParams params;
    params.width = 600, params.height = 800, params.seed = 503, params.moles = 20;
    const zel::Portrait portrait = zel::drawPortrait(params);
    const auto repaired = [&](const char* moles) {
        return zeltest::applied("auto-face-inpaint", portrait.image, {moles}, portrait.faces);
    };
    const zel::Image without = repaired("moles=remove"), with = repaired("moles=keep");
    int removed = 0, kept = 0;
    for (const zel::Spot& mole : portrait.moleSpots) {
        const auto at = 4 * (static_cast<std::size_t>(mole.y) * 600 + static_cast<std::size_t>(mole.x)) + 1;
        const int before = portrait.image.rgba[at];
        if (without.rgba[at] - before < 20) continue;
        ++removed;
        kept += with.rgba[at] - before < 5;
    }
    EXPECT_GE(removed, 5);
    EXPECT_GE(kept * 4, removed * 3);
}

}  // namespace
