// The Poisson solves against a dense solve of the same equations, and against what they must leave alone.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "support/randomImage.h"
#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/poisson/gradientRepair.h"
#include "zellab/imageproc/poisson/poissonEdit.h"
#include "zellab/imageproc/poisson/sineSolver.h"

namespace {

using namespace zellab;
using zeltest::Bytes;

/// Solves sum of neighbours - 4 u = side on a grid with zeros around it, by elimination in double precision.
std::vector<double> solveDense(int w, int h, std::vector<double> side) {
    const auto n = static_cast<std::size_t>(w * h);
    std::vector<double> a(n * n, 0.0);
    const auto at = [&](int x, int y) { return static_cast<std::size_t>(y * w + x); };
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            a[at(x, y) * n + at(x, y)] = -4;
            if (x > 0) a[at(x, y) * n + at(x - 1, y)] = 1;
            if (x + 1 < w) a[at(x, y) * n + at(x + 1, y)] = 1;
            if (y > 0) a[at(x, y) * n + at(x, y - 1)] = 1;
            if (y + 1 < h) a[at(x, y) * n + at(x, y + 1)] = 1;
        }
    for (std::size_t k = 0; k < n; ++k)  // diagonally dominant: no pivoting needed
        for (std::size_t r = k + 1; r < n; ++r) {
            const double factor = a[r * n + k] / a[k * n + k];
            if (factor == 0.0) continue;
            for (std::size_t c = k; c < n; ++c) a[r * n + c] -= factor * a[k * n + c];
            side[r] -= factor * side[k];
        }
    for (std::size_t k = n; k-- > 0;) {
        for (std::size_t c = k + 1; c < n; ++c) side[k] -= a[k * n + c] * side[c];
        side[k] /= a[k * n + k];
    }
    return side;
}

TEST(SineSolver, AgreesWithADenseSolve) {
    for (const auto& [w, h] : {std::pair{3, 3}, {3, 9}, {12, 5}, {17, 16}}) {
        SCOPED_TRACE(testing::Message() << w << " by " << h);
        const SineSolver solver(w, h);
        const auto samples = solver.makeSamples();
        const Bytes random = zeltest::randomPlane(w - 2, h - 2, static_cast<unsigned>(w * h));
        std::vector<double> side;
        for (std::size_t i = 0; i < random.size(); ++i) {
            samples[i] = static_cast<float>(random[i] * 4 - 512);
            side.push_back(samples[i]);
        }
        solver.solve(samples.get());
        const std::vector<double> expected = solveDense(w - 2, h - 2, side);
        for (std::size_t i = 0; i < expected.size(); ++i) ASSERT_NEAR(samples[i], expected[i], 2e-2);
    }
}

TEST(GradientRepair, UnchangedGradientsGiveThePictureBack) {
    for (const auto& [w, h] : {std::pair{3, 3}, {40, 31}, {97, 60}}) {
        const Bytes original = zeltest::randomRgba(w, h, 7);
        Bytes pixels = original;
        const Bytes mask(static_cast<std::size_t>(w * h), 0);
        GradientRepair repair;
        repair.hole = repair.maskArea = {{0, w}, {0, h}};
        repair.exchange = [](ConstImageView, PlaneView<const Byte>, GradientField&) {};
        ASSERT_TRUE(repairByGradients({pixels.data(), w, h}, {mask.data(), w, h}, repair));
        EXPECT_EQ(pixels, original) << w << " by " << h;
    }
}

TEST(GradientRepair, FarCornerHolesAreTreatedLikeNearOnes) {
    // The turn by 180 degrees: a hole at the far corner of a turned picture gives the turned repair. The
    // hole's rectangle reaches the far edges and not the near ones.
    constexpr int kSide = 60;
    const Bytes image = zeltest::patternRgba(kSide, kSide, 3);
    Bytes mask(kSide * kSide, 0);
    for (int y = 45; y < 55; ++y) std::fill_n(mask.begin() + y * kSide + 44, 12, Byte{255});
    Bytes seen;
    GradientRepair repair;
    repair.hole = markedBox({mask.data(), kSide, kSide}, 0);
    repair.maskArea = {{0, kSide}, {0, kSide}};
    repair.margin = 10;
    repair.exchange = [&](ConstImageView crop, PlaneView<const Byte>, GradientField&) {
        seen.assign(crop.row(0), crop.row(0) + 4);
    };
    Bytes pixels = image;
    ASSERT_TRUE(repairByGradients({pixels.data(), kSide, kSide}, {mask.data(), kSide, kSide}, repair));
    EXPECT_TRUE(std::equal(seen.begin(), seen.end(), image.end() - 4)) << "the last pixel comes first";
    EXPECT_EQ(pixels, image);
}

/// The documented repaint, guidance and solve of PoissonEdit, box by box and sample by sample, in double
/// precision.
Bytes slowPoissonEdit(const Bytes& image, int width, int height, const Bytes& mask, float strength) {
    const PixelBox marked = markedBox({mask.data(), width, height}, 254);
    const Span xs = growToTransformSize(widen(marked.x, 10, width), width);
    const Span ys = growToTransformSize(widen(marked.y, 10, height), height);
    const int w = xs.length(), h = ys.length();
    const auto pixel = [&](int x, int y) {
        return static_cast<std::size_t>((y + ys.begin) * width + x + xs.begin);
    };
    const auto luma = [](const Byte* p) { return (306 * p[0] + 601 * p[1] + 117 * p[2]) / 1024; };
    Bytes p(static_cast<std::size_t>(w * h) * 4), m(static_cast<std::size_t>(w * h));
    const auto at = [&](int x, int y) { return static_cast<std::size_t>(y * w + x); };
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            std::copy_n(&image[pixel(x, y) * 4], 4, &p[at(x, y) * 4]);
            m[at(x, y)] = mask[pixel(x, y)];
        }
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            if (m[at(x, y)] != 255) continue;
            const Byte* source = &image[pixel(x, y + 10) * 4];
            Byte* q = &p[at(x, y) * 4];
            if (luma(source) + 10 > luma(q)) {
                std::copy_n(source, 3, q);
            } else if (x >= 3 && w - 1 - x >= 2 && y >= 3) {
                for (std::size_t c = 0; c < 3; ++c)
                    q[c] = static_cast<Byte>((p[at(x - 1, y) * 4 + c] + p[at(x - 1, y - 1) * 4 + c] +
                                              p[at(x, y - 1) * 4 + c] + p[at(x + 1, y - 1) * 4 + c]) /
                                             4);
            }
        }
    Bytes solved = p;
    for (std::size_t c = 0; c < 3; ++c) {
        const auto value = [&](int x, int y) { return static_cast<int>(p[at(x, y) * 4 + c]); };
        const auto step = [&](int x0, int y0, int x1, int y1) {
            const int a = m[at(x0, y0)], b = m[at(x1, y1)];
            return (a > 128 && b < 128) || (a < 128 && b > 128) ? 0 : value(x1, y1) - value(x0, y0);
        };
        std::vector<double> side;
        for (int y = 1; y < h - 1; ++y)
            for (int x = 1; x < w - 1; ++x) {
                double d =
                    step(x, y, x + 1, y) - step(x - 1, y, x, y) + step(x, y, x, y + 1) - step(x, y - 1, x, y);
                if (x == 1) d -= value(0, y);
                if (y == 1) d -= value(x, 0);
                if (x == w - 2) d -= value(w - 1, y);
                if (y == h - 2) d -= value(x, h - 1);
                side.push_back(d);
            }
        const std::vector<double> u = solveDense(w - 2, h - 2, side);
        for (int y = 1; y < h - 1; ++y)
            for (int x = 1; x < w - 1; ++x)
                solved[at(x, y) * 4 + c] = static_cast<Byte>(
                    std::clamp(u[static_cast<std::size_t>((y - 1) * (w - 2) + x - 1)], 0.0, 255.0));
    }
    for (Byte& b : m)
        if (b == 255) b = static_cast<Byte>(strength * 255.0f);
    StackBlurGray({m.data(), w, h}, 5);
    Bytes result = image;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            for (std::size_t c = 0; c < 3; ++c) {
                const float a = static_cast<float>(m[at(x, y)]) / 255.0f;
                Byte& out = result[pixel(x, y) * 4 + c];
                out = static_cast<Byte>(static_cast<float>(solved[at(x, y) * 4 + c]) * a +
                                        static_cast<float>(out) * (1 - a));
            }
    return result;
}

TEST(PoissonEdit, AgreesWithTheEquationsSolvedDensely) {
    constexpr int kWidth = 46, kHeight = 50;
    const Bytes image = zeltest::patternRgba(kWidth, kHeight, 11);
    Bytes mask(kWidth * kHeight, 0);
    for (int y = 13; y < 18; ++y)
        for (int x = 12 + y % 3; x < 24; ++x) mask[static_cast<std::size_t>(y * kWidth + x)] = 255;
    mask[13 * kWidth + 25] = 200;  // below the threshold: no paint, but weight in the blend
    for (const float strength : {0.55f, 1.0f}) {
        Bytes pixels = image;
        ASSERT_TRUE(PoissonEdit({pixels.data(), kWidth, kHeight}, {mask.data(), kWidth, kHeight}, strength));
        const Bytes expected = slowPoissonEdit(image, kWidth, kHeight, mask, strength);
        EXPECT_NE(pixels, image);
        // The solve is cut, not rounded: a solution on a whole number may fall on either side.
        for (std::size_t i = 0; i < pixels.size(); ++i) ASSERT_NEAR(pixels[i], expected[i], 1) << i;
    }
}

TEST(PoissonEdit, BadMasksLeaveThePictureAlone) {
    constexpr int kSide = 64;
    const Bytes image = zeltest::patternRgba(kSide, kSide, 5);
    Bytes pixels = image, mask(kSide * kSide, 254);
    EXPECT_FALSE(PoissonEdit({pixels.data(), kSide, kSide}, {mask.data(), kSide, kSide}, 1.0f))
        << "nothing above 254";
    std::fill(mask.begin(), mask.end(), Byte{0});
    mask[(kSide - 10) * kSide + 30] = 255;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(PoissonEdit({pixels.data(), kSide, kSide}, {mask.data(), kSide, kSide}, 1.0f))
        << "no rows below";
    EXPECT_EQ(testing::internal::GetCapturedStdout().rfind("ERROR PoissonEdit  left = ", 0), 0u);
    std::fill(mask.begin(), mask.end(), Byte{0});
    mask[20 * kSide + 30] = 255;
    for (const float strength : {0.0f, -3.0f, NAN})
        EXPECT_TRUE(PoissonEdit({pixels.data(), kSide, kSide}, {mask.data(), kSide, kSide}, strength));
    EXPECT_EQ(pixels, image) << "a strength of nothing";
}

}  // namespace
