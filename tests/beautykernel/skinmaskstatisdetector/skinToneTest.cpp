#include <gtest/gtest.h>

#include <array>

#include "beautykernel/skinmaskstatisdetector/skinMaskManager.h"
#include "beautykernel/skinmaskstatisdetector/skinMaskStatisDetector.h"
#include "frame/interFacePoint.h"
#include "portrait.h"
#include "zellab/imageproc/yCbCr.h"

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
    zellab::CInterFacePoint points;
    points.AddFace(landmarks.data(), 0);
    SkinFaceRecord record;
    record.left = static_cast<int>(face.rect[0] * w), record.top = static_cast<int>(face.rect[1] * h);
    record.right = static_cast<int>((face.rect[0] + face.rect[2]) * w);
    record.bottom = static_cast<int>((face.rect[1] + face.rect[3]) * h);
    record.pointCount = points.GetInterPointCount();
    std::copy_n(points.GetInterPoints(0), record.pointCount, record.points);
    return record;
}

void addPortrait(zel::SkinTone tone, unsigned seed, bool alt, Tally& tally) {
    zel::PortraitParams params;
    params.width = 240, params.height = 320, params.seed = seed, params.skinTone = tone;
    zel::Portrait portrait = zel::drawPortrait(params);
    const std::size_t count = portrait.skin.samples.size();
    std::vector<unsigned char> y(count), cb(count), cr(count);
    zellab::RGBAToYCbCrPlanes(portrait.image.rgba.data(), y.data(), cb.data(), cr.data(),
                              static_cast<int>(count));
    const SkinFaceRecord face = recordOf(portrait, params.width, params.height);
    int meanY = 0, meanCb = 0, meanCr = 0, low = 0, high = 0;
    zelbeauty::SkinMaskStatisDetector::GetFaceColorYuv(y.data(), cb.data(), cr.data(), params.width,
                                                       params.height, face, meanY, meanCb, meanCr, low, high);
    zelbeauty::SkinMaskManager manager(0);
    manager.DetectSkin(y.data(), cb.data(), cr.data(), params.width, params.height, 1, &face, 15, alt);
    for (std::size_t i = 0; i < count; ++i) {
        const int map = manager.GetSkinMask()[i], truth = portrait.skin.samples[i];
        if (map == 100 || portrait.eyes.samples[i] || portrait.brows.samples[i] || portrait.lips.samples[i])
            continue;
        const bool found = map >= kSkinFrom;
        if (truth <= 5) {
            ++tally.other, tally.wrong += found;
        } else if (truth >= 250) {
            ++tally.skin, tally.found += found;
            if (y[i] >= low && y[i] <= high) ++tally.litSkin, tally.litFound += found;
        }
    }
}

class SkinTones : public testing::TestWithParam<zel::SkinTone> {};

/// What the chroma blobs decide: skin of the face's own brightness is found and the rest is not. Deep shadow
/// on the neck falls to the brightness range, whatever the blobs are; the last line watches how much.
TEST_P(SkinTones, AreFoundAndTheirSurroundingsAreNot) {
    for (const bool alt : {false, true}) {
        Tally tally;
        for (unsigned seed = 1; seed <= 10; ++seed) addPortrait(GetParam(), seed, alt, tally);
        const auto share = [](long part, long of) {
            return static_cast<double>(part) / static_cast<double>(of);
        };
        RecordProperty(alt ? "recallAlt" : "recall", std::to_string(share(tally.found, tally.skin)));
        EXPECT_GE(share(tally.litFound, tally.litSkin), 0.95) << "alt " << alt;
        EXPECT_LE(share(tally.wrong, tally.other), alt ? 0.15 : 0.10) << "alt " << alt;
        EXPECT_GE(share(tally.found, tally.skin), 0.75) << "alt " << alt;
    }
}

INSTANTIATE_TEST_SUITE_P(All, SkinTones,
                         testing::Values(zel::SkinTone::porcelain, zel::SkinTone::fair, zel::SkinTone::beige,
                                         zel::SkinTone::olive, zel::SkinTone::tan, zel::SkinTone::brown,
                                         zel::SkinTone::ebony));

}  // namespace
