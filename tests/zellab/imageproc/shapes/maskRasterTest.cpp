#include "zellab/imageproc/shapes/maskRaster.h"

#include <gtest/gtest.h>

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
    void draw(const std::vector<Vector2f>& corners, const std::vector<float>& uv) {
        raster.DrawTriangles(uv.data(), corners.data(), kQuad, 6);
    }
};

const std::vector<float> kWhole = {0, 0, 1, 0, 1, 1, 0, 1};

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

}  // namespace
