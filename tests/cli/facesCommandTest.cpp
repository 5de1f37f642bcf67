// `zel faces`, and `zel apply` on effects that need faces, from outside.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/files/facesFile.h"
#include "cli/files/readPicture.h"
#include "cli/files/writePicture.h"
#include "hostSupport.h"

namespace {

using namespace zeltest;
using testing::HasSubstr;

/// Draws p.png, 260 by 320.
void drawPicture(const TemporaryFolder& folder) {
    ASSERT_EQ(runZel(folder, "portrait -o p.png --size 260x320 --seed 3 --quiet").status, 0);
}

TEST(FacesCommand, WritesFaceDataThatApplyTakesAndApplyFindsTheSameByItself) {
    const TemporaryFolder folder;
    drawPicture(folder);
    const ProgramRun run = runZel(folder, "faces p.png -o p.json --overlay o.png");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr("1 face found (confidence "));
    const libzel::Faces set = zelcli::readFaces(folder / "p.json");
    ASSERT_EQ(zel_faces_count(set.get()), 1u);
    int width = 0, height = 0;
    EXPECT_EQ(zel_faces_size(set.get(), &width, &height), ZEL_OK);
    EXPECT_EQ(width, 260);
    EXPECT_GT(libzel::faceAt(set.get(), 0).confidence, 0.4f);
    // The overlay is enlarged and shows more than the picture.
    const zelcli::Image overlay = zelcli::readPicture(folder / "o.png", false).image;
    EXPECT_EQ(overlay.width % 260, 0);
    EXPECT_GT(overlay.width, 1000);

    ASSERT_EQ(runZel(folder, "apply auto-slim-face p.png -o given.png --faces p.json").status, 0);
    const ProgramRun found = runZel(folder, "apply auto-slim-face p.png -o found.png");
    ASSERT_EQ(found.status, 0) << found.err;
    EXPECT_THAT(found.err, HasSubstr("p.png: 1 face found"));
    EXPECT_EQ(readBytes(folder / "found.png"), readBytes(folder / "given.png"));
    EXPECT_NE(zelcli::readPicture(folder / "found.png", false).image.rgba,
              zelcli::readPicture(folder / "p.png", false).image.rgba);
}

TEST(FacesCommand, NoFaceIsAnEmptyListWithANoteAndStopsWhatNeedsFaces) {
    const TemporaryFolder folder;
    zelcli::writePicture(folder / "plain.png", testImage(64, 48, 2));
    const ProgramRun run = runZel(folder, "faces plain.png -o f.json");
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.err, HasSubstr("plain.png: no face was found"));
    EXPECT_EQ(zel_faces_count(zelcli::readFaces(folder / "f.json").get()), 0u);

    const ProgramRun apply = runZel(folder, "apply auto-zoom-eye plain.png -o o.png");
    EXPECT_EQ(apply.status, 1);
    EXPECT_THAT(apply.err, HasSubstr("no face was found; --faces"));
    EXPECT_FALSE(std::filesystem::exists(folder / "o.png"));
}

TEST(FacesCommand, SeveralInputsGoToAFolderAndOneThatFailsStopsNoOther) {
    const TemporaryFolder folder;
    drawPicture(folder);
    std::filesystem::rename(folder / "p.png", folder / "a.png");
    zelcli::writePicture(folder / "b.png", testImage(64, 48, 2));
    writeBytes(folder / "broken.png", {1, 2, 3});
    const ProgramRun run = runZel(folder, "faces a.png broken.png b.png -o out --overlay out --jobs 2");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("zel: broken.png: "));
    EXPECT_EQ(zel_faces_count(zelcli::readFaces(folder / "out/a.json").get()), 1u);
    EXPECT_EQ(zel_faces_count(zelcli::readFaces(folder / "out/b.json").get()), 0u);
    EXPECT_TRUE(std::filesystem::exists(folder / "out/a-faces.png"));
    EXPECT_FALSE(std::filesystem::exists(folder / "out/broken.json"));
}

TEST(FacesCommand, WrongUsageIsStatusTwo) {
    const TemporaryFolder folder;
    zelcli::writePicture(folder / "a.png", testImage(8, 8, 1));
    std::filesystem::create_directory(folder / "sub");
    zelcli::writePicture(folder / "sub/a.png", testImage(8, 8, 1));
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
    zelcli::writePicture(folder / "a.png", testImage(64, 64, 1));
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

}  // namespace
