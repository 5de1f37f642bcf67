#include "bokeh/compositionTaps.h"

#include <cmath>
#include <cstdint>
#include <cstring>

namespace zellab::Bokeh {

namespace {

constexpr float kColourThreshold =
    0.4f * 255.0f;  // colour distance (levels) from which on a tap does not count
constexpr float kLargestReach = 4.0f;

inline float levelAt(const Byte* pixel, int shift) {
    std::uint32_t bytes;
    std::memcpy(&bytes, pixel, sizeof bytes);
    return static_cast<float>(static_cast<int>(bytes >> shift & 255));
}

[[gnu::always_inline]] inline void line(const Byte* upper, const Byte* lower, float part, int count,
                                        float* const lines[3]) {
    for (int c = 0; c < 3; ++c) {
        float* const out = lines[c];
        for (int i = 0; i < count; ++i) {
            const float above = levelAt(upper + std::ptrdiff_t{4} * i, 8 * c);
            out[i] = above + (levelAt(lower + std::ptrdiff_t{4} * i, 8 * c) - above) * part;
        }
    }
}

/// Copies of their own, which no sum can alias.
struct Neighbours {
    float red[kRun], green[kRun], blue[kRun], radius[kRun];
};

[[gnu::always_inline]] inline void between(const float* values, float part, float* out) {
    for (int i = 0; i < kRun; ++i) out[i] = values[i] + (values[i + 1] - values[i]) * part;
}

[[gnu::always_inline]] inline void load(const RunTap& tap, Neighbours& all) {
    const RunTap copy = tap;
    between(copy.line.red, copy.part, all.red);
    between(copy.line.green, copy.part, all.green);
    between(copy.line.blue, copy.part, all.blue);
    for (int i = 0; i < kRun; ++i) all.radius[i] = static_cast<float>(copy.radii[i]);
}

// Every lane is a pixel of its own, so both forms give the same bits. Without branches, so that the compiler
// makes vectors of the loops.

inline float positive(float value) {
    return 0.5f * (value + std::fabs(value));
}

[[gnu::always_inline]] inline void radiusTap(const RadiusTap& tap, RadiusSums& sums) {
    constexpr float kFalloff = 1.0f / (kColourThreshold * kColourThreshold);
    const float nearness = tap.nearness;
    Neighbours theirs;
    load(tap.run, theirs);
    for (int i = 0; i < kRun; ++i) {
        const float r = theirs.red[i] - sums.red[i], g = theirs.green[i] - sums.green[i],
                    b = theirs.blue[i] - sums.blue[i];
        const float alike = positive(1.0f - (r * r + g * g + b * b) * kFalloff);
        const float weight = alike * alike * nearness;
        sums.sum[i] += theirs.radius[i] * weight;
        sums.weight[i] += weight;
    }
}

/// 0..1: the outermost ring fades in with the radius.
inline float ring(float reach, float distance) {
    const float part = reach - distance;
    return positive(part + 1.0f) - positive(part);
}

[[gnu::always_inline]] inline void smallTap(const SmallTap& tap, SmallSums& sums) {
    const float distance = tap.distance, whole = tap.weight;
    Neighbours theirs;
    load(tap.run, theirs);
    for (int i = 0; i < kRun; ++i) {
        const float half = 0.5f * theirs.radius[i];
        const float reach = half - positive(half - kLargestReach);
        const float weight = whole * ring(sums.reach[i], distance) * ring(reach, distance) * sums.taken[i];
        sums.red[i] += theirs.red[i] * weight;
        sums.green[i] += theirs.green[i] * weight;
        sums.blue[i] += theirs.blue[i] * weight;
        sums.weight[i] += weight;
        sums.squares[i] += weight * weight;
    }
}

void linePlain(const Byte* upper, const Byte* lower, float part, int count, float* const lines[3]) {
    line(upper, lower, part, count, lines);
}
ZEL_TARGET_AVX2 void lineAvx2(const Byte* upper, const Byte* lower, float part, int count,
                              float* const lines[3]) {
    line(upper, lower, part, count, lines);
}
void radiusTapPlain(const RadiusTap& tap, RadiusSums& sums) {
    radiusTap(tap, sums);
}
ZEL_TARGET_AVX2 void radiusTapAvx2(const RadiusTap& tap, RadiusSums& sums) {
    radiusTap(tap, sums);
}
void smallTapPlain(const SmallTap& tap, SmallSums& sums) {
    smallTap(tap, sums);
}
ZEL_TARGET_AVX2 void smallTapAvx2(const SmallTap& tap, SmallSums& sums) {
    smallTap(tap, sums);
}

}  // namespace

CompositionTaps compositionTaps(platform::SimdLevel level) {
    return {platform::pick(level, linePlain, lineAvx2), platform::pick(level, radiusTapPlain, radiusTapAvx2),
            platform::pick(level, smallTapPlain, smallTapAvx2)};
}

}  // namespace zellab::Bokeh
