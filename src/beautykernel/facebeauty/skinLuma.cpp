#include "beautykernel/facebeauty/skinLuma.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "platform/simdLevel.h"
#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/core/pixelMath.h"
#include "zellab/imageproc/domaintransform/domainTransform.h"
#include "zellab/imageproc/sfdsp/yuvLuma.h"
#include "zellab/imageproc/sharpen/unsharpStep.h"

namespace zellab {

namespace {

constexpr int kSmoothRadius = 16;  // of the blur that the lightness moves towards
constexpr float kUnsharpRadius = 3.0f;
constexpr int kUnsharpPercent = 15;
constexpr float kEdgeSigmaSpace = 14.0f, kEdgeSigmaRange = 40.0f;
constexpr int kEdgeIterations = 2;

/// Moves a lightness towards its blurred form: less where they differ much, and not at all in the dark.
/// Single precision. Limits are put on integers, which compilers turn into vectors.
struct Smooth {
    float share;  // strength / 255, limited so that its products fit an integer

    explicit Smooth(float strength)
        : share(std::isfinite(strength) ? std::clamp(strength, -1e6f, 1e6f) / 255.0f : 0.0f) {}
    [[gnu::always_inline]] Byte operator()(int in, int blurred, int mask) const {
        const float scaled = static_cast<float>(in - blurred) * 0.02745f;
        const auto edge = static_cast<float>(std::min(static_cast<int>(scaled * scaled * 255.0f), 255));
        // Limited to 0..1, which it leaves below 64 and above 127.
        const int lit = std::min(std::max(blurred - 63, 0), 1),
                  full = std::min(std::max(blurred - 127, 0), 1);
        const float light = (static_cast<float>(blurred) / 63.75f - 1.0f) * static_cast<float>(lit - full) +
                            static_cast<float>(full);
        const float move = (1.0f - edge / (edge + 51.0f)) * static_cast<float>(mask) * light *
                           static_cast<float>(blurred - in) * share;
        return clampToByte(static_cast<int>(move + static_cast<float>(in)));
    }
};

/// Sharpens by the share that the mask says. Single precision; a share of a level darkens.
struct SharpenSkin {
    Sharpen sharpen{kUnsharpPercent, 0};

    [[gnu::always_inline]] Byte operator()(int in, int blurred, int mask) const {
        const int change = (sharpen(in, blurred) - in) * mask;
        return static_cast<Byte>(
            static_cast<int>(static_cast<float>(change) / 255.0f + static_cast<float>(in)));
    }
};

/// luma = op(luma, blurred, skin), by way of a short run of results, so that the loop may be vectorised.
template <typename Op>
[[gnu::always_inline]] inline void changeRow(Byte* luma, const Byte* blurred, const Byte* skin, int width,
                                             const Op& op) {
    constexpr int kRun = 128;
    Byte result[kRun];
    int x = 0;
    for (; x + kRun <= width; x += kRun) {
        for (int i = 0; i < kRun; ++i) result[i] = op(luma[x + i], blurred[x + i], skin[x + i]);
        std::memcpy(luma + x, result, kRun);
    }
    for (; x < width; ++x) luma[x] = op(luma[x], blurred[x], skin[x]);
}

template <typename Op>
void changeRowPlain(Byte* luma, const Byte* blurred, const Byte* skin, int width, const Op& op) {
    changeRow(luma, blurred, skin, width, op);
}

template <typename Op>
ZEL_TARGET_AVX2 void changeRowAvx2(Byte* luma, const Byte* blurred, const Byte* skin, int width,
                                   const Op& op) {
    changeRow(luma, blurred, skin, width, op);
}

template <typename Op>
void changeLuma(PlaneView<Byte> luma, PlaneView<const Byte> blurred, PlaneView<const Byte> skin,
                const Op& op) {
    const auto row = platform::pick(platform::simdLevel(), changeRowPlain<Op>, changeRowAvx2<Op>);
    parallelRows(luma.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) row(luma.row(y), blurred.row(y), skin.row(y), luma.width, op);
    });
}

/// The mask through the levels; empty where these leave it alone.
Plane<Byte> levelledMask(PlaneView<const Byte> skin, const std::optional<LevelsParams>& levels) {
    constexpr LevelsParams kIdentity = {0, 100, 255, 0, 255};
    if (!levels || *levels == kIdentity) return {};
    ByteTable table;
    LevelsAdjust(*levels, table);
    Plane<Byte> mask = copyOf(skin);
    mapPlane(mask.view(), table);
    return mask;
}

}  // namespace

void smoothSkinLuma(ImageView image, PlaneView<const Byte> skin, const LumaSmoothing& smoothing) {
    const int width = image.width, height = image.height;
    Plane<Byte> luma(width, height);
    readYuvLuma(image, luma.view());
    Plane<Byte> blurred = copyOf(luma.view());
    StackBlurGray(blurred.view(), kSmoothRadius);
    {
        const Plane<Byte> levelled = levelledMask(skin, smoothing.levels);
        changeLuma(luma.view(), blurred.view(), levelled.size() > 0 ? levelled.view() : skin,
                   Smooth(smoothing.strength));
    }
    if (smoothing.edgeFilter)
        DomainTransformPlane(luma.view(), kEdgeSigmaSpace, kEdgeSigmaRange, kEdgeIterations, true);
    copyPixels<Byte>(luma.view(), blurred.view());
    StackBlurGray(blurred.view(), unsharpBlurRadius(kUnsharpRadius));
    changeLuma(luma.view(), blurred.view(), skin, SharpenSkin());
    replaceYuvLuma(image, luma.view());
}

}  // namespace zellab
