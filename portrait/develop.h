#pragma once

#include <array>

#include "sitter.h"

namespace zel::drawing {

/// The camera: exposure, vignette, tone curve, sensor noise, sRGB bytes.
class Developer {
public:
    explicit Developer(const Scene& scene);

    /// Writes red, green, blue and an opaque alpha. The same pixel always gets the same noise.
    void develop(Colour colour, int x, int y, unsigned char* rgba) const;

private:
    float encoded(float linear) const;

    static constexpr int kSteps = 4096;
    std::array<float, kSteps + 1> m_curve{};  // linear 0 to 2 to sRGB 0 to 255
    Scene m_scene;
};

}  // namespace zel::drawing
