#include "zellab/imageproc/resample/cubicSample.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "support/randomImage.h"
#include "zellab/imageproc/resample/cubicConvolution.h"

namespace {

using namespace zellab;

// Every instruction set gives the same bytes: on runs of any length, at the window's edges, on a window
// inside a larger picture, and for positions far outside or without a value.
TEST(SampleCubicRun, AllLevelsGiveTheSameBytes) {
    constexpr int kLeft = 5, kTop = 7, kWide = 40, kHigh = 33;
    std::mt19937 random(17);
    std::uniform_real_distribution<float> place(-6.0f, 60.0f);
    const float odd[] = {std::nanf(""), std::numeric_limits<float>::infinity(), -1e30f, 1e9f, -0.5f, -1.0f,
                         44.99999f};
    for (const auto& [width, height] : {std::pair{kWide, kHigh}, {1, 1}, {3, 40}, {4, 4}}) {
        const zeltest::Bytes picture = zeltest::randomRgba(width, height, 3);
        const ConstImageView window(picture.data(), width, height);
        for (int count = 0; count <= 35; ++count) {
            std::vector<float> x(static_cast<std::size_t>(count)), y(x.size());
            for (std::size_t i = 0; i < x.size(); ++i) {
                x[i] = i % 9 == 4 ? odd[(i + static_cast<std::size_t>(count)) % 7] : place(random);
                y[i] = i % 7 == 2 ? odd[i % 7] : place(random);
            }
            zeltest::Bytes fast = zeltest::randomBytes(4 * x.size() + 16, 4), plain = fast;
            sampleCubicRun({window, kLeft, kTop, kWide + kLeft, kHigh + kTop, platform::simdLevel()},
                           x.data(), y.data(), count, fast.data());
            sampleCubicRun({window, kLeft, kTop, kWide + kLeft, kHigh + kTop, platform::SimdLevel::baseline},
                           x.data(), y.data(), count, plain.data());
            ASSERT_TRUE(fast == plain) << width << ' ' << count;
        }
    }
}

}  // namespace
