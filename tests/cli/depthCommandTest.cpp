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
    zelcli::Image image = testImage(width, height, 1);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            unsigned char* p = image.rgba.data() + 4 * (y * width + x);
            p[0] = p[1] = x < width / 2 ? 200 : 20;
            p[2] = x < width / 2 ? 20 : 200;
        }
    return image;
}

class DepthCommand : public testing::Test {
protected:
    DepthCommand() {
        TinyModel model;
        model.input = {1, 3, 48, 40};
        model.outputs[0].weights = {0, 0.5f, 0.5f};
        writeBytes(m_folder / "m.onnx", tinyOnnx(model));
        zelcli::writePicture(m_folder / "p.png", halves(300, 200));
    }
    /// Red of a pixel of a written map.
    int at(const std::string& name, int x, int y) const {
        const zelcli::Image map = zelcli::readPicture(m_folder / name, false).image;
        return map.rgba[static_cast<std::size_t>(4 * (y * map.width + x))];
    }
    TemporaryFolder m_folder;
};

TEST_F(DepthCommand, WritesMapAndSheetInThePicturesSize) {
    const ProgramRun run = runZel(m_folder, "depth p.png -o d.png --set model=m.onnx --compare s.png");
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err.find("[DEBUG"), std::string::npos) << run.err;
    const zelcli::Image map = zelcli::readPicture(m_folder / "d.png", false).image;
    EXPECT_EQ(map.width, 300);
    EXPECT_EQ(map.height, 200);
    EXPECT_LT(at("d.png", 40, 100), 40);
    EXPECT_GT(at("d.png", 260, 100), 215);
    EXPECT_GT(zelcli::readPicture(m_folder / "s.png", false).image.width, 3 * 300);
    ASSERT_EQ(runZel(m_folder, "depth p.png -o r.jpg --set model=m.onnx --raw").status, 0);
    EXPECT_GT(at("r.jpg", 260, 100), 215);
}

// The person of the mask is as near as its mean, wherever the network put its parts.
TEST_F(DepthCommand, MaskBringsThePersonForward) {
    zelcli::Image mask = halves(30, 20);
    for (std::size_t i = 0; i < mask.rgba.size(); i += 4) {
        const bool lower = i / 4 / 30 >= 10;
        for (std::size_t c = 0; c < 3; ++c) mask.rgba[i + c] = lower ? 255 : 0;
    }
    zelcli::writePicture(m_folder / "mask.png", mask);
    ASSERT_EQ(runZel(m_folder, "depth p.png -o d.png --set model=m.onnx --mask mask.png").status, 0);
    EXPECT_GT(at("d.png", 40, 170), at("d.png", 40, 30) + 20);
}

TEST_F(DepthCommand, FailuresNameTheFileAndWrongUsageIsStatusTwo) {
    writeBytes(m_folder / "junk.onnx", randomBytes(500, 1));
    const struct {
        const char* words;
        int status;
        const char* says;
    } cases[] = {
        {"depth p.png -o d.png --set model=junk.onnx", 1, "zel: junk.onnx: is no depth network"},
        {"depth p.png -o d.png --set model=none.onnx", 1, "zel: none.onnx: there is no such file"},
        {"depth p.png -o d.png --set model=.", 1, "zel: .: is no depth network"},
        {"depth p.png -o d.png --assets .", 1, "depth network is missing"},
        {"depth none.png -o d.png --set model=m.onnx", 1, "zel: none.png: "},
        {"depth p.png -o d.png --set model=m.onnx --mask none.png", 1, "zel: none.png: "},
        {"depth p.png -o d.png --set colour=3", 2, "model=FILE"},
        {"depth p.png -o d.png --raw --mask p.png", 2, "--raw takes no --mask"},
        {"depth p.png -o d.tiff", 2, ".png"},
    };
    for (const auto& c : cases) {
        const ProgramRun run = runZel(m_folder, c.words);
        EXPECT_EQ(run.status, c.status) << c.words << run.err;
        EXPECT_THAT(run.err, HasSubstr(c.says)) << c.words;
        EXPECT_FALSE(std::filesystem::exists(m_folder / "d.png")) << c.words;
    }
}

}  // namespace
