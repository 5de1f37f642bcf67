#include "zellab/zelfilteronline/zellabSharp.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "platform/simdLevel.h"
#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/blur/stackBlurPasses.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/luma.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/core/pixelMath.h"

namespace zelfilteronline {

namespace {

using zellab::Byte;

constexpr int kUnit = 256;           // gains and gates are in 1/256
constexpr int kStructureRadius = 2;  // pixels
constexpr int kHeadroom = 2;         // levels beyond the neighbourhood's darkest and brightest sample
constexpr float kFineGain = 3.4f, kStructureGain = 3.4f;  // at an amount of 1

/// Where sharpening sets in and where it is full, by the steepness of the structure and by the height of the
/// detail, in levels. Set on noise of three to four levels: below the first values it does not show, above
/// the second it is texture.
constexpr int kSteepFrom = 6, kSteepFull = 22;
constexpr int kDetailFrom = 9, kDetailFull = 22;

int gainOf(float amount, float atOne) {
    if (!(amount > 0.0f)) return 0;
    return static_cast<int>(std::min(amount, 1.0f) * atOne * static_cast<float>(kUnit));
}

/// A plane whose rows have one more sample at either end, a repeat of the end sample: neighbours need no
/// special case there. Rows beyond the picture repeat the outermost ones.
class PaddedPlane {
public:
    PaddedPlane(int width, int height) : m_width(width), m_height(height), m_samples(width + 2, height) {}

    Byte* row(int y) { return m_samples.view().row(y) + 1; }
    const Byte* row(int y) const { return m_samples.view().row(std::clamp(y, 0, m_height - 1)) + 1; }
    void pad(int y) {
        Byte* samples = row(y);
        samples[-1] = samples[0];
        samples[m_width] = samples[m_width - 1];
    }
    zellab::BlurSource source() {
        return {row(0), m_width, m_height, std::ptrdiff_t{m_width} + 2, 1, 1, false};
    }

private:
    int m_width, m_height;
    zellab::Plane<Byte> m_samples;
};

/// A row of a plane between its neighbours.
struct Rows {
    const Byte *up, *here, *down;
    Rows(const PaddedPlane& plane, int y)
        : up(plane.row(y - 1)), here(plane.row(y)), down(plane.row(y + 1)) {}
    Rows from(int x) const { return {up + x, here + x, down + x}; }

private:
    Rows(const Byte* u, const Byte* h, const Byte* d) : up(u), here(h), down(d) {}
};

struct Gains {
    int fine, structure;
    bool protectFlat;
};

/// Pixels that the steps below work on at once: few enough to stay in registers and the nearest cache.
constexpr int kBlock = 64;

/// 0 up to `from`, kUnit from `full` on, straight between.
template <int kFrom, int kFull>
[[gnu::always_inline]] inline std::int16_t ramp(int value) {
    const int above = std::clamp(value - kFrom, 0, kFull - kFrom);
    return static_cast<std::int16_t>(above * kUnit / (kFull - kFrom));
}

/// Takes three samples into a range.
[[gnu::always_inline]] inline void widen(Byte& lowest, Byte& highest, Byte a, Byte b, Byte c) {
    const Byte low = a < b ? a : b, high = a < b ? b : a;
    const Byte least = low < c ? low : c, most = high > c ? high : c;
    lowest = lowest < least ? lowest : least;
    highest = highest > most ? highest : most;
}

/// How far the brightness of each of `count` pixels moves.
[[gnu::always_inline]] inline void changesOf(const Rows& luma, const Rows& broad, int count,
                                             const Gains& gains, std::int16_t* changes) {
    std::int16_t soft[kBlock], gate[kBlock];
    Byte low[kBlock], high[kBlock];
    // A 3 by 3 binomial mean.
    for (int x = 0; x < count; ++x) {
        const int outer = luma.up[x - 1] + luma.up[x + 1] + luma.down[x - 1] + luma.down[x + 1];
        const int inner = luma.up[x] + luma.here[x - 1] + luma.here[x + 1] + luma.down[x];
        soft[x] = static_cast<std::int16_t>((outer + 2 * inner + 4 * luma.here[x] + 8) >> 4);
    }
    for (int x = 0; x < count; ++x) {
        Byte lowest = luma.here[x], highest = luma.here[x];
        widen(lowest, highest, luma.up[x - 1], luma.up[x], luma.up[x + 1]);
        widen(lowest, highest, luma.here[x - 1], luma.here[x], luma.here[x + 1]);
        widen(lowest, highest, luma.down[x - 1], luma.down[x], luma.down[x + 1]);
        low[x] = lowest;
        high[x] = highest;
    }
    for (int x = 0; x < count; ++x) {
        const int steepness =
            std::abs(broad.here[x + 1] - broad.here[x - 1]) + std::abs(broad.down[x] - broad.up[x]);
        const int detail = std::abs(luma.here[x] - broad.here[x]);
        gate[x] = gains.protectFlat ? std::max(ramp<kSteepFrom, kSteepFull>(steepness),
                                               ramp<kDetailFrom, kDetailFull>(detail))
                                    : static_cast<std::int16_t>(kUnit);
    }
    for (int x = 0; x < count; ++x) {
        const int here = luma.here[x];
        const int boost = (here - soft[x]) * gains.fine + (soft[x] - broad.here[x]) * gains.structure;
        const int wanted = here + boost * gate[x] / (kUnit * kUnit);
        changes[x] =
            static_cast<std::int16_t>(std::clamp(wanted, low[x] - kHeadroom, high[x] + kHeadroom) - here);
    }
}

/// Adds the changes to the colours of `count` pixels.
[[gnu::always_inline]] inline void moveColours(Byte* pixels, const std::int16_t* changes, int count) {
    std::int16_t moves[4 * kBlock];
    for (int x = 0; x < count; ++x) {
        moves[4 * x] = moves[4 * x + 1] = moves[4 * x + 2] = changes[x];
        moves[4 * x + 3] = 0;
    }
    // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult): filled above for every pixel
    for (int i = 0; i < 4 * count; ++i) pixels[i] = zellab::clampToByte(pixels[i] + moves[i]);
}

[[gnu::always_inline]] inline void sharpenRow(Byte* pixels, int width, const Rows& luma, const Rows& broad,
                                              const Gains& gains) {
    std::int16_t changes[kBlock];
    int x = 0;
    // The count of whole blocks is a constant that the compiler turns into vectors without a rest.
    for (; x + kBlock <= width; x += kBlock) {
        changesOf(luma.from(x), broad.from(x), kBlock, gains, changes);
        moveColours(pixels + std::ptrdiff_t{4} * x, changes, kBlock);
    }
    changesOf(luma.from(x), broad.from(x), width - x, gains, changes);
    moveColours(pixels + std::ptrdiff_t{4} * x, changes, width - x);
}

[[gnu::always_inline]] inline void lumaRow(const Byte* pixels, int width, Byte* out) {
    for (int x = 0; x < width; ++x, pixels += 4) out[x] = zellab::lumaOf(pixels);
}

void sharpenRowPlain(Byte* pixels, int width, const Rows& luma, const Rows& broad, const Gains& gains) {
    sharpenRow(pixels, width, luma, broad, gains);
}
ZEL_TARGET_AVX2 void sharpenRowAvx2(Byte* pixels, int width, const Rows& luma, const Rows& broad,
                                    const Gains& gains) {
    sharpenRow(pixels, width, luma, broad, gains);
}
void lumaRowPlain(const Byte* pixels, int width, Byte* out) {
    lumaRow(pixels, width, out);
}
ZEL_TARGET_AVX2 void lumaRowAvx2(const Byte* pixels, int width, Byte* out) {
    lumaRow(pixels, width, out);
}

}  // namespace

void CZellabSharp::Run(zellab::ImageView image, float fine, float structure, bool protectFlat) {
    if (!image.valid()) return;
    const int width = image.width, height = image.height;
    const zellab::platform::SimdLevel level = zellab::platform::simdLevel();
    const auto lumaOfRow = zellab::platform::pick(level, lumaRowPlain, lumaRowAvx2);
    const auto sharpen = zellab::platform::pick(level, sharpenRowPlain, sharpenRowAvx2);

    PaddedPlane luma(width, height), broad(width, height);
    zellab::parallelRows(height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            lumaOfRow(image.row(y), width, luma.row(y));
            luma.pad(y);
        }
    });
    zellab::stackBlur(luma.source(), std::max(zellab::stackBlurRadius(width, height, kStructureRadius), 0),
                      zellab::stackBlurWorkers(width, height),
                      [&](int y, std::ptrdiff_t first, std::ptrdiff_t count, const Byte* blurred) {
                          std::copy_n(blurred, count, broad.row(y) + first);
                      });
    for (int y = 0; y < height; ++y) broad.pad(y);

    const Gains gains{gainOf(fine, kFineGain), gainOf(structure, kStructureGain), protectFlat};
    zellab::parallelRows(height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) sharpen(image.row(y), width, Rows(luma, y), Rows(broad, y), gains);
    });
}

}  // namespace zelfilteronline
