#include "zellab/utils/zelFileUtils.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <memory>

#include "support/environment.h"
#include "support/scratchFolder.h"
#include "support/workingFolder.h"
#include "zellab/utils/assetFolders.h"

namespace {

using namespace zeltest;

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

    ScratchFolder m_folder;
    std::string m_log;
    int m_width = -7, m_height = -7;
};

TEST_F(StyleAsset, GivesItsHeadAndPixelsAndZerosForWhatIsMissing) {
    const Pixels pixels = load(write("a.bin", head(3, 1) + "abcd"));
    ASSERT_TRUE(pixels);
    EXPECT_EQ(m_width, 3);
    EXPECT_EQ(m_height, 1);
    EXPECT_EQ(std::string(pixels.get(), pixels.get() + 12), std::string("abcd") + std::string(8, '\0'));
    EXPECT_EQ(m_log, "");
}

TEST_F(StyleAsset, DamagedHeadsAndWhatIsNoFileGiveNothingAndNoMessage) {
    for (const std::string& bytes :
         {std::string(), std::string("abc"), head(0, 5), head(5, 0) + "abcd", head(0xffffffffu, 3),
          head(0x7fffffffu, 0x7fffffffu), head(1u << 20, 1u << 20)}) {
        EXPECT_FALSE(load(write("a.bin", bytes)));
        EXPECT_EQ(m_log, "");
    }
    const std::string pipe = m_folder.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& path : {m_folder.path(""), pipe, std::string("/dev/zero")}) {
        EXPECT_FALSE(load(path)) << path;
        EXPECT_EQ(m_log, "");
    }
}

TEST_F(StyleAsset, MissingAndOverlongPathsAreLoggedAsProgressNullAsAnError) {
    for (const std::string& path : {m_folder / "none.bin", std::string(5000, 'x'), std::string()}) {
        EXPECT_FALSE(load(path));
        EXPECT_NE(m_log.find("ZelFileUtils->LoadPPM file not from sdcard or not exist!\r\n"), m_log.npos);
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

TEST_F(StyleAsset, WhatTheToldPlacesLackIsSoughtInTheFolderOfTheEnvironment) {
    write("a.bin", head(1, 1) + "told");
    std::filesystem::create_directories(m_folder / "here");
    const WorkingFolder here(m_folder / "here");
    {
        const Environment told("ZEL_ASSETS", m_folder.path().c_str());
        const Pixels pixels = load("a.bin");
        ASSERT_TRUE(pixels);
        EXPECT_EQ(*pixels, 't');
        EXPECT_EQ(m_log, "") << "nothing is missing";
        EXPECT_FALSE(load("b.bin"));
        EXPECT_NE(m_log.find("LoadPPM file not from sdcard or not exist!\r\n"), m_log.npos);
        EXPECT_FALSE(load(m_folder / "here/a.bin")) << "a whole path is not sought elsewhere";
        write("here/a.bin", head(1, 1) + "here");
        EXPECT_EQ(*load("a.bin"), 'h') << "the told place comes first";
        std::filesystem::remove(m_folder / "here/a.bin");
    }
    const Environment off("ZEL_ASSETS", "");
    EXPECT_FALSE(load("a.bin"));
}

TEST_F(StyleAsset, TheFoldersBesideTheProgramFollowTheEnvironment) {
    {
        const Environment unset("ZEL_ASSETS", nullptr);
        const WorkingFolder here(m_folder.path());
        EXPECT_TRUE(load("style/base/PSOverlay.bin")) << "the build tree's, seen from this program";
        EXPECT_EQ(zellab::assetFolders("/lib").front(), "/lib/assets");
        EXPECT_TRUE(zellab::assetFolders("").empty());
    }
    const Environment told("ZEL_ASSETS", "/told");
    const std::vector<std::string> folders = zellab::assetFolders("/lib");
    EXPECT_EQ(folders.size(), 4u);
    EXPECT_EQ(folders[0], "/told");
    EXPECT_EQ(folders[1], "/lib/assets");
}

}  // namespace
