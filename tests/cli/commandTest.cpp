// The built program from outside: words in, files, streams and exit status out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "cli/files/facesFile.h"
#include "cli/files/readPicture.h"
#include "cli/files/writePicture.h"
#include "cli/library.h"
#include "hostSupport.h"
#include "support/environment.h"

namespace {

using namespace zeltest;
using testing::HasSubstr;
using testing::Not;

TEST(Command, WrongUsageIsStatusTwoInOneLineAndTouchesNothing) {
    const TemporaryFolder folder;
    zelcli::writePicture(folder / "a.png", testImage(8, 8, 1));
    expectRefusals(folder, "", "o.png",
                   {{"aply bright a.png -o o.png", "did you mean 'apply'?"},
                    {"apply brihgt a.png -o o.png", "did you mean 'bright'?"},
                    {"apply bright a.png -o o.png --set level=11", "0..10"},
                    {"apply bright a.png -o o.png --jbos 2", "did you mean '--jobs'?"},
                    {"apply bright a.png -o o.png --jobs 0", "1 to 64"},
                    {"apply bright a.png -o o.png --level=3", "bright takes it as --set level=VALUE"},
                    {"apply bright a.png -o o.png --overwrite", "here it is --in-place"},
                    {"apply bright -o o.png -- --help", "--help: No such file", 1},
                    {"apply bright a.png -o o.png --face none", "--face is all, largest"},
                    {"help aply", "did you mean"},
                    {"apply bright a.png -o o.png --mask a.png", "takes no --mask"},
                    {"apply bright a.png -o o.png --mask-out m.png", "takes no --mask-out"},
                    {"apply auto-face-inpaint a.png -o o.png --mask-out m.jpg", "must end in .png"},
                    {"apply bright a.png", "--output"},
                    {"apply bright -o o.png", "IN"},
                    {"apply bright a.png -o o.bmp", ".webp or .avif"},
                    {"apply", "EFFECT"},
                    {"--nonsense", "--nonsense"},
                    {"portrait -o o.png --set mole=3", "did you mean 'moles'?"},
                    {"portrait -o o.png --size 9x99999999999", "WIDTHxHEIGHT"},
                    {"portrait -o o.png --seed -1", "--seed"}});
    EXPECT_EQ(runZel(folder, "").status, 2);
}

TEST(Command, HelpTeachesByExampleAndListsEveryEffect) {
    const TemporaryFolder folder;
    const std::string apply = runZel(folder, "apply --help").out, list = runZel(folder, "effects").out,
                      json = runZel(folder, "effects --json").out, man = runZel(folder, "--man").out;
    for (const zel_effect* effect : zelcli::allEffects()) {
        const std::string name = effect->name;
        EXPECT_THAT(apply, HasSubstr(name));
        EXPECT_THAT(list, HasSubstr(name + "\n"));
        EXPECT_THAT(json, HasSubstr("\"name\": \"" + name + "\""));
        const ProgramRun help = expectOk(runZel(folder, "apply " + name + " --help"));
        EXPECT_EQ(help.err, "");
        EXPECT_THAT(help.out, HasSubstr(effect->example));
        for (const zel_parameter* parameter : zelcli::setParameters(*effect)) {
            const bool told = help.out.find(std::string("\n  ") + parameter->name + " ") != std::string::npos;
            EXPECT_EQ(told, !parameter->advanced) << name << ": " << parameter->name;
            EXPECT_THAT(man, HasSubstr(parameter->name));
        }
    }
    EXPECT_THAT(apply, HasSubstr("zel apply nature-smooth portrait.jpg -o smooth.jpg"));
    for (const char* section :
         {".SH NAME", ".SH SYNOPSIS", ".SH EFFECTS", ".SH EXIT STATUS", "\\-\\-compare"})
        EXPECT_THAT(man, HasSubstr(section));
}

TEST(Command, CompletionsKnowEveryEffectAndAreWhatTheirShellReads) {
    const TemporaryFolder folder;
    for (const std::string shell : {"bash", "zsh", "fish"}) {
        const std::string text = expectOk(runZel(folder, "completion " + shell)).out;
        for (const zel_effect* effect : zelcli::allEffects())
            EXPECT_THAT(text, HasSubstr(effect->name)) << shell;
        for (const char* word : {"in-place", "overlay", "blurLevel="})
            EXPECT_THAT(text, HasSubstr(word)) << shell;
        zelcli::writeText(folder / shell, text);
        const std::string check = "command -v " + shell + " > /dev/null || exit 0; " + shell + " -n ";
        EXPECT_EQ(std::system((check + (folder / shell)).c_str()), 0) << shell;
    }
    // The words of an effect that stands on the line.
    zelcli::writeText(folder / "ask",
                      "source ./bash\ncompopt() { :; }\nCOMP_WORDS=(zel apply bright --set le)\n"
                      "COMP_CWORD=4\n_zel\necho \"${COMPREPLY[*]}\" > answer\n");
    EXPECT_EQ(std::system(("cd '" + folder.path().string() + "' && bash ask").c_str()), 0);
    EXPECT_EQ(readText(folder / "answer"), "level=\n");
}

TEST(Command, AFailingInputLeavesItsOutputAndTheOthersGoOn) {
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder / "out");
    zelcli::writePicture(folder / "a.png", testImage(20, 30, 1));
    zelcli::writePicture(folder / "c.jpg", testImage(30, 20, 2));
    writeBytes(folder / "b.png", {'n', 'o', 'n', 'e'});
    writeBytes(folder / "out/b.png", {'o', 'l', 'd'});
    const ProgramRun run =
        runZel(folder, "apply mascara a.png b.png gone.png c.jpg -o out --quiet --set level=0");
    EXPECT_EQ(run.status, 1) << run.err;
    EXPECT_THAT(run.err, HasSubstr("zel: b.png: is not a picture that can be decoded\n"));
    EXPECT_THAT(run.err, HasSubstr("zel: gone.png: No such file or directory\n"));
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 2) << run.err;
    EXPECT_EQ(readText(folder / "out/b.png"), "old");
    EXPECT_EQ(zelcli::readPicture(folder / "out/a.png").image.height, 30);
    EXPECT_EQ(zelcli::readPicture(folder / "out/c.jpg").image.height, 20);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / "out"), {}), 3);
}

TEST(Command, FourJobsWriteTheBytesOfOne) {
    const TemporaryFolder folder;
    std::vector<std::string> names;
    std::string inputs;
    for (unsigned i = 0; i < 10; ++i) {
        names.emplace_back(1, static_cast<char>('a' + i));
        names.back().append(i % 3 ? ".png" : ".jpg");
        zelcli::writePicture(folder / names.back(), testImage(60 + 7 * static_cast<int>(i), 50, i));
        inputs.append(" ").append(names.back());
    }
    const std::string words = "apply nature-smooth" + inputs + " --set radius=6";
    const ProgramRun one = expectOk(runZel(folder, words + " -o one")),
                     four = expectOk(runZel(folder, words + " -o four/ --jobs 4"));
    EXPECT_EQ(one.out + four.out, "");
    EXPECT_THAT(four.err, HasSubstr("[10/10] "));
    for (const std::string& name : names) {
        const Bytes bytes = readBytes(folder / ("one/" + name));
        EXPECT_FALSE(bytes.empty());
        EXPECT_EQ(bytes, readBytes(folder / ("four/" + name))) << name;
    }
}

TEST(Command, AMissingFolderForTheOutputStopsTheSheetToo) {
    const TemporaryFolder folder;
    zelcli::writePicture(folder / "in.jpg", testImage(64, 40, 3));
    const ProgramRun run = runZel(
        folder, "apply mascara in.jpg -o sub/../out.png --compare sheet.png --assets . --set radius=2");
    EXPECT_EQ(run.status, 1) << run.err;
    EXPECT_THAT(run.err, HasSubstr("zel: sub/../out.png: cannot be written"));
    EXPECT_FALSE(std::filesystem::exists(folder / "sheet.png"));
    expectOk(runZel(folder, "apply mascara in.jpg -o out.png --compare sheet.png --set radius=2"));
    EXPECT_GT(zelcli::readPicture(folder / "sheet.png").image.width, 2 * 64);
}

TEST(Command, ReadsScrambledFilesOnlyWhenToldSo) {
    const TemporaryFolder folder;
    zelcli::writePicture(folder / "plain.png", testImage(9, 7, 4));
    Bytes bytes = readBytes(folder / "plain.png");
    while (bytes.size() % 4) bytes.push_back(0);  // whole words; a decoder stops at the end mark
    const unsigned char key[4] = {0xD6, 0x27, 0x1E, 0x5C};
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] ^= key[i % 4];
    const std::size_t size = bytes.size();
    Bytes head;
    for (std::size_t i = 0; i < 4; ++i) head.push_back(static_cast<unsigned char>(size >> (8 * i)));
    bytes.insert(bytes.begin(), head.begin(), head.end());
    writeBytes(folder / "s.bin", bytes);
    EXPECT_EQ(runZel(folder, "apply mascara s.bin -o o.png --set level=0").status, 1);
    expectOk(runZel(folder, "apply mascara s.bin -o o.png --set level=0 --scrambled"));
    EXPECT_EQ(zelcli::readPicture(folder / "o.png").image.rgba, testImage(9, 7, 4).rgba);
}

/// A .cube file with the colours of red and blue exchanged.
const char* const kExchange = "LUT_3D_SIZE 2\n0 0 0\n0 0 1\n0 1 0\n0 1 1\n1 0 0\n1 0 1\n1 1 0\n1 1 1\n";

// The portrait scenario at full strength is the look alone, and searches for no face.
TEST(Command, AppliesALookFromACubeFile) {
    const TemporaryFolder folder;
    const zelcli::Image image = testImage(48, 36, 11);
    zelcli::writePicture(folder / "in.png", image);
    zelcli::writeText(folder / "look.cube", kExchange);
    const std::string words = "apply scenario in.png -o out.png --set type=portrait --set alpha=1 --cube ";
    const ProgramRun run = expectOk(runZel(folder, words + "look.cube"));
    EXPECT_THAT(run.err, testing::Not(HasSubstr("face")));
    const zelcli::Image out = zelcli::readPicture(folder / "out.png").image;
    for (std::size_t i = 0; i < image.rgba.size(); i += 4)
        for (std::size_t c = 0; c < 3; ++c) ASSERT_NEAR(out.rgba[i + c], image.rgba[i + 2 - c], 2) << i;

    zelcli::writeText(folder / "broken.cube", "LUT_3D_SIZE 2\n0 0\n");
    const ProgramRun broken = runZel(folder, words + "broken.cube");
    EXPECT_EQ(broken.status, 1) << broken.err;
    EXPECT_THAT(broken.err, HasSubstr("broken.cube: line 2"));
    // The other recipes do not look for faces either; the portrait below full strength does.
    EXPECT_THAT(runZel(folder, "apply scenario in.png -o out.png --set type=food").err,
                testing::Not(HasSubstr("face")));
    EXPECT_THAT(runZel(folder, "apply scenario in.png -o out.png --set type=2").err, HasSubstr("face"));
}

TEST(Command, MaskOutHoldsTheSkinThatTheRepairFound) {
    const TemporaryFolder folder;
    expectOk(runZel(folder, "portrait -o p.png --size 240x320 --seed 5 --faces f.json --truth t"));
    const std::string words = "apply auto-face-inpaint p.png -o o.png --faces f.json --mask-out ";
    expectOk(runZel(folder, words + "all.png"));
    const zelcli::Mask all = zelcli::readMask(folder / "all.png"),
                       skin = zelcli::readMask(folder / "t/skin.png");
    ASSERT_EQ(all.samples.size(), skin.samples.size());
    std::size_t onSkin = 0, found = 0;
    for (std::size_t i = 0; i < skin.samples.size(); ++i)
        if (skin.samples[i] == 255) ++onSkin, found += all.samples[i] >= 128;
    EXPECT_GT(found * 2, onSkin);

    // What --mask leaves out comes back black, the rest as before.
    zelcli::Image half = zelcli::readPicture(folder / "p.png").image;
    for (std::size_t i = 0; i < half.rgba.size(); ++i)
        half.rgba[i] = i < half.rgba.size() / 2 || i % 4 == 3 ? 255 : 0;
    zelcli::writePicture(folder / "half.png", half);
    expectOk(runZel(folder, words + "half-out.png --mask half.png"));
    zelcli::Mask expected = all;
    std::fill(expected.samples.begin() + static_cast<std::ptrdiff_t>(expected.samples.size() / 2),
              expected.samples.end(), static_cast<unsigned char>(0));
    EXPECT_EQ(zelcli::readMask(folder / "half-out.png").samples, expected.samples);
}

TEST(Command, DrawsAPortraitWithFacesAndTruth) {
    const TemporaryFolder folder;
    const std::string words = "portrait --size 90x120 --seed 5 --set noise=0.2 ";
    const ProgramRun run =
        expectOk(runZel(folder, words + "--set moles=9 -o p.png --faces f.json --truth t/deep"));
    EXPECT_EQ(run.out, "");
    const libzel::Faces faces = zelcli::readFaces(folder / "f.json");
    int width = 0, height = 0;
    ASSERT_EQ(zel_faces_count(faces.get()), 1u);
    ASSERT_EQ(zel_faces_size(faces.get(), &width, &height), ZEL_OK);
    EXPECT_EQ(width, 90);
    EXPECT_EQ(readBytes(folder / "f.json"), readBytes(folder / "t/deep/faces.json"));
    EXPECT_EQ(readBytes(folder / "t/deep/depth.png")[24], 16);  // bits a sample in IHDR
    // The clean picture is what the same words draw without the layer.
    expectOk(runZel(folder, words + "-o clean.png"));
    EXPECT_EQ(readBytes(folder / "clean.png"), readBytes(folder / "t/deep/clean.png"));
    EXPECT_NE(readBytes(folder / "p.png"), readBytes(folder / "clean.png"));
    const zelcli::Mask moles = zelcli::readMask(folder / "t/deep/moles.png");
    EXPECT_TRUE(std::any_of(moles.samples.begin(), moles.samples.end(), [](auto m) { return m > 0; }));
    EXPECT_EQ(runZel(folder, words + "-o none/p.png").status, 1);
}

TEST(Assets, TheEnvironmentTellsTheFolderWhereNoOptionDoes) {
    const TemporaryFolder folder;
    zelcli::writePicture(folder / "a.png", testImage(24, 18, 3));
    const std::string words = "apply scenario a.png -o o.png --set type=scenery";
    {
        const Environment told("ZEL_ASSETS", (folder / "none").c_str());
        const ProgramRun run = runZel(folder, words);
        EXPECT_EQ(run.status, 1) << run.err;
        EXPECT_THAT(run.err, HasSubstr("ZEL_ASSETS names no folder"));
    }
    std::filesystem::create_directories(folder / "mine");
    const Environment told("ZEL_ASSETS", (folder / "mine").c_str());
    const ProgramRun run = runZel(folder, words);
    EXPECT_EQ(run.status, 1) << run.err;
    EXPECT_THAT(run.err, HasSubstr("looks/clear.cube"));
    expectOk(runZel(folder, "apply mosaic a.png -o o.png"));
}

TEST(Scenario, AtFullStrengthThePortraitRecipeIsCautionedAgainst) {
    const TemporaryFolder folder;
    zelcli::writePicture(folder / "a.png", testImage(24, 18, 3));
    const auto says = [&](const std::string& set) {
        const ProgramRun run =
            expectOk(runZel(folder, "apply scenario a.png -o o.png --set look=warm " + set));
        return run.err;
    };
    EXPECT_THAT(says("--set alpha=1"), HasSubstr("zel: note: alpha is 1: the look alone is applied"));
    EXPECT_THAT(says("--set alpha=0.9 --set type=haze"), Not(HasSubstr("alpha")));
    EXPECT_THAT(says("--set alpha=1 --set type=travel"), Not(HasSubstr("alpha")));
}

}  // namespace
