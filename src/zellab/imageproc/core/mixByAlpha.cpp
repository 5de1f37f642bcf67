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

void MixByAlpha(unsigned char* result, const unsigned char* before, const unsigned char* after, int width,
                int height, float alpha) {
    const ImageView target(result, width, height);
    const ConstImageView first(before, width, height), second(after, width, height);
    if (!target.valid() || !first.valid() || !second.valid()) return;
    const float share = alpha >= 1.0f ? 1.0f : alpha > 0.0f ? alpha : 0.0f;
    combinePixels(target, first, second, Mix{share});
}

}  // namespace zellab
