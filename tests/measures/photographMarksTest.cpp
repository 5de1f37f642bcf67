#include "measures/photographMarks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/faultOf.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::string photographs(const std::string& text) {
    return R"({"photographs": {"one": )" + text + "}}";
}

std::string markedFace(const std::string& points, const std::string& more = "") {
    return photographs(R"({"half": "tune", "faces": [{"edges": [], "points": {)" + points + "}" + more +
                       "}]}");
}

TEST(PhotographMarks, TellWhereATextIsWrong) {
    const std::string pupils = R"("24": [1, 2], "70": [5, 5])";
    ASSERT_EQ(zelmeasures::readMarks(markedFace(pupils)).front().faces.front().pupilDistance, 5);
    const struct {
        std::string text;
        const char* words;
    } marks[] = {{"", "the marks: "},
                 {"{}", "photographs"},
                 {photographs(R"({"half": "both"})"), "half: must be"},
                 {markedFace(R"("24": [1, 2])"), "lacks a pupil"},
                 {markedFace(pupils + R"(, "83": [1, 2])"), "\"83\": is no landmark"},
                 {markedFace(pupils + R"(, "1x": [1, 2])"), "\"1x\": is no landmark"},
                 {markedFace(pupils + R"(, "-1": [1, 2])"), "\"-1\": is no landmark"},
                 {markedFace(pupils + R"(, "0": [1])"), "wants two numbers"},
                 {markedFace(pupils + R"(, "0": ["1", 2])"), "must be number"},
                 {markedFace(pupils, R"(, "pupilDistance": 0)"), "must be above 0"}};
    for (const auto& wrong : marks)
        EXPECT_THAT(zeltest::faultOf([&] { zelmeasures::readMarks(wrong.text); }), HasSubstr(wrong.words))
            << wrong.text;

    const char* const boxes[] = {"[-1, 0, 20, 20]", "[0, 0, 0, 20]", "[0, 0, 20]", R"("all")"};
    for (const std::string box : boxes)
        EXPECT_THAT(
            zeltest::faultOf([&] {
                zelmeasures::readPlaces(photographs(R"({"ground": {}, "sharp": {"hat": )" + box + "}}"));
            }),
            StartsWith("one: "))
            << box;
}

TEST(PhotographMarks, OfTheRepositoryServeTheMeasures) {
    const std::string folder = ZEL_PHOTOGRAPH_MARKS;
    std::map<std::string, std::size_t> faces;
    for (const auto& photograph : zelmeasures::readMarks(zelmeasures::readText(folder + "/marks.json"))) {
        faces[photograph.half] += photograph.faces.size();
        for (const auto& face : photograph.faces)
            for (const auto& line : face.edges) EXPECT_GE(line.size(), 2u) << photograph.name;
    }
    EXPECT_GE(faces["tune"], 12u);
    EXPECT_GE(faces["held"], 12u);
    EXPECT_EQ(faces["none"], 0u);
    for (const auto& photograph : zelmeasures::readPlaces(zelmeasures::readText(folder + "/places.json")))
        for (const auto& place : photograph.places) {
            EXPECT_GE(std::min(place.width, place.height), 12) << photograph.name << ": " << place.what;
            EXPECT_LE(std::max(place.width, place.height), 60) << photograph.name << ": " << place.what;
        }
}

}  // namespace
