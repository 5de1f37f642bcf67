#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>

#include "portrait/portrait.h"
#include "support/standardFace.h"
#include "zel_effects/zel_effects.h"

namespace {

using zel::Portrait;
using zellab::Vector2f;

struct Eyes {
    double openLeft, openRight, wink, laugh;
    double removed[2] = {-1, -1};  // least share of the circles' darkness that goes, by method
    std::array<unsigned, 2> seeds = {3, 8};
};

constexpr int kWidth = 600, kHeight = 800;

Portrait drawn(const Eyes& eyes, unsigned seed) {
    zel::PortraitParams params;
    params.seed = seed;
    params.width = kWidth, params.height = kHeight;
    params.darkCircles = 0.8;
    params.eyeOpenLeft = eyes.openLeft, params.eyeOpenRight = eyes.openRight;
    params.wink = eyes.wink, params.laugh = eyes.laugh;
    return drawPortrait(params);
}

std::array<Vector2f, 83> landmarksOf(const Portrait& portrait) {
    auto marks = portrait.faces.faces.front().points;
    for (Vector2f& p : marks) p = {p.x * kWidth, p.y * kHeight};
    return marks;
}

/// Whether a pixel shows the skin of an upper lid: at most this far above the lower lid's line, and not at
/// it.
bool showsLid(const std::array<Vector2f, 83>& marks, float x, float y) {
    constexpr float kReach = 25, kLine = 1.5f;
    for (std::size_t eye : {std::size_t{19}, std::size_t{65}}) {
        const std::size_t line[] = {eye + 2, eye + 3, eye, eye + 4, eye + 6};  // from corner to corner
        for (std::size_t i = 0; i + 1 < std::size(line); ++i) {
            const Vector2f a = marks[line[i]], b = marks[line[i + 1]];
            if (x < a.x || x >= b.x) continue;
            const float above = a.y + (b.y - a.y) * (x - a.x) / (b.x - a.x) - y;
            return above > kLine && above < kReach;
        }
    }
    return false;
}

struct Change {
    double sum = 0, count = 0;
    double mean() const { return count > 0 ? sum / count : 0; }
    void add(int by) { sum += by, ++count; }
};

class NarrowEyes : public testing::TestWithParam<Eyes> {};

TEST_P(NarrowEyes, LoseTheirCirclesAndKeepWhitesAndLids) {
    for (unsigned seed : GetParam().seeds) {
        const Portrait portrait = drawn(GetParam(), seed);
        const auto marks = landmarksOf(portrait);
        zeltest::OneFace points(marks);
        const auto& rect = portrait.faces.faces.front().rect;
        for (int method : {0, 1}) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << ", method " << method);
            auto pixels = portrait.image.rgba;
            CGRect face{rect[0] * kWidth, rect[1] * kHeight, rect[2] * kWidth, rect[3] * kHeight};
            ZelImageCore::TableSkin::ImageProcessWithAutoRemoveBlackCircle(pixels.data(), kWidth, kHeight,
                                                                           face, &points, 0, 1.0f, method);
            Change whites, lids, circles, before, after;
            for (int y = 0; y < kHeight; ++y)
                for (int x = 0; x < kWidth; ++x) {
                    const auto i = static_cast<std::size_t>(y * kWidth + x);
                    int by = 0, was = 0, is = 0;
                    for (std::size_t c = 4 * i; c < 4 * i + 3; ++c) {
                        by = std::max(by, std::abs(pixels[c] - portrait.image.rgba[c]));
                        was += std::abs(portrait.image.rgba[c] - portrait.clean.rgba[c]);
                        is += std::abs(pixels[c] - portrait.clean.rgba[c]);
                    }
                    const float cx = static_cast<float>(x) + 0.5f, cy = static_cast<float>(y) + 0.5f;
                    if (portrait.eyes.samples[i] >= 250) whites.add(by);
                    if (portrait.eyes.samples[i] == 0 && showsLid(marks, cx, cy)) lids.add(by);
                    if (portrait.darkCircles.samples[i] <= 100) continue;
                    circles.add(by);
                    before.add(was), after.add(is);
                }
            EXPECT_LT(whites.mean(), 1.2);
            EXPECT_LT(lids.mean(), 0.15);
            EXPECT_GT(circles.mean(), 1.5);
            EXPECT_GT(1 - after.mean() / before.mean(), GetParam().removed[method]);
        }
    }
}

// Open eyes, and blinks.
INSTANTIATE_TEST_SUITE_P(Blinks, NarrowEyes,
                         testing::Values(Eyes{1, 1, 0, 0, {0.2, 0.5}, {4, 6}}, Eyes{0, 0.15, 0, 0},
                                         Eyes{0.3, 0.4, 0, 0}, Eyes{0.5, 0.5, 0, 0}, Eyes{1, 1, 0.8, 0},
                                         Eyes{0.6, 0.8, 0, 1}));

}  // namespace
