#include "zellab/utils/zelFileUtils.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>

#include "support/scratchFolder.h"

namespace {

using zellab::ZelFileUtils;
using Pixels = std::unique_ptr<unsigned char, void (*)(void*)>;

class StyleAsset : public testing::Test {
protected:
    void TearDown() override { ZelFileUtils::SetAssetRoot(nullptr); }
    std::string write(const std::string& name, const std::string& bytes) const {
        return m_folder.write(name, {bytes.begin(), bytes.end()});
    }
    Pixels load(const std::string& path) {
        testing::internal::CaptureStderr();
        Pixels pixels(ZelFileUtils::LoadPPM(path.c_str(), &m_width, &m_height, 4), std::free);
        m_log = testing::internal::GetCapturedStderr();
        return pixels;
    }
    static std::string head(std::uint32_t first, std::uint32_t second) {
        std::string bytes;
        for (std::uint32_t word : {first, second})
            for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<char>(word >> (8 * i) & 255u));
        return bytes;
    }

    zeltest::ScratchFolder m_folder;
    std::string m_log;
    int m_width = -7, m_height = -7;
};

TEST_F(StyleAsset, GivesItsHeadAndPixels) {
    const Pixels pixels = load(write("a.bin", head(2, 1) + "abcdefgh"));
    ASSERT_TRUE(pixels);
    EXPECT_EQ(m_width, 2);
    EXPECT_EQ(m_height, 1);
    EXPECT_EQ(std::string(pixels.get(), pixels.get() + 8), "abcdefgh");
    EXPECT_EQ(m_log, "");
}

TEST_F(StyleAsset, AShortFileLeavesZerosAndNoMessage) {
    const Pixels pixels = load(write("a.bin", head(3, 1) + "abc"));
    ASSERT_TRUE(pixels);
    EXPECT_EQ(std::string(pixels.get(), pixels.get() + 12), std::string("abc") + std::string(9, '\0'));
    EXPECT_EQ(m_log, "");
}

TEST_F(StyleAsset, DamagedHeadsAndDirectoriesGiveNothingAndNoMessage) {
    for (const std::string& bytes :
         {std::string(), std::string("abc"), head(0, 5), head(5, 0) + "abcd", head(0xffffffffu, 3),
          head(0x7fffffffu, 0x7fffffffu), head(1u << 20, 1u << 20)}) {
        EXPECT_FALSE(load(write("a.bin", bytes)));
        EXPECT_EQ(m_log, "");
    }
    EXPECT_FALSE(load(m_folder.path("")));
    EXPECT_EQ(m_log, "");
}

TEST_F(StyleAsset, MissingAndOverlongPathsAreLoggedAsProgressNullAsAnError) {
    for (const std::string& path : {m_folder / "none.bin", std::string(5000, 'x'), std::string()}) {
        EXPECT_FALSE(load(path));
        EXPECT_NE(m_log.find("ZelFileUtils->LoadPPM file not from sdcard or not exist!\r\n"),
                  std::string::npos);
    }
    testing::internal::CaptureStderr();
    EXPECT_EQ(ZelFileUtils::LoadPPM(nullptr, &m_width, &m_height, 4), nullptr);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("LoadPPM file path is NULL\r\n"),
              std::string::npos);
}

TEST_F(StyleAsset, TheRootServesPathsThatDoNotExistByThemselves) {
    EXPECT_STREQ(ZelFileUtils::GetAssetRoot(), "");
    write("a.bin", head(1, 1) + "root");
    std::filesystem::create_directories(m_folder / "own");
    const std::string own = write("own/b.bin", head(1, 1) + "self");
    const std::string root = m_folder.path().string();
    ZelFileUtils::SetAssetRoot(root.c_str());
    EXPECT_STREQ(ZelFileUtils::GetAssetRoot(), root.c_str());
    EXPECT_EQ(*load("a.bin"), 'r');
    EXPECT_EQ(*load(own), 's');
}

}  // namespace
