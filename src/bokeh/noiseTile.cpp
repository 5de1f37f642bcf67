#include "bokeh/noiseTile.h"

#include "bokeh/passTables.h"

namespace zellab::Bokeh {

namespace {

// One repetition of the noise covers 200 by 125 pixels, and every other one is mirrored. In units that make all
// places whole: 50 across and 250 down are one texel.
constexpr int kTexelAcross = 50, kTexelDown = 250;
constexpr int placeAcross(int x) {
    return 64 * x + 33;
}
constexpr int placeDown(int y) {
    return 512 * y + 257;
}

/// Texel of a place, mirrored; `shift` is in hundredths of a repetition.
int texelOf(int place, int unit, int shift) {
    const int texel = (place + shift * kNoiseSide * unit / 100) / unit % (2 * kNoiseSide);
    return texel < kNoiseSide ? texel : 2 * kNoiseSide - 1 - texel;
}

}  // namespace

NoiseTile::NoiseTile(const std::vector<Byte>& pixels) : m_values(sampleCount(kPitch, kHeight, kValues)) {
    constexpr int kSecondShift = 37, kThirdShift = 61, kMean = 255;
    const auto texel = [&](int column, int row) {
        return pixels.data() + std::ptrdiff_t{4} * (row * kNoiseSide + column);
    };
    std::int16_t* out = m_values.data();
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kPitch; ++x, out += kValues) {
            const int across = placeAcross(x % kWidth), down = placeDown(y);
            const Byte* const first = texel(texelOf(across, kTexelAcross, 0), texelOf(down, kTexelDown, 0));
            const Byte* const second =
                texel(texelOf(down, kTexelDown, kSecondShift), texelOf(across, kTexelAcross, kSecondShift));
            const Byte* const third =
                texel(texelOf(across, kTexelAcross, kThirdShift), texelOf(down, kTexelDown, kThirdShift));
            out[0] = static_cast<std::int16_t>(first[0] + second[1] - kMean);
            out[1] = static_cast<std::int16_t>(first[1] + second[2] - kMean);
            out[2] = static_cast<std::int16_t>(first[2] + second[0] - kMean);
            out[3] = static_cast<std::int16_t>(third[0] + third[1] - kMean);
        }
}

}  // namespace zellab::Bokeh
