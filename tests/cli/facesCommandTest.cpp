// `zel faces`, and `zel apply` on effects that need faces, from outside.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/files/facesFile.h"
#include "cli/files/readPicture.h"
#include "cli/files/writePicture.h"
#include "hostSupport.h"
#include "support/environment.h"

namespace {

using namespace zeltest;
using testing::HasSubstr;

/// Draws a file of 260 by 320 pixels with one face.
void drawPicture(const TemporaryFolder& folder, const std::string& file) {
    expectOk(runZel(folder, "portrait --size 260x320 --seed 3 --quiet -o " + file));
}

std::size_t facesIn(const std::string& file) {
    return zel_faces_count(zelcli::readFaces(file).get());
}

TEST(FacesCommand, WritesFaceDataThatApplyTakesAndApplyFindsTheSameByItself) {
    const TemporaryFolder folder;
    drawPicture(folder, "p.png");
    const ProgramRun run = expectOk(runZel(folder, "faces p.png -o p.json --overlay o.png"));
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr("1 face found (confidence "));
    const libzel::Faces set = zelcli::readFaces(folder / "p.json");
    ASSERT_EQ(zel_faces_count(set.get()), 1u);
    int width = 0, height = 0;
    EXPECT_EQ(zel_faces_size(set.get(), &width, &height), ZEL_OK);
    EXPECT_EQ(width, 260);
    EXPECT_GT(libzel::faceAt(set.get(), 0).confidence, 0.4f);
    EXPECT_EQ(expectOk(runZel(folder, "faces p.png -o - --quiet")).out, readText(folder / "p.json"));
    // The overlay is enlarged and shows more than the picture.
    const zelcli::Image overlay = zelcli::readPicture(folder / "o.png").image;
    EXPECT_EQ(overlay.width % 260, 0);
    EXPECT_GT(overlay.width, 1000);

    expectOk(runZel(folder, "apply auto-slim-face p.png -o given.png --faces p.json"));
    const ProgramRun found = expectOk(runZel(folder, "apply auto-slim-face p.png -o found.png"));
    EXPECT_THAT(found.err, HasSubstr("p.png: 1 face found"));
    EXPECT_EQ(readBytes(folder / "found.png"), readBytes(folder / "given.png"));
    EXPECT_NE(zelcli::readPicture(folder / "found.png").image.rgba,
              zelcli::readPicture(folder / "p.png").image.rgba);
}

TEST(FacesCommand, NoFaceIsAnEmptyListWithANoteAndStopsWhatNeedsFaces) {
    const TemporaryFolder folder;
    zelcli::writePicture(folder / "plain.png", testImage(64, 48, 2));
    const ProgramRun run = expectOk(runZel(folder, "faces plain.png -o f.json"));
    EXPECT_THAT(run.err, HasSubstr("plain.png: no face was found"));
    EXPECT_EQ(facesIn(folder / "f.json"), 0u);

    const ProgramRun apply = runZel(folder, "apply auto-zoom-eye plain.png -o o.png");
    EXPECT_EQ(apply.status, 1) << apply.err;
    EXPECT_THAT(apply.err, HasSubstr("no face was found; --faces"));
    EXPECT_FALSE(std::filesystem::exists(folder / "o.png"));
}

TEST(FacesCommand, SeveralInputsGoToAFolderAndOneThatFailsStopsNoOther) {
    const TemporaryFolder folder;
    drawPicture(folder, "a.png");
    zelcli::writePicture(folder / "b.png", testImage(64, 48, 2));
    writeBytes(folder / "broken.png", {1, 2, 3});
    const ProgramRun run = runZel(folder, "faces a.png broken.png b.png -o out --overlay out --jobs 2");
    EXPECT_EQ(run.status, 1) << run.err;
    EXPECT_THAT(run.err, HasSubstr("zel: broken.png: "));
    EXPECT_EQ(facesIn(folder / "out/a.json"), 1u);
    EXPECT_EQ(facesIn(folder / "out/b.json"), 0u);
    EXPECT_TRUE(std::filesystem::exists(folder / "out/a-faces.png"));
    EXPECT_FALSE(std::filesystem::exists(folder / "out/broken.json"));
}

TEST(FacesCommand, WrongUsageIsStatusTwo) {
    const TemporaryFolder folder;
    zelcli::writePicture(folder / "a.png", testImage(8, 8, 1));
    std::filesystem::create_directory(folder / "sub");
    zelcli::writePicture(folder / "sub/a.png", testImage(8, 8, 1));
    expectRefusals(folder, "faces ", "f.json",
                   {{"a.png", "--output"},
                    {"a.png sub/a.png -o f.json", "must be a folder"},
                    {"a.png sub/a.png -o f/", "written twice"},
                    {"a.png -o f.json --overlay o.bmp", ".webp or .avif"}});
    EXPECT_FALSE(std::filesystem::exists(folder / "f"));
}

TEST(FacesCommand, MissingDetectorIsOneLineThatNamesThePackage) {
    const TemporaryFolder folder;
    zelcli::writePicture(folder / "a.png", testImage(64, 64, 1));
    const Environment none("ZEL_CASCADES", folder.path().c_str()), noNetworks("ZEL_NETWORKS", "");
    expectRefusals(folder, "", "f.json", {{"faces a.png -o f.json", "opencv-data", 1}});
    expectRefusals(folder, "apply auto-slim-face a.png --quiet -o ", "o.png",
                   {{"o.png", "opencv-data", 1}, {"o.png", "--faces", 1}});
}

TEST(FacesCommand, AnAbsentInferenceModuleStopsWhatNeedsItAndNothingElse) {
    const TemporaryFolder folder;
    zelcli::writePicture(folder / "a.png", testImage(64, 64, 1));
    const Environment none("ZEL_NETWORKS_MODULE", "");
    expectRefusals(folder, "", "o.png",
                   {{"faces a.png -o f.json --quiet", "the inference module ", 1},
                    {"apply auto-slim-face a.png -o o.png --quiet", "; or give --faces", 1},
                    {"apply defocus a.png -o o.png --quiet", "; or give a depth map", 1},
                    {"depth a.png -o d.png --quiet", "the inference module libzel_networks.so", 1}});
    const ProgramRun run = expectOk(runZel(folder, "apply scenario a.png -o o.png"));
    EXPECT_THAT(run.err, HasSubstr("; going on without faces"));
}

}  // namespace
