#include "cli/commands/applyPlan.h"

#include <gtest/gtest.h>

#include "hostSupport.h"
#include "libzel/effectRegistry.h"

namespace {

using namespace zeltest;

zelcli::ApplyOptions optionsFor(const std::vector<std::string>& inputs, const std::string& output) {
    zelcli::ApplyOptions options;
    options.inputs = inputs;
    options.output = output;
    return options;
}

TEST(ApplyPlan, OneInputGoesToAFileOrIntoAFolder) {
    const TemporaryFolder folder;
    EXPECT_EQ(zelcli::planApply(optionsFor({"a.png"}, "b.JPG")).items[0].output.shown, "b.JPG");
    const std::string here = folder.path().string();
    EXPECT_EQ(zelcli::planApply(optionsFor({"x/a.png"}, here)).items[0].output.shown, here + "/a.png");
    const auto plan = zelcli::planApply(optionsFor({"x/a.png"}, here + "/new/"));
    EXPECT_EQ(plan.items[0].output.shown, here + "/new/a.png");
    ASSERT_EQ(plan.folders.size(), 1u);
    EXPECT_TRUE(plan.items[0].sheet.shown.empty());
}

TEST(ApplyPlan, SeveralInputsShareAFolderWithSheetsAndFaces) {
    const TemporaryFolder folder;
    auto options = optionsFor({"x/a.jpeg", "y/b.bmp"}, folder / "out");
    options.compare = folder / "out";
    options.steps.emplace_back().maskOut = folder / "out";
    options.faces = folder.path().string();
    const auto plan = zelcli::planApply(options);
    EXPECT_EQ(plan.items[0].output.shown, folder / "out/a.jpeg");
    EXPECT_EQ(plan.items[1].output.shown, folder / "out/b.png");
    EXPECT_EQ(plan.items[1].sheet.shown, folder / "out/b-sheet.png");
    EXPECT_EQ(plan.items[1].maskOut.shown, folder / "out/b-mask.png");
    EXPECT_EQ(plan.items[1].faces.shown, folder / "b.json");
    options.faces = "one.json";
    EXPECT_EQ(zelcli::planApply(options).items[1].faces.shown, "one.json");
    EXPECT_TRUE(zelcli::planApply(options).items[1].faces.real.is_absolute());
}

TEST(ApplyPlan, RefusesWhatCouldNotBeMeant) {
    const TemporaryFolder folder;
    writeBytes(folder / "file", {1});
    const zelcli::ApplyOptions cases[] = {
        optionsFor({"a.png"}, folder / "out"),               // no format
        optionsFor({"a.png"}, folder / "out.bmp"),           // not one that is written
        optionsFor({"a.png", "b.png"}, folder / "out.png"),  // one file for two inputs
        optionsFor({"a.png", "b.png"}, folder / "file"),     // likewise
        optionsFor({"x/a.png", "y/a.png"}, folder / "out"),  // two inputs with one name
        optionsFor({"a.bmp", "a.png"}, folder / "out"),      // one name after the suffix changed
    };
    for (const auto& options : cases)
        EXPECT_THROW(zelcli::planApply(options), zelcli::UsageError) << options.output;
    auto sheet = optionsFor({"a.png"}, "b.png"), mask = sheet;
    sheet.compare = mask.steps.emplace_back().maskOut = "./b.png";
    EXPECT_THROW(zelcli::planApply(sheet), zelcli::UsageError);
    EXPECT_THROW(zelcli::planApply(mask), zelcli::UsageError);
}

}  // namespace
