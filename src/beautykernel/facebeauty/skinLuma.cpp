#include "beautykernel/facebeauty/skinLuma.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "zellab/imageproc/domaintransform/domainTransform.h"
#include "zellab/imageproc/levels.h"
#include "zellab/imageproc/parallelRows.h"
#include "zellab/imageproc/pixelMath.h"
#include "zellab/imageproc/sfdsp/yuvLuma.h"
#include "zellab/imageproc/stackBlur.h"
#include "zellab/imageproc/unsharpStep.h"

namespace zellab {

namespace {

constexpr int kSmoothRadius = 16;  // of the blur that the lightness moves towards
constexpr float kUnsharpRadius = 3.0f;
constexpr int kUnsharpPercent = 15;
constexpr float kEdgeSigmaSpace = 14.0f, kEdgeSigmaRange = 40.0f;
constexpr int kEdgeIterations = 2;

/// The factors of the smoothing, each by the byte that decides it. Single precision.
struct SmoothFactors {
    std::array<float, 511> faint;  // by lightness - blurred + 255: 1 for none, less for strong differences
    std::array<float, 256> mask;   // by the skin mask, remapped
    std::array<float, 256> light;  // by the blurred lightness: 0 in the dark, 1 from the middle up
    float share;

    explicit SmoothFactors(const LumaSmoothing& smoothing) {
        for (int d = -255; d <= 255; ++d) {
            const float scaled = static_cast<float>(d) * 0.02745f;
            const auto strength =
                static_cast<float>(static_cast<int>(std::min(scaled * scaled * 255.0f, 255.0f)));
            faint[static_cast<std::size_t>(d + 255)] = 1.0f - strength / (strength + 51.0f);
        }
        std::array<Byte, 256> remapped;
        for (std::size_t i = 0; i < 256; ++i) remapped[i] = static_cast<Byte>(i);
        constexpr std::array kIdentity = {0, 100, 255, 0, 255};
        if (smoothing.levels && !std::equal(kIdentity.begin(), kIdentity.end(), smoothing.levels))
            LevelsAdjust(smoothing.levels, remapped.data());
        for (std::size_t i = 0; i < 256; ++i) {
            mask[i] = static_cast<float>(remapped[i]);
            light[i] = std::clamp(static_cast<float>(i) / 63.75f - 1.0f, 0.0f, 1.0f);
        }
        share = std::isnan(smoothing.strength) ? 0.0f : smoothing.strength / 255.0f;
    }
};

/// Moves the lightness towards its blurred form.
void smoothTowards(PlaneView<Byte> luma, PlaneView<const Byte> blurred, PlaneView<const Byte> skin,
                   const SmoothFactors& factors) {
    parallelRows(luma.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            Byte* row = luma.row(y);
            const Byte *to = blurred.row(y), *mask = skin.row(y);
            for (int x = 0; x < luma.width; ++x) {
                const int difference = to[x] - row[x];
                const float move = factors.faint[static_cast<std::size_t>(255 - difference)] *
                                   factors.mask[mask[x]] * factors.light[to[x]] *
                                   static_cast<float>(difference) * factors.share;
                row[x] = truncateToByte(move + static_cast<float>(row[x]));
            }
        }
    });
}

/// Sharpens by the share that the skin mask says. Single precision; a share of a level darkens.
void sharpenSkin(PlaneView<Byte> luma, PlaneView<const Byte> blurred, PlaneView<const Byte> skin) {
    const Sharpen sharpen(kUnsharpPercent, 0);
    parallelRows(luma.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            Byte* row = luma.row(y);
            const Byte *soft = blurred.row(y), *mask = skin.row(y);
            for (int x = 0; x < luma.width; ++x) {
                const int in = row[x], change = (sharpen(in, soft[x]) - in) * mask[x];
                row[x] = static_cast<Byte>(
                    static_cast<int>(static_cast<float>(change) / 255.0f + static_cast<float>(in)));
            }
        }
    });
}

}  // namespace

void smoothSkinLuma(ImageView image, PlaneView<const Byte> skin, const LumaSmoothing& smoothing) {
    const int width = image.width, height = image.height;
    Plane<Byte> luma(width, height), blurred(width, height);
    readYuvLuma(image, luma.view());
    std::copy_n(luma.data(), luma.size(), blurred.data());
    CStackBlur::StackBlurEx(blurred.data(), width, height, width, kSmoothRadius);
    smoothTowards(luma.view(), blurred.view(), skin, SmoothFactors(smoothing));
    if (smoothing.edgeFilter)
        DomainTransformPlane(luma.data(), width, height, width, kEdgeSigmaSpace, kEdgeSigmaRange,
                             kEdgeIterations, true);
    std::copy_n(luma.data(), luma.size(), blurred.data());
    StackBlurGray(blurred.data(), width, height, unsharpBlurRadius(kUnsharpRadius));
    sharpenSkin(luma.view(), blurred.view(), skin);
    replaceYuvLuma(image, luma.view());
}

}  // namespace zellab
