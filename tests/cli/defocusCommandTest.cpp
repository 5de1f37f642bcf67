// Depth of field from the command line: depth given and estimated, words that are wrong, machines without
// OpenGL.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "cli/files/readPicture.h"
#include "cli/files/writePicture.h"
#include "hostSupport.h"
#include "libzel/faces/networksForTests.h"
#include "support/environment.h"

namespace {

using namespace zeltest;
using testing::HasSubstr;

/// A textured picture and a map whose right half lies near, in a folder.
class DefocusCommand : public testing::Test {
protected:
    static constexpr int kWidth = 160, kHeight = 120;
    DefocusCommand() {
        zelcli::writePicture(folder / "a.png", picture);
        zelcli::Image map{64, 48, Bytes(4 * 64 * 48, 255)};
        for (std::size_t i = 0; i < map.rgba.size(); ++i)
            if (i % 4 != 3) map.rgba[i] = i / 4 % 64 < 32 ? 15 : 230;
        zelcli::writePicture(folder / "near-right.png", map);
    }
    /// Mean change of the columns from `left` on.
    double change(const std::string& file, int left, int across) const {
        const Bytes after = zelcli::readPicture(folder / file).image.rgba;
        return differenceOf(cut(after, kWidth, left, 0, across, kHeight),
                            cut(picture.rgba, kWidth, left, 0, across, kHeight))
            .mean;
    }
    const TemporaryFolder folder;
    const zelcli::Image picture = testImage(kWidth, kHeight, 6);
};

TEST_F(DefocusCommand, AGivenDepthMapDecidesWhatIsBlurred) {
    const std::string words = "apply defocus a.png -o o.png --depth near-right.png --depth-out d.png --quiet";
    expectOk(runZel(folder, words + " --set focus=0.9,0.5"));
    EXPECT_LT(change("o.png", 100, 60), 0.5);
    EXPECT_GT(change("o.png", 0, 60), 8);
    const zelcli::Image depth = zelcli::readPicture(folder / "d.png").image;
    EXPECT_EQ(depth.width, kWidth);
    EXPECT_EQ(depth.rgba[4 * 80 * kWidth], 15);
    EXPECT_EQ(depth.rgba[4 * 80 * kWidth + 4 * 150], 230);
    expectOk(runZel(folder, words + " --set focus=0.1,0.5 --set blurLevel=100"));
    EXPECT_LT(change("o.png", 0, 60), 0.5);
    EXPECT_GT(change("o.png", 100, 60), 2);
}

TEST_F(DefocusCommand, LivelinessStrengthensTheGroundAndLeavesTheSubject) {
    const std::string words =
        "apply defocus a.png -o o.png --depth near-right.png --quiet --set focus=0.9,0.5 --set liveliness=";
    const auto result = [&](const char* amount) {
        expectOk(runZel(folder, words + amount));
        return zelcli::readPicture(folder / "o.png").image.rgba;
    };
    const Bytes plain = result("0"), lively = result("1");
    // Mean distance of the strongest channel to the weakest, and the mean of the strongest.
    const auto look = [&](const Bytes& rgba, int left, int across) {
        double colour = 0, light = 0;
        for (int y = 0; y < kHeight; ++y)
            for (int x = left; x < left + across; ++x) {
                const unsigned char* p = &rgba[4 * static_cast<std::size_t>(y * kWidth + x)];
                colour += std::max({p[0], p[1], p[2]}) - std::min({p[0], p[1], p[2]});
                light += std::max({p[0], p[1], p[2]});
            }
        return std::pair{colour / (kHeight * across), light / (kHeight * across)};
    };
    EXPECT_EQ(look(lively, 100, 60), look(plain, 100, 60)) << "the subject";
    EXPECT_GT(look(lively, 0, 60).first, 1.2 * look(plain, 0, 60).first);
    EXPECT_GT(look(lively, 0, 60).second, look(plain, 0, 60).second);
    EXPECT_THAT(runZel(folder, "apply defocus --help").out,
                testing::AllOf(HasSubstr("liveliness"), testing::Not(HasSubstr("vivid"))));
    expectOk(runZel(folder, words + "0 --set vivid=0.2"));
}

TEST_F(DefocusCommand, EstimatesDepthWhereNoneIsGiven) {
    expectOk(runZel(folder, "apply defocus a.png -o o.png --depth-out d.png"));
    expectOk(runZel(folder, "depth a.png -o other.png --quiet"));
    EXPECT_EQ(zelcli::readPicture(folder / "d.png").image.rgba,
              zelcli::readPicture(folder / "other.png").image.rgba);
}

TEST_F(DefocusCommand, PeopleAreKeptByTheNetworkUnlessItIsAbsentOrUnwanted) {
    expectOk(runZel(folder, "portrait -o p.png --faces p.json --size 300x400 --seed 4 --quiet"));
    const auto result = [&](const std::string& more) {
        const ProgramRun run =
            expectOk(runZel(folder, "apply defocus p.png -o o.png --faces p.json --verbose " + more));
        return std::pair{zelcli::readPicture(folder / "o.png").image.rgba, run.err};
    };
    const Bytes plain = result("--set subject=none").first;
    {
        const Environment none("ZEL_NETWORKS", "");
        const auto [without, log] = result("");
        EXPECT_EQ(without, plain);
        EXPECT_THAT(log, HasSubstr("no mask of persons: networks are switched off"));
        EXPECT_THAT(runZel(folder, "apply defocus p.png -o o.png --set subject=person").err,
                    HasSubstr("no mask of persons: networks are switched off"));
        const std::string mask = "--quiet --depth near-right.png --mask near-right.png";
        EXPECT_EQ(runZel(folder, "apply defocus p.png -o o.png " + mask).err, "");
        EXPECT_THAT(
            result("--depth near-right.png --mask near-right.png").second,
            HasSubstr("the mask is 64 by 48 pixels and is stretched to other proportions, 300 by 400"));
    }
    if (networksForTests().empty()) GTEST_SKIP() << "the networks are not installed";
    EXPECT_NE(result("").first, plain);
    // A mask that is given wins: all of the picture stays.
    expectOk(runZel(folder, "portrait -o p.png --size 300x400 --seed 4 --quiet --truth truth"));
    zelcli::writePicture(folder / "all.png", {30, 40, Bytes(4 * 30 * 40, 255)});
    const Bytes before = zelcli::readPicture(folder / "p.png").image.rgba;
    const auto [kept, log] = result("--mask all.png");
    EXPECT_LT(differenceOf(kept, before).mean, 0.01);
    EXPECT_THAT(log, HasSubstr("the mask is all white"));

    expectOk(runZel(folder, "depth p.png -o d.png --person-mask m.png"));
    const zelcli::Image mask = zelcli::readPicture(folder / "m.png").image;
    const zelcli::Image truth = zelcli::readPicture(folder / "truth/person.png").image;
    EXPECT_LT(differenceOf(mask.rgba, truth.rgba).mean, 25);
}

TEST_F(DefocusCommand, EveryShapeIsThereAndDrawsAnotherPicture) {
    // Blurs of a few pixels have a kernel of their own: the shape needs a larger picture to show.
    zelcli::writePicture(folder / "large.png", testImage(512, 384, 6));
    const std::string words =
        "apply defocus large.png -o o.png --depth near-right.png --quiet --set focus=0.9,0.5 "
        "--set blurLevel=100 --set shape=";
    std::vector<Bytes> seen;
    for (const char* shape : {"classic", "hexagon", "heart", "star", "ring", "oval", "spin"}) {
        expectOk(runZel(folder, words + shape));
        const Bytes rgba = zelcli::readPicture(folder / "o.png").image.rgba;
        EXPECT_EQ(std::count(seen.begin(), seen.end(), rgba), 0) << shape;
        seen.push_back(rgba);
    }
}

TEST_F(DefocusCommand, WrongWordsAreRefusedInOneLineAndLeaveNoPicture) {
    expectRefusals(folder, "apply defocus a.png -o o.png --quiet ", "o.png",
                   {{"--set focus=0.5", "focus must be"},
                    {"--set focus=0.5,1.5", "focus must be"},
                    {"--set focus=nan,0.5", "focus must be"},
                    {"--set shape=square", "shape"},
                    {"--set blurLevel=101", "0..100"},
                    {"--depth missing.png", "missing.png", 1}});
}

TEST_F(DefocusCommand, WithoutOpenGlTheProcessorDraws) {
    for (const auto& [name, value] : {std::pair{"LIBGL_DRIVERS_PATH", "/nonexistent"},
                                      {"__EGL_VENDOR_LIBRARY_FILENAMES", "/nonexistent.json"}}) {
        const Environment hidden(name, value);
        expectOk(runZel(folder,
                        "apply defocus a.png -o o.png --quiet --depth near-right.png --set focus=0.9,0.5"));
        EXPECT_LT(change("o.png", 100, 60), 0.5);
        EXPECT_GT(change("o.png", 0, 60), 8);
    }
}

// As long as the command takes them, twice the textures of most drivers.
TEST_F(DefocusCommand, APictureThatIsTooLongForOpenGlIsDrawnByTheProcessor) {
    zelcli::Image strip{32767, 3, Bytes(std::size_t{4} * 32767 * 3, 77)};
    zelcli::writePicture(folder / "long.png", strip);
    for (const char* resolution : {"full", "preview"})
        expectOk(runZel(folder, std::string("apply defocus long.png -o o.png --depth near-right.png --quiet "
                                            "--set resolution=") +
                                    resolution));
}

TEST_F(DefocusCommand, MixMaskMixesByTheMask) {
    zelcli::Image other = picture;
    for (auto& c : other.rgba) c = static_cast<unsigned char>(255 - c);
    zelcli::writePicture(folder / "b.png", other);
    const std::string words = "apply mix-mask a.png -o o.png --mask near-right.png --quiet";
    expectOk(runZel(folder, words + " --second b.png"));
    EXPECT_GT(change("o.png", 100, 60), 10);
    EXPECT_LT(change("o.png", 0, 60), change("o.png", 100, 60) / 4);
    EXPECT_NE(runZel(folder, words).status, 0);
}

}  // namespace
