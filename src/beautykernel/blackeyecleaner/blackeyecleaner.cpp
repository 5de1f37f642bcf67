#include "beautykernel/blackeyecleaner/blackEyeCleaner.h"

#include <algorithm>
#include <array>

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

RgbaImage smoothCopy(ConstImageView image, int radius) {
    RgbaImage copy = copyOf(image);
    StackBlurRGBA(copy.view(), radius);
    return copy;
}

/// Repaints the crescents from the cheek below, without a seam.
void repairSeamlessly(ImageView image, const EyeRegion& region, const Plane<Byte>& crescents,
                      float strength) {
    const PixelRect& crop = region.crop;
    Plane<Byte> wide = copyOf(crescents.view()), whole(image.width, image.height);
    MaxFilterHorizontal(wide.view(), kWidening);
    MaxFilterVertical(wide.view(), kWidening);
    cutEyes(wide, region);
    copyPixels<Byte>(wide.view(), whole.view().crop(crop.x, crop.y, crop.width, crop.height));
    PoissonEdit(image, whole.view(), strength);
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
    Plane<Byte> keep = copyOf(brightness.view());
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

constexpr DarkCircleMethod kMethodA = {.middleDrop = 0.5f,
                                       .endDrop = 0.25f,
                                       .reach = 0.0f,
                                       .band = 2.0f,
                                       .repairShare = 1.0f,
                                       .fullLift = 1.0f,
                                       .softDivisor = 20,
                                       .softExtra = 5,
                                       .softMin = 8,
                                       .keepDivisor = 60,
                                       .keepExtra = 5,
                                       .keepMin = 15,
                                       .keepsTexture = false};
constexpr DarkCircleMethod kMethodB = {.middleDrop = -0.3f,
                                       .endDrop = -0.1f,
                                       .reach = 0.06f,
                                       .band = 1.5f,
                                       .repairShare = 0.5f,
                                       .fullLift = 0.13f,
                                       .softDivisor = 60,
                                       .softExtra = 2,
                                       .softMin = 4,
                                       .keepDivisor = 90,
                                       .keepExtra = 2,
                                       .keepMin = 4,
                                       .keepsTexture = true};

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
    const RgbaImage smooth = method.keepsTexture ? smoothCopy(crop, kTextureRadius) : RgbaImage();
    for (int y = 0; y < crop.height; ++y)
        for (int x = 0; x < crop.width; ++x) {
            const int value = keep.view().row(y)[x], weight = soft.view().row(y)[x];
            const Byte* cheek = cheeks.colour(x);
            Byte* p = crop.at(x, y);
            const Byte* around = method.keepsTexture ? smooth.view().at(x, y) : p;
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

void removeCircles(ImageView image, const DarkCircleRun& run, const DarkCircleMethod& method) {
    if (!image.valid() || !run.points) return;
    const std::optional<EyeRegion> region = findEyeRegion(image.width, image.height, run);
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

void CBlackEyeCleaner::Run(ImageView image, const DarkCircleRun& run) {
    removeCircles(image, run, kMethodA);
}

void CBlackEyeCleanerB::Run(ImageView image, const DarkCircleRun& run) {
    removeCircles(image, run, kMethodB);
}

}  // namespace zellab
