#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>

#include "portrait/portrait.h"
#include "portrait/portraitOptions.h"
#include "support/mirrorPairs.h"

namespace {

using namespace zel;

PortraitParams paramsOf(unsigned seed, int width = 180, int height = 240) {
    PortraitParams params;
    params.seed = seed;
    params.width = width;
    params.height = height;
    return params;
}

/// A head that fills the picture, straight, bald-cropped and without noise, so that its outline is seen.
PortraitParams bareHead(unsigned seed) {
    PortraitParams params = paramsOf(seed, 300, 400);
    params.headHeight = 0.7;
    params.centreX = 0.5;
    params.centreY = 0.45;
    params.hairStyle = HairStyle::shaved;
    params.eyeOpen = 1.0;
    params.gazeX = params.gazeY = 0.0;
    return params;
}

struct Place {
    double x, y;  // pixels
};

class Landmarks {
public:
    explicit Landmarks(const Portrait& portrait) : m_portrait(portrait) {}
    Place operator[](std::size_t i) const {
        const zellab::Vector2f p = m_portrait.faces.faces.at(0).points.at(i);
        return {p.x * static_cast<double>(m_portrait.image.width),
                p.y * static_cast<double>(m_portrait.image.height)};
    }
    /// The point on the line from landmark i to `middle`, `share` of the way; below 0 lies beyond i.
    Place towards(std::size_t i, Place middle, double share) const {
        const Place p = (*this)[i];
        return {p.x + (middle.x - p.x) * share, p.y + (middle.y - p.y) * share};
    }

private:
    const Portrait& m_portrait;
};

int sampleAt(const Mask& mask, Place p) {
    const int x = static_cast<int>(std::floor(p.x)), y = static_cast<int>(std::floor(p.y));
    if (x < 0 || y < 0 || x >= mask.width || y >= mask.height) return -1;
    return mask.samples[static_cast<std::size_t>(y) * static_cast<std::size_t>(mask.width) +
                        static_cast<std::size_t>(x)];
}

bool pixelsDiffer(const Image& a, const Image& b, std::size_t i) {
    return !std::equal(a.rgba.begin() + static_cast<std::ptrdiff_t>(4 * i),
                       a.rgba.begin() + static_cast<std::ptrdiff_t>(4 * i + 4),
                       b.rgba.begin() + static_cast<std::ptrdiff_t>(4 * i));
}

std::size_t pixelCount(const Image& image) {
    return image.rgba.size() / 4;
}

std::size_t area(const Mask& mask, int atLeast = 128) {
    return static_cast<std::size_t>(std::count_if(mask.samples.begin(), mask.samples.end(),
                                                  [&](unsigned char v) { return v >= atLeast; }));
}

// Benchmarks and expected values elsewhere lean on a seed always giving the same picture.
TEST(Portrait, SameSeedSameBytesAlsoFromManyThreads) {
    const PortraitParams params = paramsOf(7);
    const Portrait first = drawPortrait(params);
    Portrait others[3];
    {
        std::vector<std::jthread> threads;
        for (Portrait& other : others) threads.emplace_back([&] { other = drawPortrait(params); });
    }
    for (const Portrait& other : others) {
        EXPECT_EQ(first.image.rgba, other.image.rgba);
        EXPECT_EQ(first.hair.samples, other.hair.samples);
        EXPECT_EQ(first.depth, other.depth);
    }
    EXPECT_NE(first.image.rgba, drawPortrait(paramsOf(8)).image.rgba);
}

// One aspect may be set without anything else changing; otherwise no two pictures could be compared.
TEST(Portrait, OverridingOneAspectLeavesTheRest) {
    PortraitParams params = paramsOf(3);
    params.irisColour = IrisColour::paleBlue;
    params.background = BackgroundKind::plain;
    const Portrait base = drawPortrait(params);
    params.irisColour = IrisColour::brown;
    const Portrait darkEyes = drawPortrait(params);
    params.irisColour = IrisColour::paleBlue;
    params.background = BackgroundKind::bookshelf;
    const Portrait elsewhere = drawPortrait(params);
    std::size_t eyePixels = 0, wallPixels = 0;
    for (std::size_t i = 0; i < pixelCount(base.image); ++i) {
        if (pixelsDiffer(base.image, darkEyes.image, i)) {
            ASSERT_GT(base.eyes.samples[i], 0) << "pixel " << i;
            ++eyePixels;
        }
        if (pixelsDiffer(base.image, elsewhere.image, i)) {
            ASSERT_LT(base.person.samples[i], 255) << "pixel " << i;
            ++wallPixels;
        }
    }
    EXPECT_GT(eyePixels, 20u);
    EXPECT_GT(wallPixels, pixelCount(base.image) / 10);
}

struct Pose {
    double yaw, roll, tilt;
};

class PortraitPose : public testing::TestWithParam<Pose> {};

// Every landmark sits on the border of the thing that it marks, however the head is turned: a step inwards
// lands on it, a step outwards beside it.
TEST_P(PortraitPose, LandmarksLieOnTheirFeatures) {
    PortraitParams params = bareHead(5);
    params.yaw = GetParam().yaw;
    params.roll = GetParam().roll;
    params.tilt = GetParam().tilt;
    const Portrait portrait = drawPortrait(params);
    const Landmarks at(portrait);
    for (const std::size_t eye : {19u, 65u}) {
        EXPECT_GT(sampleAt(portrait.iris, at[eye + 5]), 200) << "pupil of eye " << eye;
        for (const std::size_t i : {0u, 2u, 3u, 4u, 6u, 7u, 8u, 9u}) {
            EXPECT_GT(sampleAt(portrait.eyes, at.towards(eye + i, at[eye + 1], 0.35)), 90)
                << "inside of " << eye + i;
            EXPECT_LT(sampleAt(portrait.eyes, at.towards(eye + i, at[eye + 1], -0.35)), 90)
                << "outside of " << eye + i;
        }
    }
    const Place mouth = {(at[45].x + at[47].x) / 2, (at[45].y + at[47].y) / 2};
    for (const std::size_t i : {37u, 38u, 40u, 41u, 43u, 44u, 46u, 48u, 49u, 51u, 52u, 54u}) {
        EXPECT_GT(sampleAt(portrait.lips, at.towards(i, mouth, 0.22)), 128) << "inside of " << i;
        EXPECT_LT(sampleAt(portrait.lips, at.towards(i, mouth, -0.22)), 128) << "outside of " << i;
    }
    for (std::size_t i = 0; i <= 18; ++i) {
        // Short hair grows over the temples.
        const Place inside = at.towards(i, at[64], 0.06);
        EXPECT_GT(sampleAt(portrait.face, inside) + sampleAt(portrait.hair, inside), 240)
            << "inside of " << i;
        EXPECT_LT(sampleAt(portrait.face, at.towards(i, at[64], -0.06)), 55)
            << "outside of contour point " << i;
    }
    for (const std::size_t brow : {29u, 75u}) {
        const Place middle = {(at[brow + 2].x + at[brow + 6].x) / 2, (at[brow + 2].y + at[brow + 6].y) / 2};
        EXPECT_GT(sampleAt(portrait.brows, middle), 60);
        EXPECT_LT(sampleAt(portrait.brows, at.towards(brow + 6, at[brow + 2], -1.5)), 60);
    }
    for (const std::size_t i : {55u, 56u, 58u, 59u, 60u, 62u, 63u, 64u})
        EXPECT_GT(sampleAt(portrait.skin, at[i]), 200) << "nose point " << i;
}

INSTANTIATE_TEST_SUITE_P(Turns, PortraitPose,
                         testing::Values(Pose{0, 0, 0}, Pose{20, 0, 0}, Pose{-20, 8, 5}, Pose{6, -40, -11}));

// The order of the points is a contract with the face template: a mirrored face has mirrored partners.
TEST(Portrait, LandmarkOrderIsMirrored) {
    PortraitParams params = bareHead(11);
    params.yaw = params.roll = params.tilt = 0.0;
    const Portrait portrait = drawPortrait(params);
    const Landmarks at(portrait);
    for (const auto& [left, right] : zeltest::kMirrorPairs) {
        EXPECT_NEAR(at[left].x + at[right].x, 300.0, 0.05) << left << " and " << right;
        EXPECT_NEAR(at[left].y, at[right].y, 0.05) << left << " and " << right;
        EXPECT_LT(at[left].x, at[right].x);
    }
    const std::size_t down[] = {35, 31, 26, 24, 19, 64, 58, 54, 47, 45, 38, 0};
    for (std::size_t i = 1; i < std::size(down); ++i)
        EXPECT_LT(at[down[i - 1]].y, at[down[i]].y) << down[i - 1] << " above " << down[i];
    for (std::size_t i = 1; i < 9; ++i) EXPECT_LT(at[i].y, at[i + 1].y) << "contour runs down at " << i;
}

// An effect is judged by what it does under these masks, so none may miss a pixel of its layer.
TEST(Portrait, ImageDiffersFromCleanOnlyUnderTheMasks) {
    struct Layer {
        const char* name;
        void (*turnOn)(PortraitParams&);
        Mask Portrait::*mask;
        bool darkens;
    };
    const Layer layers[] = {
        {"moles", [](PortraitParams& p) { p.moles = 40; }, &Portrait::moles, true},
        {"freckles", [](PortraitParams& p) { p.freckles = 1; }, &Portrait::freckles, true},
        {"wrinkles", [](PortraitParams& p) { p.wrinkles = 1; }, &Portrait::wrinkles, false},
        {"dark circles", [](PortraitParams& p) { p.darkCircles = 1; }, &Portrait::darkCircles, true},
        {"dull skin", [](PortraitParams& p) { p.dullSkin = 1; }, &Portrait::dullSkin, true},
        {"scratches", [](PortraitParams& p) { p.scratches = 12; }, &Portrait::scratches, true}};
    PortraitParams plain = paramsOf(4, 240, 320);
    plain.skinTone = SkinTone::fair;
    plain.hairStyle = HairStyle::tiedBack;
    const Portrait untouched = drawPortrait(plain);
    EXPECT_EQ(untouched.image.rgba, untouched.clean.rgba);
    for (const Layer& layer : layers) {
        SCOPED_TRACE(layer.name);
        EXPECT_EQ(area(untouched.*layer.mask, 1), 0u);
        PortraitParams params = plain;
        layer.turnOn(params);
        const Portrait portrait = drawPortrait(params);
        EXPECT_EQ(portrait.clean.rgba, untouched.image.rgba) << "the clean picture changed";
        const Mask& mask = portrait.*layer.mask;
        std::size_t changed = 0, strong = 0, darker = 0;
        for (std::size_t i = 0; i < mask.samples.size(); ++i) {
            const bool differs = pixelsDiffer(portrait.image, portrait.clean, i);
            if (differs) {
                ASSERT_GT(mask.samples[i], 0) << "pixel " << i;
            }
            changed += differs;
            if (mask.samples[i] < 160) continue;
            ++strong;
            darker += portrait.image.rgba[4 * i + 1] < portrait.clean.rgba[4 * i + 1];
            ASSERT_EQ(portrait.hair.samples[i] < 128 && portrait.eyes.samples[i] < 128, true)
                << "pixel " << i;
        }
        EXPECT_GT(changed, 10u);
        if (layer.darkens) {
            EXPECT_GE(darker, strong * 9 / 10);
        }
    }
}

TEST(Portrait, ListsItsMoles) {
    PortraitParams params = paramsOf(9, 450, 600);
    params.moles = 25;
    params.hairStyle = HairStyle::shaved;
    const Portrait portrait = drawPortrait(params);
    ASSERT_GT(portrait.moleSpots.size(), 18u);
    EXPECT_LE(portrait.moleSpots.size(), 25u);
    for (const Spot& mole : portrait.moleSpots) {
        EXPECT_GT(sampleAt(portrait.moles, {mole.x, mole.y}), 60);
        EXPECT_EQ(sampleAt(portrait.moles, {mole.x + 2.2 * mole.radius + 2, mole.y}), 0);
    }
}

TEST(Portrait, DepthPutsThePersonBeforeTheBackground) {
    for (const BackgroundKind kind :
         {BackgroundKind::plain, BackgroundKind::room, BackgroundKind::streetLights, BackgroundKind::field,
          BackgroundKind::bookshelf}) {
        SCOPED_TRACE(static_cast<int>(kind));
        PortraitParams params = paramsOf(6);
        params.background = kind;
        params.yaw = 0.0;
        const Portrait portrait = drawPortrait(params);
        float nearestBehind = 0, furthestOfPerson = 1;
        for (std::size_t i = 0; i < portrait.depth.size(); ++i) {
            if (portrait.person.samples[i] == 0) nearestBehind = std::max(nearestBehind, portrait.depth[i]);
            if (portrait.person.samples[i] == 255)
                furthestOfPerson = std::min(furthestOfPerson, portrait.depth[i]);
        }
        EXPECT_GT(furthestOfPerson, nearestBehind + 0.05f);
        const Landmarks at(portrait);
        const auto depthAt = [&](Place p) {
            return portrait.depth[static_cast<std::size_t>(p.y) * 180 + static_cast<std::size_t>(p.x)];
        };
        EXPECT_GT(depthAt(at[64]), depthAt(at[58])) << "the nose's tip stands out";
        EXPECT_GT(depthAt(at[58]), depthAt(at.towards(4, at[64], 0.1))) << "the face is round";
    }
}

TEST(Portrait, TakesEverySizeInRange) {
    const int sizes[][2] = {{1, 1}, {7, 5}, {1, 300}, {300, 1}, {641, 63}};
    for (const auto& [width, height] : sizes) {
        SCOPED_TRACE(testing::Message() << width << " x " << height);
        PortraitParams params = paramsOf(1, width, height);
        params.moles = 5;
        const Portrait portrait = drawPortrait(params);
        const std::size_t pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
        EXPECT_EQ(portrait.image.rgba.size(), 4 * pixels);
        EXPECT_EQ(portrait.clean.rgba.size(), 4 * pixels);
        EXPECT_EQ(portrait.scratches.samples.size(), pixels);
        EXPECT_EQ(portrait.depth.size(), pixels);
        for (std::size_t i = 0; i < pixels; ++i) ASSERT_EQ(portrait.image.rgba[4 * i + 3], 255);
    }
    EXPECT_THROW(drawPortrait(paramsOf(1, 0, 10)), std::invalid_argument);
    EXPECT_THROW(drawPortrait(paramsOf(1, 10, -1)), std::invalid_argument);
    EXPECT_THROW(drawPortrait(paramsOf(1, 16385, 10)), std::invalid_argument);
}

// `--set` must reach a parameter that matters, and each its own.
TEST(PortraitOptions, EachChangesThePictureInItsOwnWay) {
    PortraitParams base = bareHead(14);
    base.width = 90;
    base.height = 120;
    base.stubble = base.lipstick = 0.5;
    base.irisColour = IrisColour::blue;
    base.skinTone = SkinTone::fair;
    const auto bytes = [](const PortraitParams& params) {
        const Portrait portrait = drawPortrait(params);
        return std::string(portrait.image.rgba.begin(), portrait.image.rgba.end());
    };
    std::set<std::string> pictures = {bytes(base)};
    for (const PortraitOption& option : portraitOptions()) {
        SCOPED_TRACE(option.name);
        PortraitParams params = base;
        const std::string number =
            option.whole ? std::to_string(static_cast<int>(option.maximum)) : std::to_string(option.maximum);
        setPortraitOption(params, option.name, option.choices.empty() ? number : option.choices.back());
        EXPECT_TRUE(pictures.insert(bytes(params)).second) << "no new picture";
    }
}

TEST(PortraitOptions, RefuseWhatTheyCannotMean) {
    for (const PortraitOption& option : portraitOptions()) {
        SCOPED_TRACE(option.name);
        PortraitParams params;
        for (const char* value : {"", "purple-ish", "nan", "inf", "1e999", "0x1", "1 ", " 1", "99"})
            EXPECT_THROW(setPortraitOption(params, option.name, value), std::invalid_argument)
                << '"' << value << '"';
        for (const std::string& word : option.choices)
            EXPECT_NO_THROW(setPortraitOption(params, option.name, word));
        if (option.choices.empty()) {
            EXPECT_NO_THROW(setPortraitOption(params, option.name, option.whole ? "3" : "1"));
        }
        if (option.whole) {
            EXPECT_THROW(setPortraitOption(params, option.name, "1.5"), std::invalid_argument);
        }
    }
    PortraitParams params;
    EXPECT_THROW(setPortraitOption(params, "eyes", "1"), std::invalid_argument);
}

}  // namespace
