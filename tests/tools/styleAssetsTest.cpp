#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "beautykernel/skintools/overlayTable.h"
#include "support/randomImage.h"
#include "support/workingFolder.h"
#include "zellab/imageproc/colour/colorCube.h"
#include "zellab/utils/zelFileUtils.h"

namespace {

using zeltest::Bytes;

/// The texels of a lookup among the built assets.
Bytes lookup(const std::string& name) {
    const zeltest::WithAssets assets;
    int width = 0, height = 0;
    const std::unique_ptr<unsigned char, decltype(&std::free)> texels(
        zellab::ZelFileUtils::LoadPPM(("style/base/" + name).c_str(), &width, &height, 4), std::free);
    if (!texels || width != 64 || height != 64) return {};
    return {texels.get(), texels.get() + 64 * 64 * 4};
}

TEST(StyleAssets, TheOverlayIsNeutralAtTheMiddleAndTheBaseDecides) {
    zellab::OverlayTable overlay;
    const zeltest::WithAssets assets;
    ASSERT_TRUE(overlay.load());
    for (int a = 0; a < 256; ++a) {
        EXPECT_EQ(overlay(a, 128), a) << "a neutral high pass leaves the picture";
        EXPECT_EQ(overlay(0, a), 0);
        EXPECT_EQ(overlay(255, a), 255);
        for (int b = 1; b < 256; ++b) {
            EXPECT_GE(overlay(a, b), overlay(a, b - 1));
            EXPECT_GE(overlay(b, a), overlay(b - 1, a));
        }
    }
    EXPECT_EQ(overlay(64, 192), 96);
    EXPECT_EQ(overlay(192, 64), 161) << "the first index is the base: 255 - 2 * 63 * 191 / 255 is 160.6";
}

/// Gentle: black and white keep their places, greys stay in order and close to grey, no colour moves far.
TEST(StyleAssets, LooksAreGentle) {
    struct Case {
        const char* name;
        int farthest, black;
    };
    for (const auto& [name, farthest, black] :
         {Case{"tone3.bin", 16, 0}, Case{"tone3_1.bin", 8, 0}, Case{"tone4.bin", 24, 6}}) {
        SCOPED_TRACE(name);
        const Bytes cube = lookup(name);
        ASSERT_FALSE(cube.empty());
        int moved = 0;
        Bytes before = zeltest::randomRgba(64, 64, 5), after = before;
        zellab::ApplyColorCube({after.data(), 64, 64}, cube.data());
        for (std::size_t i = 0; i < before.size(); ++i)
            moved = std::max(moved, std::abs(before[i] - after[i]));
        EXPECT_LE(moved, farthest);
        EXPECT_GE(moved, farthest / 3) << "a look must show";

        // Red along x, green along y, blue from tile to tile: a look that swapped two axes would turn hues.
        Bytes colours = {230, 40, 120, 9, 40, 120, 230, 8, 120, 230, 40, 7};
        zellab::ApplyColorCube({colours.data(), 3, 1}, cube.data());
        EXPECT_TRUE(colours[0] > colours[2] && colours[2] > colours[1]);
        EXPECT_TRUE(colours[6] > colours[5] && colours[5] > colours[4]);
        EXPECT_TRUE(colours[9] > colours[8] && colours[8] > colours[10]);

        Bytes greys(256 * 4);
        for (std::size_t i = 0; i < greys.size(); ++i) greys[i] = static_cast<unsigned char>(i / 4);
        zellab::ApplyColorCube({greys.data(), 256, 1}, cube.data());
        for (std::size_t c = 0; c < 3; ++c) {
            EXPECT_LE(greys[c], black);
            EXPECT_GE(greys[255 * 4 + c], 254);
            for (std::size_t v = 1; v < 256; ++v) EXPECT_GE(greys[v * 4 + c], greys[v * 4 - 4 + c]) << v;
        }
        for (std::size_t v = 0; v < 256; ++v) EXPECT_LE(std::abs(greys[v * 4] - greys[v * 4 + 2]), 6) << v;
    }
}

/// The greys of a look of the command, 16 of them, in 0..1: the green of equal red, green and blue.
std::vector<float> greysOfLook(const std::string& name) {
    constexpr int kSteps = 16;
    const zeltest::WithAssets assets;
    std::ifstream file("looks/" + name + ".cube");
    std::string line;
    std::vector<float> greys;
    for (int i = -2; std::getline(file, line); ++i)  // behind the title and the size
        if (i >= 0 && i % (kSteps * kSteps + kSteps + 1) == 0)
            greys.push_back(std::stof(line.substr(line.find(' '))));
    return greys;
}

// Pictures whose shadows or lights carry them lose neither to a look.
TEST(StyleAssets, NamedLooksDrownNoShadowAndBleachNoLight) {
    for (const char* name : {"identity", "warm", "cool", "clear", "soft", "film", "mono"}) {
        SCOPED_TRACE(name);
        const std::vector<float> greys = greysOfLook(name);
        ASSERT_EQ(greys.size(), 16u);
        const float step = 1.0f / 15;
        for (std::size_t i = 1; i < 16; ++i) EXPECT_GT(greys[i], greys[i - 1] + 0.5f * step) << i;
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_GE(greys[i], static_cast<float>(i) * step - 0.02f) << i;
            EXPECT_LE(greys[15 - i], static_cast<float>(15 - i) * step + 0.02f) << 15 - i;
        }
        EXPECT_GE(greys[1], step - 0.002f);
        EXPECT_LE(greys[14], 14 * step + 0.01f);
    }
}

}  // namespace
