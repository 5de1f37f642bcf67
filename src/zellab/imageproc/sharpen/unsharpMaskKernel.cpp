#include "zellab/imageproc/sharpen/unsharpMaskKernel.h"

#include <cmath>
#include <cstdint>

#include "zellab/imageproc/core/combinePixels.h"
#include "zellab/imageproc/core/pixelMath.h"

namespace zellab {

namespace {

/// Amounts beyond this would leave the integers that the result is truncated to; every difference is long
/// saturated there.
constexpr float kMostAmount = 4e6f;

struct FloatSharpen {
    float own, other;  // factors of the picture and of the blurred copy
    [[gnu::always_inline]] Byte operator()(int in, int blurred) const {
        return clampToByte(
            static_cast<int>(static_cast<float>(in) * own - static_cast<float>(blurred) * other));
    }
    ZEL_TARGET_AVX2 __m256 wide(__m256 in, __m256 blurred) const {
        return _mm256_sub_ps(_mm256_mul_ps(in, _mm256_set1_ps(own)),
                             _mm256_mul_ps(blurred, _mm256_set1_ps(other)));
    }
};

/// Four decimals of the amount, limited so that the products stay within 64 bits.
constexpr std::int64_t kDecimals = 10000;

std::int64_t fixedAmount(float amount) {
    constexpr float kLimit = 1e12f;
    const float scaled = amount * static_cast<float>(kDecimals) + 0.5f;
    return static_cast<std::int64_t>(scaled > kLimit ? kLimit : scaled >= -kLimit ? scaled : -kLimit);
}

std::vector<int> gaussWeights(float sigma) {
    const int size = static_cast<int>(sigma * 5.0f + 1.0f + 0.5f) | 1, half = size / 2;
    std::vector<int> weights(static_cast<std::size_t>(size));
    for (int i = 0; i < size; ++i) {
        const int fromCentre = i - half;
        const float exponent =
            static_cast<float>(half * half - fromCentre * fromCentre) / (2.0f * sigma * sigma);
        weights[static_cast<std::size_t>(i)] = static_cast<int>(std::exp(exponent) + 0.5f);
    }
    return weights;
}

}  // namespace

UnsharpMaskKernel::UnsharpMaskKernel(float sigma, float amount)
    : m_amount(std::clamp(amount, -kMostAmount, kMostAmount)), m_weights(gaussWeights(sigma)) {}

void UnsharpMaskKernel::Run(ImageView image, ConstImageView blurred, int channelMask) const {
    if (!image.valid() || !blurred.valid()) return;
    if (channelMask == kAllChannels) {
        combinePixels(image, image, blurred, FloatSharpen{m_amount + 1.0f, m_amount});
        return;
    }
    const std::int64_t k = fixedAmount(m_amount);
    parallelRows(image.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            for (int x = 0; x < image.width; ++x)
                for (int c = 0; c < 3; ++c) {
                    if (!(channelMask >> c & 1)) continue;
                    Byte& in = image.at(x, y)[c];
                    const std::int64_t out = (in * (k + kDecimals) - blurred.at(x, y)[c] * k) / kDecimals;
                    in = static_cast<Byte>(std::clamp<std::int64_t>(out, 0, 255));
                }
    });
}

}  // namespace zellab
