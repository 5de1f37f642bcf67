#pragma once

#include <cstdint>
#include <random>

#include "portraitMath.h"

namespace zel::drawing {

/// Seeded random numbers. The standard's distributions differ from one library to the next, its engine does
/// not.
class RandomSource {
public:
    /// `stream` keeps the numbers of one purpose apart from those of another with the same seed.
    RandomSource(unsigned seed, unsigned stream) : m_engine(seed * 2654435761u + stream * 40503u + 17u) {
        m_engine.discard(8);
    }

    /// 0 to just below 1.
    float uniform() { return static_cast<float>(m_engine() >> 8) * (1.0f / 16777216.0f); }
    float range(float from, float to) { return from + (to - from) * uniform(); }
    int below(int count) { return static_cast<int>(uniform() * static_cast<float>(count)); }
    bool chance(float probability) { return uniform() < probability; }

    /// Bell-shaped about 0 with a deviation of 1, never beyond 3.
    float bellShaped() {
        float sum = 0;
        for (int i = 0; i < 6; ++i) sum += uniform();
        return (sum - 3.0f) * 1.41421356f * 0.95f;
    }

private:
    std::mt19937 m_engine;
};

/// A hash of a lattice point, every bit well mixed.
inline std::uint32_t latticeHash(int x, int y, std::uint32_t seed) {
    std::uint32_t h = static_cast<std::uint32_t>(x) * 0x9E3779B1u ^
                      static_cast<std::uint32_t>(y) * 0x85EBCA77u ^ seed * 0xC2B2AE3Du;
    h = (h ^ (h >> 16)) * 0x7FEB352Du;
    h = (h ^ (h >> 15)) * 0x846CA68Bu;
    return h ^ (h >> 16);
}

inline float unitOf(std::uint32_t hash) {
    return static_cast<float>(hash >> 8) * (1.0f / 16777216.0f);
}

}  // namespace zel::drawing
