// `zel apply` as a photographer uses it on many pictures: chains, recipes, folders, streams, signals.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <fstream>
#include <nlohmann/json.hpp>

#include "cli/files/readPicture.h"
#include "cli/files/writePicture.h"
#include "cli/recipes/recipe.h"
#include "hostSupport.h"

namespace {

using namespace zeltest;
using testing::HasSubstr;

Bytes pixelsOf(const std::string& file) {
    return zelcli::readPicture(std::filesystem::path(file)).image.rgba;
}

TEST(Chain, IsWhatItsEffectsDoOneAfterTheOtherAndARecipeKeepsIt) {
    const TemporaryFolder folder;
    zelcli::writePicture(folder / "a.png", testImage(60, 40, 1));
    expectOk(runZel(folder, "apply bright a.png -o b.png --set level=3"));
    expectOk(runZel(folder, "apply mosaic b.png -o c.png"));
    // Words for all of the chain may stand anywhere, those of a step stand with it.
    expectOk(runZel(folder,
                    "apply bright --quiet --set level=3 + mosaic a.png -o chain.png --save-recipe r.json"));
    EXPECT_EQ(pixelsOf(folder / "chain.png"), pixelsOf(folder / "c.png"));
    EXPECT_NE(pixelsOf(folder / "chain.png"), pixelsOf(folder / "b.png"));
    expectOk(runZel(folder, "apply --recipe r.json a.png -o again.png"));
    EXPECT_EQ(readBytes(folder / "again.png"), readBytes(folder / "chain.png"));
    expectRefusals(folder, "apply ", "o.png",
                   {{"mosaic + a.png -o o.png", "a.png"},
                    {"mosaic + -o o.png", "behind '+'"},
                    {"+ mosaic a.png -o o.png", "before '+'"},
                    {"mosaic --set level=2 + bright a.png -o o.png", "mosaic has no parameter 'level'"},
                    {"--recipe none.json a.png -o o.png", "zel: none.json: No such file", 1}});
}

TEST(Recipe, RefusesWhatItDoesNotUnderstand) {
    const auto why = [](const char* text) {
        return faultOf<zelcli::RecipeError>([&] { zelcli::parseRecipe(text); });
    };
    EXPECT_THAT(why("{"), HasSubstr("no JSON"));
    EXPECT_THAT(why("[]"), HasSubstr("no recipe"));
    EXPECT_THAT(why(R"({"recipe": 2, "steps": []})"), HasSubstr("later version"));
    EXPECT_THAT(why(R"({"recipe": 1, "steps": []})"), HasSubstr("steps"));
    EXPECT_THAT(why(R"({"recipe": 1, "steps": [{"effect": "mosaic", "sett": {}}]})"), HasSubstr("sett"));
    EXPECT_THAT(why(R"({"recipe": 1, "steps": [{"effect": "mosaic", "set": {"a": []}}]})"), HasSubstr("'a'"));
    const zelcli::Recipe recipe{"Mine", {{"bright", {{"level", "3"}, {"look", "warm"}, {"on", "true"}}}}};
    const zelcli::Recipe again = zelcli::parseRecipe(zelcli::recipeJson(recipe));
    EXPECT_EQ(again.name, "Mine");
    EXPECT_EQ(again.steps.at(0).values, recipe.steps[0].values);
}

class Batch : public testing::Test {
protected:
    Batch() {
        std::filesystem::create_directories(folder / "in/deep");
        zelcli::writePicture(folder / "in/a.png", testImage(30, 20, 1));
        zelcli::writePicture(folder / "in/b.jpg", testImage(30, 20, 2));
        zelcli::writePicture(folder / "in/deep/c.png", testImage(30, 20, 3));
        writeBytes(folder / "in/notes.txt", {'x'});
    }
    const TemporaryFolder folder;
};

TEST_F(Batch, TakesFoldersAndSaysWhatBecameOfEach) {
    writeBytes(folder / "in/broken.png", {1, 2});
    const ProgramRun run = runZel(folder, "apply mosaic in -o out --recursive --report r.json --jobs 2");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr("zel: 3 done, 0 skipped, 1 failed in "));
    for (const char* name : {"out/a.png", "out/b.jpg", "out/deep/c.png"})
        EXPECT_TRUE(std::filesystem::exists(folder / name)) << name;
    const auto report = nlohmann::json::parse(readText(folder / "r.json"));
    EXPECT_EQ(report["done"], 3);
    EXPECT_EQ(report["pictures"][2]["state"], "failed");
    // A second run does what is missing or has changed, and nothing else.
    std::filesystem::remove(folder / "out/b.jpg");
    std::filesystem::last_write_time(folder / "in/a.png", std::filesystem::file_time_type::clock::now());
    EXPECT_THAT(runZel(folder, "apply mosaic in -o out --recursive --resume").err,
                HasSubstr("2 done, 1 skipped, 1 failed"));
    EXPECT_THAT(runZel(folder, "apply mosaic in -o out --no-clobber").err,
                HasSubstr("0 done, 2 skipped, 1 failed"));
}

TEST_F(Batch, AnInputIsWrittenOverOnlyWhereThatIsAskedFor) {
    const Bytes before = readBytes(folder / "in/a.png");
    expectRefusals(folder, "apply mosaic ", "o.png",
                   {{"in/a.png -o in/a.png", "--in-place"},
                    {"in/a.png -o in", "--in-place"},
                    {"in/a.png -o in/deep/../a.png", "--in-place"},
                    {"in/a.png --compare in/a.png -o o.png", "--in-place"},
                    {"in/a.png --in-place -o o.png", "takes no --output"},
                    {"in/a.png", "--output is required"}});
    EXPECT_EQ(readBytes(folder / "in/a.png"), before);
    expectOk(runZel(folder, "apply mosaic in/a.png --suffix=-small"));
    EXPECT_TRUE(std::filesystem::exists(folder / "in/a-small.png"));

    chmod((folder / "in/a.png").c_str(), 0640);
    const auto time = std::filesystem::file_time_type::clock::now() - std::chrono::hours(24 * 400);
    std::filesystem::last_write_time(folder / "in/a.png", time);
    expectOk(runZel(folder, "apply mosaic in/a.png --in-place"));
    EXPECT_NE(readBytes(folder / "in/a.png"), before);
    EXPECT_EQ(std::filesystem::last_write_time(folder / "in/a.png"), time);
    struct stat status {};
    stat((folder / "in/a.png").c_str(), &status);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
}

TEST_F(Batch, APictureWithoutAFaceFailsIsSkippedOrCopied) {
    const std::string words = "apply auto-slim-face + mosaic in/b.jpg -o o.jpg --no-face ";
    EXPECT_EQ(runZel(folder, words + "fail").status, 1);
    const ProgramRun skipped = expectOk(runZel(folder, words + "skip"));
    EXPECT_THAT(skipped.err, HasSubstr("in/b.jpg skipped: no face was found"));
    EXPECT_FALSE(std::filesystem::exists(folder / "o.jpg"));
    expectOk(runZel(folder, words + "copy"));
    expectOk(runZel(folder, "apply mosaic in/b.jpg -o m.jpg"));
    EXPECT_EQ(readBytes(folder / "o.jpg"), readBytes(folder / "m.jpg"));
    expectOk(runZel(folder, "apply auto-slim-face in/b.jpg -o copy.jpg --no-face copy"));
    EXPECT_EQ(readBytes(folder / "copy.jpg"), readBytes(folder / "in/b.jpg"));
}

TEST_F(Batch, StandardStreamsCarryAPicture) {
    const std::string piped = "cd '" + folder.path().string() +
                              "' && '" ZEL_PROGRAM "' apply mosaic - -o - --quiet < in/b.jpg > piped.jpg";
    EXPECT_EQ(std::system(piped.c_str()), 0);
    expectOk(runZel(folder, "apply mosaic in/b.jpg -o file.jpg"));
    EXPECT_EQ(readBytes(folder / "piped.jpg"), readBytes(folder / "file.jpg"));
}

// What was begun is done or undone, and the rest is told.
TEST_F(Batch, ASignalEndsTheRunBetweenTwoPictures) {
    for (int i = 0; i < 40; ++i)
        zelcli::writePicture(folder / ("in/p" + std::to_string(i) + ".png"), testImage(500, 400, 5));
    zelcli::writeText(folder / "run.sh",
                      "set -m\n'" ZEL_PROGRAM
                      "' apply nature-smooth in -o out --jobs 1 --report r.json 2> .err &\n"
                      "while [ ! -e out/p0.png ]; do sleep 0.01; done\nkill -INT $!\nwait $!\n");
    const int status = std::system(("cd '" + folder.path().string() + "' && bash run.sh").c_str());
    EXPECT_EQ(WEXITSTATUS(status), 130);
    EXPECT_THAT(readText(folder / ".err"), HasSubstr("zel: interrupted: "));
    const auto report = nlohmann::json::parse(readText(folder / "r.json"));
    EXPECT_TRUE(report["interrupted"]);
    std::size_t whole = 0;
    for (const auto& file : std::filesystem::directory_iterator(folder / "out"))
        whole += pixelsOf(file.path().string()).size() > 0;
    EXPECT_EQ(report["done"], whole);
    EXPECT_GT(report["notBegun"], 0);
}

}  // namespace
