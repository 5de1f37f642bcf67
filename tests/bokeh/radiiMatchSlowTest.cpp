#include <gtest/gtest.h>

#include <random>

#include "bokeh/focusDecision.h"
#include "bokeh/radiusMap.h"
#include "reference/slowFocus.h"

namespace {

using namespace zellab;
using namespace zellab::Bokeh;

/// Planes of a few flat levels, as depth is: a place here and there, and some of it at the very ends.
std::vector<unsigned char> levels(int width, int height, std::mt19937& random) {
    std::vector<unsigned char> plane;
    const unsigned floor = random() % 200, span = 1 + random() % 56;
    const unsigned char cells[9] = {
        static_cast<unsigned char>(floor),    static_cast<unsigned char>(floor + span), 0,  255, 31, 30,
        static_cast<unsigned char>(random()), static_cast<unsigned char>(random()),     180};
    const int side = 5 + static_cast<int>(random() % 40);
    const std::size_t shift = random() % 9;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            plane.push_back(cells[(static_cast<std::size_t>(x / side * 5 + y / side * 7) + shift) % 9]);
    return plane;
}

TEST(RadiiMatchSlow, OnScenesOfEveryKind) {
    std::mt19937 random(8);
    std::uniform_real_distribution<float> fraction(0, 1);
    int onFace = 0;
    for (int scene = 0; scene < 300; ++scene) {
        const int width = 1 + static_cast<int>(random() % 120), height = 1 + static_cast<int>(random() % 90);
        const std::vector<unsigned char> plane = levels(width, height, random);
        std::vector<FocusPoint> faces;
        std::vector<slow::Point> slowFaces;
        for (unsigned i = random() % 4; i > 0; --i) {
            faces.push_back({fraction(random), fraction(random)});
            slowFaces.push_back({faces.back().y, faces.back().x});
        }
        const FocusPoint focus =
            random() % 2 && !faces.empty() ? faces.front() : FocusPoint{fraction(random), fraction(random)};
        BlurStrength strength;
        strength.radius = 150 * fraction(random);
        strength.radiusPerDisparity = 6 * fraction(random) * fraction(random);
        strength.ratio = 0.4f + 3 * fraction(random);
        const slow::Focus expected =
            slow::decide(slow::withoutEnds(plane), width, height, slowFaces, {focus.y, focus.x},
                         strength.radius, strength.radiusPerDisparity);
        DisparityMap map;
        map.set({plane.data(), width, height});
        const FocusBand band = decideFocus(map, faces, focus, strength);
        ASSERT_EQ(band.onFace, expected.onFace) << scene;
        ASSERT_EQ(band.lowest, expected.lowest) << scene;
        ASSERT_EQ(band.highest, expected.highest) << scene;
        ASSERT_EQ(strength.radiusPerDisparity, expected.perDisparity) << scene;
        onFace += band.onFace;

        const RadiusTables tables = radiiByDepth(map, band, strength);
        for (int i = 0; i < 256; ++i) {
            const slow::Radius radius =
                slow::radiusOf(i, expected, map.minimum(), map.maximum(), strength.ratio);
            ASSERT_EQ(tables.working[static_cast<std::size_t>(i)], radius.working) << scene << " at " << i;
            ASSERT_EQ(tables.full[static_cast<std::size_t>(i)], radius.full) << scene << " at " << i;
        }
    }
    EXPECT_GT(onFace, 60) << "both branches must be seen";
    EXPECT_LT(onFace, 240);
}

}  // namespace
