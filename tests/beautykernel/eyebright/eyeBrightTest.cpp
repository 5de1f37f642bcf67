#include "beautykernel/eyebright/eyeBright.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "beautykernel/eyebright/eyeTables.h"
#include "reference/slowEyeBright.h"
#include "support/randomImage.h"
#include "support/standardFace.h"
#include "support/streamCapture.h"
#include "zel_effects/zel_effects.h"

namespace {

using ZelImageCore::TableSkin;
using namespace zeltest;

constexpr int kWidth = 220, kHeight = 180;
constexpr const char *kNoLeft = "ERROR: EyeBright::Left Eye Detect failed \n",
                     *kNoRight = "ERROR: EyeBright::Right Eye Detect failed \n";

/// A noisy picture of skin with two drawn eyes where the face's landmarks have theirs.
struct EyesPicture {
    OneFace points{standardFace(110, 90, 84)};
    Bytes rgba = randomRgba(kWidth, kHeight, 3);

    /// @param paler  levels by which the left iris is lighter than the right one
    explicit EyesPicture(int paler = 0) {
        for (int py = 0; py < kHeight; ++py)
            for (int px = 0; px < kWidth; ++px) paint(px, py, paler);
    }
    const zellab::Vector2f* list() const { return points.list(); }

private:
    void paint(int x, int y, int paler) {
        int colour[3] = {190, 140, 120};
        for (int eye = 0; eye < 2; ++eye) {
            const zellab::Vector2f &a = list()[eye * 10], &b = list()[eye * 10 + 5],
                                   &pupil = list()[169 + eye];
            const float length = b.x - a.x, dx = static_cast<float>(x) - (a.x + b.x) / 2,
                        dy = static_cast<float>(y) - pupil.y;
            const float across = 2 * dx / length, down = dy / (0.2f * length);
            if (across * across + down * down > 1) continue;
            const float iris = std::hypot(static_cast<float>(x) - pupil.x, dy) / (0.2f * length);
            const int more = eye == 0 ? paler : 0;
            const int white[3] = {200, 195, 190}, blue[3] = {70 + more, 90 + more, 130 + more},
                      dark[3] = {15, 12, 12};
            std::copy_n(iris < 0.4f ? dark : iris < 1 ? blue : white, 3, colour);
        }
        unsigned char* p = &rgba[static_cast<std::size_t>((y * kWidth + x) * 4)];
        for (int c = 0; c < 3; ++c) p[c] = static_cast<unsigned char>(colour[c] + p[c] % 16);
    }
};

struct Strengths {
    float gain = 100, band = 0, shade = 0, highlight = 40, white = 70, tolerance = 0, iris = 40;
    float exponent = 1.0f, scale = 0.4f, factor = 1.0f;
};

void brighten(Bytes& rgba, void* points, const Strengths& s) {
    TableSkin::ImageProcessWithAutoEyeBright(rgba.data(), kWidth, kHeight, points, 0, s.gain, s.band, s.shade,
                                             s.highlight, s.white, s.tolerance, s.iris, s.exponent, s.scale,
                                             s.factor);
}

void expectSlowForm(EyesPicture& eyes) {
    const zellab::ConstImageView view(eyes.rgba.data(), kWidth, kHeight);
    const auto circle = [&](zellab::EyeSide side) {
        const zellab::Iris iris = zellab::locateIris(view, eyes.list(), side);
        EXPECT_TRUE(iris.found());
        return slow::EyeCircle{iris.x, iris.y, iris.radius};
    };
    const slow::EyeCircle left = circle(zellab::EyeSide::left), right = circle(zellab::EyeSide::right);
    for (const Strengths& s : {Strengths{}, Strengths{80, 30, 5, 90, 100, 40, -60, 1.0f, 0.001f, 0.2f},
                               Strengths{100, 100, 0, 0, 50, 100, 100, 0.5f, 0.1f, 1.5f},
                               Strengths{60, 0, 9, 100, 100, 15, 90, 1, 0.01f, 0}}) {
        Bytes fast = eyes.rgba, expected = eyes.rgba;
        brighten(fast, &eyes.points, s);
        slow::eyeBright(
            expected, kWidth, kHeight,
            {s.gain, s.band, s.highlight, s.white, s.tolerance, s.iris, s.exponent, s.scale, s.factor},
            &eyes.list()->x, left, right, zellab::kIrisContrastTable.data());
        ASSERT_NE(fast, eyes.rgba);
        int differ = 0;
        for (std::size_t i = 0; i < fast.size(); ++i) {
            ASSERT_NEAR(fast[i], expected[i], 1) << "pixel " << i / 4 % kWidth << ", " << i / 4 / kWidth;
            differ += fast[i] != expected[i];
        }
        EXPECT_LE(differ, 40) << "roundings in the colour conversion";
    }
}

// With irises so unlike that their tones are brought together, too.
TEST(EyeBright, MatchesTheSlowForm) {
    EyesPicture alike, unlike(75);
    expectSlowForm(alike);
    expectSlowForm(unlike);
}

// The other eye changes all the same, and nothing but it.
TEST(EyeBright, AnEyeWithoutAnIrisIsNamedAndLeft) {
    for (int missing = 0; missing < 2; ++missing) {
        EyesPicture eyes;
        eyes.points.GetInterPoints(0)[169 + missing] = {0, 0};
        Bytes out = eyes.rgba;
        StreamCapture errors(stderr);
        brighten(out, &eyes.points, {});
        EXPECT_THAT(errors.text(), testing::HasSubstr(missing ? kNoRight : kNoLeft));
        EXPECT_THAT(errors.text(), testing::Not(testing::HasSubstr(missing ? kNoLeft : kNoRight)));
        int changed[2] = {};
        for (std::size_t i = 0; i < out.size(); ++i)
            changed[i / 4 % kWidth < 110 ? 0 : 1] += out[i] != eyes.rgba[i];
        EXPECT_EQ(changed[missing], 0);
        EXPECT_GT(changed[1 - missing], 100);
    }
    // Skin alone, as where the eye is closed.
    EyesPicture eyes;
    Bytes skin(eyes.rgba.size(), 150), out = skin;
    StreamCapture errors(stderr);
    brighten(out, &eyes.points, {});
    EXPECT_THAT(errors.text(), testing::AllOf(testing::HasSubstr(kNoLeft), testing::HasSubstr(kNoRight)));
    EXPECT_EQ(out, skin);
}

TEST(EyeBright, WithoutAStrengthOrANumberNothingChanges) {
    EyesPicture eyes;
    Bytes out = eyes.rgba;
    for (const Strengths& bad : {Strengths{.gain = 0}, Strengths{.gain = NAN}, Strengths{.band = INFINITY},
                                 Strengths{.tolerance = NAN}, Strengths{.factor = NAN}})
        brighten(out, &eyes.points, bad);
    EXPECT_EQ(out, eyes.rgba);
}

TEST(EyeBright, TheBoxKeepsOffTheFirstRowAndColumn) {
    zellab::EyeLids lids;
    for (int i = 0; i < 6; ++i) {
        lids.upper[static_cast<std::size_t>(i)] = {-4 + 5 * i, -2};
        lids.lower[static_cast<std::size_t>(i)] = {-4 + 5 * i, 8};
    }
    const zellab::EyeBox box = zellab::eyeBox(lids, 100, 50);
    EXPECT_EQ(box.x, 1);
    EXPECT_EQ(box.y, 1);
    EXPECT_EQ(box.width, 21);
    EXPECT_EQ(box.height, 8);
    EXPECT_TRUE(zellab::eyeBox(lids, 1, 50).empty());
}

}  // namespace
