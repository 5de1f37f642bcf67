#include <gtest/gtest.h>

#include <array>

#include "beautykernel/skinmaskstatisdetector/skinMaskManager.h"
#include "beautykernel/skinmaskstatisdetector/skinMaskStatisDetector.h"
#include "portrait/portrait.h"
#include "support/standardFace.h"
#include "zellab/imageproc/colour/yCbCr.h"

namespace {

using zelbeauty::SkinFaceRecord;

constexpr unsigned char kSkinFrom = 128;  // map values that count as skin

/// Counts over portraits, features left out.
struct Tally {
    long litSkin = 0, litFound = 0, skin = 0, found = 0, other = 0, wrong = 0;
};

SkinFaceRecord recordOf(const zel::Portrait& portrait, int width, int height) {
    const zel::Face& face = portrait.faces.faces.front();
    const auto w = static_cast<float>(width), h = static_cast<float>(height);
    std::array<zellab::Vector2f, 83> landmarks;
    for (std::size_t i = 0; i < landmarks.size(); ++i)
        landmarks[i] = {face.points[i].x * w, face.points[i].y * h};
    const zeltest::OneFace points(landmarks);
    SkinFaceRecord record;
    record.left = static_cast<int>(face.rect[0] * w), record.top = static_cast<int>(face.rect[1] * h);
    record.right = static_cast<int>((face.rect[0] + face.rect[2]) * w);
    record.bottom = static_cast<int>((face.rect[1] + face.rect[3]) * h);
    record.pointCount = points.GetInterPointCount();
    std::copy_n(points.GetInterPoints(0), record.pointCount, record.points);
    return record;
}

/// @param tallies  of the first and of the second chroma table
void addPortrait(zel::SkinTone tone, unsigned seed, std::array<Tally, 2>& tallies) {
    zel::PortraitParams params;
    params.width = 240, params.height = 320, params.seed = seed, params.skinTone = tone;
    zel::Portrait portrait = zel::drawPortrait(params);
    const std::size_t count = portrait.skin.samples.size();
    std::vector<unsigned char> y(count), cb(count), cr(count);
    const int width = params.width, height = params.height;
    zellab::RGBAToYCbCrPlanes({portrait.image.rgba.data(), width, height}, {y.data(), width, height},
                              {cb.data(), width, height}, {cr.data(), width, height});
    const SkinFaceRecord face = recordOf(portrait, params.width, params.height);
    const zelbeauty::YCbCrView picture{
        {y.data(), width, height}, {cb.data(), width, height}, {cr.data(), width, height}};
    const zelbeauty::FaceColour colour = zelbeauty::SkinMaskStatisDetector::GetFaceColorYuv(picture, face);
    for (std::size_t table = 0; table < tallies.size(); ++table) {
        zelbeauty::SkinMaskManager manager(0);
        manager.DetectSkin(picture, {&face, 1}, 15, table == 1);
        Tally& tally = tallies[table];
        for (std::size_t i = 0; i < count; ++i) {
            const int map = manager.GetSkinMask().data[i], truth = portrait.skin.samples[i];
            const bool feature = map == 100 || portrait.eyes.samples[i] || portrait.brows.samples[i] ||
                                 portrait.lips.samples[i];
            const bool found = map >= kSkinFrom, lit = y[i] >= colour.low && y[i] <= colour.high;
            if (feature) continue;
            if (truth <= 5) ++tally.other, tally.wrong += found;
            if (truth < 250) continue;
            ++tally.skin, tally.found += found;
            if (lit) ++tally.litSkin, tally.litFound += found;
        }
    }
}

class SkinTones : public testing::TestWithParam<zel::SkinTone> {};

/// What the chroma blobs decide: skin of the face's own brightness is found and the rest is not. Deep shadow
/// on the neck falls to the brightness range, whatever the blobs are; the last line watches how much.
TEST_P(SkinTones, AreFoundAndTheirSurroundingsAreNot) {
    std::array<Tally, 2> tallies;
    for (unsigned seed = 1; seed <= 8; ++seed) addPortrait(GetParam(), seed, tallies);
    const auto share = [](long part, long of) { return static_cast<double>(part) / static_cast<double>(of); };
    for (const Tally& tally : tallies) {
        SCOPED_TRACE(&tally == &tallies.front() ? "first table" : "second table");
        EXPECT_GE(share(tally.litFound, tally.litSkin), 0.95);
        EXPECT_LE(share(tally.wrong, tally.other), &tally == &tallies.front() ? 0.10 : 0.15);
        EXPECT_GE(share(tally.found, tally.skin), 0.70);
    }
}

INSTANTIATE_TEST_SUITE_P(All, SkinTones,
                         testing::Values(zel::SkinTone::porcelain, zel::SkinTone::fair, zel::SkinTone::beige,
                                         zel::SkinTone::olive, zel::SkinTone::tan, zel::SkinTone::brown,
                                         zel::SkinTone::ebony));

}  // namespace
