#include <gtest/gtest.h>

#include <limits>

#include "reference/slowTone.h"
#include "support/everyMachine.h"
#include "support/views.h"
#include "zellab/imageproc/core/mixByAlpha.h"
#include "zellab/imageproc/sharpen/unsharpMask.h"
#include "zellab/imageproc/tone/levels.h"
#include "zellab/imageproc/tone/toneBlend.h"

namespace {

using slow::Table;
using zeltest::Bytes;
using zeltest::Size;

/// All byte values in every channel, with an alpha that no operation may touch.
Bytes greyRamp() {
    Bytes ramp;
    for (int i = 0; i < 256; ++i) {
        const auto v = static_cast<unsigned char>(i);
        ramp.insert(ramp.end(), {v, v, v, static_cast<unsigned char>(255 - i)});
    }
    return ramp;
}

// Offsets and spans that meet both lifts, their absence, and both limits of the stretch.
TEST(AutoLevelsMatchesSlow, OnDarkFlatAndWidePictures) {
    struct Range {
        int from, span;
    };
    for (const Size size : {Size{1, 1}, Size{3, 1}, Size{17, 11}, Size{40, 61}})
        for (const Range range : {Range{0, 256}, Range{0, 40}, Range{10, 60}, Range{17, 80}, Range{18, 80},
                                  Range{18, 200}, Range{37, 90}, Range{38, 90}, Range{70, 1}, Range{70, 60},
                                  Range{130, 126}, Range{210, 46}, Range{254, 2}}) {
            SCOPED_TRACE(testing::Message() << size.width << " by " << size.height << ", from " << range.from
                                            << " span " << range.span);
            Bytes picture = zeltest::randomRgba(size.width, size.height, 31);
            for (auto& b : picture) b = static_cast<unsigned char>(range.from + b * range.span / 256);
            Bytes expected = picture;
            slow::autoLevels(expected);
            zeltest::compareEverywhere(expected, picture, size.width * 4, [&](Bytes& p) {
                zellab::AutoLevels(zellab::ImageView(p.data(), size.width, size.height));
            });
            ASSERT_FALSE(HasFailure());
        }
}

// The mean that decides on the lift weighs the channels unequally.
TEST(AutoLevelsMatchesSlow, OnOneColourPicturesAroundTheLift) {
    for (int channel = 0; channel < 3; ++channel)
        for (int value = 60; value < 256; value += 3) {
            Bytes picture;
            for (int i = 0; i < 12; ++i) {
                unsigned char pixel[4] = {50, 50, 50, 9};
                pixel[channel] = static_cast<unsigned char>(value);
                picture.insert(picture.end(), pixel, pixel + 4);
            }
            Bytes expected = picture;
            slow::autoLevels(expected);
            zellab::AutoLevels(zellab::ImageView(picture.data(), 4, 3));
            ASSERT_TRUE(zeltest::sameSamples(expected, picture, 16))
                << "channel " << channel << ", " << value;
        }
}

struct TellingCurve {
    float strength;
    std::size_t channel;
    int entries[8];  // at 0, 32, .. 224
    int offsets[5];  // from the identity at 16, 64, 128, 192, 240
};

const TellingCurve kTellingCurves[] = {
    {1.0f, 0, {0, 39, 73, 106, 137, 168, 197, 227}, {5, 9, 9, 5, 1}},
    {1.0f, 1, {0, 32, 64, 96, 128, 160, 192, 224}, {0, 0, 0, 0, 0}},
    {1.0f, 2, {0, 25, 55, 86, 119, 152, 186, 221}, {-4, -9, -9, -6, -2}},
    {0.0f, 0, {0, 27, 57, 88, 121, 154, 187, 221}, {-3, -7, -7, -5, -1}},
    {0.0f, 1, {0, 32, 64, 96, 128, 160, 192, 224}, {0, 0, 0, 0, 0}},
    {0.0f, 2, {0, 38, 72, 104, 135, 166, 197, 226}, {4, 8, 7, 5, 1}},
};

// Both ends of the strength show the whole curves; what lies between has to be their mix with the identity.
TEST(ColorTemperatureBlendMatchesSlow, AtTheTellingEntriesAndBetween) {
    std::array<Table, 3> curves[2];
    for (const float end : {0.0f, 1.0f}) {
        Bytes ramp = greyRamp();
        zellab::ColorTemperatureBlend({ramp.data(), 256, 1}, end, 0);
        for (std::size_t i = 0; i < 1024; ++i)
            if (i % 4 != 3) curves[end > 0.5f][i % 4][i / 4] = ramp[i];
    }
    for (const TellingCurve& telling : kTellingCurves) {
        const Table& curve = curves[telling.strength > 0.5f][telling.channel];
        for (int i = 0; i < 8; ++i) EXPECT_EQ(curve[32 * i], telling.entries[i]) << "entry " << 32 * i;
        const int places[5] = {16, 64, 128, 192, 240};
        for (int i = 0; i < 5; ++i) EXPECT_EQ(curve[places[i]] - places[i], telling.offsets[i]) << places[i];
    }
    const Bytes ramp = greyRamp();
    for (const float strength :
         {-3.0f, 0.0f, 0.1f, 0.37f, 0.49999f, 0.5f, 0.5000004f, 0.6f, 0.77f, 0.9f, 2.0f}) {
        SCOPED_TRACE(testing::Message() << "strength " << strength);
        Bytes expected = ramp;
        slow::temperatureBlend(expected, strength, curves[strength > 0.5f]);
        zeltest::compareEverywhere(expected, ramp, 256 * 4, [&](Bytes& p) {
            zellab::ColorTemperatureBlend({p.data(), 256, 1}, strength, 0);
        });
    }
}

TEST(ToneTableBlendMatchesSlow, OnEveryByteAndEitherSign) {
    const Bytes ramp = greyRamp();
    for (const float strength : {-1.0f, -0.45f, -0.1f, 0.0f, 0.2f, 0.333f, 0.7f, 1.0f}) {
        SCOPED_TRACE(testing::Message() << "strength " << strength);
        Bytes expected = ramp;
        slow::toneTableBlend(expected, strength);
        zeltest::compareEverywhere(expected, ramp, 256 * 4, [&](Bytes& p) {
            zellab::ToneTableBlend({p.data(), 256, 1}, strength);
        });
    }
}

// A picture of 256 by 256 holds every pair of bytes once.
TEST(MixByAlphaMatchesSlow, OnEveryPairOfBytes) {
    Bytes before(256 * 256 * 4), after(256 * 256 * 4);
    for (std::size_t i = 0; i < before.size(); ++i) {
        before[i] = static_cast<unsigned char>(i / 1024);
        after[i] = static_cast<unsigned char>(i / 4);
    }
    for (const float alpha : {-1.0f, 0.0f, 0.1f, 0.333f, 0.5f, 0.7f, 0.99f, 1.0f, 3.0f}) {
        SCOPED_TRACE(testing::Message() << "alpha " << alpha);
        Bytes expected = after;
        slow::mixByAlpha(expected, before, after, alpha);
        zeltest::compareEverywhere(expected, after, 256 * 4, [&](Bytes& result) {
            zellab::MixByAlpha({result.data(), 256, 256}, {before.data(), 256, 256},
                               {result.data(), 256, 256}, alpha);
        });
    }
    for (const Size size : zeltest::kAwkwardSizes) {
        const Bytes a = zeltest::randomRgba(size.width, size.height, 33),
                    b = zeltest::randomRgba(size.width, size.height, 34);
        Bytes expected(a.size(), 66);
        slow::mixByAlpha(expected, a, b, 0.61f);
        zeltest::compareEverywhere(expected, Bytes(a.size(), 66), size.width * 4, [&](Bytes& result) {
            zellab::MixByAlpha({result.data(), size.width, size.height}, {a.data(), size.width, size.height},
                               {b.data(), size.width, size.height}, 0.61f);
        });
    }
}

TEST(UnsharpMaskMatchesSlow, OnPicturesAndPlanes) {
    struct Case {
        int amount;
        float radius;
        int threshold;
    };
    for (const int channels : {1, 4})
        for (const Size size : zeltest::kAwkwardSizes)
            for (const Case& c :
                 {Case{150, 1.0f, 0}, Case{70, 2.0f, 3}, Case{1, 1.0f, 0}, Case{-5, 0.5f, 0},
                  Case{700, 3.0f, 20}, Case{33, 0.0f, 0}, Case{60, 4.0f, 1}, Case{90, 5000.0f, 255}}) {
                SCOPED_TRACE(testing::Message()
                             << channels << " channels, " << size.width << " by " << size.height << ", "
                             << c.amount << ", " << c.radius << ", " << c.threshold);
                const Bytes picture =
                    zeltest::randomBytes(static_cast<std::size_t>(size.width * size.height * channels), 35);
                Bytes expected = picture;
                slow::unsharpMask(expected, size.width, size.height, size.width * channels, c.amount,
                                  c.radius, c.threshold);
                zeltest::compareEverywhere(expected, picture, size.width * 4, [&](Bytes& p) {
                    zeltest::withView(p.data(), size.width, size.height, channels, [&](auto view) {
                        EXPECT_TRUE(zellab::UnsharpMask(view, c.amount, c.radius,
                                                        static_cast<unsigned char>(c.threshold)));
                    });
                });
                ASSERT_FALSE(HasFailure());
            }
}

}  // namespace
