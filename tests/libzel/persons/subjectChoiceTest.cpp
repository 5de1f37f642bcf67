// Who belongs to the subject, on drawn-up faces, depths and shares.
#include "libzel/persons/subjectChoice.h"

#include <gtest/gtest.h>

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

TEST(SubjectDepth, RaisesTheSubjectToItsNearestFaceAndLowersWhatTheMaskDrewForward) {
    People people;
    people.add({20, 20, 20, 20}, 90);
    people.add({75, 20, 20, 20}, 220);
    zel::Mask mask{kWidth, kHeight, {}};
    for (std::size_t i = 0; i < people.shares.size(); ++i)
        mask.samples.push_back(people.shares.data()[i] > 0 ? 255 : 0);
    fill(people.depth, {80, 60, 10, 10}, static_cast<unsigned char>(240));  // a hand before them
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
    zel::levelSubject(planes, mask, people.faces, {});
    EXPECT_EQ(at(25, 60), 220);
    EXPECT_EQ(at(85, 65), 240);
    EXPECT_EQ(at(60, 5), 0);
}

}  // namespace
