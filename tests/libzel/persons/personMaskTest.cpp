// Masks of people by the network, where its file is at hand, and what happens where it is not or is damaged.
#include "libzel/persons/personMask.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "faces/networksForTests.h"
#include "support/environment.h"
#include "support/randomImage.h"
#include "support/scratchFolder.h"
#include "variedPortrait.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace {

using testing::HasSubstr;

zellab::ConstImageView viewOf(const zel::Image& image) {
    return {image.rgba.data(), image.width, image.height};
}

/// What both masks have in common, of what either has.
double overlap(const zel::Mask& a, const zel::Mask& b) {
    std::size_t common = 0, either = 0;
    for (std::size_t i = 0; i < a.samples.size(); ++i) {
        const bool inA = a.samples[i] >= 128, inB = b.samples[i] >= 128;
        common += inA && inB;
        either += inA || inB;
    }
    return static_cast<double>(common) / static_cast<double>(either);
}

class PersonMaskTest : public testing::Test {
protected:
    void SetUp() override {
        if (zeltest::networksForTests().empty()) GTEST_SKIP() << "the networks are not installed";
    }
    std::optional<zel::Mask> mask(const zel::Image& image, const zel::FaceSet* faces) {
        return zel::personMask(viewOf(image), faces, ZEL_ASSETS, m_reason);
    }
    std::string m_reason;
};

TEST_F(PersonMaskTest, CoversDrawnPeople) {
    for (unsigned seed = 900; seed < 904; ++seed) {
        const auto portrait = zel::drawPortrait(zeltrain::variedPortrait(seed, 500));
        const auto found = mask(portrait.image, &portrait.faces);
        ASSERT_TRUE(found) << m_reason;
        EXPECT_GT(overlap(*found, portrait.person), 0.8) << seed;
    }
}

// In the whole picture a small person is a few samples; the closer look at the face's person sees it.
TEST_F(PersonMaskTest, SmallPeopleAreLookedAtClosely) {
    const auto portrait = zel::drawPortrait(zeltrain::variedPortrait(901, 300));
    const zel::Image& one = portrait.image;
    const int side = 8 * std::max(one.width, one.height), left = side / 3, top = side / 2;
    zel::Image wide{side, side, {}};
    wide.rgba.assign(zellab::sampleCount(side, side, 4), 150);
    zel::Mask truth{side, side, {}};
    truth.samples.resize(zellab::sampleCount(side, side));
    for (int y = 0; y < one.height; ++y)
        for (int x = 0; x < one.width; ++x) {
            const auto from = static_cast<std::size_t>(y * one.width + x);
            const auto to = static_cast<std::size_t>((y + top) * side + x + left);
            truth.samples[to] = portrait.person.samples[from];
            if (truth.samples[to] >= 128) std::copy_n(&one.rgba[4 * from], 4, &wide.rgba[4 * to]);
        }
    for (std::size_t i = 3; i < wide.rgba.size(); i += 4) wide.rgba[i] = 255;
    zel::FaceSet faces{side, side, portrait.faces.faces};
    for (float& value : faces.faces[0].rect)
        value *= static_cast<float>(one.width) / static_cast<float>(side);
    faces.faces[0].rect[1] *= static_cast<float>(one.height) / static_cast<float>(one.width);
    faces.faces[0].rect[3] *= static_cast<float>(one.height) / static_cast<float>(one.width);
    faces.faces[0].rect[0] += static_cast<float>(left) / static_cast<float>(side);
    faces.faces[0].rect[1] += static_cast<float>(top) / static_cast<float>(side);

    const auto closely = mask(wide, &faces);
    ASSERT_TRUE(closely) << m_reason;
    EXPECT_LE(std::max(closely->width, closely->height), zel::kMaskSide);
    zel::Mask seen = truth;
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            seen.samples[static_cast<std::size_t>(y * side + x)] = closely->samples[static_cast<std::size_t>(
                y * closely->height / side * closely->width + x * closely->width / side)];
    EXPECT_GT(overlap(seen, truth), 0.75);
    const auto nobody = mask(wide, &(faces.faces.clear(), faces));
    ASSERT_TRUE(nobody);
    EXPECT_EQ(*std::max_element(nobody->samples.begin(), nobody->samples.end()), 0)
        << "no face, nobody's mask";
}

TEST_F(PersonMaskTest, OddPicturesAreNoTrouble) {
    for (const auto& [width, height] : {std::pair(1, 1), {1, 5000}, {30000, 2}, {7, 3}}) {
        const zel::Image image{width, height, zeltest::randomBytes(4 * width * height, 5)};
        const zel::FaceSet face{width, height, {{{-0.5f, 0.9f, 1.5f, 0.001f}, {}, {}}}};
        for (const zel::FaceSet* faces : {static_cast<const zel::FaceSet*>(nullptr), &face})
            EXPECT_TRUE(mask(image, faces)) << width << " x " << height << m_reason;
    }
}

TEST_F(PersonMaskTest, AMissingOrDamagedNetworkIsDoneWithoutAndTold) {
    const zeltest::ScratchFolder folder;
    const zeltest::Environment told("ZEL_NETWORKS", folder.path().c_str());
    const zel::Image image{30, 20, zeltest::randomBytes(4 * 30 * 20, 3)};
    const zel::FaceSet faces{30, 20, {{{0.2f, 0.2f, 0.5f, 0.5f}, {}, {}}}};
    EXPECT_FALSE(mask(image, nullptr));
    EXPECT_THAT(m_reason, testing::AllOf(HasSubstr("personMask.onnx"), HasSubstr("scripts/networks")));
    zeltest::Bytes file = zeltest::readBytes(std::string(ZEL_ASSETS) + "/networks/personMask.onnx");
    file.resize(file.size() / 2);
    folder.write("personMask.onnx", file);
    const zellab::Plane<unsigned char> depth(4, 4);
    EXPECT_FALSE(zel::findSubject(viewOf(image), faces, depth.view(), {}, ZEL_ASSETS, m_reason));
    EXPECT_THAT(m_reason, HasSubstr("personMask.onnx"));
}

}  // namespace
