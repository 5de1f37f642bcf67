#include "overlay/faceOverlay.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "faceRecords.h"
#include "pictures/glyphs.h"

namespace zel {

namespace {

using Colour = unsigned char[3];

/// A run of positions that belong together.
struct PointGroup {
    int first, last;
    Colour colour;
};

constexpr PointGroup kGroups[] = {
    {0, 19, {60, 220, 255}},      // eyes
    {20, 39, {120, 255, 90}},     // brows
    {40, 49, {255, 230, 60}},     // nose
    {50, 79, {255, 90, 90}},      // lips
    {80, 107, {255, 255, 255}},   // outline
    {108, 112, {255, 170, 40}},   // forehead line
    {113, 152, {255, 120, 255}},  // cheeks
    {153, 168, {160, 200, 255}},  // around the mouth
    {169, 170, {40, 40, 255}},    // pupils
    {175, 214, {255, 200, 150}},  // forehead
    {215, 298, {170, 170, 170}},  // outer rings
    {299, 309, {140, 255, 220}},  // ridge and chin
};

/// Closed outlines as effects fill them.
const std::vector<std::vector<int>>& outlines() {
    static const std::vector<std::vector<int>> lists = {
        {0, 1, 2, 3, 4, 5, 9, 8, 7, 6},
        {10, 11, 12, 13, 14, 15, 19, 18, 17, 16},
        {20, 21, 22, 23, 24, 25, 29, 28, 27, 26},
        {30, 31, 32, 33, 34, 35, 39, 38, 37, 36},
        {50, 51, 52, 53, 54, 55, 56, 57, 58, 79, 78, 77, 76, 75, 74, 73},
        {80, 81, 82,  83,  84,  89,  90,  91,  92,  93,  94, 95, 96, 97,
         98, 99, 100, 101, 102, 103, 104, 105, 106, 107, 88, 87, 86, 85}};
    return lists;
}

class Pen {
public:
    explicit Pen(Image& image) : m_image(image) {}

    /// A square dot of odd side; what lies outside is cut off.
    void dot(zellab::Vector2f p, int half, const Colour& colour) {
        if (!(std::fabs(p.x) < 1e6f && std::fabs(p.y) < 1e6f)) return;
        const int x0 = static_cast<int>(std::lround(p.x)), y0 = static_cast<int>(std::lround(p.y));
        for (int y = std::max(y0 - half, 0); y <= std::min(y0 + half, m_image.height - 1); ++y)
            for (int x = std::max(x0 - half, 0); x <= std::min(x0 + half, m_image.width - 1); ++x) {
                const auto at = (static_cast<std::size_t>(y) * static_cast<std::size_t>(m_image.width) +
                                 static_cast<std::size_t>(x)) *
                                4;
                std::copy_n(colour, 3, m_image.rgba.begin() + static_cast<std::ptrdiff_t>(at));
            }
    }

    void line(zellab::Vector2f a, zellab::Vector2f b, const Colour& colour) {
        const float span = std::max(std::fabs(b.x - a.x), std::fabs(b.y - a.y));
        if (!(span < 1e5f)) return;
        const int steps = std::max(1, static_cast<int>(span));
        for (int i = 0; i <= steps; ++i) {
            const float t = static_cast<float>(i) / static_cast<float>(steps);
            dot({a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t}, 0, colour);
        }
    }

    void label(zellab::Vector2f p, const std::string& text, int scale, const Colour& colour) {
        if (!(std::fabs(p.x) < 1e6f && std::fabs(p.y) < 1e6f)) return;
        constexpr Colour kShadow = {0, 0, 0};
        const int x = static_cast<int>(p.x) + 2 + scale, y = static_cast<int>(p.y) - 3 * scale;
        drawText(m_image, x + 1, y + 1, text, scale, kShadow);
        drawText(m_image, x, y, text, scale, colour);
    }

private:
    Image& m_image;
};

void drawFace(Pen& pen, const zellab::Vector2f* points, int scale) {
    constexpr Colour kOutlineColour = {0, 160, 160};
    for (const auto& outline : outlines())
        for (std::size_t i = 0; i < outline.size(); ++i)
            pen.line(points[outline[i]], points[outline[(i + 1) % outline.size()]], kOutlineColour);
    for (const PointGroup& group : kGroups)
        for (int i = group.first; i <= group.last; ++i) {
            pen.dot(points[i], scale, group.colour);
            pen.label(points[i], std::to_string(i), scale, group.colour);
        }
}

}  // namespace

void drawFaceOverlay(Image& image, const FaceSet& faces) {
    const auto points = makeFacePoints(faces, image.width, image.height);
    Pen pen(image);
    const int scale = std::max(1, std::max(image.width, image.height) / 3000);
    for (int face = 0; face < points->GetFaceCount(); ++face)
        drawFace(pen, points->GetInterPoints(face), scale);
}

Image enlargedForOverlay(const Image& image, int longSide) {
    const int factor = std::max(1, longSide / std::max({image.width, image.height, 1}));
    Image large = image;
    large.width *= factor;
    large.height *= factor;
    large.rgba.resize(image.rgba.size() * static_cast<std::size_t>(factor) *
                      static_cast<std::size_t>(factor));
    std::size_t out = 0;
    for (int y = 0; y < large.height; ++y)
        for (int x = 0; x < large.width; ++x, out += 4) {
            const auto in = (static_cast<std::size_t>(y / factor) * static_cast<std::size_t>(image.width) +
                             static_cast<std::size_t>(x / factor)) *
                            4;
            std::copy_n(image.rgba.begin() + static_cast<std::ptrdiff_t>(in), 4,
                        large.rgba.begin() + static_cast<std::ptrdiff_t>(out));
        }
    return large;
}

}  // namespace zel
