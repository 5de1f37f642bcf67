// `zel faces`, and `zel apply` on effects that need faces, from outside.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "facesJson.h"
#include "hostSupport.h"
#include "pictures/readPicture.h"
#include "pictures/writePicture.h"
#include "portrait/portrait.h"
#include "support/environment.h"

namespace {

using namespace zeltest;
using testing::HasSubstr;

zel::Image portraitPicture() {
    zel::PortraitParams params;
    params.width = 260;
    params.height = 320;
    params.seed = 3;
    return zel::drawPortrait(params).image;
}

TEST(FacesCommand, WritesFaceDataThatApplyTakesAndApplyFindsTheSameByItself) {
    const TemporaryFolder folder;
    zel::writePicture(folder / "p.png", portraitPicture());
    const ProgramRun run = runZel(folder, "faces p.png -o p.json --overlay o.png");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr("1 face found (confidence "));
    const zel::FaceSet set = zel::readFaces(folder / "p.json");
    ASSERT_EQ(set.faces.size(), 1u);
    EXPECT_EQ(set.width, 260);
    EXPECT_GT(set.faces[0].confidence.value_or(-1), 0.4f);
    // The overlay is enlarged and shows more than the picture.
    const zel::Image overlay = zel::readPicture(folder / "o.png", false).image;
    EXPECT_EQ(overlay.width % 260, 0);
    EXPECT_GT(overlay.width, 1000);

    ASSERT_EQ(runZel(folder, "apply auto-slim-face p.png -o given.png --faces p.json").status, 0);
    const ProgramRun found = runZel(folder, "apply auto-slim-face p.png -o found.png");
    ASSERT_EQ(found.status, 0) << found.err;
    EXPECT_THAT(found.err, HasSubstr("p.png: 1 face found"));
    EXPECT_EQ(readBytes(folder / "found.png"), readBytes(folder / "given.png"));
    EXPECT_NE(zel::readPicture(folder / "found.png", false).image.rgba, portraitPicture().rgba);
}

TEST(FacesCommand, NoFaceIsAnEmptyListWithANoteAndStopsWhatNeedsFaces) {
    const TemporaryFolder folder;
    zel::writePicture(folder / "plain.png", testImage(64, 48, 2));
    const ProgramRun run = runZel(folder, "faces plain.png -o f.json");
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.err, HasSubstr("plain.png: no face was found"));
    EXPECT_TRUE(zel::readFaces(folder / "f.json").faces.empty());

    const ProgramRun apply = runZel(folder, "apply auto-zoom-eye plain.png -o o.png");
    EXPECT_EQ(apply.status, 1);
    EXPECT_THAT(apply.err, HasSubstr("no face was found; --faces"));
    EXPECT_FALSE(std::filesystem::exists(folder / "o.png"));
}

TEST(FacesCommand, SeveralInputsGoToAFolderAndOneThatFailsStopsNoOther) {
    const TemporaryFolder folder;
    zel::writePicture(folder / "a.png", portraitPicture());
    zel::writePicture(folder / "b.png", testImage(64, 48, 2));
    writeBytes(folder / "broken.png", {1, 2, 3});
    const ProgramRun run = runZel(folder, "faces a.png broken.png b.png -o out --overlay out --jobs 2");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("zel: broken.png: "));
    EXPECT_EQ(zel::readFaces(folder / "out/a.json").faces.size(), 1u);
    EXPECT_TRUE(zel::readFaces(folder / "out/b.json").faces.empty());
    EXPECT_TRUE(std::filesystem::exists(folder / "out/a-faces.png"));
    EXPECT_FALSE(std::filesystem::exists(folder / "out/broken.json"));
}

TEST(FacesCommand, WrongUsageIsStatusTwo) {
    const TemporaryFolder folder;
    zel::writePicture(folder / "a.png", testImage(8, 8, 1));
    std::filesystem::create_directory(folder / "sub");
    zel::writePicture(folder / "sub/a.png", testImage(8, 8, 1));
    const struct {
        const char *words, *says;
    } cases[] = {
        {"faces a.png", "--output"},
        {"faces a.png sub/a.png -o f.json", "must be a folder"},
        {"faces a.png sub/a.png -o f/", "written twice"},
        {"faces a.png -o f.json --overlay o.tiff", ".png, .jpg or .jpeg"},
    };
    for (const auto& c : cases) {
        const ProgramRun run = runZel(folder, c.words);
        EXPECT_EQ(run.status, 2) << c.words;
        EXPECT_THAT(run.err, HasSubstr(c.says)) << c.words;
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "f.json"));
    EXPECT_FALSE(std::filesystem::exists(folder / "f"));
}

TEST(FacesCommand, MissingDetectorIsOneLineThatNamesThePackage) {
    const TemporaryFolder folder;
    zel::writePicture(folder / "a.png", testImage(64, 64, 1));
    ASSERT_EQ(setenv("ZEL_CASCADES", folder.path().c_str(), 1), 0);
    const ProgramRun faces = runZel(folder, "faces a.png -o f.json");
    const ProgramRun apply = runZel(folder, "apply auto-slim-face a.png -o o.png --quiet");
    unsetenv("ZEL_CASCADES");
    EXPECT_EQ(faces.status, 1);
    EXPECT_THAT(faces.err, HasSubstr("opencv-data"));
    EXPECT_EQ(apply.status, 1);
    EXPECT_THAT(apply.err, HasSubstr("opencv-data"));
    EXPECT_THAT(apply.err, HasSubstr("--faces"));
    EXPECT_EQ(std::count(apply.err.begin(), apply.err.end(), '\n'), 1);
}

TEST(FacesCommand, AnAbsentInferenceModuleStopsWhatNeedsItAndNothingElse) {
    const TemporaryFolder folder;
    zel::writePicture(folder / "a.png", testImage(64, 64, 1));
    const struct {
        const char* words;
        int status, lines;
        const char* says;
    } cases[] = {{"faces a.png -o f.json --quiet", 1, 1, "zel: a.png: the inference module "},
                 {"apply auto-slim-face a.png -o o.png --quiet", 1, 1, "; or give --faces"},
                 {"apply defocus a.png -o o.png --quiet", 1, 1, "; or give --depth MAP.png"},
                 {"depth a.png -o d.png --quiet", 1, 1, "the inference module libzel_networks.so"},
                 {"apply scenario a.png -o o.png", 0, 2, "; going on without faces"}};
    const Environment none("ZEL_NETWORKS_MODULE", "");
    for (const auto& c : cases) {
        EXPECT_FALSE(std::filesystem::exists(folder / "o.png"));
        const ProgramRun run = runZel(folder, c.words);
        EXPECT_EQ(run.status, c.status) << c.words;
        EXPECT_THAT(run.err, HasSubstr(c.says)) << c.words;
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), c.lines) << run.err;
    }
}

}  // namespace
