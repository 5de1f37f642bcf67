#include "beautykernel/facebeauty/facebeauty.h"

#include <algorithm>
#include <array>

#include "beautykernel/facebeauty/curveLift.h"
#include "beautykernel/facebeauty/finishTable.h"
#include "beautykernel/facebeauty/skinColorCorrect.h"
#include "beautykernel/facebeauty/skinLuma.h"
#include "beautykernel/facebeauty/styleTone.h"
#include "beautykernel/skintools/overlayTable.h"
#include "beautykernel/skintools/shadowPlane.h"
#include "beautykernel/skintools/skinMaskFromColor.h"
#include "beautykernel/skintools/spotPaste.h"
#include "frame/zel_log.h"
#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/core/pixelMath.h"
#include "zellab/imageproc/domaintransform/domainTransform.h"
#include "zellab/imageproc/resample/imageResampler.h"
#include "zellab/imageproc/sharpen/unsharpMask.h"
#include "zellab/imageproc/tone/levels.h"
#include "zellab/imageproc/tone/toneTables.h"

namespace zellab {

namespace {

constexpr int kSmallSide = 640;  // pictures up to this are worked on as they are
constexpr MaskBlurRadii kMaskRadii = {7, 9, 12};
constexpr int kShadowRadius = 16;
constexpr char kSourceFile[] = "beautykernel/facebeauty/facebeauty.cpp";

Plane<Byte> resized(PlaneView<const Byte> plane, int width, int height) {
    constexpr int kBetweenTwoSamples = 0;
    Plane<Byte> result(width, height);
    ImageResampler().Resize(plane, result.view(), kBetweenTwoSamples);
    return result;
}

/// The skin mask of the full picture: the small one, or the caller's, softened and enlarged.
Plane<Byte> enlargedMask(PlaneView<const Byte> small, PlaneView<const Byte> userMask, ConstImageView image) {
    Plane<Byte> mask = resized(userMask.valid() ? userMask : small, small.width, small.height);
    const int side = std::min(small.width, small.height);
    StackBlurGray(mask.view(), side < 200 ? 12 : side < 500 ? 20 : 30);
    return resized(mask.view(), image.width, image.height);
}

/// Mixes the colours of skin with those of a copy that was smoothed along edges.
void smoothAlongEdges(ImageView image, PlaneView<const Byte> skin) {
    constexpr float kSigmaSpace = 16.0f, kSigmaRange = 50.0f;
    constexpr int kIterations = 3;
    RgbaImage smooth = copyOf(image);
    DomainTransformRGBA(smooth.view(), kSigmaSpace, kSigmaRange, kIterations, true);
    parallelRows(image.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            Byte* p = image.row(y);
            const Byte* k = smooth.row(y);
            for (int x = 0; x < image.width; ++x, p += 4, k += 4) {
                const int m = skin.row(y)[x];
                for (int c = 0; c < 3; ++c) p[c] = static_cast<Byte>((k[c] * m + p[c] * (255 - m)) >> 8);
            }
        }
    });
}

}  // namespace

bool CFaceBeauty::Run(ImageView image, PlaneView<const Byte> userMask, FaceData* face,
                      const FaceBeautyParams& params) {
    const int width = image.width, height = image.height;
    ZEL_LOG_DEBUG("version 2.05 run...width:%d, height: %d", width, height);
    if (!image.valid()) return false;
    if (face) limitFaceBox(*face, width, height);
    if (params.autoLevels) AutoLevels(image);
    if (width <= kSmallSide && height <= kSmallSide) return Run8kelxx(image, face, params);

    // A very flat picture would lose its shorter side altogether: one pixel of it is kept.
    const float fw = static_cast<float>(width) / static_cast<float>(kSmallSide),
                fh = static_cast<float>(height) / static_cast<float>(kSmallSide);
    const float scale = 1.0f / std::max(fw, fh);
    const auto shorter = [scale](int side) {
        return std::max(static_cast<int>(static_cast<float>(side) * scale), 1);
    };
    if (fw > fh) return Run8kelyy(image, userMask, face, params, kSmallSide, shorter(height), scale);
    return Run8kelyy(image, userMask, face, params, shorter(width), kSmallSide, scale);
}

bool CFaceBeauty::Run8kelyy(ImageView image, PlaneView<const Byte> userMask, const FaceData* fullFace,
                            const FaceBeautyParams& params, int smallWidth, int smallHeight, float scale) {
    FaceData smallFace;
    const FaceData* face = nullptr;
    if (fullFace) {
        smallFace = scaledFace(*fullFace, scale);
        limitFaceBox(smallFace, smallWidth, smallHeight);
        face = &smallFace;
    }
    RgbaImage smallPicture(smallWidth, smallHeight);
    const ImageView small = smallPicture.view();
    ImageResampler().Resize(image, small, 0);
    const SkinColourMask skin = skinMaskFromColor(small, face ? 1 : 0, face, kMaskRadii);
    if (params.repairSpots) SpotPaste(small, skin.mask.view(), face, image.width, image.height).apply(image);

    OverlayTable overlay;
    if (!overlay.load()) {
        ZEL_LOG_ERROR_AT(kSourceFile, 133,
                         "ERROR:CFaceBeauty Run8kelyy ,failed to load PSOverlay.png from style");
        return false;
    }
    const ShadowPlanes shadows = shadowPlanes(overlayLightness(small, overlay, LightnessOf::greenAndBlue),
                                              skin.mask.view(), kShadowRadius);
    liftShadows(image, resized(shadows.shadow.view(), image.width, image.height).view(),
                largeLift(skin.mean.brightness()));
    smoothSkinLuma(
        image, enlargedMask(skin.mask.view(), userMask, image).view(),
        {.strength = params.smoothStrength, .levels = params.levels, .edgeFilter = params.edgeFilter});
    applyStyleTone(image, {params.alternateFinish, params.toneStrength});
    return true;
}

bool CFaceBeauty::Run8kelxx(ImageView image, const FaceData* face, const FaceBeautyParams& params) {
    constexpr float kDetailAmount = 0.34f, kUnsharpRadius = 4.0f;
    constexpr int kUnsharpPercent = 16;
    const SkinColourMask skin = skinMaskFromColor(image, face ? 1 : 0, face, kMaskRadii);
    if (params.repairSpots) repairSpots(image, skin.mask.view(), face, {});

    Plane<Byte> lightness;
    {
        OverlayTable overlay;
        if (!overlay.load()) {
            ZEL_LOG_ERROR_AT(kSourceFile, 533,
                             "ERROR:CFaceBeauty Run8kelxx ,failed to load PSOverlay.png from style");
            return false;
        }
        lightness = overlayLightness(image, overlay, LightnessOf::greenAndBlue);
    }
    ShadowPlanes shadows = shadowPlanes(lightness, skin.mask.view(), kShadowRadius);
    liftShadows(image, shadows.shadow.view(), smallLift(skin.mean.brightness()));
    smoothAlongEdges(image, skin.mask.view());
    StackBlurGray(shadows.highPass.view(), std::min(image.width, image.height) > 599 ? 12 : 8);
    RevertDetail(image, shadows.highPass.view(), skin.mask.view(), kDetailAmount);
    UnsharpMask(image, kUnsharpPercent, kUnsharpRadius, 0);
    if (params.alternateFinish) {
        skinColorCorrect(image, skin.mask.view(), skin.mean);
        mapPixels(image, kFinishTable);
    }
    return true;
}

void CFaceBeauty::RevertDetail(ImageView image, PlaneView<const Byte> detail, PlaneView<const Byte> mask,
                               float amount) {
    constexpr int kSkinAbove = 100;
    OverlayTable overlay;
    if (!overlay.load()) {
        ZEL_LOG_ERROR_AT(kSourceFile, 1213,
                         "ERROR:CFaceBeauty RevertDetail ,failed to load PSOverlay.png from style");
        return;
    }
    const float share = std::min(amount, 1.0f);
    std::array<float, 256> shares{};  // a running sum in single precision
    for (std::size_t i = 1; i < shares.size(); ++i) shares[i] = shares[i - 1] + share;
    parallelRows(image.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            Byte* p = image.row(y);
            for (int x = 0; x < image.width; ++x, p += 4) {
                if (mask.row(y)[x] <= kSkinAbove) continue;
                for (int c = 0; c < 3; ++c)
                    p[c] = truncateToByte(static_cast<float>(p[c]) - shares[p[c]] +
                                          shares[overlay(p[c], detail.row(y)[x])]);
            }
        }
    });
}

}  // namespace zellab
