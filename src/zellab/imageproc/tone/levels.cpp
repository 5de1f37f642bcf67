#include "zellab/imageproc/tone/levels.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace zellab {

namespace {

constexpr int kWhite = 255;

Byte saturate(std::int64_t value) {
    return static_cast<Byte>(std::clamp<std::int64_t>(value, 0, kWhite));
}

Byte saturate(double value) {
    return static_cast<Byte>(value >= kWhite ? kWhite : value > 0 ? value : 0);
}

/// Input and output limits in 64 bits: wild limits must not overflow on the way to the clamp.
struct Limits {
    std::int64_t inBlack, inWhite, outBlack, outWhite;
    std::int64_t inRange() const { return inWhite - inBlack; }
    std::int64_t outRange() const { return outWhite - outBlack; }
};

/// Calls set(i) for each table entry between the input limits.
template <typename Set>
void forEntries(const Limits& limits, const Set& set) {
    const std::int64_t last = std::min<std::int64_t>(limits.inWhite, kWhite);
    for (std::int64_t i = std::max<std::int64_t>(limits.inBlack, 0); i <= last; ++i) set(i);
}

void linearLevels(const Limits& limits, ByteTable& table) {
    const std::int64_t half = limits.outRange() < 0 ? -(limits.inRange() / 2) : limits.inRange() / 2;
    forEntries(limits, [&](std::int64_t i) {
        table[static_cast<std::size_t>(i)] =
            saturate((half + (i - limits.inBlack) * limits.outRange()) / limits.inRange() + limits.outBlack);
    });
}

void gammaLevels(const Limits& limits, float gamma, ByteTable& table) {
    ByteTable curve{};
    GammaTable(curve, gamma);
    const std::int64_t bias = limits.outRange() < 0 ? -127 : 127;
    forEntries(limits, [&](std::int64_t i) {
        const std::int64_t position = limits.inRange() / 2 + kWhite * (i - limits.inBlack);
        const Byte level = curve[static_cast<std::size_t>(position / limits.inRange())];
        table[static_cast<std::size_t>(i)] =
            saturate((level * limits.outRange() + bias) / kWhite + limits.outBlack);
    });
}

}  // namespace

void GammaTable(ByteTable& table, float gamma) {
    if (!(gamma >= 0.001f)) return;
    const auto entry = [&table](int i) -> Byte& { return table[static_cast<std::size_t>(i)]; };
    const double exponent = 1.0 / static_cast<double>(gamma);
    for (int i = 0; i <= kWhite; ++i) entry(i) = saturate(std::pow(i / 255.0, exponent) * 255.0 + 0.5);
    if (!(gamma > 1.0f)) return;

    const double ln2 = std::log(2.0);
    const int footEnd = static_cast<int>(std::exp((gamma / (exponent - 1.0) + 1.0) * ln2) * 255.0);
    const double value = entry(footEnd);
    for (int i = 1; i < footEnd; ++i) {
        const double t = static_cast<double>(i) / footEnd, rest = 1.0 - t;
        const double ease = (3.0 - 2.0 * t) * value - value * exponent * rest;
        entry(i) = saturate(ease * t * t + t * (std::exp(ln2 * gamma) * footEnd) * rest * rest + 0.5);
    }
}

void LevelsAdjust(const LevelsParams& params, ByteTable& table) {
    table.fill(0);
    const Limits limits{params[0], params[2], params[3], params[4]};
    const int gamma100 = params[1];
    const float gamma = static_cast<float>(gamma100) * 0.01f;
    if (limits.inRange() > 0) {
        const bool neutral = gamma100 == 100 || static_cast<std::int64_t>(gamma * 100.0f) == 100;
        if (neutral || limits.inRange() < 2 || limits.outRange() == 0)
            linearLevels(limits, table);
        else if (limits.inRange() == kWhite && limits.outRange() == kWhite)
            GammaTable(table, gamma);
        else
            gammaLevels(limits, gamma, table);
    }
    const auto white = std::clamp<std::int64_t>(limits.inWhite, 0, kWhite + 1);
    std::fill(table.begin() + white, table.end(), Byte{kWhite});
}

}  // namespace zellab
