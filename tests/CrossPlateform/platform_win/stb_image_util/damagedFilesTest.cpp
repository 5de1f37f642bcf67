// Files that end early or number colours they do not have: what they do not tell is black or refused,
// whatever the process's memory held before, and the loader comes to an end.
#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "support/streamCapture.h"
#include "support/tinyImages.h"
#include "zel_effects/zel_effects.h"

using zeltest::Bytes;

namespace {

constexpr unsigned char kDirt = 0x5A;

/// Fills what the next calls find on the stack.
[[gnu::noinline]] void soilStack() {
    volatile unsigned char below[1 << 18];
    for (volatile unsigned char& byte : below) byte = kDirt;
}

/// Pixels of a file that is loaded where neither the stack nor fresh memory is zero; empty where it is
/// refused.
Bytes loadOnDirt(Bytes file) {
    zeltest::StreamCapture log(stderr);
    mallopt(M_PERTURB, kDirt);
    soilStack();
    int width = 0, height = 0, channels = 0;
    const std::unique_ptr<unsigned char, decltype(&std::free)> pixels(
        ZelImageCore::StbImageUtil::loadImageFromMemory(file.data(), static_cast<int>(file.size()), width,
                                                        height, channels, true, 0, false),
        std::free);
    mallopt(M_PERTURB, 0);
    if (!pixels) return {};
    return {pixels.get(), pixels.get() + std::ptrdiff_t{4} * width * height};
}

Bytes joined(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

Bytes repeated(const Bytes& part, int times) {
    Bytes all;
    for (int i = 0; i < times; ++i) all.insert(all.end(), part.begin(), part.end());
    return all;
}

Bytes bytesOf(const std::string& text) {
    return {text.begin(), text.end()};
}

/// An 8-bit palette PNG of one row, its pixels in a stored block. The decoder looks at no checksum.
Bytes palettePng(const Bytes& palette, const Bytes& alphas, const Bytes& numbers) {
    Bytes file = zeltest::pngHead(static_cast<unsigned>(numbers.size()), 1);
    file.resize(8 + 25);  // signature and head
    file[25] = 3;         // numbers of colours
    const auto chunk = [&](const char* kind, const Bytes& data) {
        zeltest::appendBig(file, static_cast<unsigned>(data.size()), 4);
        file = joined({file, bytesOf(kind), data, Bytes(4)});
    };
    chunk("PLTE", palette);
    if (!alphas.empty()) chunk("tRNS", alphas);
    const auto length = static_cast<unsigned char>(numbers.size() + 1);
    chunk("IDAT", joined({{0x78, 1, 1, length, 0, static_cast<unsigned char>(~length), 0xFF, 0},
                          numbers,
                          {0, 0, 0, 0}}));
    chunk("IEND", {});
    return file;
}

/// A BMP file of four bytes of numbers in one row, with a palette of `colours`.
Bytes paletteBmp(unsigned char bits, const Bytes& colours, const Bytes& numbers) {
    Bytes file = zeltest::bmpHead(static_cast<unsigned>(numbers.size() * 8 / bits), 1);
    file[10] = static_cast<unsigned char>(54 + colours.size());
    file[28] = bits;
    return joined({file, colours, numbers});
}

TEST(DamagedFiles, WhatAFileDoesNotTellIsBlack) {
    const Bytes tga = zeltest::tgaFile(1, 3, {10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 110, 120});
    Bytes packedTga(tga.begin(), tga.begin() + 18);
    packedTga[2] = 10;
    packedTga.insert(packedTga.end(), {0x80, 3, 2, 1, 4});
    const struct {
        const char* what;
        Bytes file, pixels;
    } cases[] = {
        {"TGA", Bytes(tga.begin(), tga.begin() + 18 + 4), {10, 20, 30, 40, 0, 0, 0, 0, 0, 0, 0, 0}},
        {"packed TGA", packedTga, {1, 2, 3, 4, 0, 0, 0, 0, 0, 0, 0, 0}},
        {"PNG", palettePng({1, 2, 3, 4, 5, 6}, {}, {1, 2, 255}), {4, 5, 6, 255, 0, 0, 0, 0, 0, 0, 0, 0}},
        {"PNG with alphas",
         palettePng({1, 2, 3, 4, 5, 6}, {7}, {0, 1, 200}),
         {1, 2, 3, 7, 4, 5, 6, 255, 0, 0, 0, 0}},
        {"BMP of bytes",
         paletteBmp(8, {3, 2, 1, 0}, {0, 1, 255, 0}),
         {1, 2, 3, 255, 0, 0, 0, 255, 0, 0, 0, 255, 1, 2, 3, 255}},
        {"BMP of bits", paletteBmp(1, {3, 2, 1, 0}, {0x40, 0, 0, 0}),
         joined({{1, 2, 3, 255, 0, 0, 0, 255}, repeated({1, 2, 3, 255}, 30)})},
    };
    for (const auto& c : cases) EXPECT_EQ(loadOnDirt(c.file), c.pixels) << c.what;
}

TEST(DamagedFiles, PnmFilesLoadWholeOrNotAtAll) {
    const Bytes grey = bytesOf("P5 3 1 255\nabc"), colour = bytesOf("P6\n# two\n2 1\n255\nabcdef");
    EXPECT_EQ(loadOnDirt(grey), bytesOf("aaa\xFF"
                                        "bbb\xFF"
                                        "ccc\xFF"));
    EXPECT_EQ(loadOnDirt(colour), bytesOf("abc\xFF"
                                          "def\xFF"));
    for (const Bytes& whole : {grey, colour})
        for (std::size_t size = 1; size < whole.size(); ++size)
            EXPECT_TRUE(
                loadOnDirt({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)}).empty())
                << size << " of " << whole.size();
}

/// A Radiance file with these bytes behind its head.
Bytes hdrFile(int width, int height, const Bytes& rows,
              const std::string& lines = "FORMAT=32-bit_rle_rgbe\n") {
    return joined({bytesOf("#?RADIANCE\n" + lines + "\n-Y " + std::to_string(height) + " +X " +
                           std::to_string(width) + "\n"),
                   rows});
}

constexpr int kWidth = 9, kHeight = 2;
const Bytes kTexel = {200, 100, 50, 128};

Bytes plainRows() {
    return repeated(kTexel, kWidth * kHeight);
}

/// The same rows: each channel as `pieces`, in which a 0 stands for the channel's value.
Bytes packedRows(const Bytes& pieces) {
    Bytes row = {2, 2, 0, kWidth};
    for (const unsigned char value : kTexel)
        for (const unsigned char byte : pieces) row.push_back(byte == 0 ? value : byte);
    return joined({row, row});
}

TEST(DamagedFiles, EveryFormOfHdrRowsLoadsWholeAndIsRefusedWhenCut) {
    const Bytes wanted = loadOnDirt(hdrFile(kWidth, kHeight, plainRows()));
    ASSERT_EQ(wanted.size(), 4u * kWidth * kHeight);
    const std::string oddLines = "FORMAT=32-bit_rle_rgbe\n" + std::string(3000, 'x') + "\n# -Y 1 +X 1\n";
    for (const Bytes& rows :
         {plainRows(), packedRows({128 + kWidth, 0}), packedRows({9, 0, 0, 0, 0, 0, 0, 0, 0, 0}),
          packedRows({128 + 5, 0, 1, 0, 128 + 3, 0})})
        for (const std::string& lines : {std::string("FORMAT=32-bit_rle_rgbe\n"), oddLines}) {
            const Bytes whole = hdrFile(kWidth, kHeight, rows, lines);
            EXPECT_EQ(loadOnDirt(whole), wanted);
            EXPECT_EQ(loadOnDirt(joined({whole, {1, 2, 3}})), wanted) << "more than its rows";
            for (std::size_t size = whole.size() - rows.size() - 20; size < whole.size(); ++size)
                ASSERT_TRUE(
                    loadOnDirt({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)}).empty())
                    << size << " of " << whole.size();
        }
    // Nothing, as often as it likes, but within the file.
    Bytes idle = packedRows({128 + kWidth, 0});
    idle.insert(idle.begin() + 4, 40, 0);
    EXPECT_EQ(loadOnDirt(hdrFile(kWidth, kHeight, idle)), wanted);
    EXPECT_TRUE(loadOnDirt(hdrFile(kWidth, kHeight, packedRows({128 + kWidth + 1, 0}))).empty())
        << "too long";
    EXPECT_TRUE(loadOnDirt(hdrFile(kWidth + 1, kHeight, packedRows({128 + kWidth, 0}))).empty());
}

// Row by row the decoder decides; one that is not packed starts the picture again, unpacked.
TEST(DamagedFiles, AnHdrRowThatIsNotPackedStartsThePictureAgain) {
    const Bytes packed = packedRows({128 + kWidth, 0});
    const Bytes first(packed.begin(), packed.begin() + static_cast<std::ptrdiff_t>(packed.size() / 2));
    const Bytes whole = hdrFile(kWidth, kHeight, joined({first, plainRows()}));
    EXPECT_EQ(loadOnDirt(whole), loadOnDirt(hdrFile(kWidth, kHeight, plainRows())));
    EXPECT_TRUE(loadOnDirt({whole.begin(), whole.end() - 1}).empty());
}

}  // namespace
