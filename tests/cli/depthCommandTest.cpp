// `zel depth` from outside, on a hand-written network: blue is depth.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/files/readPicture.h"
#include "cli/files/writePicture.h"
#include "hostSupport.h"
#include "support/tinyOnnx.h"

namespace {

using namespace zeltest;
using testing::HasSubstr;

/// Left half yellow, right half blue.
zelcli::Image halves(int width, int height) {
    const auto colour = [=](int x, int) {
        return x < width / 2 ? std::array{200, 200, 20} : std::array{20, 20, 200};
    };
    return {width, height, drawnRgba(width, height, colour)};
}

class DepthCommand : public testing::Test {
protected:
    DepthCommand() {
        TinyModel model;
        model.input = {1, 3, 48, 40};
        model.outputs[0].weights = {0, 0.5f, 0.5f};
        writeBytes(m_folder / "m.onnx", tinyOnnx(model));
        zelcli::writePicture(m_folder / "p.png", halves(300, 200));
        std::filesystem::create_directory(m_folder / "in");
        zelcli::writePicture(m_folder / "in/p.png", halves(300, 200));
    }
    /// Red of a pixel of a written map.
    int at(const std::string& name, int x, int y) const {
        const zelcli::Image map = zelcli::readPicture(m_folder / name).image;
        return map.rgba[static_cast<std::size_t>(4 * (y * map.width + x))];
    }
    TemporaryFolder m_folder;
};

TEST_F(DepthCommand, WritesMapAndSheetInThePicturesSize) {
    const ProgramRun run =
        expectOk(runZel(m_folder, "depth p.png -o d.png --set model=m.onnx --compare s.png"));
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err.find("[DEBUG"), run.err.npos) << run.err;
    const zelcli::Image map = zelcli::readPicture(m_folder / "d.png").image;
    EXPECT_EQ(map.width, 300);
    EXPECT_EQ(map.height, 200);
    EXPECT_LT(at("d.png", 40, 100), 40);
    EXPECT_GT(at("d.png", 260, 100), 215);
    EXPECT_GT(zelcli::readPicture(m_folder / "s.png").image.width, 3 * 300);
    expectOk(runZel(m_folder, "depth p.png -o r.jpg --set model=m.onnx --raw"));
    EXPECT_GT(at("r.jpg", 260, 100), 215);
}

TEST_F(DepthCommand, FoldersGiveLosslessMapsFromSeveralJobs) {
    zelcli::writePicture(m_folder / "in/q.jpg", halves(90, 60));
    const ProgramRun run = expectOk(runZel(m_folder, "depth in -o maps --set model=m.onnx --jobs 2 --raw"));
    EXPECT_THAT(run.err, HasSubstr("zel: 2 done, 0 skipped, 0 failed in "));
    EXPECT_GT(at("maps/q.png", 80, 30), 215);
    EXPECT_TRUE(std::filesystem::exists(m_folder / "maps/p.png"));
}

// The person of the mask is as near as its mean, wherever the network put its parts.
TEST_F(DepthCommand, MaskBringsThePersonForward) {
    const auto lower = [](int, int y) { return y >= 10 ? std::array{255, 255, 255} : std::array{0, 0, 0}; };
    const zelcli::Image mask{30, 20, drawnRgba(30, 20, lower)};
    zelcli::writePicture(m_folder / "mask.png", mask);
    expectOk(runZel(m_folder, "depth p.png -o d.png --set model=m.onnx --mask mask.png"));
    EXPECT_GT(at("d.png", 40, 170), at("d.png", 40, 30) + 20);
}

TEST_F(DepthCommand, FailuresNameTheFileAndWrongUsageIsStatusTwo) {
    writeBytes(m_folder / "junk.onnx", randomBytes(500, 1));
    expectRefusals(m_folder, "depth ", "d.png",
                   {{"p.png -o d.png --set model=junk.onnx", "zel: junk.onnx: is no depth network", 1},
                    {"p.png -o d.png --set model=none.onnx", "zel: none.onnx: there is no such file", 1},
                    {"p.png -o d.png --set model=.", "zel: .: is no depth network", 1},
                    {"p.png -o d.png --assets .", "depth network is missing", 1},
                    {"none.png -o d.png --set model=m.onnx", "zel: none.png: ", 1},
                    {"p.png -o d.png --set model=m.onnx --mask none.png", "zel: none.png: ", 1},
                    {"p.png -o d.png --set colour=3", "model=FILE"},
                    {"p.png -o d.png --raw --mask p.png", "--raw takes no --mask"},
                    {"p.png -o d.bmp", ".png"}});
}

}  // namespace
