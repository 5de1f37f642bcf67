#include "zellab/imageproc/blur/recursiveGaussian.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/everyMachine.h"
#include "support/guardedBytes.h"
#include "support/randomImage.h"

namespace {

using zellab::RecursiveGaussianBlur;
using zeltest::Bytes;

Bytes blurredRow(Bytes row, float sigma) {
    const int length = static_cast<int>(row.size());
    EXPECT_TRUE(RecursiveGaussianBlur(zellab::PlaneView<unsigned char>(row.data(), length, 1), sigma, 0.0f));
    return row;
}

/// The sum that the recursion stands for, ends repeated.
std::vector<double> sampledGaussian(const Bytes& row, double sigma) {
    const int length = static_cast<int>(row.size()), reach = static_cast<int>(6 * sigma) + 1;
    std::vector<double> out;
    for (int i = 0; i < length; ++i) {
        double sum = 0, weights = 0;
        for (int k = -reach; k <= reach; ++k) {
            const double w = std::exp(-0.5 * k * k / (sigma * sigma));
            sum += w * row[static_cast<std::size_t>(std::clamp(i + k, 0, length - 1))];
            weights += w;
        }
        out.push_back(sum / weights);
    }
    return out;
}

// The second-order recursion is an approximation: on a full step it strays by up to 7 % of the step.
TEST(RecursiveGaussian, StaysNearTheSampledGaussian) {
    Bytes step(400, 20), texture = zeltest::randomBytes(400, 2);
    std::fill(step.begin() + 200, step.end(), static_cast<unsigned char>(220));
    for (float sigma : {0.8f, 1.5f, 4.0f, 10.0f, 25.0f})
        for (const Bytes* row : {&step, &texture}) {
            const Bytes blurred = blurredRow(*row, sigma);
            const std::vector<double> expected = sampledGaussian(*row, sigma);
            for (std::size_t i = 0; i < blurred.size(); ++i)
                ASSERT_NEAR(blurred[i], expected[i], 0.07 * 200) << "sigma " << sigma << ", sample " << i;
        }
}

TEST(RecursiveGaussian, LimitsOfSigma) {
    const Bytes row = zeltest::randomBytes(200, 4);
    EXPECT_EQ(blurredRow(row, 300.0f), blurredRow(row, 250.0f));
    EXPECT_EQ(blurredRow(row, std::numeric_limits<float>::infinity()), blurredRow(row, 250.0f));
    EXPECT_NE(blurredRow(row, 0.6f), row);
    for (float sigma : {0.0999f, 0.0f, -3.0f, std::numeric_limits<float>::quiet_NaN()})
        EXPECT_EQ(blurredRow(row, sigma), row);
}

// Alpha and the rows' tail belong to somebody else.
TEST(RecursiveGaussian, LeavesOtherBytes) {
    constexpr int kWidth = 40, kHeight = 37, kRowBytes = kWidth * 4 + 3;
    zeltest::GuardedBytes buffer(kRowBytes * kHeight);
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
            buffer.data()[y * kRowBytes + 4 * x] = static_cast<unsigned char>(x * y);
    EXPECT_TRUE(
        RecursiveGaussianBlur(zellab::ImageView(buffer.data(), kWidth, kHeight, kRowBytes), 3.0f, 3.0f));
    EXPECT_TRUE(buffer.guardsIntact());
    for (int y = 0; y < kHeight; ++y)
        for (int b = 0; b < kRowBytes; ++b)
            if (b % 4 == 3 || b >= kWidth * 4) {
                ASSERT_EQ(buffer.data()[y * kRowBytes + b], 0x66);
            }
}

}  // namespace
