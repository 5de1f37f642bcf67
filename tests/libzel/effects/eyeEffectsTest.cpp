#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "effectSupport.h"
#include "portrait/portrait.h"
#include "support/streamCapture.h"

namespace {

using testing::HasSubstr;

/// Bytes that an effect changed on either half of the picture, the left one first.
std::array<long, 2> changes(const zel::Image& before, const zel::Image& after) {
    std::array<long, 2> counts{};
    for (std::size_t i = 0; i < before.rgba.size(); ++i)
        counts[static_cast<int>(i / 4) % before.width < before.width / 2 ? 0 : 1] +=
            before.rgba[i] != after.rgba[i];
    return counts;
}

// The seen eye changes all the same, and a line tells which one stayed and why.
TEST(EyeEffects, LeaveGuessedEyesAlone) {
    zel::PortraitParams params;
    params.width = 480, params.height = 600, params.darkCircles = 0.9f;
    zel::Portrait portrait = zel::drawPortrait(params);
    auto& guessed = portrait.faces.faces[0].guessed;
    for (const auto& [effect, setting] : {std::pair{"auto-eye-bright", "whiteGain=100"},
                                          std::pair{"auto-remove-black-circle", "strength=1"}}) {
        SCOPED_TRACE(effect);
        const auto changed = [&, name = effect, words = setting] {
            return changes(portrait.image, zeltest::applied(name, portrait.image, {words}, portrait.faces));
        };
        guessed = {};
        EXPECT_THAT(changed(), testing::Each(testing::Gt(20)));
        zeltest::StreamCapture log(stderr);
        guessed[ZEL_GROUP_RIGHT_EYE] = 0.8f;
        const auto left = changed();
        EXPECT_GT(left[0], 20);
        EXPECT_EQ(left[1], 0);
        EXPECT_THAT(log.text(), testing::AllOf(HasSubstr("face 0: the right eye stays as it is"),
                                               testing::Not(HasSubstr("left eye"))));
        guessed[ZEL_GROUP_LEFT_EYE] = 0.8f;
        EXPECT_THAT(changed(), testing::Each(0));
    }
}

TEST(EyeEffects, SayWhereLidsAreClosed) {
    zel::PortraitParams params;
    params.width = 480, params.height = 600, params.eyeOpen = 0;
    const zel::Portrait portrait = zel::drawPortrait(params);
    zeltest::StreamCapture log(stderr);
    EXPECT_EQ(zeltest::applied("auto-eye-bright", portrait.image, {}, portrait.faces).rgba,
              portrait.image.rgba);
    EXPECT_THAT(log.text(), HasSubstr("the right eye stays as it is, for it has its lids closed"));
}

}  // namespace
