#include "ZelEffectsCore/ZelEffect/liquify/liquify.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "ZelEffectsCore/ZelEffect/mesh_warp/triangleWarp.h"
#include "frame/processorCount.h"
#include "support/randomImage.h"

namespace {

using zellab::CLiquify;
using zellab::Vector2f;
using zeltest::Bytes;

struct Stroke {
    int x1, y1, x2, y2, mode, radius, percent;
};

/// The brush in plain words: every step redraws its disc from the picture as it stood. Its field is the whole
/// picture, so it agrees where the brush's own field does not end early.
Bytes slowStroke(const Bytes& before, int width, int height, const Stroke& s) {
    Bytes after = before;
    std::vector<Vector2f> field(static_cast<std::size_t>(width * height));
    const auto cell = [&](int x, int y) -> Vector2f& {
        return field[static_cast<std::size_t>(y * width + x)];
    };
    const float strength = std::fabs(static_cast<float>(s.percent / 100.0));
    const int mode = s.percent < 0 ? 1 : s.mode;
    const auto step = [&](int px, int py, Vector2f v) {
        std::vector<Vector2f> next = field;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const int dx = x - px, dy = y - py, q = (dx * dx + dy * dy) / s.radius;
                if (q >= s.radius) continue;
                const float share = static_cast<float>(q) / static_cast<float>(s.radius);
                const auto f = static_cast<float>(
                    std::pow((std::cos(std::sqrt(static_cast<double>(share)) * M_PI) + 1) * 0.5, 0.7));
                const auto gx = static_cast<float>(dx), gy = static_cast<float>(dy);
                const auto k =
                    static_cast<float>(static_cast<double>(f) * 0.1 * static_cast<double>(strength));
                Vector2f d;
                if (mode == 0) d = {-gx * k, -gy * k};
                if (mode == 1) d = {gx * k, gy * k};
                if (mode == 2) d = {v.x * (f * strength), v.y * (f * strength)};
                if (mode == 4) d = {-gy * (f * strength * 0.5f), gx * (f * strength * 0.5f)};
                if (mode == 5) d = {gy * (f * strength * 0.5f), -gx * (f * strength * 0.5f)};
                const float mx = std::clamp(static_cast<float>(x) + d.x, 0.0f, static_cast<float>(width - 2));
                const float my =
                    std::clamp(static_cast<float>(y) + d.y, 0.0f, static_cast<float>(height - 2));
                const int ix = static_cast<int>(mx), iy = static_cast<int>(my);
                const float sx = mx - static_cast<float>(ix), sy = my - static_cast<float>(iy);
                const auto blend = [&](float a, float b, float c, float e) {
                    return (a * (1 - sx) + b * sx) * (1 - sy) + (c * (1 - sx) + e * sx) * sy;
                };
                const Vector2f a = cell(ix, iy), b = cell(ix + 1, iy), c = cell(ix, iy + 1),
                               e = cell(ix + 1, iy + 1);
                Vector2f u{blend(a.x, b.x, c.x, e.x) + d.x, blend(a.y, b.y, c.y, e.y) + d.y};
                u.x = std::clamp(u.x, -gx - static_cast<float>(px), static_cast<float>(width - x - 1));
                u.y = std::clamp(u.y, -gy - static_cast<float>(py), static_cast<float>(height - y - 1));
                next[static_cast<std::size_t>(y * width + x)] = u;
                zellab::SampleBicubicPixel({before.data(), width, height}, {after.data(), width, height},
                                           {static_cast<float>(x) + u.x, static_cast<float>(y) + u.y},
                                           {static_cast<float>(x), static_cast<float>(y)});
            }
        field = next;
    };
    if (mode != 2) {
        step(s.x1, s.y1, {});
        return after;
    }
    const auto dx = static_cast<float>(s.x1 - s.x2), dy = static_cast<float>(s.y1 - s.y2);
    const int n = 1 + static_cast<int>(static_cast<double>(std::sqrt(dx * dx + dy * dy)) * 2.0 / s.radius);
    const float sx = dx / static_cast<float>(n), sy = dy / static_cast<float>(n);
    float px = static_cast<float>(s.x2) + sx, py = static_cast<float>(s.y2) + sy;
    for (int i = 0; i < n; ++i, px += sx, py += sy)
        step(static_cast<int>(px), static_cast<int>(py), {-sx, -sy});
    return after;
}

Bytes stroked(Bytes picture, int width, int height, const Stroke& s) {
    CLiquify brush;
    brush.setImage({picture.data(), width, height});
    brush.setRadius(s.radius);
    brush.setStrength(s.percent);
    brush.apply(s.x1, s.y1, s.x2, s.y2, s.mode);
    return picture;
}

constexpr int kWidth = 90, kHeight = 70;

class LiquifyStroke : public testing::TestWithParam<Stroke> {};

TEST_P(LiquifyStroke, IsWhatRedrawingEveryStepGives) {
    const Bytes before = zeltest::patternRgba(kWidth, kHeight, 6);
    const Bytes expected = slowStroke(before, kWidth, kHeight, GetParam());
    for (int workers : {1, 3}) {
        const zellab::WorkerCount limit(workers);
        EXPECT_TRUE(stroked(before, kWidth, kHeight, GetParam()) == expected) << workers << " workers";
    }
    EXPECT_FALSE(expected == before);
}

INSTANTIATE_TEST_SUITE_P(Brush, LiquifyStroke,
                         testing::Values(Stroke{45, 35, 45, 35, 0, 20, 100},  // bulge
                                         Stroke{45, 35, 45, 35, 0, 20, -70},  // pinch by sign
                                         Stroke{30, 20, 60, 50, 2, 12, -50},  // a pinch, not a stroke
                                         Stroke{2, 3, 2, 3, 1, 25, 100},      // a corner's quarter disc
                                         Stroke{88, 66, 88, 66, 4, 40, 60},
                                         Stroke{40, 30, 40, 30, 5, 200, 80},
                                         Stroke{60, 50, 30, 20, 2, 12, 100},  // push along a path
                                         Stroke{10, 60, 75, 12, 2, 9, 60}, Stroke{45, 35, 45, 34, 2, 30, 100},
                                         Stroke{45, 30, 40, 30, 2, 2, 100}));

TEST(Liquify, StrokesThatDoNothing) {
    const Bytes before = zeltest::patternRgba(kWidth, kHeight, 6);
    for (const Stroke& s : {Stroke{45, 35, 20, 20, 2, 15, 0}, Stroke{45, 35, 20, 20, 2, 0, 100},
                            Stroke{45, 35, -1, 20, 2, 15, 100}, Stroke{90, 35, 20, 20, 2, 15, 100},
                            Stroke{45, 70, 20, 20, 0, 15, 100}, Stroke{45, 35, 45, 35, 2, 15, 100},
                            Stroke{45, 35, 45, 35, 3, 15, 100}, Stroke{45, 35, 45, 35, 7, 15, 100},
                            Stroke{45, 35, 45, 35, 0, -3, 100}})
        EXPECT_TRUE(stroked(before, kWidth, kHeight, s) == before)
            << s.mode << ' ' << s.radius << ' ' << s.percent;
}

// A second stroke starts from an empty field: the same object twice is two objects in turn.
TEST(Liquify, NoDisplacementCarriesOver) {
    Bytes twice = zeltest::patternRgba(kWidth, kHeight, 6);
    const Stroke push{60, 50, 30, 20, 2, 12, 100}, bulge{40, 30, 40, 30, 0, 20, 100};
    const Bytes expected = stroked(stroked(twice, kWidth, kHeight, push), kWidth, kHeight, bulge);
    CLiquify brush;
    brush.setImage({twice.data(), kWidth, kHeight});
    brush.setStrength(100);
    brush.setRadius(push.radius);
    brush.apply(push.x1, push.y1, push.x2, push.y2, 2);
    brush.setRadius(bulge.radius);
    brush.apply(bulge.x1, bulge.y1, bulge.x2, bulge.y2, 0);
    EXPECT_TRUE(twice == expected);
}

TEST(Liquify, ExtremeRadiiStrengthsAndPicturesStayInBounds) {
    constexpr int kMax = std::numeric_limits<int>::max();
    for (const auto& [width, height] : {std::pair{1, 1}, {1, 60}, {60, 1}, {2, 2}, {40, 30}})
        for (int radius : {1, 2, 3, 1000, kMax})
            for (int percent : {-kMax, -300, 100, 5000, kMax})
                for (int mode = 0; mode <= 5; ++mode) {
                    const Stroke s{width - 1, height - 1, 0, 0, mode, radius, percent};
                    EXPECT_EQ(stroked(zeltest::randomRgba(width, height, 3), width, height, s).size(),
                              static_cast<std::size_t>(width * height * 4));
                }
}

}  // namespace
