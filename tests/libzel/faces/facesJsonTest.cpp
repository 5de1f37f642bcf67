#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "effectSupport.h"
#include "libzel/faces/faceRecords.h"
#include "libzel/faces/facesJson.h"

namespace {

using testing::HasSubstr;

zel::FaceSet sampleFaces(int count) {
    zel::FaceSet set{640, 480, {}};
    for (int f = 0; f < count; ++f) {
        zel::Face face;
        face.rect = {0.1f, 0.2f, 1.0f / 3, 0.4f};
        for (std::size_t i = 0; i < 83; ++i)
            face.points[i] = {static_cast<float>(i) / 82,
                              static_cast<float>(f) + 1.0f / static_cast<float>(i + 7)};
        set.faces.push_back(face);
    }
    return set;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const auto at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return text.replace(at, from.size(), to);
}

std::string failureOf(const std::string& json) {
    return zeltest::faultOf([&] { zel::parseFaces(json); });
}

TEST(FacesJson, KeepsEveryFloatThroughText) {
    zel::FaceSet set = sampleFaces(2);
    set.faces[1].guessed[ZEL_GROUP_RIGHT_EYE] = 0.7f;
    const std::string text = zel::formatFaces(set);
    EXPECT_THAT(text, HasSubstr("\"guessed\":{\"rightEye\":0.7}"));
    const zel::FaceSet read = zel::parseFaces(text);
    EXPECT_EQ(read.width, 640);
    EXPECT_EQ(read.height, 480);
    ASSERT_EQ(read.faces.size(), 2u);
    for (std::size_t f = 0; f < 2; ++f) {
        EXPECT_EQ(read.faces[f].rect, set.faces[f].rect);
        EXPECT_EQ(read.faces[f].guessed, set.faces[f].guessed);
        for (std::size_t i = 0; i < 83; ++i) {
            EXPECT_EQ(read.faces[f].points[i].x, set.faces[f].points[i].x);
            EXPECT_EQ(read.faces[f].points[i].y, set.faces[f].points[i].y);
        }
    }
    EXPECT_TRUE(zel::parseFaces(zel::formatFaces({8, 8, {}})).faces.empty());
}

TEST(FacesJson, SaysWhatIsWrongAndWhere) {
    const std::string good = zel::formatFaces(sampleFaces(1));
    ASSERT_EQ(failureOf(good), "accepted");
    const std::string firstPoint =
        good.substr(good.find("\"points\":[") + 10,
                    good.find(']', good.find("\"points\":[")) - good.find("\"points\":[") - 9);
    const struct {
        std::string json, says;
    } cases[] = {
        {"", "is not JSON"},
        {replaced(good, "\"width\":640", "\"width\":NaN"), "is not JSON"},
        {"[1]", "an object is needed"},
        {replaced(good, "\"image\"", "\"picture\""), "\"image\" is missing"},
        {replaced(good, "\"width\":640", "\"width\":0"), "image: width"},
        {replaced(good, "\"rect\":[", "\"rect\":[0,"), "face 0: rect: 4 numbers are needed, there are 5"},
        {replaced(good, firstPoint + ",", ""), "face 0: points: 83 pairs are needed, there are 82"},
        {replaced(good, firstPoint, "[0.5]"), "face 0: point 0: 2 numbers are needed"},
        {replaced(good, firstPoint, "[0.5,null]"), "face 0: point 0: must be a number, not null"},
        {replaced(good, firstPoint, "[320,200]"), "pixels are not accepted"},
        {replaced(good, firstPoint, "[1e999,0]"), "too large"},
        {replaced(good, "\"rect\":", "\"guessed\":{\"leftEye\":1.5},\"rect\":"), "guessed: leftEye: must be"},
        {replaced(good, "\"rect\":", "\"guessed\":{\"eye\\n\":1},\"rect\":"), "guessed: the groups are"},
        {replaced(good, "\"rect\":", "\"guessed\":[0],\"rect\":"), "guessed: must be an object"},
        {replaced(good, "\"rect\":[0.1,0.2,", "\"rect\":[0.1,0.2,-"), "above 0"},
        {R"({"image":{"width":1,"height":1},"faces":{}})", "faces: must be a list"},
    };
    for (const auto& c : cases) {
        const std::string said = failureOf(c.json);
        EXPECT_THAT(said, HasSubstr(c.says));
        EXPECT_EQ(said.find('\n'), said.npos);
    }
    // Depth must not cost stack.
    EXPECT_NE(failureOf(std::string(200000, '[')), "accepted");
}

// The two records that the library takes: fractions behind a head, and pixels in a container.
TEST(FaceRecords, GiveTheLibraryItsLayouts) {
    const zel::FaceSet set = sampleFaces(2);
    zel::FaceInfoBlock block(set);
    ASSERT_EQ(block.get()->faceCount, 2);
    EXPECT_EQ(block.get()->faces()[1].rect[2], 1.0f / 3);
    EXPECT_EQ(block.get()->faces()[1].points[82][0], set.faces[1].points[82].x);
    EXPECT_EQ(block.get()->faces()[1].points[82][1], set.faces[1].points[82].y);
    EXPECT_EQ(zel::FaceInfoBlock(zel::FaceSet{}).get()->faceCount, 0);

    const auto points = zel::makeFacePoints(set, 640, 480);
    EXPECT_EQ(points->GetFaceCount(), 2);
    ASSERT_NE(points->GetInterPoints(1), nullptr);
    const CGRect rect = zel::faceRectInPixels(set.faces[0], 640, 480);
    EXPECT_FLOAT_EQ(rect.y, 96.0f);
    EXPECT_FLOAT_EQ(rect.width, 640.0f / 3);
}

}  // namespace
