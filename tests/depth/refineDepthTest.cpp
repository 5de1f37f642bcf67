// The refinement: its parts against slow forms written from their descriptions, the whole on drawn portraits.
#include "depth/refineDepth.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <Eigen/Dense>
#include <algorithm>
#include <map>

#include "depth/depthAreas.h"
#include "depth/fastBilateralSolver.h"
#include "depth/medianFilter.h"
#include "support/randomImage.h"
#include "support/streamCapture.h"

namespace {

using namespace zeltest;
using zellab::BilateralGrid;
using zellab::FastBilateralSolver;

constexpr FastBilateralSolver::Parameters kAsRefined{4, 6, 6, 128, 8, 1e-5f};

TEST(DepthAreas, PersonsComeForwardAndDoubtedGroundGoesBack) {
    // Two areas that touch at a corner only; 128 is no mask yet.
    const Bytes mask{200, 200, 0,   128,  //
                     0,   0,   129, 0};
    Bytes depth{10, 21, 50, 60, 100, 101, 90, 7};
    const Bytes confidence{0, 200, 79, 80, 79, 80, 10, 0};
    StreamCapture err(stderr);
    zellab::ModifyDepthByAreas({mask.data(), 4, 2}, {depth.data(), 4, 2}, {confidence.data(), 4, 2});
    // Means 15.5 and 90: 10 rises to 15; 21 is sure; 90 is its own mean and doubted.
    EXPECT_THAT(depth, testing::ElementsAre(15, 21, 45, 60, 90, 101, 81, 6));
    EXPECT_EQ(err.text(), "[DEBUG  ] area number:2\n");
    const Bytes before = depth, none(8, 128);
    zellab::ModifyDepthByAreas({none.data(), 4, 2}, {depth.data(), 4, 2}, {confidence.data(), 4, 2});
    EXPECT_EQ(depth, before);
}

// Area 255 carries the number that marks the mask in a map of bytes.
TEST(DepthAreas, MoreThan255AreasStayApart) {
    Bytes mask(2 * 600), depth(1200, 9);
    for (std::size_t i = 0; i < 600; i += 2) mask[i] = mask[600 + i] = 255;
    for (std::size_t i = 0; i < 600; i += 2) depth[i] = static_cast<unsigned char>(11 + i % 200);
    const Bytes upper(depth.begin(), depth.begin() + 600), sure(1200, 255);
    StreamCapture err(stderr);
    zellab::ModifyDepthByAreas({mask.data(), 600, 2}, {depth.data(), 600, 2}, {sure.data(), 600, 2});
    EXPECT_EQ(err.text(), "[DEBUG  ] area number:300\n");
    for (std::size_t i = 0; i < 600; i += 2) ASSERT_EQ(depth[600 + i], (upper[i] + 9) / 2) << i;
}

Bytes slowMedian(const Bytes& plane, int width, int height, int window) {
    Bytes out = plane;
    const int half = (window - 1) / 2;
    for (int y = half; y < height - half; ++y)
        for (int x = half; x < width - half; ++x) {
            Bytes values;
            for (int j = -half; j <= half; ++j)
                for (int i = -half; i <= half; ++i)
                    values.push_back(plane[static_cast<std::size_t>((y + j) * width + x + i)]);
            std::sort(values.begin(), values.end());
            const auto rank = static_cast<std::size_t>(window * window / 2);
            out[static_cast<std::size_t>(y * width + x)] = rank < values.size() ? values[rank] : 255;
        }
    return out;
}

TEST(MedianFilter, MatchesSortedWindowsOnAwkwardSizes) {
    for (const int window : {1, 2, 3, 4, 5, 6, 9})
        for (const auto& [width, height] : {std::pair{1, 1}, {3, 3}, {2, 9}, {23, 17}, {9, 9}}) {
            Bytes plane = randomPlane(width, height, 5u);
            if (window == 5) std::fill(plane.begin(), plane.end(), static_cast<unsigned char>(255));
            const Bytes expected = slowMedian(plane, width, height, window);
            zellab::MedianFilterPlane({plane.data(), width, height}, window);
            EXPECT_EQ(plane, expected) << window << ' ' << width << ' ' << height;
        }
}

/// Grey guide: keys in an ordered map, neighbours by their key's distance.
Eigen::MatrixXf slowBlur(const Bytes& grey, int width, int height, int spatial, int luma) {
    std::map<std::array<int, 3>, int> vertices;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            vertices.emplace(
                std::array{x / spatial, y / spatial, grey[static_cast<std::size_t>(y * width + x)] / luma},
                static_cast<int>(vertices.size()));
    const auto count = static_cast<Eigen::Index>(vertices.size());
    Eigen::MatrixXf blur = Eigen::MatrixXf::Zero(count, count);
    for (const auto& [a, i] : vertices)
        for (const auto& [b, j] : vertices) {
            const int distance = std::abs(a[0] - b[0]) + std::abs(a[1] - b[1]) + std::abs(a[2] - b[2]);
            blur(i, j) = distance == 0 ? 10.0f : distance == 1 ? 1.0f : 0.0f;
        }
    return blur;
}

TEST(BilateralGrid, BlurBindsTheNeighboursAndNobodyElse) {
    for (const auto& [width, height] : {std::pair{1, 1}, {40, 30}, {31, 1}, {1, 31}}) {
        const Bytes grey = randomPlane(width, height, 8);
        const BilateralGrid grid(zellab::PlaneView<const zellab::Byte>(grey.data(), width, height),
                                 {4, 40, 40});
        EXPECT_EQ(Eigen::MatrixXf(grid.blur()), slowBlur(grey, width, height, 4, 40))
            << width << 'x' << height;
    }
    // More cells along a row than a digit of 255 could tell apart, on a colour guide with odd sides.
    const Bytes flat(std::size_t{5001} * 3 * 4, 90);
    const BilateralGrid wide(zellab::ConstImageView(flat.data(), 5001, 3), {3, 6, 6});
    EXPECT_EQ(wide.dimension(), 5);
    EXPECT_EQ(wide.vertices(), 1667);
    EXPECT_EQ(wide.blur().nonZeros(), 1667 + 2 * 1666);
    EXPECT_EQ(BilateralGrid(zellab::PixelsView(), {3, 6, 6}).pixels(), 0);
}

TEST(BilateralSolver, RowsOfTheNormalisedBlurSumToOne) {
    const Bytes guide = patternRgba(96, 80, 4);
    const FastBilateralSolver solver(zellab::ConstImageView(guide.data(), 96, 80), kAsRefined);
    const Eigen::VectorXf blurred = solver.grid().blur() * solver.Dn();
    const Eigen::VectorXf sums = solver.Dn().cwiseProduct(blurred).cwiseQuotient(solver.Dm());
    EXPECT_LT((sums.array() - 1.0f).abs().maxCoeff(), 1e-3f);
    // And Dm is what it stands for, the pixels of each vertex.
    Eigen::VectorXf count = Eigen::VectorXf::Zero(solver.grid().vertices());
    for (const int vertex : solver.grid().vertexOfPixel()) count[vertex] += 1;
    EXPECT_LT((solver.Dm() - count).cwiseQuotient(count).cwiseAbs().maxCoeff(), 0.02f);
}

TEST(BilateralSolver, AgreesWithADenseSolve) {
    const int width = 24, height = 20;
    const Bytes guide = patternRgba(width, height, 9), noise = randomPlane(width, height, 1);
    FastBilateralSolver::Parameters parameters{4, 30, 30, 16, 400, 1e-7f};
    std::vector<float> target, confidence;
    for (std::size_t i = 0; i < noise.size(); ++i) {
        target.push_back(static_cast<float>(noise[i]) / 255);
        confidence.push_back(static_cast<float>(noise[noise.size() - 1 - i]) / 255);
    }
    const FastBilateralSolver solver(zellab::ConstImageView(guide.data(), width, height), parameters);
    const auto& vertex = solver.grid().vertexOfPixel();
    const Eigen::Index count = solver.grid().vertices();
    Eigen::VectorXd c = Eigen::VectorXd::Zero(count), b = c;
    for (std::size_t i = 0; i < target.size(); ++i) {
        c[vertex[i]] += confidence[i];
        b[vertex[i]] += target[i] * confidence[i];
    }
    const Eigen::MatrixXd n = solver.Dn().cast<double>().asDiagonal(),
                          m = solver.Dm().cast<double>().asDiagonal();
    const Eigen::MatrixXd blur = Eigen::MatrixXf(solver.grid().blur()).cast<double>();
    const Eigen::MatrixXd A = 16.0 * (m - n * blur * n) + Eigen::MatrixXd(c.asDiagonal());
    const Eigen::VectorXd exact = A.ldlt().solve(b);
    const std::vector<float> result = solver.Solve(target, confidence);
    parameters.iterations = 8;
    const std::vector<float> few =
        FastBilateralSolver(zellab::ConstImageView(guide.data(), width, height), parameters)
            .Solve(target, confidence);
    for (std::size_t i = 0; i < result.size(); ++i) {
        ASSERT_NEAR(result[i], exact[vertex[i]], 2e-4) << i;
        ASSERT_NEAR(few[i], exact[vertex[i]], 0.02) << i;
    }
}

TEST(BilateralSolver, KeepsWhatItCannotImprove) {
    const Bytes guide = patternRgba(33, 21, 2);
    const FastBilateralSolver solver(zellab::ConstImageView(guide.data(), 33, 21), kAsRefined);
    const std::vector<float> constant(33 * 21, 0.625f), none(33 * 21, 0.0f), all(33 * 21, 1.0f);
    for (const auto& confidence : {none, all})
        for (const float value : solver.Solve(constant, confidence)) ASSERT_NEAR(value, 0.625f, 2e-3f);
    EXPECT_TRUE(solver.Solve(none, std::vector<float>(5)).empty());
}

TEST(RefineDepth, TakesAnyMaskAndTellsItsSteps) {
    const std::size_t samples = 384 * 384;
    Bytes image = patternRgba(50, 40, 1), depth(samples, 100), sure(samples, 255), out(60 * 70, 3);
    Bytes mask = randomPlane(9, 4, 2);
    const zellab::ConstImageView picture(image.data(), 50, 40);
    const zellab::PlaneView<const zellab::Byte> plane(depth.data(), 384, 384), trust(sure.data(), 384, 384),
        person(mask.data(), 9, 4), flat(mask.data(), 9, 0);
    const zellab::PlaneView<zellab::Byte> output(out.data(), 70, 60);
    StreamCapture err(stderr);
    EXPECT_TRUE(zellab::refine_depth(picture, {}, plane, trust, output));
    EXPECT_EQ(
        err.text(),
        "[DEBUG  ] refine_depth +\n[DEBUG  ] resize end\n[DEBUG  ] fbs end\n[DEBUG  ] refine_depth -\n");
    for (const unsigned char value : out)
        ASSERT_NEAR(value, 99, 1);  // the scaler and the conversion truncate
    EXPECT_TRUE(zellab::refine_depth(picture, person, plane, trust, {out.data(), 1, 1}));
    EXPECT_THAT(err.text(), testing::HasSubstr("[DEBUG  ] modify end\n"));
    const Bytes before = out;
    for (const int side : {0, -3, 40000})
        EXPECT_TRUE(zellab::refine_depth(picture, flat, plane, trust, {out.data(), 70, side}));
    EXPECT_TRUE(zellab::refine_depth(picture, {}, {}, trust, output));
    EXPECT_EQ(out, before);
    // A picture that cannot guide leaves the scaled map.
    EXPECT_TRUE(zellab::refine_depth(zellab::ConstImageView(nullptr, 50, 40), flat, plane, trust, output));
    for (const unsigned char value : out) ASSERT_NEAR(value, 100, 1);
}

}  // namespace
