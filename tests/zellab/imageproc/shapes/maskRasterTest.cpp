#include "zellab/imageproc/shapes/maskRaster.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/randomImage.h"

namespace {

using namespace zellab;
using zeltest::Bytes;

constexpr unsigned short kQuad[] = {0, 1, 2, 0, 2, 3};

struct Raster {
    CZelMaskRaster raster;
    int width, height;
    Bytes target, texture;
    Raster(int w, int h, int tw, int th)
        : width(w),
          height(h),
          target(static_cast<std::size_t>(w * h) * 4, 9),
          texture(zeltest::randomRgba(tw, th, 3)) {
        raster.SetTarget({target.data(), w, h});
        raster.SetTexture({texture.data(), tw, th});
    }
    void draw(const std::vector<Vector2f>& corners, const std::vector<float>& uv, int count = 6) {
        raster.DrawTriangles(uv.data(), corners.data(), kQuad, count);
    }
};

const std::vector<float> kWhole = {0, 0, 1, 0, 1, 1, 0, 1};

TEST(MaskRaster, AMeshOfTheTexturesOwnSizeCopiesIt) {
    Raster r(12, 9, 12, 9);
    r.draw({{0, 0}, {12, 0}, {12, 9}, {0, 9}}, kWhole);
    // The fit is solved in floats, so that a position may lie a rounding below its pixel.
    for (std::size_t i = 0; i < r.target.size(); ++i) ASSERT_NEAR(r.target[i], r.texture[i], 1) << i;
}

TEST(MaskRaster, HalfWayPixelsAreTheMeanOfTheirNeighbours) {
    Raster r(8, 8, 4, 4);
    r.draw({{0, 0}, {8, 0}, {8, 8}, {0, 8}}, kWhole);
    const auto texel = [&](int x, int y) { return r.texture[static_cast<std::size_t>(y * 4 + x) * 4 + 3]; };
    const auto pixel = [&](int x, int y) { return r.target[static_cast<std::size_t>(y * 8 + x) * 4 + 3]; };
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 3; ++x) {
            EXPECT_NEAR(pixel(2 * x + 1, 2 * y), (texel(x, y) + texel(x + 1, y)) / 2, 1);
            EXPECT_NEAR(pixel(2 * x + 1, 2 * y + 1),
                        (texel(x, y) + texel(x + 1, y) + texel(x, y + 1) + texel(x + 1, y + 1)) / 4, 1);
        }
    EXPECT_EQ(pixel(7, 7), texel(3, 3)) << "past the last sample the edge repeats";
}

TEST(MaskRaster, LeavesOutWhatItCannotDraw) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::vector<std::vector<Vector2f>> quads = {
        {{-50, -50}, {90, -50}, {90, 90}, {-50, 90}},  // covers the target, no corner in it
        {{1, 1}, {3, 3}, {5, 5}, {7, 7}},              // no area
        {{1, 1}, {nan, 3}, {5, 2}, {3, nan}}};
    for (const auto& quad : quads) {
        Raster r(10, 10, 5, 5);
        r.draw(quad, kWhole);
        EXPECT_EQ(r.target, Bytes(r.target.size(), 9));
    }
    Raster r(10, 10, 5, 5);
    r.draw({{0, 0}, {9, 0}, {9, 9}, {0, 9}}, kWhole, 2);
    r.raster.SetTexture({nullptr, 5, 5});
    r.draw({{0, 0}, {9, 0}, {9, 9}, {0, 9}}, kWhole);
    EXPECT_EQ(r.target, Bytes(r.target.size(), 9));
}

}  // namespace
