#include "zellab/imageproc/core/mixByAlpha.h"

#include "zellab/imageproc/core/linearPair.h"

namespace zellab {

namespace {

/// Single precision.
struct Mix {
    float alpha;
    [[gnu::always_inline]] Byte operator()(int before, int after) const {
        const float mixed = static_cast<float>(after - before) * alpha + static_cast<float>(before);
        return static_cast<Byte>(static_cast<int>(mixed));
    }
    ZEL_TARGET_AVX2 __m256 wide(__m256 before, __m256 after) const {
        return _mm256_add_ps(_mm256_mul_ps(_mm256_sub_ps(after, before), _mm256_set1_ps(alpha)), before);
    }
};

}  // namespace

void MixByAlpha(ImageView result, ConstImageView before, ConstImageView after, float alpha) {
    if (!result.valid() || !before.valid() || !after.valid()) return;
    const float share = alpha >= 1.0f ? 1.0f : alpha > 0.0f ? alpha : 0.0f;
    combineLinear(result, before, after, Mix{share}, 1.0 - static_cast<double>(share),
                  static_cast<double>(share));
}

}  // namespace zellab
