#include "libzel/faces/windowPlan.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using zel::WindowLevel;

std::size_t windowCount(const std::vector<WindowLevel>& plan) {
    std::size_t count = 0;
    for (const WindowLevel& level : plan) count += level.windows.size();
    return count;
}

/// Whether a face of this height, standing anywhere within the picture, is whole in a window of the level.
bool seesEveryPlace(const WindowLevel& level, int width, int height, float face) {
    const auto coversAxis = [&](int length, float zellab::Vector2f::*axis) {
        for (float at = 0.5f * face; at <= static_cast<float>(length) - 0.5f * face; at += 0.25f * face)
            if (std::none_of(level.windows.begin(), level.windows.end(), [&](const zel::TurnedSquare& w) {
                    return std::abs(at - w.centre.*axis) <= 0.5f * (level.side - face) + 0.01f;
                }))
                return false;
        return true;
    };
    return coversAxis(width, &zellab::Vector2f::x) && coversAxis(height, &zellab::Vector2f::y);
}

TEST(WindowPlan, SeesFacesOfEverySizeAnywhereInPicturesOfEveryShape) {
    constexpr float kLeast = 0.06f;
    for (const auto& size : {std::pair(800, 800),
                             {1600, 1200},
                             {1200, 1600},
                             {4000, 3000},
                             {100, 70},
                             {2000, 500},
                             {32767, 32767}}) {
        const int width = size.first, height = size.second;
        const auto plan = zel::windowPlan(width, height, kLeast);
        const auto shorter = static_cast<float>(std::min(width, height));
        ASSERT_FALSE(plan.empty());
        EXPECT_GT(plan.front().side, 1.5f * shorter) << "a face that fills the picture needs room about it";
        EXPECT_LE(windowCount(plan), 160u) << width << " x " << height;
        for (float face = std::max(16.0f, kLeast * shorter); face < 0.6f * shorter; face *= 1.05f)
            EXPECT_TRUE(std::any_of(plan.begin(), plan.end(),
                                    [&](const WindowLevel& level) {
                                        const float share = face / level.side;
                                        return share >= zel::kLeastInWindow * 0.999f && share <= 0.41f &&
                                               seesEveryPlace(level, width, height, face);
                                    }))
                << width << " x " << height << ", face of " << face;
    }
}

TEST(WindowPlan, StaysShortOnStripsAndEmptyOnSpecks) {
    EXPECT_TRUE(zel::windowPlan(10, 10, 0.06f).empty());
    EXPECT_TRUE(zel::windowPlan(15, 4000, 0.06f).empty());
    for (const auto& [width, height] : {std::pair(30000, 100), {32767, 16}, {16, 32767}, {32767, 900}}) {
        const auto plan = zel::windowPlan(width, height, 0.06f);
        EXPECT_FALSE(plan.empty());
        EXPECT_LE(windowCount(plan), 250u) << width << " x " << height;
    }
}

}  // namespace
