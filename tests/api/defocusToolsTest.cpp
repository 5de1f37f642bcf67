// The small services of the render: mixing by a mask, noise, whole files.
#include <sys/stat.h>

#include <cstring>
#include <memory>

#include "defocusScene.h"
#include "support/scratchFolder.h"

namespace {

using namespace zeltest;

struct FreeBlock {
    void operator()(void* block) const { std::free(block); }
};

TEST(MixWidthMask, MixesAsTheFormulaSays) {
    constexpr int kWidth = 37, kHeight = 23;
    const Bytes top = randomRgba(kWidth, kHeight, 1), before = randomRgba(kWidth, kHeight, 2);
    Bytes mask = randomRgba(kWidth, kHeight, 3), above = top;
    for (const float strength : {1.0f, 0.37f, 0.0f}) {
        Bytes base = before;
        ASSERT_TRUE(Render().MixWidthMask(above.data(), base.data(), kWidth, kHeight, mask.data(), kWidth,
                                          kHeight, strength, 0));
        for (std::size_t i = 0; i < base.size(); ++i) {
            const float a = static_cast<float>(mask[i - i % 4]) * (strength / 255), b = 1 - a;
            const float mixed = static_cast<float>(top[i]) * a + static_cast<float>(before[i]) * b;
            ASSERT_EQ(base[i], i % 4 == 3 ? before[i] : static_cast<int>(mixed)) << i << " at " << strength;
        }
    }
    EXPECT_EQ(above, top);
}

TEST(MixWidthMask, ScalesAMaskOfAnotherSizeAndSoftensTheCallersOwn) {
    constexpr int kSide = 40;
    Bytes top(4 * kSide * kSide, 255), base(4 * kSide * kSide, 0);
    Bytes small(4 * 20 * 20, 7), own(4 * kSide * kSide, 7);
    for (std::size_t i = 0; i < small.size(); i += 4) small[i] = i / 4 % 20 < 10 ? 0 : 255;
    for (std::size_t i = 0; i < own.size(); i += 4) own[i] = i / 4 % kSide < 20 ? 0 : 255;
    const Bytes smallBefore = small, ownBefore = own;
    Render render;
    ASSERT_TRUE(render.MixWidthMask(top.data(), base.data(), kSide, kSide, small.data(), 20, 20, 1, 5));
    EXPECT_EQ(small, smallBefore);
    const std::size_t row = 4 * kSide * (kSide / 2);
    EXPECT_LT(base[row], 5);
    EXPECT_GT(base[row + 4 * 39], 250);
    EXPECT_NEAR(base[row + 4 * 20], 128, 50) << "a soft step in the middle";
    ASSERT_TRUE(render.MixWidthMask(top.data(), base.data(), kSide, kSide, own.data(), kSide, kSide, 1, 5));
    EXPECT_NE(own, ownBefore);
    for (std::size_t i = 0; i < own.size(); ++i)
        ASSERT_TRUE(i % 4 == 0 || own[i] == 7) << "byte 0 alone is the mask";
}

TEST(CreateNoise, DrawsThreeNumbersAPixelInOrder) {
    Render render;
    int width = 5, height = 3;
    std::srand(11);
    const std::unique_ptr<unsigned char, FreeBlock> noise(render.createNoise(width, height));
    const int next = std::rand();
    std::srand(11);
    for (int i = 0; i < 60; ++i) ASSERT_EQ(noise.get()[i], i % 4 == 3 ? 0 : std::rand() % 256) << i;
    EXPECT_EQ(next, std::rand());
}

TEST(ReadFile2String, GivesWholeFilesAndRefusesWhatIsNone) {
    const ScratchFolder folder;
    const std::string file = folder.write("text", {'a', 0, 'b'}), empty = folder.write("empty", {});
    Render render;
    unsigned long size = 77;
    const std::unique_ptr<char, FreeBlock> text(render.ReadFile2String(file.c_str(), size));
    ASSERT_TRUE(text);
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(std::memcmp(text.get(), "a\0b", 4), 0) << "with a zero behind it";
    const std::unique_ptr<char, FreeBlock> nothing(render.ReadFile2String(empty.c_str(), size));
    ASSERT_TRUE(nothing);
    EXPECT_EQ(size, 0u);
    size = 77;
    StreamCapture log(stderr);
    EXPECT_EQ(render.ReadFile2String(nullptr, size), nullptr);
    EXPECT_EQ(render.ReadFile2String(folder.path("missing").c_str(), size), nullptr);
    EXPECT_EQ(render.ReadFile2String(folder.path("").c_str(), size), nullptr) << "a folder";
    ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(render.ReadFile2String(folder.path("pipe").c_str(), size), nullptr) << "nobody writes to it";
    EXPECT_EQ(size, 77u);
    EXPECT_NE(log.text().find("Path is nullptr !"), std::string::npos);
    EXPECT_NE(log.text().find("Could not open file " + folder.path("missing") + " !"), std::string::npos);
}

}  // namespace
