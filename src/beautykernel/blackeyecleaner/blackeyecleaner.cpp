#include "beautykernel/blackeyecleaner/blackEyeCleaner.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "beautykernel/blackeyecleaner/cheekRows.h"
#include "beautykernel/blackeyecleaner/circleTables.h"
#include "beautykernel/blackeyecleaner/eyeRegion.h"
#include "beautykernel/blackeyecleaner/skinEvenness.h"
#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/core/luma.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/pixelMath.h"
#include "zellab/imageproc/masks/maskMorphology.h"
#include "zellab/imageproc/poisson/poissonEdit.h"

namespace zellab {

namespace {

constexpr int kWidening = 2;            // pixels by which the seamless repair reaches beyond the crescents
constexpr Byte kUntouched = 255;        // plane value of a pixel that keeps its colour
constexpr Byte kNearlyUntouched = 220;  // of one that is darker than skin: lashes, lids
constexpr int kMargin = 10;             // the plane is lowered by this before it weighs

Plane<Byte> lumaPlane(ConstImageView image) {
    Plane<Byte> plane(image.width, image.height);
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x)
            plane.view().row(y)[x] = static_cast<Byte>(lumaOf(image.at(x, y)));
    return plane;
}

std::vector<Byte> smoothCopy(ConstImageView image, int radius) {
    std::vector<Byte> copy(sampleCount(image.width, image.height, 4));
    const ImageView view(copy.data(), image.width, image.height);
    for (int y = 0; y < image.height; ++y)
        std::memcpy(view.row(y), image.row(y), static_cast<std::size_t>(image.width) * 4);
    StackBlurRGBA({copy.data(), image.width, image.height}, radius);
    return copy;
}

/// Repaints the crescents from the cheek below, without a seam.
void repairSeamlessly(ImageView image, const EyeRegion& region, const Plane<Byte>& crescents,
                      float strength) {
    const PixelRect& crop = region.crop;
    Plane<Byte> wide(crop.width, crop.height), whole(image.width, image.height);
    std::copy_n(crescents.data(), wide.size(), wide.data());
    MaxFilterHorizontal(wide.view(), kWidening);
    MaxFilterVertical(wide.view(), kWidening);
    cutEyes(wide, region);
    for (int y = 0; y < crop.height; ++y)
        std::memcpy(whole.view().row(crop.y + y) + crop.x, wide.view().row(y),
                    static_cast<std::size_t>(crop.width));
    PoissonEdit(image, {whole.data(), image.width, image.height}, strength);
}

/// Brightness below which a pixel of the face is no skin: the darkest 9 percent of its middle, and 20 levels
/// more.
int skinThreshold(ConstImageView face) {
    constexpr float kInset = 0.1f, kDarkest = 0.09f;
    constexpr int kAbove = 20;
    const auto inset = [](int size) { return static_cast<int>(static_cast<float>(size) * kInset); };
    const ConstImageView middle =
        face.crop(inset(face.width), inset(face.height), face.width - 2 * inset(face.width),
                  face.height - 2 * inset(face.height));
    std::array<std::int64_t, 256> histogram{};
    for (int y = 0; y < middle.height; ++y)
        for (int x = 0; x < middle.width; ++x) ++histogram[static_cast<std::size_t>(lumaOf(middle.at(x, y)))];
    const float wanted = kDarkest * static_cast<float>(sampleCount(middle.width, middle.height));
    std::int64_t sum = 0;
    int value = 0;
    for (; value < 255; ++value)
        if (static_cast<float>(sum += histogram[static_cast<std::size_t>(value)]) >= wanted) break;
    return value + kAbove;
}

/// How much each pixel of the crop keeps of its colour, 255 all of it: fine dark detail and what is no skin
/// keep theirs.
Plane<Byte> keepPlane(ConstImageView crop, const Plane<Byte>& crescents, int threshold, int faceWidth,
                      const DarkCircleMethod& method) {
    const Plane<Byte> brightness = lumaPlane(crop);
    Plane<Byte> keep(crop.width, crop.height);
    std::copy_n(brightness.data(), keep.size(), keep.data());
    StackBlurGray(keep.view(), faceWidth / 200 + 22);
    for (std::size_t i = 0; i < keep.size(); ++i) {
        const int l = brightness.data()[i];
        Byte value = kPatchWeight[clampToByte(l - keep.data()[i] + 128)];
        if (crescents.data()[i] == 0) {
            value = kUntouched;
        } else if (l < threshold) {
            value = kNearlyUntouched;
        }
        keep.data()[i] = circleCoreCurve()[value];
    }
    StackBlurGray(keep.view(), std::max(method.keepMin, faceWidth / method.keepDivisor + method.keepExtra));
    return keep;
}

constexpr DarkCircleMethod kMethodA = {0.5f, 0.25f, 0.0f, 2.0f, 1.0f, 1.0f, 20, 5, 8, 60, 5, 15, false};
constexpr DarkCircleMethod kMethodB = {-0.3f, -0.1f, 0.06f, 1.5f, 0.5f, 0.13f, 60, 2, 4, 90, 2, 4, true};

/// Mixes a byte by a weight of 255, by a shift that loses a little.
int shifted(int a, int b, int weight) {
    return (a * weight + b * (255 - weight)) >> 8;
}

/// The way from the surroundings to the cheek, as far as it is to be gone.
int liftTowards(int cheek, int surroundings, float fullLift) {
    constexpr float kBeyond = 0.3f;  // of what is more than a circle: the eye's socket keeps its shade
    const auto whole = static_cast<float>(cheek - surroundings), full = static_cast<float>(cheek) * fullLift;
    return static_cast<int>(whole < full ? whole : full + (whole - full) * kBeyond);
}

/// Moves a byte as far as its surroundings have to go, so that texture stays.
int lifted(int value, int lift, int kept, int weight) {
    constexpr int kUnit = 255 * 255;
    const int way = lift * (255 - kept) * weight;
    return value + (way + (way > 0 ? kUnit / 2 : -kUnit / 2)) / kUnit;
}

/// Mixes the pixels that are darker than the cheek of their column towards its colour.
void mixTowardsCheek(ImageView crop, const CheekRows& cheeks, const Plane<Byte>& keep,
                     const Plane<Byte>& soft, int threshold, const DarkCircleMethod& method) {
    constexpr int kTextureRadius = 4;
    const std::vector<Byte> smooth =
        method.keepsTexture ? smoothCopy(crop, kTextureRadius) : std::vector<Byte>();
    const ConstImageView broad(smooth.data(), crop.width, crop.height);
    for (int y = 0; y < crop.height; ++y)
        for (int x = 0; x < crop.width; ++x) {
            const int value = keep.view().row(y)[x], weight = soft.view().row(y)[x];
            const Byte* cheek = cheeks.colour(x);
            Byte* p = crop.at(x, y);
            const Byte* around = method.keepsTexture ? broad.at(x, y) : p;
            if (value == kUntouched || weight == 0 || std::max(lumaOf(p), lumaOf(around)) >= lumaOf(cheek))
                continue;
            if (method.keepsTexture && lumaOf(p) < threshold) continue;  // lashes
            const int kept = std::max(value - kMargin, 0);
            for (int c = 0; c < 3; ++c)
                p[c] = clampToByte(
                    method.keepsTexture
                        ? lifted(p[c], liftTowards(cheek[c], around[c], method.fullLift), kept, weight)
                        : shifted(shifted(p[c], cheek[c], kept), p[c], weight));
        }
}

/// Brightness of lashes and lid lines beside that of the cheek. Other than the face's darkest part it does
/// not rise to the skin itself where the light is even.
int lashThreshold(const CheekRows& cheeks, int columns) {
    constexpr float kLashShare = 0.55f;
    std::int64_t sum = 0;
    for (int x = 0; x < columns; ++x) sum += lumaOf(cheeks.colour(x));
    return static_cast<int>(kLashShare * static_cast<float>(sum) / static_cast<float>(columns));
}

void removeCircles(unsigned char* rgba, int width, int height, const DarkCircleRun& run,
                   const DarkCircleMethod& method) {
    const ImageView image(rgba, width, height);
    if (!image.valid() || !run.points) return;
    const std::optional<EyeRegion> region = findEyeRegion(width, height, run);
    if (!region) return;
    const UnderEyeMasks masks = drawUnderEyeMasks(*region, run, method);
    if (run.useEdges && allowsSeamlessRepair(image, *region, run.points))
        repairSeamlessly(image, *region, masks.repair, run.strength * method.repairShare);

    const PixelRect &face = region->face, &area = region->crop;
    const ImageView crop = image.crop(area.x, area.y, area.width, area.height);
    const CheekRows cheeks(image, *region);
    const int threshold = method.keepsTexture
                              ? lashThreshold(cheeks, area.width)
                              : skinThreshold(image.crop(face.x, face.y, face.width, face.height));
    const Plane<Byte> keep = keepPlane(crop, masks.region, threshold, run.rectWidth, method);
    mixTowardsCheek(crop, cheeks, keep, masks.soft, threshold, method);
}

}  // namespace

void CBlackEyeCleaner::Run(unsigned char* image, int width, int height, const DarkCircleRun& run) {
    removeCircles(image, width, height, run, kMethodA);
}

void CBlackEyeCleanerB::Run(unsigned char* image, int width, int height, const DarkCircleRun& run) {
    removeCircles(image, width, height, run, kMethodB);
}

}  // namespace zellab
