#pragma once

#include <vector>

#include "sitter.h"

namespace zel::drawing {

/// The room or landscape behind the person, out of focus. Kept at the resolution that its blur leaves.
class Background {
public:
    explicit Background(const Scene& scene);

    Colour colourAt(int x, int y) const;
    float depthAt(int x, int y) const;

private:
    void draw(const Scene& scene);
    void addLights(const Scene& scene);

    int m_factor = 1;  // picture pixels to one of ours
    int m_width = 1, m_height = 1;
    std::vector<float> m_planes[4];  // red, green, blue, depth
};

/// One sharp sample. x is 0 in the picture's middle and 1 a picture's height to the right; y runs from 0
/// to 1.
struct Scenery {
    Colour colour;
    float depth = 0.1f;
};
Scenery sceneryAt(BackgroundKind kind, unsigned seed, float x, float y);

}  // namespace zel::drawing
