// What the skin smoother does to pictures, on synthetic portraits whose truth is known. Prints the tables of
// docs/measures.md. Usage: zel_smoothing_measures ASSETS [FACES]
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "beautykernel/lazybeauty/lazybeauty.h"
#include "beautykernel/skintools/skinMaskFromColor.h"
#include "facepoints/faceData.h"
#include "portrait/portrait.h"
#include "reference/slowLazyBeauty.h"
#include "zellab/imageproc/masks/maskMorphology.h"
#include "zellab/imageproc/sfdsp/scaleBilinear.h"

namespace {

constexpr int kWidth = 600, kHeight = 800, kMoles = 12, kTones = 7;
constexpr int kLevel = 3;  // both strengths, those of the portrait scenario

struct Sums {
    double moles = 0, repaired = 0, outside = 0, outsideChange = 0, edgeBefore = 0, edgeAfter = 0;
    double skin = 0, textureBefore = 0, textureAfter = 0;
    // Off the person: what the steps for every pixel do, what the skin mask adds, and where it sees skin.
    double globalChange = 0, maskedChange = 0, masked = 0, farFromMask = 0, farChange = 0;
};

zellab::FaceData faceOf(const zel::Portrait& portrait) {
    const zel::Face& face = portrait.faces.faces.front();
    std::array<zellab::Vector2f, 83> landmarks;
    for (std::size_t i = 0; i < landmarks.size(); ++i)
        landmarks[i] = {face.points[i].x * kWidth, face.points[i].y * kHeight};
    zellab::CInterFacePoint points;
    points.AddFace(landmarks.data(), 0);
    return zellab::makeFaceData(
        {face.rect[0] * kWidth, face.rect[1] * kHeight, face.rect[2] * kWidth, face.rect[3] * kHeight},
        points, 0, kWidth, kHeight);
}

double luma(const std::vector<unsigned char>& rgba, int x, int y) {
    const unsigned char* p = &rgba[static_cast<std::size_t>(y * kWidth + x) * 4];
    return 0.299 * p[0] + 0.587 * p[1] + 0.114 * p[2];
}

double gradient(const std::vector<unsigned char>& rgba, int x, int y) {
    return std::hypot(luma(rgba, x + 1, y) - luma(rgba, x - 1, y),
                      luma(rgba, x, y + 1) - luma(rgba, x, y - 1));
}

/// Squared difference from the mean of the four neighbours: the finest scale.
double texture(const std::vector<unsigned char>& rgba, int x, int y) {
    const double mean =
        (luma(rgba, x + 1, y) + luma(rgba, x - 1, y) + luma(rgba, x, y + 1) + luma(rgba, x, y - 1)) / 4;
    return (luma(rgba, x, y) - mean) * (luma(rgba, x, y) - mean);
}

/// How much darker a mole is than the ring of skin around it.
double depth(const std::vector<unsigned char>& rgba, const zel::Spot& mole) {
    double inside = 0, ring = 0;
    int insideCount = 0, ringCount = 0;
    const int reach = static_cast<int>(mole.radius * 2.5f) + 2;
    const int cx = static_cast<int>(mole.x), cy = static_cast<int>(mole.y);
    for (int y = std::max(cy - reach, 0); y <= std::min(cy + reach, kHeight - 1); ++y)
        for (int x = std::max(cx - reach, 0); x <= std::min(cx + reach, kWidth - 1); ++x) {
            const float far =
                std::hypot(static_cast<float>(x) + 0.5f - mole.x, static_cast<float>(y) + 0.5f - mole.y);
            if (far <= std::max(mole.radius * 0.7f, 0.8f)) inside += luma(rgba, x, y), ++insideCount;
            if (far > mole.radius * 1.8f && far <= mole.radius * 2.5f + 1)
                ring += luma(rgba, x, y), ++ringCount;
        }
    return insideCount && ringCount ? ring / ringCount - inside / insideCount : 0;
}

/// The mask by which the smoother finds skin, in full size, and the same widened by more than its reach.
struct SkinSeen {
    std::vector<unsigned char> mask, wide;
    SkinSeen(const std::vector<unsigned char>& rgba, const zellab::FaceData& face) {
        constexpr int kSmallWidth = 480, kSmallHeight = 640, kReach = 80;
        zellab::FaceData small = face;
        for (int* side : {&small.left, &small.right, &small.top, &small.bottom})
            *side = *side * kSmallWidth / kWidth;
        std::vector<unsigned char> copy(zellab::sampleCount(kSmallWidth, kSmallHeight, 4));
        zellab::ScaleBilinearThreaded(zellab::ConstImageView(rgba.data(), kWidth, kHeight),
                                      zellab::ImageView(copy.data(), kSmallWidth, kSmallHeight));
        const zellab::SkinColourMask found = zellab::skinMaskFromColor(
            zellab::ConstImageView(copy.data(), kSmallWidth, kSmallHeight), 1, &small, {4, 6, 8});
        mask.resize(zellab::sampleCount(kWidth, kHeight));
        zellab::ScaleBilinearThreaded(
            zellab::PlaneView<const unsigned char>(found.mask.data(), kSmallWidth, kSmallHeight),
            zellab::PlaneView<unsigned char>(mask.data(), kWidth, kHeight));
        wide = mask;
        zellab::MaxFilterHorizontal({wide.data(), kWidth, kHeight}, kReach);
        zellab::MaxFilterVertical({wide.data(), kWidth, kHeight}, kReach);
    }
};

/// Compares the smoothed picture with one whose skin mask was empty, off the person.
void measureBackground(const zel::Portrait& portrait, const zellab::FaceData& face,
                       const std::vector<unsigned char>& after, Sums& sums) {
    const std::vector<unsigned char>& before = portrait.image.rgba;
    zellab::OverlayTable overlay;
    if (!overlay.load()) std::exit(1);
    slow::LazyPicture global{kWidth, kHeight, before};
    slow::lazyBeauty(global, {false, true, kLevel, kLevel, false}, overlay, &face);
    const SkinSeen seen(before, face);
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            const auto i = static_cast<std::size_t>(y * kWidth + x);
            if (portrait.person.samples[i] != 0) continue;
            const double was = luma(before, x, y), all = luma(after, x, y), rest = luma(global.rgba, x, y);
            ++sums.outside, sums.outsideChange += std::fabs(all - was);
            sums.globalChange += std::fabs(rest - was), sums.maskedChange += std::fabs(all - rest);
            sums.masked += seen.mask[i] >= 128;
            if (seen.wide[i] == 0) ++sums.farFromMask, sums.farChange += std::fabs(all - rest);
        }
}

void measure(unsigned seed, Sums& sums) {
    zel::PortraitParams params;
    params.width = kWidth, params.height = kHeight, params.seed = seed, params.moles = kMoles;
    params.skinTone = static_cast<zel::SkinTone>(seed % kTones);
    const zel::Portrait portrait = zel::drawPortrait(params);
    const std::vector<unsigned char>& before = portrait.image.rgba;
    std::vector<unsigned char> after = before;
    const zellab::FaceData face = faceOf(portrait);
    // Levels are a global step, and would hide what the local ones do.
    if (!zellab::CLazyBeauty().run(
            {after.data(), kWidth, kHeight},
            {.autoLevels = false, .repairSpots = true, .smoothLevel = kLevel, .overlayLevel = kLevel}, &face))
        std::exit(1);
    measureBackground(portrait, face, after, sums);
    for (const zel::Spot& mole : portrait.moleSpots) {
        const double was = depth(before, mole);
        if (was < 3) continue;  // nobody sees it
        ++sums.moles, sums.repaired += depth(after, mole) < was / 2;
    }
    for (int y = 1; y < kHeight - 1; ++y)
        for (int x = 1; x < kWidth - 1; ++x) {
            const auto i = static_cast<std::size_t>(y * kWidth + x);
            const bool feature =
                portrait.eyes.samples[i] || portrait.lips.samples[i] || portrait.hair.samples[i];
            if (feature && gradient(before, x, y) > 30)
                sums.edgeBefore += gradient(before, x, y), sums.edgeAfter += gradient(after, x, y);
            if (portrait.skin.samples[i] == 255 && portrait.moles.samples[i] == 0 &&
                gradient(before, x, y) < 20) {
                ++sums.skin;
                sums.textureBefore += texture(before, x, y), sums.textureAfter += texture(after, x, y);
            }
        }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return 2;
    std::filesystem::current_path(argv[1]);
    const int faces = argc > 2 ? std::atoi(argv[2]) : 50;
    Sums sums;
    for (int i = 1; i <= faces; ++i) measure(static_cast<unsigned>(i), sums);
    std::printf("| visible moles | repaired | edges kept | fine texture kept |\n|--:|--:|--:|--:|\n");
    std::printf("| %.0f | %.1f %% | %.2f | %.2f |\n\n", sums.moles, 100 * sums.repaired / sums.moles,
                sums.edgeAfter / sums.edgeBefore, std::sqrt(sums.textureAfter / sums.textureBefore));
    std::printf(
        "| off the person, mean levels | steps for every pixel | added by the skin mask | added far from it "
        "| "
        "taken for skin |\n|--:|--:|--:|--:|--:|\n");
    std::printf("| %.2f | %.2f | %.2f | %.3f | %.0f %% |\n", sums.outsideChange / sums.outside,
                sums.globalChange / sums.outside, sums.maskedChange / sums.outside,
                sums.farChange / sums.farFromMask, 100 * sums.masked / sums.outside);
}
