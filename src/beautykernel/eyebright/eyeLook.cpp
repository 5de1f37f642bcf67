#include "beautykernel/eyebright/eyeLook.h"

#include <algorithm>
#include <array>

#include "beautykernel/eyebright/eyeHsl.h"
#include "beautykernel/eyebright/eyeTables.h"
#include "zellab/imageproc/core/pixelMath.h"
#include "zellab/imageproc/edgeaware/guidedFilterColor.h"

namespace zellab {

namespace {

constexpr int kFilterRadius = 5;

using Rgb = std::array<float, 3>;
constexpr Rgb kMiddleWhite = {255, 254, 253};  // target in the middle of the eye
constexpr Rgb kSideWhite = {240, 220, 210};    // at seven tenths of the way out, squared
constexpr Rgb kCornerWhite = {120, 50, 30};    // at the end
constexpr float kSideAt = 0.7f;

/// Calls work(pixel, x, y) where the opening counts.
template <typename Work>
void forOpening(EyeCut& eye, const Work& work) {
    for (int y = 0; y < eye.box.height; ++y)
        for (int x = 0; x < eye.box.width; ++x)
            if (eye.lidShape.row(y)[x] != 0.0f) work(eye.pixels().at(x, y), x, y);
}

/// The same inside the iris, with a weight that is 1 in its centre and 0 on its rim.
template <typename Work>
void forIris(EyeCut& eye, const Work& work) {
    forOpening(eye, [&](Byte* pixel, int x, int y) {
        const float radial = eye.irisRadial.row(y)[x];
        if (radial < 1.0f) work(pixel, x, y, 1.0f - radial * radial);
    });
}

/// By how much the ring is lightened: dark irises more.
float ringFactor(float irisGain, float ratio) {
    if (!(irisGain > 0.0f)) return irisGain / 3.0f;
    const float k = ratio < 0.4f ? 0.5f / ratio : ratio <= 0.48f ? 1.25f : 0.6f / ratio;
    return irisGain * std::clamp(k, 1.1f, 3.8f) - irisGain;
}

/// The white that a pixel moves to.
struct WhiteTargets {
    float nearGain, farGain;  // of the middle, and of the side and the corner

    float at(std::size_t channel, float radial) const {
        if (radial >= kSideAt) {
            const float u = (radial - kSideAt) / 0.3f;
            return std::min(farGain * (kSideWhite[channel] * (1.0f - u) + kCornerWhite[channel] * u), 255.0f);
        }
        const float u = radial * 1.42857f;
        return std::min(kMiddleWhite[channel] * nearGain * (1.0f - u) + kSideWhite[channel] * farGain * u,
                        255.0f);
    }
};

float eighthPower(float v) {
    const float square = v * v, fourth = square * square;
    return fourth * fourth;
}

}  // namespace

void recolourIrisRing(EyeCut& eye, const EyeTuning& tuning, float ratio) {
    const float edge = (1.0f - tuning.bandOffset) * 0.1f + tuning.bandOffset, inner = edge * edge;
    if (!(inner < 1.0f)) return;
    const float factor = ringFactor(tuning.irisGain, ratio);
    forOpening(eye, [&](Byte* pixel, int x, int y) {
        const float t = (eye.irisRadial.row(y)[x] - (inner + 1.0f) / 2.0f) / (1.0f - inner);
        if (!(t * t < 0.25f)) return;
        EyeHsl hsl = toHsl(pixel);
        const auto lightness = static_cast<float>(hsl.lightness);
        const float dark = std::min(1.0f, (1.0f - lightness / 255.0f) * 1.5f);
        const float weight = dark * dark * factor;
        hsl.lightness = truncateToByte(((1.0f - 4.0f * t * t) * weight + 1.0f) * lightness);
        fromHsl(hsl, pixel);
    });
}

void liftWhites(EyeCut& eye, const EyeTuning& tuning, const EyeTone& tone) {
    const int sum = tone.level + 2 * tone.spread;
    const float highlight = tuning.highlightGain / 3.0f + 0.94f;
    const float nearGain = highlight * static_cast<float>(sum) / 255.0f,
                farGain = highlight * static_cast<float>(tone.level) / 255.0f;
    const bool upright = eye.box.height > eye.box.width;
    forOpening(eye, [&](Byte* pixel, int x, int y) {
        const float iris = eye.irisRadial.row(y)[x], radial = eye.eyeRadial.row(y)[x];
        if (!(iris > 1.0f) || !(radial <= 1.0f)) return;
        const LidCoords& coords = eye.lidCoords.row(y)[x];
        const float across = upright ? coords.falloffX : coords.falloffY,
                    along = upright ? coords.ey : coords.ex;
        const float eighth = eighthPower(along);
        WhiteTargets targets = {nearGain, farGain};
        float weight;
        if (along >= 0.0f) {
            targets = {(1.0f - eighth) * nearGain, (1.0f - eighth) * farGain};
            weight = eye.lidShape.row(y)[x];
        } else {
            weight = (1.0f - eighth * eighth) * across;
        }
        if (iris < 1.3f) weight *= (iris - 1.0f) * 3.3f;
        const int missing = std::max(3 * sum - pixel[0] - pixel[1] - pixel[2], 0);
        const float dark = static_cast<float>(missing) / 255.0f / (tuning.darkTolerance * 6.0f + 0.01f);
        const auto lightness = static_cast<float>(toHsl(pixel).lightness);
        const float g = std::max(0.0f, 1.0f - dark) * weight * tuning.whiteGain *
                        std::min(1.0f, 2.0f * lightness / 255.0f);
        if (g == 0.0f) return;
        for (std::size_t c = 0; c < 3; ++c)
            pixel[c] = truncateToByte(static_cast<float>(pixel[c]) * (1.0f - g) + targets.at(c, radial) * g);
    });
}

void contrastIris(EyeCut& eye) {
    forIris(eye, [](Byte* pixel, int, int, float weight) {
        for (int c = 0; c < 3; ++c)
            pixel[c] = truncateToByte(static_cast<float>(kIrisContrastTable[pixel[c]]) * weight +
                                      static_cast<float>(pixel[c]) * (1.0f - weight));
    });
}

void smoothEye(EyeCut& eye, const EyeTuning& tuning) {
    RgbaImage filtered = copyOf(eye.pixels());
    GuidedFilterColor().Run(filtered.view(), tuning.filterRadius, tuning.filterEps, tuning.filterScale,
                            kFilterRadius, false);
    const ConstImageView smooth = filtered.view();
    forIris(eye, [&](Byte* pixel, int x, int y, float weight) {
        const Byte* other = smooth.at(x, y);
        for (int c = 0; c < 3; ++c)
            pixel[c] = truncateToByte(static_cast<float>(pixel[c]) * (1.0f - weight) +
                                      static_cast<float>(other[c]) * weight);
    });
}

}  // namespace zellab
