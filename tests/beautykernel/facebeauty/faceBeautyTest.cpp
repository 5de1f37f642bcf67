#include "beautykernel/facebeauty/facebeauty.h"

#include <gtest/gtest.h>

#include "reference/slowSkin.h"
#include "support/scratchFolder.h"
#include "support/skinPicture.h"
#include "support/streamCapture.h"
#include "support/workingFolder.h"

namespace {

using zellab::CFaceBeauty;
using zellab::FaceBeautyParams;
using zellab::FaceData;
using namespace zeltest;

const Size kSmall{90, 70}, kLarge{641, 60};

Bytes cube(const char* name) {
    Bytes file = readBytes(std::string("style/base/") + name);
    return file.erase(file.begin(), file.begin() + 8), file;
}

bool run(Bytes& rgba, Size size, const FaceBeautyParams& params, FaceData* face = nullptr,
         const Bytes& mask = {}, Size maskSize = {0, 0}) {
    const StreamCapture quiet(stderr);
    return CFaceBeauty().Run({rgba.data(), size.width, size.height},
                             {mask.empty() ? nullptr : mask.data(), maskSize.width, maskSize.height}, face,
                             params);
}

/// The sizes on both sides of the limit between the roads, every option in turn, with and without a face.
TEST(FaceBeautyMatchesSlow, OnBothRoads) {
    const WithAssets assets;
    zellab::OverlayTable overlay;
    ASSERT_TRUE(overlay.load());
    const slow::StyleCubes cubes{cube("tone3.bin"), cube("tone3_1.bin"), cube("tone4.bin")};
    const zellab::LevelsParams levels = {20, 80, 230, 0, 255}, noLevels = {0, 100, 255, 0, 255};
    const FaceBeautyParams settings[] = {{1, 0, 1, 0, 1.0f, 0.5f},
                                         {0, 1, 0, 1, 0.4f, 1.0f, levels},
                                         {0, 1, 0, 0, 0.005f, 0.0f, noLevels},
                                         {1, 1, 0, 1, 0.995f, 0.8f, levels}};
    const Size maskSize{37, 50};
    const Bytes mask = randomPlane(maskSize.width, maskSize.height, 80);
    int turn = 0;
    for (const Size size : {Size{1, 1},
                            {9, 1},
                            kSmall,
                            {640, 33},
                            {210, 205},
                            {641, 1},
                            {3, 700},
                            kLarge,
                            {70, 641},
                            {900, 210}})
        for (const int kind : {0, 1, 2}) {
            const FaceBeautyParams& set = settings[turn++ % 4];
            Bytes picture = faceLike(size, 7u + static_cast<unsigned>(turn));
            if (turn % 5 == 0)
                for (unsigned char& b : picture) b = static_cast<unsigned char>(b / 3);
            FaceData face = faceIn(size);
            const Bytes& given = kind == 2 ? mask : Bytes();
            compareWithSlow(
                size, picture,
                [&](Bytes& p) {
                    slow::LazyPicture work{size.width, size.height, p};
                    slow::faceBeauty(work, set, given, maskSize.width, maskSize.height, overlay, cubes,
                                     kind == 0 ? nullptr : &face);
                    p = work.rgba;
                },
                [&](Bytes& p) {
                    ASSERT_TRUE(run(p, size, set, kind == 0 ? nullptr : &face, given, maskSize));
                },
                turn);
        }
}

/// Takes each table away in turn: its line, its position, and what is left of the work.
TEST(FaceBeauty, EachMissingTableHasItsLineAndItsOutcome) {
    const std::string source = "\r\nbeautykernel/facebeauty/facebeauty.cpp";
    struct Case {
        const char* table;
        std::string line;  // empty: nothing is said
        FaceBeautyParams params;
        Size size;
        bool works;
    };
    const FaceBeautyParams portrait{0, 0, 0, 0, 0.5f, 0.5f}, faint{0, 0, 0, 0, 0.0f, 0.5f},
        airy{0, 0, 1, 0, 0.5f, 0.5f};
    const Case cases[] = {
        {"PSOverlay",
         "ERROR:CFaceBeauty Run8kelyy ,failed to load PSOverlay.png from style" + source + "(133)", airy,
         kLarge, false},
        {"PSOverlay",
         "ERROR:CFaceBeauty Run8kelxx ,failed to load PSOverlay.png from style" + source + "(533)", airy,
         kSmall, false},
        {"tone3",
         "ERROR: CFaceBeauty::Run8kelyy, Could not find lut table: style/base/tone3.bin \n" + source +
             "(434)",
         portrait, kLarge, true},
        {"tone3_1", "", faint, kLarge, true},
        {"tone4", "", airy, kLarge, true}};
    const ScratchFolder folder;
    // Into a new folder: where there is one already, one of the compilers' libraries copies nothing.
    std::filesystem::copy(ZEL_ASSETS, folder.path("assets"), std::filesystem::copy_options::recursive);
    const WorkingFolder inside(folder.path("assets"));
    for (const auto& [table, line, params, size, works] : cases) {
        SCOPED_TRACE(table);
        const Bytes picture = faceLike(size, 4);
        Bytes complete = picture;
        ASSERT_TRUE(run(complete, size, params));
        const std::string name = std::string("assets/style/base/") + table + ".bin", path = folder.path(name);
        const Bytes whole = readBytes(path);
        for (const bool damaged : {false, true}) {
            if (damaged)
                folder.write(name, {2, 0, 0, 0, 2, 0, 0, 0, 1});
            else
                std::filesystem::remove(path);
            Bytes without = picture;
            StreamCapture log(stderr);
            EXPECT_EQ(CFaceBeauty().Run({without.data(), size.width, size.height}, {}, nullptr, params),
                      works);
            const std::string said = log.text();
            EXPECT_NE(said.find("version 2.05 run...width:" + std::to_string(size.width) +
                                ", height: " + std::to_string(size.height)),
                      said.npos);
            EXPECT_EQ(said.find("ERROR") == std::string::npos, line.empty()) << said;
            EXPECT_NE(said.find(line), said.npos) << said;
            EXPECT_EQ(without == picture, !works);
            EXPECT_NE(without, complete) << "the table must have shown";
        }
        folder.write(name, whole);
    }
}

}  // namespace
