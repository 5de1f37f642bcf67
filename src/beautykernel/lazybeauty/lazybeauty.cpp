#include "beautykernel/lazybeauty/lazybeauty.h"

#include <algorithm>

#include "beautykernel/lazybeauty/detailWeight.h"
#include "beautykernel/lazybeauty/smoothMix.h"
#include "beautykernel/skintools/featureMaskPainter.h"
#include "beautykernel/skintools/shadowPlane.h"
#include "beautykernel/skintools/skinMaskFromColor.h"
#include "beautykernel/skintools/spotSteps.h"
#include "frame/zel_log.h"
#include "zellab/imageproc/levels.h"
#include "zellab/imageproc/recursiveGaussian.h"
#include "zellab/imageproc/sfCurve.h"
#include "zellab/imageproc/sfdsp/scaleBilinear.h"
#include "zellab/imageproc/stackBlur.h"
#include "zellab/imageproc/unsharpMask.h"

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

/// Brightness to which the middle of the curve is raised, by the brightness of the skin.
int liftTarget(int brightness) {
    if (brightness < 61) return 156;
    if (brightness < 101) return 152;
    if (brightness <= 140) return 150;
    return brightness <= 200 ? 148 : 145;
}

/// Lifts the shadows of the picture along a curve, by a plane of its size.
void liftShadows(ImageView image, PlaneView<const Byte> shadow, const MeanColour& skin, int smoothLevel) {
    Byte curve[256];
    ApplyCurveThreePoints(curve, 128, liftTarget(skin.brightness()));
    const float share = static_cast<float>(std::clamp(smoothLevel, 0, 7)) / 7.0f;
    // The result for every shadow weight and sample: two bytes decide it.
    std::vector<Byte> lifted(256 * 256);
    for (int s = 0; s < 256; ++s)
        for (int c = 0; c < 256; ++c)
            lifted[static_cast<std::size_t>(s * 256 + c)] =
                static_cast<Byte>(static_cast<float>(curve[c] * s + c * (255 - s)) * share / 255.0f +
                                  static_cast<float>(c) * (1.0f - share));
    mapByPlane(image, shadow, lifted);
}

Plane<Byte> greyOf(ConstImageView image) {
    Plane<Byte> grey(image.width, image.height);
    for (int y = 0; y < image.height; ++y) {
        const Byte* p = image.row(y);
        Byte* row = grey.view().row(y);
        for (int x = 0; x < image.width; ++x, p += 4)
            row[x] = static_cast<Byte>((306 * p[0] + 601 * p[1] + 117 * p[2]) >> 10);
    }
    return grey;
}

/// What the final mix needs, from the lifted work image. Takes the high pass over.
SmoothPlanes smoothPlanes(ConstImageView work, PlaneView<const Byte> mask, const FaceData* face,
                          Plane<Byte> highPass, const Path& path) {
    const int w = work.width, h = work.height;
    const Plane<Byte> grey = greyOf(work);
    SmoothPlanes planes;
    planes.blurred.assign(work.data, work.data + sampleCount(w, h, 4));
    RecursiveGaussianBlur(planes.blurred.data(), w, h, w * 4, kSmoothSigma, kSmoothSigma, 0);
    planes.weight = detailWeight(grey.view(), mask, face, path.detailBias);
    planes.edges = equalisedEdges(grey.view());
    RecursiveGaussianBlur(planes.edges.data(), w, h, w, path.edgeSigma, path.edgeSigma, 0);
    planes.highPass = std::move(highPass);
    StackBlurGray(planes.highPass.data(), w, h, kOverlayRadius);
    return planes;
}

/// A smaller copy of a picture, owned.
struct SmallCopy {
    std::vector<Byte> pixels;
    ImageView view;
    SmallCopy(ConstImageView image, const WorkSize& size)
        : pixels(sampleCount(size.width, size.height, 4)), view(pixels.data(), size.width, size.height) {
        ScaleBilinearThreaded(image.data, image.width, image.height, pixels.data(), size.width, size.height,
                              4);
    }
};

Plane<Byte> enlarged(Plane<Byte>& plane, int width, int height) {
    Plane<Byte> large(width, height);
    ScaleBilinearThreaded(plane.data(), plane.width(), plane.height(), large.data(), width, height, 1);
    return large;
}

/// The mask without the features of the face: repairs keep away from them.
Plane<Byte> withoutFeatures(PlaneView<const Byte> mask, const FaceData* face) {
    Plane<Byte> search(mask.width, mask.height);
    std::copy_n(mask.data, search.size(), search.data());
    if (face)
        CFeatureMaskPainter::Paint(search.data(), mask.width, mask.height, face->points, kAllFeatures, 0);
    return search;
}

struct Levels {
    int smooth, overlay;
};

void runDirect(ImageView image, bool spots, const Levels& levels, const FaceData* face,
               const OverlayTable& overlay) {
    const SkinColourMask skin = skinMaskFromColor(image, face ? 1 : 0, face, kMaskRadii);
    if (spots) repairSpots(image, skin.mask.view(), face, nullptr);
    ShadowPlanes shadows =
        shadowPlanes(overlayLightness(image, overlay, kDirect.lightness), skin.mask.view(), kShadowRadius);
    liftShadows(image, shadows.shadow.view(), skin.mean, levels.smooth);
    const SmoothPlanes planes =
        smoothPlanes(image, skin.mask.view(), face, std::move(shadows.highPass), kDirect);
    mixSmooth(image, planes, overlay, levels.overlay);
}

void runScaled(ImageView image, bool spots, const Levels& levels, const FaceData* fullFace,
               const OverlayTable& overlay) {
    const WorkSize size = workSizeFor(image.width, image.height);
    FaceData smallFace;
    const FaceData* face = nullptr;
    if (fullFace) {
        smallFace = scaledFace(*fullFace, size.scale);
        face = &smallFace;
    }
    SmallCopy before(image, size);
    const SkinColourMask skin = skinMaskFromColor(before.view, face ? 1 : 0, face, kMaskRadii);
    if (spots) repairSpotsOnCopy(image, before.view, withoutFeatures(skin.mask.view(), face).view(), face);
    ShadowPlanes shadows = shadowPlanes(overlayLightness(before.view, overlay, kScaled.lightness),
                                        skin.mask.view(), kShadowRadius);
    {
        const Plane<Byte> shadow = enlarged(shadows.shadow, image.width, image.height);
        liftShadows(image, shadow.view(), skin.mean, levels.smooth);
    }
    const SmallCopy lifted(image, size);
    const SmoothPlanes planes =
        smoothPlanes(lifted.view, skin.mask.view(), face, std::move(shadows.highPass), kScaled);
    mixSmooth(image, planes, overlay, levels.overlay);
}

}  // namespace

bool CLazyBeauty::run(unsigned char* image, int width, int height, bool autoLevels, bool repairSpots,
                      int smoothLevel, int overlayLevel, int faceCount, const FaceData* faces) {
    if (!m_overlay.isLoaded() && !m_overlay.load()) {
        ZEL_LOG_ERROR_AT("beautykernel/lazybeauty/lazybeauty.cpp", 52,
                         "ERROR:CLazyBeauty run ,failed to load PSOverlay.png from style");
        return false;
    }
    const ImageView picture(image, width, height);
    if (!picture.valid()) return false;
    if (autoLevels) AutoLevels(image, width, height, width * 4, 0, nullptr, nullptr);
    const FaceData* face = faces && faceCount > 0 ? faces : nullptr;
    const Levels levels{smoothLevel, overlayLevel};
    const bool direct = width <= kDirectWidth && height <= kDirectHeight;
    if (direct) {
        runDirect(picture, repairSpots, levels, face, m_overlay);
    } else {
        runScaled(picture, repairSpots, levels, face, m_overlay);
    }
    UnsharpMask(image, width, height, width * 4, (direct ? kDirect : kScaled).unsharpPercent, kUnsharpRadius,
                0, 0);
    return true;
}

}  // namespace zellab
