#include <gtest/gtest.h>

#include <filesystem>

#include "support/environment.h"
#include "support/randomImage.h"
#include "support/scratchFolder.h"
#include "support/streamCapture.h"
#include "support/workingFolder.h"
#include "zel_effects/zel_effects.h"

namespace {

using zeltest::Bytes;

struct Outcome {
    Bytes picture;
    std::string log;
};

/// The retouch of a small picture, which reads the overlay table, in a working directory.
Outcome retouchedIn(const std::filesystem::path& folder) {
    constexpr int kWidth = 120, kHeight = 90;
    const zeltest::WorkingFolder here(folder);
    Outcome outcome{zeltest::patternRgba(kWidth, kHeight, 4), {}};
    zeltest::StreamCapture log(stderr);
    ZelImageCore::TableSkin::ImageProcessWithQornSkinRetouch(outcome.picture.data(), kWidth, kHeight, 1.0f,
                                                             nullptr, nullptr);
    outcome.log = log.text();
    return outcome;
}

TEST(AssetSearch, AHostThatStandsElsewhereGetsTheSameBytes) {
    const zeltest::ScratchFolder elsewhere;
    const Bytes expected = retouchedIn(ZEL_ASSETS).picture;
    // The test program has switched the search off; the told outcome without the table is another one.
    const Outcome without = retouchedIn(elsewhere.path(""));
    EXPECT_NE(without.picture, expected);
    EXPECT_NE(without.log.find("LoadPPM file not from sdcard or not exist!"), without.log.npos);
    EXPECT_NE(without.log.find("failed to load PSOverlay.png from style"), without.log.npos);

    for (const char* told : {static_cast<const char*>(nullptr), ZEL_ASSETS, "/nowhere"}) {
        const zeltest::Environment variable("ZEL_ASSETS", told);
        const Outcome outcome = retouchedIn(elsewhere.path(""));
        EXPECT_EQ(outcome.picture, expected) << (told ? told : "beside the library");
        EXPECT_EQ(outcome.log.find("PSOverlay"), outcome.log.npos) << outcome.log;
    }
}

TEST(AssetSearch, ATableThatCannotBeReadIsTold) {
    const zeltest::ScratchFolder folder;
    std::filesystem::create_directories(folder.path("style/base/PSOverlay.bin"));  // a folder in its place
    const Outcome outcome = retouchedIn(folder.path(""));
    EXPECT_NE(outcome.log.find("ERROR: style asset style/base/PSOverlay.bin cannot be read"),
              outcome.log.npos)
        << outcome.log;
}

}  // namespace
