#include "beautykernel/lazybeauty/lazybeauty.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <optional>

#include "beautykernel/lazybeauty/detailWeight.h"
#include "beautykernel/lazybeauty/shadowLift.h"
#include "beautykernel/lazybeauty/smoothMix.h"
#include "beautykernel/skintools/featureMaskPainter.h"
#include "beautykernel/skintools/shadowPlane.h"
#include "beautykernel/skintools/skinMaskFromColor.h"
#include "beautykernel/skintools/spotPaste.h"
#include "frame/processorCount.h"
#include "frame/zel_log.h"
#include "zellab/imageproc/blur/recursiveGaussian.h"
#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/core/luma.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/sfdsp/bilinearRows.h"
#include "zellab/imageproc/sfdsp/scaleBilinear.h"
#include "zellab/imageproc/sharpen/unsharpMask.h"
#include "zellab/imageproc/tone/levels.h"

namespace zellab {

namespace {

constexpr int kDirectWidth = 480, kDirectHeight = 640;  // pictures up to this are worked on as they are
constexpr MaskBlurRadii kMaskRadii = {4, 6, 8};
constexpr int kShadowRadius = 20,
              kOverlayRadius = 10;    // blurs of the high pass: taken away, and before the overlay
constexpr float kSmoothSigma = 1.5f;  // blur of the colours that are blended in
constexpr float kUnsharpRadius = 4.0f;

/// What differs between a picture that is worked on as it is and one that decides on a smaller copy.
struct Path {
    LightnessOf lightness;
    int detailBias;
    float edgeSigma;
    int unsharpPercent;
};
constexpr Path kDirect = {LightnessOf::greenAndBlue, 36, 1.2f, 16};
constexpr Path kScaled = {LightnessOf::greenAlone, 42, 1.4f, 26};

struct WorkSize {
    int width, height;
    float scale;
};

WorkSize workSizeFor(int width, int height) {
    const float fw = static_cast<float>(width) / 480.0f, fh = static_cast<float>(height) / 640.0f;
    if (fw > fh) {
        const float scale = 1.0f / fw;
        return {kDirectWidth, std::max(static_cast<int>(static_cast<float>(height) * scale + 0.5f), 1),
                scale};
    }
    const float scale = 1.0f / fh;
    return {std::max(static_cast<int>(static_cast<float>(width) * scale + 0.5f), 1), kDirectHeight, scale};
}

Plane<Byte> greyOf(ConstImageView image) {
    Plane<Byte> grey(image.width, image.height);
    for (int y = 0; y < image.height; ++y) {
        const Byte* p = image.row(y);
        Byte* row = grey.view().row(y);
        for (int x = 0; x < image.width; ++x, p += 4) row[x] = lumaOf(p);
    }
    return grey;
}

/// What the final mix needs, from the lifted work image. Takes the high pass over.
SmoothPlanes smoothPlanes(ConstImageView work, PlaneView<const Byte> mask, const FaceData* face,
                          Plane<Byte> highPass, const Path& path) {
    const Plane<Byte> grey = greyOf(work);
    SmoothPlanes planes;
    const std::function<void()> steps[] = {
        [&] { planes.weight = detailWeight(grey.view(), mask, face, path.detailBias); },
        [&] {
            planes.blurred = copyOf(work);
            RecursiveGaussianBlur(planes.blurred.view(), kSmoothSigma, kSmoothSigma);
        },
        [&] {
            planes.edges = equalisedEdges(grey.view());
            RecursiveGaussianBlur(planes.edges.view(), path.edgeSigma, path.edgeSigma);
        },
        [&] {
            planes.highPass = std::move(highPass);
            StackBlurGray(planes.highPass.view(), kOverlayRadius);
        }};
    // The planes are small: workers gain more from a step each than from a share of every loop.
    runTasks(static_cast<int>(std::size(steps)), ProcessorCount(), [&](int i) {
        const WorkerCount alone(1);
        steps[i]();
    });
    return planes;
}

/// The mask without the features of the face: repairs keep away from them.
Plane<Byte> withoutFeatures(PlaneView<const Byte> mask, const FaceData* face) {
    Plane<Byte> search = copyOf(mask);
    if (face) CFeatureMaskPainter::Paint(search.view(), face->points, kAllFeatures, 0);
    return search;
}

RgbaImage smallCopy(ConstImageView image, const WorkSize& size) {
    RgbaImage copy(size.width, size.height);
    ScaleBilinearThreaded(image, copy.view());
    return copy;
}

/// Pastes the spots and lifts the shadows: one walk through the full picture, row by row.
void pasteAndLift(ImageView image, const SpotPaste* spots, Plane<Byte>& shadow, const WeightTables& lift) {
    const BilinearRows weights(shadow.view(), image.width, image.height);
    parallelRows(image.height, [&](int begin, int end) {
        SpotPaste::Scratch scratch;
        std::vector<Byte> weight(sampleCount(image.width, 1));
        for (int y = begin; y < end; ++y) {
            if (spots) spots->row(y, image.row(y), scratch);
            weights.scale(y, scratch.line, weight.data());
            mapRowByWeight(image.row(y), weight, lift);
        }
    });
}

void runDirect(ImageView image, const LazyBeautyParams& params, const FaceData* face,
               const OverlayTable& overlay) {
    const SkinColourMask skin = skinMaskFromColor(image, face ? 1 : 0, face, kMaskRadii);
    if (params.repairSpots) repairSpots(image, skin.mask.view(), face, {});
    ShadowPlanes shadows =
        shadowPlanes(overlayLightness(image, overlay, kDirect.lightness), skin.mask.view(), kShadowRadius);
    mapByPlane(image, shadows.shadow.view(), shadowLiftTables(skin.mean, params.smoothLevel));
    const SmoothPlanes planes =
        smoothPlanes(image, skin.mask.view(), face, std::move(shadows.highPass), kDirect);
    mixSmooth(image, planes, overlay, params.overlayLevel);
}

void runScaled(ImageView image, const LazyBeautyParams& params, const FaceData* fullFace,
               const OverlayTable& overlay) {
    const WorkSize size = workSizeFor(image.width, image.height);
    FaceData smallFace;
    const FaceData* face = nullptr;
    if (fullFace) {
        smallFace = scaledFace(*fullFace, size.scale);
        face = &smallFace;
    }
    RgbaImage before = smallCopy(image, size);
    const SkinColourMask skin = skinMaskFromColor(before.view(), face ? 1 : 0, face, kMaskRadii);
    std::optional<SpotPaste> paste;
    if (params.repairSpots)
        paste.emplace(before.view(), withoutFeatures(skin.mask.view(), face).view(), face, image.width,
                      image.height);
    ShadowPlanes shadows = shadowPlanes(overlayLightness(before.view(), overlay, kScaled.lightness),
                                        skin.mask.view(), kShadowRadius);
    pasteAndLift(image, paste ? &*paste : nullptr, shadows.shadow,
                 shadowLiftTables(skin.mean, params.smoothLevel));
    const RgbaImage lifted = smallCopy(image, size);
    const SmoothPlanes planes =
        smoothPlanes(lifted.view(), skin.mask.view(), face, std::move(shadows.highPass), kScaled);
    mixSmooth(image, planes, overlay, params.overlayLevel);
}

}  // namespace

bool CLazyBeauty::run(ImageView image, const LazyBeautyParams& params, const FaceData* face) {
    if (!m_overlay.isLoaded() && !m_overlay.load()) {
        ZEL_LOG_ERROR_AT("beautykernel/lazybeauty/lazybeauty.cpp", 52,
                         "ERROR:CLazyBeauty run ,failed to load PSOverlay.png from style");
        return false;
    }
    if (!image.valid()) return false;
    if (params.autoLevels) AutoLevels(image);
    const bool direct = image.width <= kDirectWidth && image.height <= kDirectHeight;
    if (direct) {
        runDirect(image, params, face, m_overlay);
    } else {
        runScaled(image, params, face, m_overlay);
    }
    UnsharpMask(image, (direct ? kDirect : kScaled).unsharpPercent, kUnsharpRadius, 0);
    return true;
}

}  // namespace zellab
