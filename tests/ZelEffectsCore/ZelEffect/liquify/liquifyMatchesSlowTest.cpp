#include <gtest/gtest.h>

#include <random>

#include "ZelEffectsCore/ZelEffect/liquify/liquify.h"
#include "reference/slowLiquify.h"
#include "support/everyMachine.h"

namespace {

using zeltest::Bytes;
using zeltest::Size;

// Strokes that stay in the middle, touch every side and corner, and end where they began.
TEST(LiquifyMatchesSlow, InEveryModeAndPlace) {
    std::mt19937 random(101);
    const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    for (const Size size : {Size{2, 2}, Size{9, 4}, Size{40, 33}, Size{90, 61}})
        for (int mode = 0; mode <= 5; ++mode)
            for (int round = 0; round < 40; ++round) {
                const int radius = 1 + below(round % 2 ? 8 : 30), percent = 5 + below(96);
                int x1 = below(size.width), y1 = below(size.height), x2 = below(size.width),
                    y2 = below(size.height);
                if (round % 8 == 0) x1 = 0, y2 = size.height - 1;
                if (round % 8 == 1) x2 = x1, y2 = y1;
                const int signedPercent = round % 10 == 9 ? -percent : percent;
                SCOPED_TRACE(testing::Message() << size.width << " by " << size.height << ", mode " << mode
                                                << ", radius " << radius << ", " << signedPercent << "%, to "
                                                << x1 << ',' << y1 << " from " << x2 << ',' << y2);
                const Bytes picture = zeltest::randomRgba(size.width, size.height, 102);
                Bytes expected = picture;
                slow::Liquify(expected, size.width, size.height, radius, signedPercent)
                    .apply(x1, y1, x2, y2, mode);
                zeltest::onEveryMachine([&] {
                    Bytes actual = picture;
                    zellab::CLiquify brush;
                    brush.setImage({actual.data(), size.width, size.height});
                    brush.setRadius(radius);
                    brush.setStrength(signedPercent);
                    brush.apply(x1, y1, x2, y2, mode);
                    ASSERT_TRUE(zeltest::sameSamples(expected, actual, size.width * 4));
                });
                ASSERT_FALSE(HasFailure());
            }
}

}  // namespace
