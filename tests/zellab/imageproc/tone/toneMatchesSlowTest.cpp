#include <gtest/gtest.h>

#include "reference/slowTone.h"
#include "support/everyMachine.h"
#include "support/views.h"
#include "zellab/imageproc/core/mixByAlpha.h"
#include "zellab/imageproc/sharpen/unsharpMask.h"
#include "zellab/imageproc/tone/levels.h"
#include "zellab/imageproc/tone/toneBlend.h"

namespace {

using slow::Table;
using namespace zeltest;

/// All byte values in every channel.
Bytes greyRamp() {
    return drawnRgba(
        256, 1,
        [](int x, int) {
            return std::array{x, x, x};
        },
        9);
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
            Bytes picture = randomRgba(size.width, size.height, 31);
            for (auto& b : picture) b = static_cast<unsigned char>(range.from + b * range.span / 256);
            compareWithSlow(
                size, picture, slow::autoLevels, [&](Bytes& p) { zellab::AutoLevels(rgbaView(p, size)); },
                range.from, range.span);
        }
}

// The mean that decides on the lift weighs the channels unequally.
TEST(AutoLevelsMatchesSlow, OnOneColourPicturesAroundTheLift) {
    for (int channel = 0; channel < 3; ++channel)
        for (int value = 60; value < 256; value += 3) {
            const auto colour = [=](int, int) {
                std::array<int, 3> pixel{50, 50, 50};
                pixel[static_cast<std::size_t>(channel)] = value;
                return pixel;
            };
            compareWithSlow(
                {4, 3}, drawnRgba(4, 3, colour, 9), slow::autoLevels,
                [&](Bytes& p) {
                    zellab::AutoLevels(rgbaView(p, {4, 3}));
                },
                channel, value);
        }
}

struct TellingCurve {
    std::size_t channel;
    float strength;
    int entries[8];  // at 0, 32, .. 224
    int offsets[5];  // from the identity at 16, 64, 128, 192, 240
};

const TellingCurve kTellingCurves[] = {
    {0, 1.0f, {0, 39, 73, 106, 137, 168, 197, 227}, {5, 9, 9, 5, 1}},
    {1, 1.0f, {0, 32, 64, 96, 128, 160, 192, 224}, {0, 0, 0, 0, 0}},
    {2, 1.0f, {0, 25, 55, 86, 119, 152, 186, 221}, {-4, -9, -9, -6, -2}},
    {0, 0.0f, {0, 27, 57, 88, 121, 154, 187, 221}, {-3, -7, -7, -5, -1}},
    {1, 0.0f, {0, 32, 64, 96, 128, 160, 192, 224}, {0, 0, 0, 0, 0}},
    {2, 0.0f, {0, 38, 72, 104, 135, 166, 197, 226}, {4, 8, 7, 5, 1}},
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
         {-3.0f, 0.0f, 0.1f, 0.37f, 0.49999f, 0.5f, 0.5000004f, 0.6f, 0.77f, 0.9f, 2.0f})
        compareWithSlow(
            {256, 1}, ramp, [&](Bytes& p) { slow::temperatureBlend(p, strength, curves[strength > 0.5f]); },
            [&](Bytes& p) {
                zellab::ColorTemperatureBlend({p.data(), 256, 1}, strength, 0);
            },
            strength);
}

TEST(ToneTableBlendMatchesSlow, OnEveryByteAndEitherSign) {
    const Bytes ramp = greyRamp();
    for (const float strength : {-1.0f, -0.45f, -0.1f, 0.0f, 0.2f, 0.333f, 0.7f, 1.0f})
        compareWithSlow(
            {256, 1}, ramp, [&](Bytes& p) { slow::toneTableBlend(p, strength); },
            [&](Bytes& p) {
                zellab::ToneTableBlend({p.data(), 256, 1}, strength);
            },
            strength);
}

/// The bytes over and over, as many as a picture has.
Bytes repeated(const Bytes& bytes, Size size) {
    Bytes picture(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height) * 4);
    for (std::size_t i = 0; i < picture.size(); ++i) picture[i] = bytes[i % bytes.size()];
    return picture;
}

TEST(MixByAlphaMatchesSlow, OnEveryPairOfBytes) {
    const auto compare = [](Size size, const Bytes& before, const Bytes& after, float alpha) {
        compareWithSlow(
            size, after, [&](Bytes& p) { slow::mixByAlpha(p, before, after, alpha); },
            [&](Bytes& p) {
                zellab::MixByAlpha(rgbaView(p, size), {before.data(), size.width, size.height},
                                   rgbaView(p, size), alpha);
            },
            alpha);
    };
    const std::array<Bytes, 2> pairs = allPairs();
    for (const float alpha : {-1.0f, 0.0f, 0.1f, 0.333f, 0.5f, 0.7f, 0.99f, 1.0f, 3.0f})
        compare({256, 256}, pairs[0], pairs[1], alpha);
    for (const Size size : kAwkwardSizes)
        compare(size, randomRgba(size.width, size.height, 33), randomRgba(size.width, size.height, 34),
                0.61f);
    // Large pictures are mixed in whole numbers where these give the same; a width that leaves a rest.
    constexpr Size kLarge{617, 500};
    const std::array<Bytes, 2> large = {repeated(pairs[0], kLarge), repeated(pairs[1], kLarge)};
    for (const float alpha : {0.0f, 0.003f, 0.3f, 1.0f / 3, 0.61f, 0.8125f, 1.0f})
        compare(kLarge, large[0], large[1], alpha);
}

TEST(UnsharpMaskMatchesSlow, OnPicturesAndPlanes) {
    struct Case {
        int amount;
        float radius;
        int threshold;
    };
    for (const int channels : {1, 4})
        for (const Size size : kAwkwardSizes)
            for (const Case& c :
                 {Case{150, 1.0f, 0}, Case{70, 2.0f, 3}, Case{1, 1.0f, 0}, Case{-5, 0.5f, 0},
                  Case{700, 3.0f, 20}, Case{33, 0.0f, 0}, Case{60, 4.0f, 1}, Case{90, 5000.0f, 255}}) {
                const Bytes picture = randomBytes(static_cast<std::size_t>(size.pixels() * channels), 35);
                compareWithSlow(
                    size, picture,
                    [&](Bytes& p) {
                        slow::unsharpMask(p, size.width, size.height, size.width * channels, c.amount,
                                          c.radius, c.threshold);
                    },
                    [&](Bytes& p) {
                        withView(p.data(), size.width, size.height, channels, [&](auto view) {
                            EXPECT_TRUE(zellab::UnsharpMask(view, c.amount, c.radius,
                                                            static_cast<unsigned char>(c.threshold)));
                        });
                    },
                    c.amount, c.radius, c.threshold);
            }
}

}  // namespace
