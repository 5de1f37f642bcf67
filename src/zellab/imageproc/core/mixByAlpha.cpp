#include "zellab/imageproc/core/mixByAlpha.h"

#include "zellab/imageproc/core/combinePixels.h"

namespace zellab {

namespace {

/// Single precision. Computed for each byte: the loop is bound by memory, which a table of all 65536 pairs
/// would not be.
struct Mix {
    float alpha;
    [[gnu::always_inline]] Byte operator()(int before, int after) const {
        const float mixed = static_cast<float>(after - before) * alpha + static_cast<float>(before);
        return static_cast<Byte>(static_cast<int>(mixed));
    }
};

}  // namespace

void MixByAlpha(ImageView result, ConstImageView before, ConstImageView after, float alpha) {
    if (!result.valid() || !before.valid() || !after.valid()) return;
    const float share = alpha >= 1.0f ? 1.0f : alpha > 0.0f ? alpha : 0.0f;
    combinePixels(result, before, after, Mix{share});
}

}  // namespace zellab
