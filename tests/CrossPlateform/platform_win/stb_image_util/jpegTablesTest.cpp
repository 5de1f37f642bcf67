#include "CrossPlateform/platform_win/stb_image_util/jpegTables.h"

#include <gtest/gtest.h>

#include "support/randomImage.h"

using zeltest::Bytes;

namespace {

/// A table segment whose first count is that many symbols, given in two counts of up to 255.
Bytes tableSegment(int symbols) {
    Bytes segment = {0xFF, 0xC4, 0, 0, 0x10};
    Bytes counts(16, 0);
    counts[8] = static_cast<unsigned char>(symbols > 255 ? 255 : symbols);
    counts[9] = static_cast<unsigned char>(symbols - counts[8]);
    segment.insert(segment.end(), counts.begin(), counts.end());
    segment.resize(segment.size() + static_cast<std::size_t>(symbols), 7);
    segment[2] = static_cast<unsigned char>((segment.size() - 2) >> 8);
    segment[3] = static_cast<unsigned char>(segment.size() - 2);
    return segment;
}

bool soundAfter(const Bytes& before, const Bytes& segment) {
    Bytes file = {0xFF, 0xD8};
    file.insert(file.end(), before.begin(), before.end());
    file.insert(file.end(), segment.begin(), segment.end());
    return zellab::hasSoundHuffmanTables(file.data(), file.size());
}

TEST(JpegTables, CountsSymbolsWhereverTheDecoderMayMeetATable) {
    const Bytes scanData = {0xFF, 0xDA, 0, 4, 1, 2, 0x12, 0xFF, 0, 0xFF, 0xD3, 0x34};
    for (const Bytes& before : {Bytes{}, Bytes{0xFF, 0xE1, 0, 4, 9, 9}, scanData, Bytes{0, 1, 2, 0xFF}}) {
        EXPECT_TRUE(soundAfter(before, tableSegment(256))) << before.size();
        EXPECT_FALSE(soundAfter(before, tableSegment(257))) << before.size();
    }
}

TEST(JpegTables, LooksAtEveryTableOfASegmentAlsoPastItsLength) {
    Bytes two = tableSegment(3);
    const Bytes large = tableSegment(300);
    two.insert(two.end(), large.begin() + 4, large.end());
    two[2] = 0x7F;
    EXPECT_FALSE(soundAfter({}, two));
    Bytes tooShort = tableSegment(300);
    tooShort[2] = 0;
    tooShort[3] = 3;  // ends within the counts, which the decoder reads nonetheless
    EXPECT_FALSE(soundAfter({}, tooShort));
}

TEST(JpegTables, BytesInsideOtherSegmentsAndOtherFilesAreNoTables) {
    Bytes application = {0xFF, 0xE2, 2, 0};
    const Bytes large = tableSegment(400);
    application.insert(application.end(), large.begin(), large.end());
    application.resize(514, 0);
    EXPECT_TRUE(soundAfter(application, tableSegment(12)));
    Bytes other = tableSegment(400);
    other.insert(other.begin(), 'B');
    EXPECT_TRUE(zellab::hasSoundHuffmanTables(other.data(), other.size()));
    EXPECT_TRUE(zellab::hasSoundHuffmanTables(nullptr, 0));
}

}  // namespace
