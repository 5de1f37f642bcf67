#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <vector>

#include "platform/simdLevel.h"
#include "support/randomImage.h"
#include "zellab/imageproc/colour/colorAdjust.h"
#include "zellab/imageproc/colour/selectiveColor.h"
#include "zellab/imageproc/core/mixByAlpha.h"
#include "zellab/imageproc/sharpen/unsharpMask.h"
#include "zellab/imageproc/sharpen/unsharpMaskKernel.h"
#include "zellab/imageproc/tone/levels.h"
#include "zellab/imageproc/tone/toneBlend.h"
#include "zellab/imageproc/tone/toneTables.h"

namespace {

using zeltest::Bytes;
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

Bytes filled(int width, int height, std::array<unsigned char, 4> pixel) {
    Bytes bytes;
    for (int i = 0; i < width * height; ++i) bytes.insert(bytes.end(), pixel.begin(), pixel.end());
    return bytes;
}

/// The three results of a grey level under an operation on one pixel.
template <typename Operation>
std::array<int, 3> ofGrey(int level, const Operation& operation) {
    const auto v = static_cast<unsigned char>(level);
    unsigned char pixel[4] = {v, v, v, 200};
    operation(pixel);
    EXPECT_EQ(pixel[3], 200);
    return {pixel[0], pixel[1], pixel[2]};
}

/// An operation in place on a picture, under a name.
struct InPlace {
    const char* name;
    std::function<void(unsigned char*, int, int)> run;
};

void PrintTo(const InPlace& operation, std::ostream* out) {
    *out << operation.name;
}

class TonePictures : public testing::TestWithParam<InPlace> {};

// Widths around the vector groups, heights around the bands of the workers.
TEST_P(TonePictures, KeepAlphaAndGiveTheSameBytesOnEverySimdLevel) {
    using zellab::platform::SimdLevel;
    for (const auto& [width, height] :
         std::vector<std::pair<int, int>>{{1, 1}, {1, 70}, {7, 3}, {31, 5}, {33, 64}, {70, 97}, {129, 40}}) {
        SCOPED_TRACE(testing::Message() << width << " x " << height);
        const Bytes before = zeltest::randomRgba(width, height, 5);
        Bytes best = before, baseline = before;
        GetParam().run(best.data(), width, height);
        {
            const zellab::platform::SimdLimit limit(SimdLevel::baseline);
            GetParam().run(baseline.data(), width, height);
        }
        ASSERT_EQ(best, baseline);
        for (std::size_t i = 3; i < before.size(); i += 4) ASSERT_EQ(best[i], before[i]);
    }
}

TEST_P(TonePictures, IgnoreWhatIsNoPicture) {
    Bytes pixels = zeltest::randomRgba(4, 4, 1);
    const Bytes before = pixels;
    GetParam().run(nullptr, 4, 4);
    GetParam().run(pixels.data(), 0, 4);
    GetParam().run(pixels.data(), 4, -1);
    EXPECT_EQ(pixels, before);
}

const Bytes& otherPicture() {
    static const Bytes kOther = zeltest::randomRgba(150, 150, 77);
    return kOther;
}

INSTANTIATE_TEST_SUITE_P(
    Operations, TonePictures,
    testing::Values(
        InPlace{"mapPixels",
                [](unsigned char* p, int w, int h) {
                    const Bytes tables = zeltest::randomBytes(768, 3);
                    const zellab::ImageView view(p, w, h);
                    if (view.valid())
                        zellab::mapPixels(view, {tables.data(), tables.data() + 256, tables.data() + 512});
                }},
        InPlace{"saturation",
                [](unsigned char* p, int w, int h) {
                    zellab::SaturationAdjust({p, w, h}, 65);
                }},
        InPlace{"saturationFar",
                [](unsigned char* p, int w, int h) {
                    zellab::SaturationAdjust({p, w, h}, -2000000000);
                }},
        InPlace{"lift",
                [](unsigned char* p, int w, int h) {
                    zellab::LogBrightnessAdjust({p, w, h}, -17);
                }},
        InPlace{"temperature",
                [](unsigned char* p, int w, int h) {
                    zellab::ColorTemperatureBlend({p, w, h}, 0.9f, 0);
                }},
        InPlace{"autoLevels",
                [](unsigned char* p, int w, int h) { zellab::AutoLevels(zellab::ImageView(p, w, h)); }},
        InPlace{"mixByAlpha",
                [](unsigned char* p, int w, int h) {
                    zellab::MixByAlpha({p, w, h}, {otherPicture().data(), w, h}, {p, w, h}, 0.37f);
                }},
        InPlace{"unsharpMask", [](unsigned char* p, int w,
                                  int h) { zellab::UnsharpMask(zellab::ImageView(p, w, h), 170, 2, 9); }},
        InPlace{"unsharpKernel",
                [](unsigned char* p, int w, int h) {
                    zellab::UnsharpMaskKernel(1.1f, 1.7f).Run({p, w, h}, {otherPicture().data(), w, h});
                }}),
    [](const auto& operation) { return operation.param.name; });

TEST(MixByAlpha, EndsAreExactAndNaNChangesNothing) {
    const Bytes before = zeltest::randomRgba(50, 60, 1), after = zeltest::randomRgba(50, 60, 2);
    for (const auto& [alpha, expected] : std::vector<std::pair<float, const Bytes*>>{
             {0.0f, &before}, {-3.0f, &before}, {kNaN, &before}, {1.0f, &after}, {kInfinity, &after}}) {
        Bytes result(before.size(), 88);
        zellab::MixByAlpha({result.data(), 50, 60}, {before.data(), 50, 60}, {after.data(), 50, 60}, alpha);
        for (std::size_t i = 0; i < result.size(); ++i)
            ASSERT_EQ(result[i], i % 4 == 3 ? 88 : (*expected)[i]) << alpha;
    }
    Bytes untouched(16, 7);
    zellab::MixByAlpha({untouched.data(), 2, 2}, {nullptr, 2, 2}, {after.data(), 2, 2}, 1);
    zellab::MixByAlpha({untouched.data(), 2, 2}, {before.data(), 2, 2}, {nullptr, 2, 2}, 1);
    EXPECT_EQ(untouched, Bytes(16, 7));
}

TEST(LogBrightnessAdjust, FollowsTheLogarithm) {
    const auto lifted = [](int level, int lift) {
        return ofGrey(level, [=](unsigned char* p) { zellab::LogBrightnessAdjust({p, 1, 1}, lift); })[0];
    };
    EXPECT_EQ(lifted(0, 25), 0);
    EXPECT_EQ(lifted(255, 25), 255);
    EXPECT_EQ(lifted(100, 25), 100 + static_cast<int>(255 * std::log(1 + 100 / 255.0) / std::log(3.0)));
    EXPECT_LT(lifted(200, -25), 200);
    EXPECT_GT(lifted(200, std::numeric_limits<int>::min()), 0) << "darkening has a floor";
    EXPECT_EQ(lifted(200, std::numeric_limits<int>::max()), 255);
}

TEST(ColorTemperatureBlend, CurvesRiseAndNeutralTouchesNothing) {
    for (char flag : {0, 1})
        for (float strength : {-1.0f, 0.3f, 1.0f}) {
            std::array<int, 3> before{-1, -1, -1};
            for (int level = 0; level < 256; ++level) {
                const auto now = ofGrey(level, [&](unsigned char* p) {
                    zellab::ColorTemperatureBlend({p, 1, 1}, strength, flag);
                });
                for (std::size_t c = 0; c < 3; ++c) ASSERT_GE(now[c], before[c]) << level << ' ' << strength;
                before = now;
            }
        }
    for (float strength : {0.5f, kNaN})
        for (int level : {0, 1, 99, 255})
            EXPECT_EQ(ofGrey(level,
                             [&](unsigned char* p) {
                                 zellab::ColorTemperatureBlend({p, 1, 1}, strength, 0);
                             }),
                      (std::array<int, 3>{level, level, level}));
}

TEST(ToneTableBlend, KneesAndTheirMirror) {
    const auto cool = [](float s) { return [s](unsigned char* p) { zellab::ToneTableBlend({p, 1, 1}, s); }; };
    const auto warm = [](float s) {
        return [s](unsigned char* p) { zellab::ToneTableBlendWarm({p, 1, 1}, s); };
    };
    EXPECT_EQ(ofGrey(128, cool(1)), (std::array<int, 3>{103, 138, 153}));
    EXPECT_EQ(ofGrey(128, warm(1)), (std::array<int, 3>{153, 138, 103}));
    EXPECT_EQ(ofGrey(128, cool(-1)), (std::array<int, 3>{153, 118, 103}));
    EXPECT_EQ(ofGrey(64, cool(0.5f)), (std::array<int, 3>{58, 66, 70}));  // 52, 69, 77 halfway
    for (float s : {0.0f, 1.0f, -1.0f}) {
        EXPECT_EQ(ofGrey(0, warm(s)), (std::array<int, 3>{0, 0, 0}));
        EXPECT_EQ(ofGrey(255, warm(s)), (std::array<int, 3>{255, 255, 255}));
    }
    EXPECT_EQ(ofGrey(77, cool(kNaN)), (std::array<int, 3>{77, 77, 77}));
    EXPECT_EQ(ofGrey(128, cool(1e30f)), (std::array<int, 3>{0, 255, 255}));
}

TEST(UnsharpMask, FlatPicturesAndAHighThresholdStay) {
    Bytes flat = filled(30, 40, {10, 120, 250, 3});
    const Bytes flatBefore = flat;
    EXPECT_TRUE(zellab::UnsharpMask(zellab::ImageView(flat.data(), 30, 40), 500, 4, 0));
    EXPECT_EQ(flat, flatBefore);

    Bytes noisy = zeltest::randomRgba(30, 40, 6);
    const Bytes noisyBefore = noisy;
    EXPECT_TRUE(zellab::UnsharpMask(zellab::ImageView(noisy.data(), 30, 40), 20, 4, 255));
    EXPECT_EQ(noisy, noisyBefore);
    EXPECT_TRUE(zellab::UnsharpMask(zellab::ImageView(noisy.data(), 30, 40), -4, kNaN, 0));
    EXPECT_FALSE(zellab::UnsharpMask(zellab::ImageView(), 20, 4, 0));
}

TEST(UnsharpMaskKernel, FixedPointFormAgreesAndKeepsOtherChannels) {
    const Bytes before = zeltest::randomRgba(37, 21, 1), blurred = zeltest::randomRgba(37, 21, 2);
    const zellab::UnsharpMaskKernel kernel(1.1f, 0.5f);  // a half is exact in both forms
    EXPECT_EQ(kernel.Weights().size(), 7u);
    Bytes all = before, some = before;
    kernel.Run({all.data(), 37, 21}, {blurred.data(), 37, 21});
    kernel.Run({some.data(), 37, 21}, {blurred.data(), 37, 21}, 5);
    for (std::size_t i = 0; i < before.size(); ++i)
        ASSERT_EQ(some[i], i % 4 == 0 || i % 4 == 2 ? all[i] : before[i]) << i;
}

TEST(AutoLevels, PlaneMaskAndRegion) {
    Bytes full(256,
               0);  // both ends are beyond the tails, so the stretch would be the identity but for rounding
    for (std::size_t i = 0; i < 256; ++i)
        full[i] = i < 8 ? 0 : i >= 248 ? 255 : static_cast<unsigned char>(i);
    const Bytes fullBefore = full;
    zellab::AutoLevels(zellab::PlaneView<unsigned char>(full.data(), 16, 16));
    EXPECT_EQ(full, fullBefore) << "a plane that spans everything stays";

    // Where the mask is below 255 pixels do not count, and they move by its share.
    Bytes picture = filled(10, 10, {130, 130, 130, 7});
    Bytes mask(100, 255);
    mask[0] = 0, mask[1] = 51;
    picture[0] = 255;
    zellab::AutoLevels(zellab::ImageView(picture.data(), 10, 10), nullptr, {mask.data(), 10, 10});
    EXPECT_EQ(picture[0], 255);
    EXPECT_EQ(picture[1], 130);
    EXPECT_EQ(picture[4], 130 + (127 - 130) * 51 / 255);
    EXPECT_EQ(picture[8], 127);
    const Bytes before = picture, nothing(100, 254);
    zellab::AutoLevels(zellab::ImageView(picture.data(), 10, 10), nullptr, {nothing.data(), 10, 10});
    EXPECT_EQ(picture, before) << "no pixel counts";

    // Dark left half, light right half: the mean of the region decides the lift.
    Bytes halves;
    for (int i = 0; i < 400; ++i) {
        const unsigned char v = i % 20 < 10 ? 45 : 240;
        halves.insert(halves.end(), {v, v, static_cast<unsigned char>(i % 2 ? v : 80), 0});
    }
    Bytes dark = halves, light = halves;
    const zellab::LevelsRegion left{-5, 19, 0, 9}, right{0, 1000, 10, 1000};
    zellab::AutoLevels(zellab::ImageView(dark.data(), 20, 20), &left);
    zellab::AutoLevels(zellab::ImageView(light.data(), 20, 20), &right);
    EXPECT_GT(dark[2], light[2]);
    EXPECT_EQ(dark[0], light[0]) << "black stays black";
}

}  // namespace
