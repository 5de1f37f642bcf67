#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "bokeh/blurStrength.h"
#include "bokeh/disparityMap.h"
#include "bokeh/focusDecision.h"
#include "bokeh/focusPoints.h"
#include "bokeh/radiusMap.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab::Bokeh {
namespace {

Plane<Byte> filled(int width, int height, Byte value) {
    Plane<Byte> plane(width, height);
    std::fill_n(plane.data(), plane.size(), value);
    return plane;
}

TEST(DisparityMap, CutsTheOutermostPercentAtBothEnds) {
    Plane<Byte> plane = filled(20, 10, 100);  // 200 pixels: two may be cut at either end
    plane.data()[0] = 3;
    plane.data()[1] = 40;
    plane.data()[2] = 41;
    plane.data()[3] = 250;
    DisparityMap map;
    map.set(plane.view());
    EXPECT_EQ(map.minimum(), 40);   // 3 takes one of the two, 40 the last
    EXPECT_EQ(map.maximum(), 100);  // 250 takes one, the crowd at 100 the rest
    EXPECT_EQ(map.view().data[0], 40);
    EXPECT_EQ(map.view().data[2], 41);
    EXPECT_EQ(map.view().data[3], 100);
}

TEST(DisparityMap, SmallAndEmptyMaps) {
    Plane<Byte> plane = filled(3, 3, 9);
    DisparityMap map;
    map.set(plane.view());  // nothing may be cut: the walk ends at its first bin
    EXPECT_EQ(map.minimum(), 0);
    EXPECT_EQ(map.maximum(), 255);
    map.set({});
    EXPECT_TRUE(map.isEmpty());
    EXPECT_EQ(map.maximum(), 255);
}

TEST(FocusPoints, LargeFacesCountAndTheLargestSmallOneStandsIn) {
    std::vector<float> faces;
    const auto add = [&](float x, float y, float w, float h) { faces.insert(faces.end(), {x, y, w, h}); };
    for (int i = 0; i < 12; ++i) add(0.05f * static_cast<float>(i), 0.2f, 0.1f, 0.2f);
    const auto many = focusPointsOfFaces(12, faces.data());
    ASSERT_EQ(many.size(), 10U);
    EXPECT_FLOAT_EQ(many[2].x, 0.15f);
    EXPECT_FLOAT_EQ(many[2].y, 0.3f);

    faces.clear();
    add(0.1f, 0.1f, 0.04f, 0.04f);
    add(0.5f, 0.6f, 0.05f, 0.3f);  // exactly 0.05 wide is small
    add(0.2f, 0.2f, 0.03f, 0.04f);
    const auto one = focusPointsOfFaces(3, faces.data());
    ASSERT_EQ(one.size(), 1U);
    EXPECT_FLOAT_EQ(one[0].x, 0.525f);
    EXPECT_TRUE(focusPointsOfFaces(0, faces.data()).empty());
    EXPECT_TRUE(focusPointsOfFaces(5, nullptr).empty());
}

TEST(BlurStrength, HandWorkedSizesAndRadii) {
    // 4000 long: the working factor is 1, the working picture 2.2777779 times smaller.
    const auto large = computeBlurStrength(4000, 3000, 1.0f, 60, true);
    EXPECT_NEAR(large.scaleFactor, 1.0f, 1e-6f);
    EXPECT_EQ(large.smallWidth, 1756);
    EXPECT_EQ(large.smallHeight, 1320);  // 1317, up to the next multiple of 4
    EXPECT_EQ(large.halfWidth, 2000);
    // 60 maps to 80; 80 * 0.625 * 1.4 = 70; the stretch is 4000 / 3840 * 1.2698413.
    EXPECT_NEAR(large.radius, 70.0f * 4000.0f / 3840.0f * 1.2698413f, 1e-3f);
    EXPECT_NEAR(large.radiusPerDisparity, large.radius / 100.0f, 1e-4f);
    // A small factor stops at 720 pixels.
    const auto reduced = computeBlurStrength(4000, 3000, 0.3f, 60, true);
    EXPECT_EQ(reduced.smallWidth, 720);
    EXPECT_EQ(reduced.smallHeight, 540);
    EXPECT_NEAR(reduced.radius, large.radius, 1e-2f);  // in pixels of the picture, whatever the working size
    // 720 long: the working picture is the picture, nothing stretched.
    const auto own = computeBlurStrength(720, 100, 1.0f, 60, true);
    EXPECT_EQ(own.scaleRatio, 1.0f);
    EXPECT_NEAR(own.radius, 70.0f * 720.0f / 3840.0f, 1e-3f);
    EXPECT_EQ(computeBlurStrength(1, 1, 1.0f, 60, true).halfWidth, 4);
}

TEST(BlurStrength, TheSliderIsMappedInThreePieces) {
    const auto radiusAt = [](int level) { return computeBlurStrength(720, 720, 1.0f, level, true).radius; };
    const auto mapped = [&](int level) { return std::lround(radiusAt(level) / 0.1875f); };
    const float gain = 0.625f * 1.4f;
    for (const auto& [level, value] :
         {std::pair{0, 0}, {19, 38}, {20, 40}, {59, 79}, {60, 80}, {61, 81}, {100, 140}})
        EXPECT_EQ(mapped(level), std::lround(static_cast<float>(value) * gain)) << level;
    const auto weak = computeBlurStrength(720, 720, 1.0f, 60, false);
    EXPECT_NEAR(weak.radius, 42.0f * 0.1875f, 1e-3f);
    EXPECT_EQ(computeBlurStrength(720, 720, 1.0f, 0, true).radius, 0.0f);
    EXPECT_TRUE(std::isfinite(radiusAt(std::numeric_limits<int>::max())));
}

TEST(Radii, ConstantRadiusIsTheSameEverywhere) {
    const auto strengthOf = [](float perDisparity, float ratio) {
        BlurStrength strength;
        strength.radius = 100.0f * perDisparity;
        strength.radiusPerDisparity = perDisparity;
        strength.ratio = ratio;
        return strength;
    };
    const auto tables = constantRadii(strengthOf(0.255f, 2.0f));  // 25.5 / 2 - 2 = 10.75
    EXPECT_EQ(tables.working[0], 10);
    EXPECT_EQ(tables.working[255], 10);
    EXPECT_EQ(tables.full[77], 20);
    EXPECT_EQ(constantRadii(strengthOf(50.0f, 1.0f)).working[3], 28);
    EXPECT_EQ(constantRadii(strengthOf(0.0f, 1.0f)).working[3], 0);
}

}  // namespace
}  // namespace zellab::Bokeh
