// `zel networks` from outside.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "hostSupport.h"
#include "support/environment.h"

namespace {

using namespace zeltest;
using testing::HasSubstr;

/// The states by name.
std::map<std::string, std::string> statesIn(const std::string& json) {
    const auto parsed = nlohmann::json::parse(json);
    std::map<std::string, std::string> states;
    for (const auto& network : parsed["networks"]) states[network["name"]] = network["state"];
    return states;
}

TEST(NetworksCommand, TellsWhatIsThereWhatIsNotAndWhatBringsIt) {
    const TemporaryFolder folder;
    const Environment told("ZEL_NETWORKS", folder.path().c_str());
    writeBytes(folder / "faceMesh.onnx", {1, 2, 3});
    const ProgramRun table = expectOk(runZel(folder, "networks"));
    EXPECT_EQ(table.err, "");
    EXPECT_EQ(std::count(table.out.begin(), table.out.end(), '\n'), 8 + 2) << table.out;
    EXPECT_THAT(table.out,
                HasSubstr("faceMesh.onnx         unusable  tells a face's shape, and whether it is one  " +
                          (folder / "faceMesh.onnx")));
    EXPECT_THAT(table.out, HasSubstr("missing: there is no such file; scripts/networks"));
    EXPECT_THAT(table.out, HasSubstr("unusable: is damaged"));

    auto states = statesIn(expectOk(runZel(folder, "networks --json")).out);
    EXPECT_EQ(states.size(), 8u);
    EXPECT_EQ(states["faceMesh.onnx"], "unusable");
    EXPECT_EQ(states["faceDetector.onnx"], "missing");
    EXPECT_EQ(states["portrait_depth.onnx"], "ready");

    std::filesystem::create_directories(folder / "own/depth");
    const Environment off("ZEL_NETWORKS", "");
    states = statesIn(expectOk(runZel(folder, "networks --json --assets own")).out);
    EXPECT_EQ(states["portrait_depth.onnx"], "missing");
    EXPECT_THAT(expectOk(runZel(folder, "networks")).out, HasSubstr("missing: networks are switched off"));
    expectRefusals(folder, "networks --assets ", "own/x", {{"nowhere", "is no folder", 1}});
}

}  // namespace
