#include "layer.h"

#include <cmath>

namespace zeldepth {

using namespace zel::drawing;

void encodeColour(Colour colour, unsigned char* red, unsigned char* green, unsigned char* blue) {
    const auto byte = [](float v) {
        v = clamp01(v);
        v = v <= 0.0031308f ? 12.92f * v : 1.055f * std::pow(v, 1 / 2.4f) - 0.055f;
        return static_cast<unsigned char>(v * 255 + 0.5f);
    };
    *red = byte(colour.x);
    *green = byte(colour.y);
    *blue = byte(colour.z);
}

}  // namespace zeldepth
