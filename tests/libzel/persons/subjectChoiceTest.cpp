// Who belongs to the subject, on drawn-up faces, depths and shares.
#include "libzel/persons/subjectChoice.h"

#include <gtest/gtest.h>

#include "libzel/persons/brightLights.h"
#include "libzel/persons/strayHair.h"
#include "libzel/persons/subjectDepth.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace {

using Depth = zellab::Plane<unsigned char>;
using Shares = zellab::Plane<float>;

constexpr int kWidth = 120, kHeight = 80;

/// A square of pixels, and what lies in it.
struct Patch {
    int left, top, width, height;
};

template <typename T>
void fill(zellab::Plane<T>& plane, const Patch& patch, T value) {
    for (int y = patch.top; y < patch.top + patch.height; ++y)
        std::fill_n(plane.row(y) + patch.left, patch.width, value);
}

zel::Face faceAt(const Patch& patch) {
    zel::Face face;
    face.rect = {static_cast<float>(patch.left) / kWidth, static_cast<float>(patch.top) / kHeight,
                 static_cast<float>(patch.width) / kWidth, static_cast<float>(patch.height) / kHeight};
    return face;
}

/// People of a face and a body below it, each at a depth, before a far ground.
struct People {
    Depth depth{kWidth, kHeight};
    Shares shares{kWidth, kHeight};
    zel::FaceSet faces{kWidth, kHeight, {}};

    void add(const Patch& face, unsigned char nearness, bool seen = true) {
        const Patch body{std::max(face.left - face.width / 2, 0), face.top,
                         std::min(2 * face.width, kWidth - face.left), kHeight - face.top};
        fill(depth, body, nearness);
        fill(shares, body, 1.0f);
        if (seen) faces.faces.push_back(faceAt(face));
    }
    std::vector<bool> subject(std::optional<zellab::Vector2f> focus = {}) const {
        return zel::subjectFaces(faces, depth.view(), focus);
    }
    Shares kept(std::optional<zellab::Vector2f> focus = {}) const {
        Shares left = copyOf(shares.view());
        zel::keepSubject(left.view(), faces, subject(focus), depth.view(), focus);
        return left;
    }
};

TEST(SubjectChoice, TheSizeOfFacesTellsWhoStandsBesideTheSubject) {
    const auto second = [](int size, unsigned char nearness) {
        People people;
        people.add({20, 20, 20, 20}, 220);
        people.add({80, 20, size, size}, nearness);
        return people.subject() == std::vector<bool>{true, true};
    };
    EXPECT_TRUE(second(20, 220));
    EXPECT_TRUE(second(18, 90)) << "whom the depth network takes for much farther";
    EXPECT_TRUE(second(14, 215)) << "a child";
    EXPECT_FALSE(second(14, 40)) << "half a step back, and in the ground";
    EXPECT_FALSE(second(9, 200)) << "far behind";
    EXPECT_TRUE(People().subject().empty());
}

TEST(SubjectChoice, PeopleBehindAreTakenFromTheMaskAndThoseBesideStay) {
    People people;
    people.add({60, 10, 8, 8}, 60);     // behind, half hidden
    people.add({30, 20, 24, 24}, 220);  // the subject
    EXPECT_EQ(people.subject(), (std::vector<bool>{false, true}));
    Shares left = people.kept();
    EXPECT_EQ(left.row(50)[40], 1) << "the subject";
    EXPECT_EQ(left.row(14)[64], 0) << "the other's face";
    EXPECT_EQ(left.row(70)[70], 0) << "the other's body";

    people.add({100, 30, 6, 30}, 205, false);  // somebody's arm, as near
    people.add({4, 40, 6, 30}, 60, false);     // somebody far off who looks away
    left = people.kept();
    EXPECT_EQ(left.row(60)[104], 1);
    EXPECT_EQ(left.row(60)[6], 0);
}

TEST(SubjectChoice, TheFocusPicksOneOrNobody) {
    People people;
    people.add({85, 20, 8, 8}, 60);
    people.add({20, 20, 24, 24}, 220);
    const zellab::Vector2f other{0.75f, 0.8f}, ground{0.55f, 0.1f};
    EXPECT_EQ(people.subject(other), (std::vector<bool>{true, false}));
    const Shares picked = people.kept(other), none = people.kept(ground);
    EXPECT_EQ(picked.row(60)[88], 1);
    EXPECT_EQ(picked.row(60)[30], 0);
    for (std::size_t i = 0; i < none.size(); ++i) ASSERT_EQ(none.data()[i], 0) << i;
}

TEST(SubjectChoice, DepthDecidesWhereTheNetworkIsUnsureAlone) {
    Depth depth(kWidth, kHeight);
    Shares shares(kWidth, kHeight);
    const zel::FaceSet faces{kWidth, kHeight, {faceAt({50, 10, 20, 20})}};
    fill(depth, {40, 0, 80, kHeight}, static_cast<unsigned char>(200));
    fill(shares, {20, 0, 40, kHeight}, 1.0f);
    fill(shares, {0, 40, kWidth, 40}, 0.5f);
    zel::settleByDepth(shares.view(), faces, depth.view());
    EXPECT_EQ(shares.row(5)[25], 1) << "sure, though far";
    EXPECT_EQ(shares.row(5)[110], 0) << "sure, though near";
    EXPECT_GT(shares.row(60)[110], 0.7f);
    EXPECT_LT(shares.row(60)[5], 0.3f);

    fill(depth, {0, 0, kWidth, kHeight}, static_cast<unsigned char>(20));
    fill(depth, {50, 10, 20, 20}, static_cast<unsigned char>(200));
    fill(shares, {0, 0, kWidth, kHeight}, 0.5f);
    zel::settleByDepth(shares.view(), faces, depth.view());
    EXPECT_GT(shares.row(25)[72], 0.7f) << "an ear ring";
    EXPECT_LT(shares.row(25)[85], 0.3f) << "a sign farther off";
}

TEST(SubjectChoice, WhatStandsFarBeforeTheSubjectIsNobodysAndWhatItHoldsStays) {
    const auto left = [](unsigned char face, unsigned char before) {
        People people;
        people.add({40, 20, 20, 20}, face);
        fill(people.depth, {0, 60, kWidth, 20}, before);  // a counter, or a guitar
        fill(people.shares, {0, 60, kWidth, 20}, 1.0f);
        zel::dropForeground(people.shares.view(), people.faces, people.depth.view());
        EXPECT_EQ(people.shares.row(50)[50], 1) << "the person";
        return people.shares.row(70)[50];
    };
    EXPECT_EQ(left(150, 230), 0);
    EXPECT_EQ(left(150, 180), 1) << "within reach of the arm";
    EXPECT_EQ(left(235, 255), 1) << "as estimated depth has it, where a person is the nearest of all";
}

/// A picture of a person's right half, of its ground and of a disc that touches the person.
struct LampScene {
    static constexpr int kSide = zel::kLightsSide;
    zel::Image picture{kSide, kSide, {}};
    Shares shares{kSide, kSide};
    Depth depth{kSide, kSide};

    LampScene(int radius, unsigned char lamp, unsigned char ground, float share) {
        for (int y = 0; y < kSide; ++y)
            for (int x = 0; x < kSide; ++x) {
                const bool person = x < kSide / 2;
                const int across = x - kSide / 2 - radius + 4, down = y - kSide / 2;
                const bool isLamp = !person && across * across + down * down < radius * radius;
                const unsigned char level = person ? 90 : isLamp ? lamp : ground;
                picture.rgba.insert(picture.rgba.end(), {level, level, level, 255});
                shares.row(y)[x] = person ? 1 : isLamp ? share : 0;
                depth.row(y)[x] = person || isLamp ? 240 : 30;
            }
    }
    /// The most that the depth may be in the lamp's middle.
    int lamp(int radius) const {
        const auto most =
            zel::depthOfLights({picture.rgba.data(), kSide, kSide}, shares.view(), depth.view());
        EXPECT_EQ(most.row(kSide / 2)[kSide / 4], 255) << "the person";
        EXPECT_EQ(most.row(20)[kSide - 20], 255) << "the ground";
        return most.row(kSide / 2)[kSide / 2 + radius];
    }
};

TEST(BrightLights, OnlyLampsAreGround) {
    EXPECT_EQ(LampScene(15, 250, 30, 0).lamp(15), 30);
    EXPECT_EQ(LampScene(15, 250, 30, 0.3f).lamp(15), 30) << "whom the network is unsure of";
    EXPECT_EQ(LampScene(15, 250, 30, 0.6f).lamp(15), 255) << "a pearl, or a cuff";
    EXPECT_EQ(LampScene(15, 180, 30, 0).lamp(15), 255) << "a cup in the hand";
    EXPECT_EQ(LampScene(15, 250, 170, 0).lamp(15), 255) << "paper in the hand, by day";
    EXPECT_EQ(LampScene(90, 250, 30, 0).lamp(90), 255) << "a window";
    EXPECT_EQ(LampScene(1, 250, 30, 0).lamp(1), 255) << "a glint";
}

TEST(StrayHair, IsAddedBeforePlainGroundWhereItIsThinAndThePersons) {
    constexpr int kSide = 384;
    zel::Image picture{kSide, kSide, {}};
    zel::Mask mask{kSide, kSide, {}};
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x) {
            const bool person = x > 150 && x < 250 && y > 80;
            const bool strand = y / 2 == 60 && x >= 90 && x <= 150;        // two pixels, at the person
            const bool apart = y / 2 == 80 && x >= 90 && x <= 130;         // likewise, away from it
            const bool block = y > 210 && y < 250 && x > 100 && x <= 150;  // a pot
            const bool low = y / 2 == 180 && x >= 90 && x <= 150;          // a belt
            const bool pattern = x >= 260 && (x / 6 + y / 6) % 2;          // wallpaper on the other side
            const unsigned char level = person || strand || apart || block || low || pattern ? 60 : 230;
            picture.rgba.insert(picture.rgba.end(), {level, level, level, 255});
            mask.samples.push_back(person ? 255 : 0);
        }
    const zel::Face face{{0.4f, 0.25f, 0.2f, 0.2f}, {}, {}};
    const zel::Mask before = mask;
    zel::addStrayHair(mask, {kSide, kSide, {face}}, {picture.rgba.data(), kSide, kSide});
    const auto at = [&](int x, int y) { return mask.samples[static_cast<std::size_t>(y * kSide + x)]; };
    EXPECT_EQ(at(100, 121), 255);
    EXPECT_EQ(at(100, 118), 0) << "the ground beside it";
    EXPECT_EQ(at(100, 161), 0) << "not the person's";
    EXPECT_EQ(at(125, 230), 0) << "no strand";
    EXPECT_EQ(at(100, 351), 0) << "far below the head";
    for (int y = 0; y < kSide; ++y)
        for (int x = 265; x < kSide; ++x) ASSERT_EQ(at(x, y), 0) << x << ", " << y;
    mask = before;
    zel::addStrayHair(mask, {kSide, kSide, {}}, {picture.rgba.data(), kSide, kSide});
    EXPECT_EQ(mask.samples, before.samples) << "no head";
}

TEST(StrayHair, AndLightsOfOddPicturesAreNoTrouble) {
    for (const auto& [width, height] : {std::pair(1, 1), {1, 5000}, {7, 3}}) {
        const zel::Image picture{width, height, std::vector<unsigned char>(4 * width * height, 240)};
        const zellab::ConstImageView view(picture.rgba.data(), width, height);
        zel::Mask mask{width, height, std::vector<unsigned char>(width * height)};
        const zel::Mask before = mask;
        zel::addStrayHair(mask, {width, height, {{{-0.5f, 0.9f, 1.5f, 0.001f}, {}, {}}}}, view);
        EXPECT_EQ(mask.samples, before.samples);
        const Shares shares(width, height);
        EXPECT_EQ(zel::depthOfLights(view, shares.view(), Depth(1, 1).view()).row(0)[0], 255);
    }
}

TEST(SubjectDepth, RaisesTheSubjectToItsNearestFaceAndLowersWhatTheMaskDrewForward) {
    People people;
    people.add({20, 20, 20, 20}, 90);
    people.add({75, 20, 20, 20}, 220);
    zel::Mask mask{kWidth, kHeight, {}};
    for (std::size_t i = 0; i < people.shares.size(); ++i)
        mask.samples.push_back(people.shares.data()[i] > 0 ? 255 : 0);
    fill(people.depth, {80, 60, 10, 10}, static_cast<unsigned char>(240));  // a hand before them
    fill(people.depth, {108, 66, 8, 8},
         static_cast<unsigned char>(240));  // a lamp that a network took for near
    zellab::PortraitDepthPlanes planes;
    planes.unmasked = Depth(zellab::kDepthPlaneSide, zellab::kDepthPlaneSide);
    for (Depth* plane : {&planes.refined, &planes.unmasked})
        for (int y = 0; y < zellab::kDepthPlaneSide; ++y)
            for (int x = 0; x < zellab::kDepthPlaneSide; ++x)
                plane->row(y)[x] = people.depth.row(
                    y * kHeight / zellab::kDepthPlaneSide)[x * kWidth / zellab::kDepthPlaneSide];
    const auto at = [&](int x, int y) -> unsigned char& {
        return planes.refined.row(y * zellab::kDepthPlaneSide /
                                  kHeight)[x * zellab::kDepthPlaneSide / kWidth];
    };
    at(60, 5) = 180;  // a lamp
    Depth lights(zel::kLightsSide, zel::kLightsSide);
    std::fill_n(lights.data(), lights.size(), static_cast<unsigned char>(255));
    fill(lights, {345, 329, 12, 14}, static_cast<unsigned char>(40));
    zel::levelSubject(planes, mask, people.faces, lights.view());
    EXPECT_EQ(at(110, 70), 40);
    EXPECT_EQ(at(25, 60), 220);
    EXPECT_EQ(at(85, 65), 240);
    EXPECT_EQ(at(60, 5), 0);
}

}  // namespace
