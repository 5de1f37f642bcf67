#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Factors of the saturation step in 1/256: of the channel itself and of the three channels in the sum that
/// all three results share.
struct SaturationWeights {
    int own, red, green, blue;
};

/// out = (channel * own + sum) >> 8, limited to a byte, for the pixels of a row.
void saturationRow(Byte* pixel, int width, const SaturationWeights& weights);

/// The AVX2 form multiplies in 16 bits; every strength in common use fits.
constexpr bool fitsAvx2(const SaturationWeights& w) {
    constexpr int kLimit = 16000;
    return w.own > -kLimit && w.own < kLimit && w.red > -kLimit && w.red < kLimit && w.green > -kLimit &&
           w.green < kLimit && w.blue > -kLimit && w.blue < kLimit;
}

/// The same for the pixels of a row in groups of eight; returns how many were done. Needs AVX2 and fitsAvx2.
int saturationRowAvx2(Byte* row, int width, const SaturationWeights& weights);

}  // namespace zellab
