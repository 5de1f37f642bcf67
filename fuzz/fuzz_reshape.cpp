// The automatic reshapers on landmarks and factors made of any bits: nothing is read or written outside a
// small picture.
#include <cstdint>
#include <cstring>
#include <vector>

#include "zel_effects/zel_effects.h"

namespace {

/// Floats from the input, half of them any bits, half near a small picture; zeros where it ends.
class Floats {
public:
    Floats(const std::uint8_t* data, std::size_t size) : m_data(data), m_left(size) {}
    float next() {
        float value = 0;
        if (m_left < sizeof value) return 0;
        std::memcpy(&value, m_data, sizeof value);
        if (m_data[0] & 1) value = static_cast<float>(m_data[1] * 256 + m_data[2]) / 512.0f - 30.0f;
        m_data += sizeof value;
        m_left -= sizeof value;
        return value;
    }

private:
    const std::uint8_t* m_data;
    std::size_t m_left;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    if (size < 2) return 0;
    const int width = 1 + input[0] % 64, height = 1 + input[1] % 64;
    Floats floats(input + 2, size - 2);
    float f[8];
    for (float& value : f) value = floats.next();
    zellab::Vector2f landmarks[83];
    for (auto& p : landmarks) p = {floats.next(), floats.next()};
    zellab::CInterFacePoint points;
    points.AddFace(landmarks, 0);
    points.SetFaceCount(1);
    // Exactly the picture, so that a sanitizer sees every step beyond it.
    std::vector<unsigned char> picture(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4,
                                       90);
    CFaceSlimRender::autoSlimFace(picture.data(), width, height, &points, f[0], f[1], f[2], f[3], f[4], f[5],
                                  f[6], f[7], 0);
    CEyeZoomRender::autoZoomEye(picture.data(), width, height, &points, f[0], f[1], f[2], f[3], 0);
    CFaceSlimRender::slimFace(picture.data(), width, height, f[0], f[1], f[2], f[3], f[4], f[5]);
    CEyeZoomRender::zoomEye(picture.data(), width, height, {f[0], f[1]}, f[2],
                            static_cast<int>(input[0]) * 9);
    return 0;
}
