#include <gtest/gtest.h>

#include "layer.h"
#include "person.h"
#include "place.h"
#include "solidMath.h"

namespace zeldepth {
namespace {

TEST(DepthScenes, SeedsDecideEveryByte) {
    for (const auto render : {renderPerson, renderPlace}) {
        const auto once = render(31).bytes();
        EXPECT_EQ(once, render(31).bytes());
        EXPECT_NE(once, render(32).bytes());
    }
}

TEST(DepthScenes, PeopleCoverTheLowerEdgeAndStandNearTheirHeads) {
    for (unsigned seed = 1; seed <= 6; ++seed) {
        Planes person = renderPerson(seed);
        const unsigned char *cover = person.plane(3), *nearness = person.plane(4);
        std::size_t covered = 0, lowest = 0;
        for (std::size_t i = 0; i < kPixels; ++i) {
            // A hand before the camera or a back behind the head, but nothing at another place.
            if (cover[i] == 0) {
                ASSERT_EQ(nearness[i], 0);
                continue;
            }
            ASSERT_GT(nearness[i], 95) << seed;
            ASSERT_LT(person.plane(5)[i], static_cast<int>(Part::parts));
            ++covered;
            if (i >= kPixels - kSide) ++lowest;
        }
        EXPECT_GT(covered, kPixels / 40) << seed;
        EXPECT_GT(lowest, 5u) << "the picture's lower edge does not cut seed " << seed;
    }
}

/// A ray that steps by the distances must never find itself deep inside, or parts would vanish.
TEST(DepthScenes, DistancesNeverLeapIntoAPerson) {
    for (unsigned seed = 1; seed <= 8; ++seed) {
        RandomSource random(seed, 9);
        const Person person(random);
        for (int ray = 0; ray < 150; ++ray) {
            const Vec3 from{random.range(-0.6f, 0.6f), random.range(-0.5f, 0.9f), -3};
            float t = 1.5f;
            for (int step = 0; step < 200 && t < 5; ++step) {
                const float d = person.nearest(from + Vec3{0, 0, t}).distance;
                ASSERT_GT(d, -0.012f) << "seed " << seed << " ray " << ray;
                if (d < 0.001f) break;
                t += 0.85f * d;
            }
        }
    }
}

/// Nothing may stand between the camera and what a ray meets: looking back along the ray shows it.
TEST(DepthScenes, PlacesTellTheFirstThingOnEveryRay) {
    int met = 0;
    for (unsigned seed = 1; seed <= 12; ++seed) {
        RandomSource random(seed, 2);
        const Place place(random);
        for (int ray = 0; ray < 60; ++ray) {
            const Vec3 towards =
                zel::drawing::normalized({random.range(-0.5f, 0.5f), random.range(-0.5f, 0.5f), 1});
            const Meeting meeting = place.meet({0, 0, 0}, towards);
            if (meeting.along >= kNever) continue;
            ++met;
            EXPECT_LE(dot(meeting.normal, towards), 1e-4f) << "seen from behind";
            EXPECT_NEAR(lengthOf(meeting.normal), 1, 1e-3f);
            const float slack = 2e-3f + 1e-4f * meeting.along;
            const Vec3 before = towards * (meeting.along - slack);
            EXPECT_GE(place.meet(before, towards * -1).along, meeting.along - 3 * slack) << seed;
            EXPECT_NEAR(place.meet(before, towards).along, slack, slack);
        }
    }
    EXPECT_GT(met, 300);
}

}  // namespace
}  // namespace zeldepth
