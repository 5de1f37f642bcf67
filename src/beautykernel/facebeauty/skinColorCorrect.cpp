#include "beautykernel/facebeauty/skinColorCorrect.h"

#include <algorithm>

#include "zellab/imageproc/colour/selectiveColor.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/core/pixelMath.h"

namespace zellab {

namespace {

/// Percentages for the selective colours of one picture.
struct Correction {
    int reds, others, yellowsBlue;

    explicit Correction(const MeanColour& mean) {
        constexpr int kNeutralExcess = 50, kMostCorrection = 10, kWarmExcess = 12;
        reds = std::min(mean.r - std::max(mean.g, mean.b) - kNeutralExcess, kMostCorrection);
        if (mean.r - mean.g > kWarmExcess && mean.b < mean.r)
            reds = static_cast<int>(static_cast<float>(reds) * 0.75f);
        others = -(reds / 5);
        yellowsBlue = -(reds / 2);
    }
};

void correctPixel(Byte* p, int weight, const Correction& correction) {
    const auto [low, high] = std::minmax({p[0], p[1], p[2]});
    const int middle = p[0] + p[1] + p[2] - low - high;
    int shift[3] = {0, 0, 0};
    SelectiveColorReds(p, low, middle, high, shift, correction.reds, correction.others, correction.others);
    SelectiveColorYellows(p, low, middle, high, shift, correction.reds, correction.others,
                          correction.yellowsBlue);
    for (int c = 0; c < 3; ++c)
        p[c] = static_cast<Byte>(((255 - weight) * p[c] + clampToByte(p[c] - shift[c]) * weight + 128) >> 8);
}

}  // namespace

void skinColorCorrect(ImageView image, PlaneView<const Byte> mask, const MeanColour& mean) {
    const Correction correction(mean);
    parallelRows(image.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            Byte* p = image.row(y);
            for (int x = 0; x < image.width; ++x, p += 4)
                if (mask.row(y)[x] != 0) correctPixel(p, mask.row(y)[x], correction);
        }
    });
}

}  // namespace zellab
