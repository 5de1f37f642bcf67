#include "ZelEffectsCore/ZelEffect/liquify/liquify.h"

#include <gtest/gtest.h>

#include "ZelEffectsCore/ZelEffect/mesh_warp/triangleWarp.h"
#include "support/randomImage.h"

namespace {

using zellab::CLiquify;
using zeltest::Bytes;

struct Stroke {
    int x1, y1, x2, y2, mode, radius, percent;
};

Bytes stroked(Bytes picture, int width, int height, const Stroke& s) {
    CLiquify brush;
    brush.setImage({picture.data(), width, height});
    brush.setRadius(s.radius);
    brush.setStrength(s.percent);
    brush.apply(s.x1, s.y1, s.x2, s.y2, s.mode);
    return picture;
}

constexpr int kWidth = 90, kHeight = 70;

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

}  // namespace
