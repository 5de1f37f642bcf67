#pragma once

#include <vector>

#include "pattern.h"

namespace zeldepth {

/// Side of every picture that is written, in pixels.
constexpr int kSide = 192;
constexpr std::size_t kPixels = std::size_t{kSide} * std::size_t{kSide};

/// A linear colour as sRGB bytes.
void encodeColour(Colour colour, unsigned char* red, unsigned char* green, unsigned char* blue);

/// A record of byte planes, one after the other.
class Planes {
public:
    explicit Planes(std::size_t count) : m_bytes(count * kPixels) {}

    unsigned char* plane(std::size_t index) { return m_bytes.data() + index * kPixels; }
    const std::vector<unsigned char>& bytes() const { return m_bytes; }

    void setColour(std::size_t pixel, Colour colour) {
        encodeColour(colour, plane(0) + pixel, plane(1) + pixel, plane(2) + pixel);
    }

private:
    std::vector<unsigned char> m_bytes;
};

/// Planes of a person: red, green, blue, cover, nearness, part. Nearness is 160 times the distance of the
/// head's middle over the distance of the point.
constexpr std::size_t kPersonPlanes = 6;
constexpr float kNearnessOfHead = 160;
Planes renderPerson(unsigned seed);

/// Planes of a place: red, green, blue, and the high and low byte of nearness: 65535 times 0.3 m over the
/// distance, 0 for the sky.
constexpr std::size_t kPlacePlanes = 5;
constexpr float kNearestMetres = 0.3f;
Planes renderPlace(unsigned seed);

/// Planes of a portrait as `zel portrait` draws it: red, green, blue, cover of the person, depth.
constexpr std::size_t kPortraitPlanes = 5;
Planes renderPortrait(unsigned seed);

}  // namespace zeldepth
