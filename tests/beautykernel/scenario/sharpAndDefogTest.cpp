#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "beautykernel/scenario/defog.h"
#include "support/randomImage.h"
#include "zellab/zelfilteronline/zellabSharp.h"

namespace {

using namespace zeltest;

void sharpen(Bytes& pixels, int width, int height, float fine = 0.6f, float structure = 0.6f,
             bool protectFlat = true) {
    zelfilteronline::CZellabSharp().Run({pixels.data(), width, height}, fine, structure, protectFlat);
}

/// Grey picture of a brightness that depends on the position.
template <typename Level>
Bytes greyPicture(int width, int height, const Level& level) {
    const auto colour = [&](int x, int y) {
        const long grey = std::lround(level(x, y));
        return std::array{grey, grey, grey};
    };
    return drawnRgba(width, height, colour, 200);
}

TEST(Sharpener, AStepEdgeGrowsSteeperAndHardlyHigher) {
    // A soft step between two levels, as a lens draws it.
    const auto level = [](double x) { return 80.0 + 90.0 / (1.0 + std::exp(-(x - 20.0) / 1.2)); };
    Bytes pixels = greyPicture(40, 12, [&](int x, int) { return level(x); });
    const Bytes before = pixels;
    sharpen(pixels, 40, 12);
    const auto slope = [](const Bytes& p) {
        int steepest = 0;
        for (std::size_t x = 1; x < 40; ++x)
            steepest = std::max(steepest, p[(6 * 40 + x) * 4] - p[(6 * 40 + x - 1) * 4]);
        return steepest;
    };
    EXPECT_GT(slope(pixels), slope(before) * 1.3);
    for (std::size_t i = 0; i < pixels.size(); i += 4) {
        EXPECT_GE(pixels[i], 80 - 3);
        EXPECT_LE(pixels[i], 170 + 3);
        ASSERT_EQ(pixels[i + 3], 200);
    }
}

TEST(Sharpener, NoiseOnFlatSkinIsHardlyRaised) {
    for (const double sigma : {1.5, 3.0, 4.0}) {
        std::mt19937 random(9);
        std::normal_distribution<double> noise(150.0, sigma);
        Bytes pixels = greyPicture(200, 200, [&](int, int) { return noise(random); });
        const auto deviation = [](const Bytes& p) {
            double sum = 0, squares = 0, n = 0;
            for (std::size_t i = 0; i < p.size(); i += 4, ++n) {
                sum += p[i];
                squares += p[i] * p[i];
            }
            return std::sqrt(squares / n - sum / n * sum / n);
        };
        const double before = deviation(pixels);
        Bytes unprotected = pixels;
        sharpen(pixels, 200, 200);
        sharpen(unprotected, 200, 200, 0.6f, 0.6f, false);
        EXPECT_LT(deviation(pixels), 1.15 * before) << "sigma " << sigma;
        EXPECT_GT(deviation(unprotected), 1.3 * before) << "the flag is what protects";
    }
}

TEST(Sharpener, NothingAndBadAmountsLeaveThePicture) {
    const Bytes original = patternRgba(150, 130, 3);
    Bytes pixels = original;
    sharpen(pixels, 150, 130, 0.0f, -2.0f);
    sharpen(pixels, 150, 130, std::numeric_limits<float>::quiet_NaN(), 0.0f);
    EXPECT_EQ(pixels, original);
}

/// The stretch of one channel, pixel by pixel from the sorted values.
Bytes slowDefog(const Bytes& image) {
    Bytes result = image;
    const std::size_t n = image.size() / 4;
    for (std::size_t c = 0; c < 3; ++c) {
        Bytes sorted;
        for (std::size_t i = 0; i < n; ++i) sorted.push_back(image[4 * i + c]);
        std::sort(sorted.begin(), sorted.end());
        auto clip = static_cast<std::size_t>(static_cast<float>(n) * 0.005f);
        if (2 * clip >= n) clip = (n - 1) / 2;
        // The lower bound is the first value with more than `clip` pixels up to it; the upper one lies one
        // above the last value with at most n - clip pixels up to it.
        const int lower = sorted[clip];
        int upper = sorted.back();
        if (clip > 0) {
            upper = 255;
            const auto upTo = [&](int v) {
                return static_cast<std::size_t>(std::upper_bound(sorted.begin(), sorted.end(), v) -
                                                sorted.begin());
            };
            while (upper >= 0 && upTo(upper) > n - clip) --upper;
            ++upper;
        }
        for (std::size_t i = 0; i < n; ++i) {
            const int v = image[4 * i + c];
            int out = 127;
            if (upper > lower)
                out = v < lower    ? 0
                      : v >= upper ? 255
                                   : static_cast<int>(static_cast<float>(v - lower) *
                                                      (255.0f / static_cast<float>(upper - lower)));
            result[4 * i + c] = static_cast<unsigned char>(out);
        }
    }
    return result;
}

TEST(Defog, MatchesTheSortedStretch) {
    for (const auto& [w, h] : {std::pair{1, 1}, {3, 1}, {10, 10}, {20, 10}, {57, 43}, {120, 90}})
        for (int kind = 0; kind < 3; ++kind) {
            Bytes pixels = kind == 0   ? randomRgba(w, h, 5)
                           : kind == 1 ? patternRgba(w, h, 6)
                                       : Bytes(static_cast<std::size_t>(w * h) * 4, 77);
            if (kind == 1)
                for (unsigned char& b : pixels) b = static_cast<unsigned char>(60 + b / 3);
            const Bytes expected = slowDefog(pixels);
            zellab::defog({pixels.data(), w, h});
            ASSERT_EQ(pixels, expected) << w << " by " << h << ", kind " << kind;
        }
}

}  // namespace
