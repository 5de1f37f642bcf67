#include "zellab/imageproc/edgeaware/surfaceBlur.h"

#include <gtest/gtest.h>

#include <climits>

#include "support/randomImage.h"

namespace {

using zeltest::Bytes;

Bytes blurred(Bytes rgba, int width, int radius, int threshold, const unsigned char* mask = nullptr) {
    const int height = static_cast<int>(rgba.size()) / 4 / width;
    EXPECT_TRUE(
        zellab::SurfaceBlurFilter().Run(rgba.data(), width, height, width * 4, radius, threshold, mask));
    return rgba;
}

// The zero rim around the picture must not show, nor sums overflow, at the largest disc of the largest value.
TEST(SurfaceBlur, UniformPicturesStay) {
    for (int value : {1, 90, 255})
        for (int radius : {1, 3, 20, 100, INT_MAX}) {
            const Bytes flat(31 * 210 * 4, static_cast<unsigned char>(value));
            ASSERT_EQ(blurred(flat, 31, radius, 100), flat) << "value " << value << ", radius " << radius;
        }
}

TEST(SurfaceBlur, TheMaskChoosesWhatIsReplaced) {
    const Bytes picture = zeltest::patternRgba(50, 40, 8), all = blurred(picture, 50, 5, 60);
    Bytes mask = zeltest::randomPlane(50, 40, 9);
    for (auto& b : mask) b = b < 100 ? b : 0;
    const Bytes some = blurred(picture, 50, 5, 60, mask.data());
    for (std::size_t i = 0; i < picture.size(); ++i) ASSERT_EQ(some[i], (mask[i / 4] ? all : picture)[i]);
    EXPECT_NE(all, picture);
}

}  // namespace
