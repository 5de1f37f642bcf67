#include "CrossPlateform/platform_win/stb_image_util/imageScramble.h"

#include <gtest/gtest.h>

#include "support/randomImage.h"

using zeltest::Bytes;

namespace {

// Zero bytes show the key as it lies on the data. The tails take their bytes from the key's upper end, and
// three of them not in order.
TEST(ImageScramble, EachTailLengthMeetsItsOwnKeyBytes) {
    const struct {
        std::ptrdiff_t size;
        Bytes scrambled;
    } cases[] = {
        {1, {0x5C}},
        {2, {0x1E, 0x5C}},
        {3, {0x1E, 0x5C, 0x27}},
        {4, {0xD6, 0x27, 0x1E, 0x5C}},
        {5, {0xD6, 0x27, 0x1E, 0x5C, 0x5C}},
        {6, {0xD6, 0x27, 0x1E, 0x5C, 0x1E, 0x5C}},
        {7, {0xD6, 0x27, 0x1E, 0x5C, 0x1E, 0x5C, 0x27}},
    };
    for (const auto& c : cases) {
        Bytes data(8, 0);
        EXPECT_TRUE(zellab::unscrambleImageData(data.data(), c.size));
        Bytes expected = c.scrambled;
        expected.resize(8, 0);
        EXPECT_EQ(data, expected) << c.size << " bytes; what lies behind them must stay";
    }
    Bytes mixed = {0x01, 0x02, 0x03, 0x04, 0xFF};
    zellab::unscrambleImageData(mixed.data(), 5);
    EXPECT_EQ(mixed, (Bytes{0xD7, 0x25, 0x1D, 0x58, 0xA3}));
}

TEST(ImageScramble, TheHeadCountsWhatFollowsItAndWraps) {
    const Bytes six = {6, 0, 0, 0, 1, 2, 3, 4, 5, 6, 7};
    EXPECT_TRUE(zellab::hasScrambleHead(six.data(), 9)) << "counts more than there is";
    EXPECT_TRUE(zellab::hasScrambleHead(six.data(), 10)) << "counts exactly what there is";
    EXPECT_FALSE(zellab::hasScrambleHead(six.data(), 11)) << "counts less";
    const Bytes png = {0x89, 'P', 'N', 'G', 0, 0, 0, 0};
    EXPECT_TRUE(zellab::hasScrambleHead(png.data(), png.size())) << "a plain picture passes as well";
    const Bytes wraps = {0xFC, 0xFF, 0xFF, 0xFF, 9};
    EXPECT_FALSE(zellab::hasScrambleHead(wraps.data(), wraps.size())) << "2^32 - 4 and 4 make 0";
    for (std::size_t size = 1; size < 4; ++size) {
        const Bytes head(size, 0);  // exactly as long as it says, for the address sanitizer
        EXPECT_TRUE(zellab::hasScrambleHead(head.data(), size)) << "zeros behind its end";
    }
}

}  // namespace
