#include <gtest/gtest.h>

#include <random>

#include "ZelEffectsCore/ZelEffect/liquify/liquify.h"
#include "reference/slowLiquify.h"
#include "support/everyMachine.h"

namespace {

using namespace zeltest;

// Strokes that stay in the middle, touch every side and corner, end where they began, and do nothing; each
// with a second one by the same brush, which starts from an empty field.
TEST(LiquifyMatchesSlow, InEveryModeAndPlaceTwice) {
    std::mt19937 random(101);
    const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    for (const Size size : {Size{2, 2}, Size{9, 4}, Size{40, 33}, Size{90, 61}})
        for (int mode = 0; mode <= 6; ++mode)
            for (int round = 0; round < 40; ++round) {
                const int radius = round % 20 == 12 ? -3 : round % 2 ? 1 + below(8) : 1 + below(30);
                const int percent = round % 20 == 13 ? 0 : 5 + below(96);
                int x1 = below(size.width), y1 = below(size.height), x2 = below(size.width),
                    y2 = below(size.height);
                if (round % 8 == 0) x1 = 0, y2 = size.height - 1;
                if (round % 8 == 1) x2 = x1, y2 = y1;
                if (round % 20 == 14) y1 = size.height;
                if (round % 20 == 15) x2 = -1;
                const int signedPercent = round % 10 == 9 ? -percent : percent;
                compareWithSlow(
                    size, randomRgba(size.width, size.height, 102),
                    [&](Bytes& p) {
                        slow::Liquify(p, size.width, size.height, radius, signedPercent)
                            .apply(x1, y1, x2, y2, mode);
                        slow::Liquify(p, size.width, size.height, 5, 80).apply(0, 1, 1, 0, 4);
                    },
                    [&](Bytes& p) {
                        zellab::CLiquify brush;
                        brush.setImage(rgbaView(p, size));
                        brush.setRadius(radius);
                        brush.setStrength(signedPercent);
                        brush.apply(x1, y1, x2, y2, mode);
                        brush.setRadius(5);
                        brush.setStrength(80);
                        brush.apply(0, 1, 1, 0, 4);
                    },
                    mode, radius, signedPercent, x1, y1, x2, y2);
            }
}

}  // namespace
