// The loader as a host calls it: files and memory, good and bad, and what it says in the log.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <filesystem>
#include <memory>
#include <thread>

#include "CrossPlateform/platform_win/stb_image_util/imageScramble.h"
#include "support/scratchFolder.h"
#include "support/streamCapture.h"
#include "support/tinyImages.h"
#include "zel_effects/zel_effects.h"

using testing::HasSubstr;
using testing::MatchesRegex;
using ZelImageCore::StbImageUtil;
using namespace zeltest;

namespace {

struct Loaded {
    std::unique_ptr<unsigned char, decltype(&std::free)> pixels{nullptr, std::free};
    int width = -7, height = -8, channels = -9;

    Bytes bytes() const {
        return Bytes(pixels.get(), pixels.get() + static_cast<std::ptrdiff_t>(width) * height * 4);
    }
};

struct Options {
    bool scrambled = false, keepAlpha = true;
    int maxSize = 0;
};

Loaded loadFile(const std::string& path, Options o = {}) {
    Loaded result;
    result.pixels.reset(StbImageUtil::loadImageFromFile(path, result.width, result.height, result.channels,
                                                        o.scrambled, o.keepAlpha, o.maxSize, false, nullptr));
    return result;
}

Loaded loadMemory(Bytes file, Options o = {}) {
    Loaded result;
    result.pixels.reset(StbImageUtil::loadImageFromMemory(file.data(), static_cast<int>(file.size()),
                                                          result.width, result.height, result.channels,
                                                          o.keepAlpha, o.maxSize, true));
    return result;
}

Bytes scrambled(const Bytes& file) {
    Bytes whole;
    appendLittle(whole, static_cast<unsigned>(file.size()), 4);
    for (const unsigned char byte : file) whole.push_back(byte);
    zellab::unscrambleImageData(whole.data() + 4, static_cast<std::ptrdiff_t>(file.size()));
    return whole;
}

class StbImageUtilTest : public testing::Test {
protected:
    const Bytes m_rgba = randomRgba(31, 9, 3);
    const Bytes m_tga = tgaFile(31, 9, m_rgba);
    ScratchFolder m_folder;
    StreamCapture m_log{stderr};
};

TEST_F(StbImageUtilTest, FileMemoryAndScrambledFormsGiveTheSamePixels) {
    const std::string plain = m_folder.write("plain.tga", m_tga);
    Bytes tail = m_tga;
    for (int extra = 0; extra < 4; ++extra, tail.push_back(0)) {
        const std::string path = m_folder.write("scrambled", scrambled(tail));
        for (const Loaded& loaded :
             {loadFile(plain), loadMemory(tail), loadFile(path, {.scrambled = true})}) {
            ASSERT_TRUE(loaded.pixels);
            EXPECT_EQ(loaded.width, 31);
            EXPECT_EQ(loaded.height, 9);
            EXPECT_EQ(loaded.channels, 4);
            EXPECT_EQ(loaded.bytes(), m_rgba);
        }
    }
    EXPECT_FALSE(loadFile(m_folder.path("scrambled")).pixels) << "told to be plain, it must not decode";
    EXPECT_FALSE(loadFile(plain, {.scrambled = true}).pixels) << "told to be scrambled, it must not decode";
}

TEST_F(StbImageUtilTest, TheCallerIsToldTheDecodedSizeAlsoWhenReduced) {
    const Loaded reduced = loadMemory(m_tga, {.maxSize = 10});
    ASSERT_TRUE(reduced.pixels);
    EXPECT_EQ(reduced.width, 31);
    EXPECT_EQ(reduced.height, 9);
    for (int same : {31, 1000, 0, -5}) EXPECT_EQ(loadMemory(m_tga, {.maxSize = same}).bytes(), m_rgba);
    EXPECT_NE(loadMemory(m_tga, {.keepAlpha = false}).bytes(), m_rgba);
    // Flattened after a reduction, the buffer still has the size that the caller was told.
    const Bytes flat = loadMemory(m_tga, {.keepAlpha = false, .maxSize = 10}).bytes();
    EXPECT_EQ(Bytes(flat.begin() + 10 * 2 * 4, flat.end()), Bytes((31 * 9 - 10 * 2) * 4, 255));
}

TEST_F(StbImageUtilTest, SaysWhatItLoadedAndWhyItFailedInOrder) {
    const std::string prefix = "[0-9]{8} : ZelImageCore::StbImageUtil::";
    const std::string tail =
        "\r\nCrossPlateform/platform_win/stb_image_util/stbImageUtil.cpp\\([0-9]+\\)\r\n";
    const auto said = [&](const auto& load) {
        const std::size_t seen = m_log.text().size();
        load();
        return m_log.text().substr(seen);
    };
    EXPECT_THAT(
        said([&] { loadFile(m_folder.write("plain.tga", m_tga)); }),
        MatchesRegex(prefix + "loadImageFromFile\\([0-9]+\\) stb load image: .*/plain.tga. w:31, h:9\r\n"));
    EXPECT_THAT(
        said([&] { loadFile(m_folder.write("empty", {})); }),
        MatchesRegex(prefix + "IsEncryptImageWithHead\\([0-9]+\\) param error." + tail + prefix +
                     "loadImageFromMemory\\([0-9]+\\) param error." + tail + prefix +
                     "loadImageFromFile\\([0-9]+\\) loadImageFromMemory fail: .*/empty." + tail + prefix +
                     "loadImageFromFile\\([0-9]+\\) stb load image: .*/empty. w:-7, h:-8\r\n"));
    EXPECT_THAT(said([&] { loadFile(m_folder.path("missing")); }),
                MatchesRegex(prefix + "loadImageFromFile\\([0-9]+\\) read file fail: .*/missing." + tail));
    EXPECT_THAT(said([&] {
                    loadMemory({1, 2, 3});
                }),
                MatchesRegex(prefix + "loadImageFromMemory\\([0-9]+\\) stbi_load_from_memory fail." + tail));
}

TEST_F(StbImageUtilTest, WhatIsNoFileIsNotRead) {
    const std::string pipe = m_folder.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::filesystem::create_directory(m_folder.path("folder"));
    const std::string huge = m_folder.write("huge", {1});
    std::filesystem::resize_file(huge, std::uintmax_t{3} << 30);  // sparse; its size passes an int
    for (const std::string& path : {pipe, m_folder.path("folder"), std::string("/dev/zero"), huge,
                                    std::string(), m_folder.path("no/file")}) {
        const std::size_t seen = m_log.text().size();
        EXPECT_FALSE(loadFile(path).pixels) << path;
        EXPECT_THAT(m_log.text().substr(seen), HasSubstr("read file fail: " + path));
    }
}

TEST_F(StbImageUtilTest, FilesShorterThanTheirHeadFailQuietlyInEveryForm) {
    for (std::size_t size = 0; size <= 8; ++size)
        for (unsigned char fill : {0, 255}) {
            const std::string path = m_folder.write("short", Bytes(size, fill));
            EXPECT_FALSE(loadFile(path, {.scrambled = true}).pixels);
            EXPECT_FALSE(loadFile(path).pixels);
        }
    Loaded none;
    EXPECT_FALSE(
        StbImageUtil::loadImageFromMemory(nullptr, 9, none.width, none.height, none.channels, true, 0, true));
}

/// The most memory that this process has held so far, in MiB.
long peakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

TEST_F(StbImageUtilTest, LyingHeadsFailWithoutTakingTheirMemory) {
    const long before = peakMegabytes();
    const auto heads = {bmpHead, gifHead, jpegHead, pngHead, tgaHead};
    for (const unsigned side : {8000u, 16000u, 32767u, 65535u})
        for (const auto& head : heads) {
            EXPECT_FALSE(loadMemory(head(side, side)).pixels) << side;
            EXPECT_FALSE(loadMemory(scrambled(head(side, side))).pixels) << side;
        }
    EXPECT_LT(peakMegabytes() - before, 200);
    // Found by the fuzzers: both made the decoder leave its own buffers.
    EXPECT_FALSE(loadMemory({'P', '5', ' ', '1', ' ', '1', ' ', '6', '5', '5', '3', '5', '\n', 1, 2}).pixels);
    Bytes tables = {0xFF, 0xD8, 0xFF, 0xC4, 0x0F, 0xFF, 0};
    tables.resize(5000, 255);
    EXPECT_FALSE(loadMemory(tables).pixels);
    // The other way round: packed data that unpacks to far more than its head says.
    EXPECT_FALSE(loadMemory(pngHead(0, 0)).pixels);
    EXPECT_FALSE(loadMemory(pngHead(0xFFFFFFFFu, 1)).pixels);
}

TEST_F(StbImageUtilTest, EightCallsAtOnceGiveTheBytesOfOne) {
    const Bytes rgba = randomRgba(200, 300, 8);
    const std::string path = m_folder.write("picture", scrambled(tgaFile(200, 300, rgba)));
    const Bytes alone = loadFile(path, {.scrambled = true, .keepAlpha = false, .maxSize = 150}).bytes();
    std::vector<std::thread> threads;
    std::vector<Bytes> results(8);
    threads.reserve(results.size());
    for (Bytes& result : results)
        threads.emplace_back([&] {
            for (int i = 0; i < 5; ++i)
                result = loadFile(path, {.scrambled = true, .keepAlpha = false, .maxSize = 150}).bytes();
        });
    for (std::thread& thread : threads) thread.join();
    for (const Bytes& result : results) EXPECT_EQ(result, alone);
}

}  // namespace
