// Faces found by networks, where their files are at hand, and what happens where they are not or are damaged.
#include "libzel/faces/networkFinder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "faces/networksForTests.h"
#include "frame/processorCount.h"
#include "libzel/faces/faceFrame.h"
#include "libzel/faces/faceSearch.h"
#include "libzel/pixels.h"
#include "support/environment.h"
#include "support/scratchFolder.h"
#include "variedPortrait.h"

namespace {

using testing::HasSubstr;

zellab::ConstImageView viewOf(const zel::Image& image) {
    return {image.rgba.data(), image.width, image.height};
}

zel::Image flat(int width, int height, unsigned char level = 120) {
    return {width, height,
            std::vector<unsigned char>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4,
                                       level)};
}

void paste(zel::Image& onto, const zel::Image& part, int left, int top) {
    for (int y = 0; y < part.height; ++y)
        std::copy_n(part.rgba.begin() + 4 * y * part.width, 4 * part.width,
                    onto.rgba.begin() + 4 * (std::ptrdiff_t{y + top} * onto.width + left));
}

zel::Image upsideDown(const zel::Image& image) {
    zel::Image turned{image.width, image.height, {}};
    for (std::size_t i = image.rgba.size(); i > 0; i -= 4)
        turned.rgba.insert(turned.rgba.end(), image.rgba.begin() + static_cast<std::ptrdiff_t>(i) - 4,
                           image.rgba.begin() + static_cast<std::ptrdiff_t>(i));
    return turned;
}

class NetworkFinderTest : public testing::Test {
protected:
    void SetUp() override {
        const std::string folder = zeltest::networksForTests();
        if (folder.empty()) GTEST_SKIP() << "the networks are not installed";
        std::string reason;
        m_finder = zel::NetworkFinder::load(folder, reason);
        ASSERT_TRUE(m_finder) << reason;
    }
    zel::FaceSet find(const zel::Image& image) const { return m_finder->find(viewOf(image)); }

    std::optional<zel::NetworkFinder> m_finder;
};

TEST_F(NetworkFinderTest, FindsDrawnFacesUprightAndUpsideDown) {
    float sum = 0;
    constexpr int kFaces = 4;
    for (int i = 0; i < kFaces; ++i) {
        const auto portrait =
            zel::drawPortrait(zeltrain::variedPortrait(900u + static_cast<unsigned>(i), 200 + 60 * i));
        const zel::FaceSet found = find(portrait.image);
        ASSERT_EQ(found.faces.size(), 1u) << i;
        EXPECT_GT(found.faces[0].confidence.value_or(0), 0.7f);
        const auto truth = zel::landmarksInPixels(portrait.faces.faces[0], portrait.image);
        const auto upright = zel::landmarksInPixels(found.faces[0], portrait.image);
        sum += zel::landmarkError(upright, truth);

        const zel::FaceSet turned = find(upsideDown(portrait.image));
        ASSERT_EQ(turned.faces.size(), 1u) << i;
        auto back = zel::landmarksInPixels(turned.faces[0], portrait.image);
        for (auto& p : back)
            p = {static_cast<float>(portrait.image.width) - p.x,
                 static_cast<float>(portrait.image.height) - p.y};
        EXPECT_LT(zel::landmarkError(back, upright), 0.03f) << i;
    }
    EXPECT_LT(sum / kFaces, 0.05f);
}

TEST_F(NetworkFinderTest, FindsManyFacesTheLargestFirstAndTheSameOnAnyNumberOfThreads) {
    const auto one = zel::drawPortrait(zeltrain::variedPortrait(916, 160)).image;
    const auto large = zel::drawPortrait(zeltrain::variedPortrait(915, 300)).image;
    zel::Image many = flat(10 * one.width, 5 * one.height + large.height);
    for (int i = 0; i < 50; ++i) paste(many, one, i % 10 * one.width, i / 10 * one.height);
    paste(many, large, 0, 5 * one.height);
    const auto findWith = [&](int workers) {
        const zellab::WorkerCount count(workers);
        return find(many);
    };
    const zel::FaceSet found = findWith(3), alone = findWith(1);
    ASSERT_EQ(found.faces.size(), 51u);
    EXPECT_GT(found.faces[0].points[0].y * static_cast<float>(many.height),
              5.0f * static_cast<float>(one.height));
    for (std::size_t i = 1; i < found.faces.size(); ++i)
        EXPECT_GT(found.faces[i - 1].rect[3], 0.8f * found.faces[i].rect[3]) << i;
    ASSERT_EQ(alone.faces.size(), found.faces.size());
    for (std::size_t i = 0; i < found.faces.size(); ++i)
        EXPECT_TRUE(std::equal(found.faces[i].points.begin(), found.faces[i].points.end(),
                               alone.faces[i].points.begin(),
                               [](const auto& a, const auto& b) { return a.x == b.x && a.y == b.y; }))
            << i;
}

TEST_F(NetworkFinderTest, SeesNoFaceWhereThereIsNone) {
    for (const auto& [width, height] : {std::pair(10, 10), {1, 1}, {30000, 100}, {300, 200}})
        EXPECT_TRUE(find(flat(width, height)).faces.empty()) << width << " x " << height;
    EXPECT_TRUE(find({64, 64, zeltest::randomBytes(64 * 64 * 4, 7)}).faces.empty());
    auto hidden = zel::drawPortrait(zeltrain::variedPortrait(911, 200)).image;
    for (std::size_t i = 3; i < hidden.rgba.size(); i += 4) hidden.rgba[i] = 0;
    EXPECT_TRUE(find(hidden).faces.empty()) << "a face that is transparent";
}

TEST_F(NetworkFinderTest, ABitThatFlippedAnywhereIsDoneWithout) {
    const std::string folder = zeltest::networksForTests();
    const zeltest::ScratchFolder damaged;
    const zeltest::Environment told("ZEL_NETWORKS", damaged.path().c_str());
    auto portrait = zel::drawPortrait(zeltrain::variedPortrait(900, 200));
    for (const std::string name : {"faceDetector.onnx", "faceMesh.onnx", "refinedLips.onnx"}) {
        SCOPED_TRACE(name);
        for (const auto& file : std::filesystem::directory_iterator(folder))
            if (file.path().extension() == ".onnx") {
                std::filesystem::remove(damaged.path(file.path().filename()));
                std::filesystem::create_symlink(file.path(), damaged.path(file.path().filename()));
            }
        zeltest::Bytes file = zeltest::readBytes(folder + "/" + name);
        file[file.size() / 2] ^= 1;  // in a weight: it would run
        std::filesystem::remove(damaged / name);
        damaged.write(name, file);
        std::string reason;
        const auto finder = zel::NetworkFinder::load(damaged.path().string(), reason);
        EXPECT_EQ(finder.has_value(), name == "refinedLips.onnx");
        EXPECT_FALSE(finder && finder->refines());
        EXPECT_THAT(reason, HasSubstr(name + ": is damaged"));
        EXPECT_EQ(zel::searchFaces(zel::pixelsOver(portrait.image), "").faces.size(), 1u);
    }
}

TEST(FaceSearch, FallsBackWhereNetworkFilesAreAbsentOrNone) {
    const zeltest::ScratchFolder folder;
    const zeltest::Environment told("ZEL_NETWORKS", folder.path().c_str());
    auto portrait = zel::drawPortrait(zeltrain::variedPortrait(900, 200));
    const zel_pixels pixels = zel::pixelsOver(portrait.image);
    EXPECT_EQ(zel::searchFaces(pixels, "").faces.size(), 1u);
    folder.write("faceDetector.onnx", zeltest::randomBytes(900, 3));
    EXPECT_EQ(zel::searchFaces(pixels, "").faces.size(), 1u);
}

}  // namespace
