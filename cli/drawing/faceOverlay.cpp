#include "cli/drawing/faceOverlay.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "cli/drawing/glyphs.h"
#include "cli/library.h"

namespace zelcli {

namespace {

using Colour = unsigned char[3];
using Point = std::array<float, 2>;  // x, y

/// Of points that are made of several groups' landmarks.
constexpr int kNoGroup = -1;

/// A run of positions that belong together.
struct PointGroup {
    int first, last;
    Colour colour;
    int landmarks;  // a zel_face_group, or kNoGroup
};

constexpr PointGroup kGroups[] = {
    {0, 9, {60, 220, 255}, ZEL_GROUP_LEFT_EYE},    {10, 19, {60, 220, 255}, ZEL_GROUP_RIGHT_EYE},
    {20, 29, {120, 255, 90}, ZEL_GROUP_LEFT_BROW}, {30, 39, {120, 255, 90}, ZEL_GROUP_RIGHT_BROW},
    {40, 49, {255, 230, 60}, ZEL_GROUP_NOSE},      {50, 79, {255, 90, 90}, ZEL_GROUP_MOUTH},
    {80, 107, {255, 255, 255}, ZEL_GROUP_CONTOUR}, {108, 112, {255, 170, 40}, kNoGroup},  // forehead line
    {113, 152, {255, 120, 255}, kNoGroup},                                                // cheeks
    {153, 168, {160, 200, 255}, kNoGroup},                                                // around the mouth
    {169, 169, {40, 40, 255}, ZEL_GROUP_LEFT_EYE}, {170, 170, {40, 40, 255}, ZEL_GROUP_RIGHT_EYE},
    {175, 214, {255, 200, 150}, kNoGroup},  // forehead
    {215, 298, {170, 170, 170}, kNoGroup},  // outer rings
    {299, 309, {140, 255, 220}, kNoGroup},  // ridge and chin
};

/// A closed outline as effects fill it.
struct Outline {
    std::vector<int> points;
    int landmarks;
};

const std::vector<Outline>& outlines() {
    static const std::vector<Outline> lists = {
        {{0, 1, 2, 3, 4, 5, 9, 8, 7, 6}, ZEL_GROUP_LEFT_EYE},
        {{10, 11, 12, 13, 14, 15, 19, 18, 17, 16}, ZEL_GROUP_RIGHT_EYE},
        {{20, 21, 22, 23, 24, 25, 29, 28, 27, 26}, ZEL_GROUP_LEFT_BROW},
        {{30, 31, 32, 33, 34, 35, 39, 38, 37, 36}, ZEL_GROUP_RIGHT_BROW},
        {{50, 51, 52, 53, 54, 55, 56, 57, 58, 79, 78, 77, 76, 75, 74, 73}, ZEL_GROUP_MOUTH},
        {{80, 81, 82,  83,  84,  89,  90,  91,  92,  93,  94, 95, 96, 97,
          98, 99, 100, 101, 102, 103, 104, 105, 106, 107, 88, 87, 86, 85},
         ZEL_GROUP_CONTOUR}};
    return lists;
}

class Pen {
public:
    explicit Pen(Image& image) : m_image(image) {}

    /// A square dot of odd side; what lies outside is cut off.
    void dot(Point p, int half, const Colour& colour) {
        if (!(std::fabs(p[0]) < 1e6f && std::fabs(p[1]) < 1e6f)) return;
        const int x0 = static_cast<int>(std::lround(p[0])), y0 = static_cast<int>(std::lround(p[1]));
        for (int y = std::max(y0 - half, 0); y <= std::min(y0 + half, m_image.height - 1); ++y)
            for (int x = std::max(x0 - half, 0); x <= std::min(x0 + half, m_image.width - 1); ++x) {
                const auto at = (static_cast<std::size_t>(y) * static_cast<std::size_t>(m_image.width) +
                                 static_cast<std::size_t>(x)) *
                                4;
                std::copy_n(colour, 3, m_image.rgba.begin() + static_cast<std::ptrdiff_t>(at));
            }
    }

    /// The same without its middle.
    void ring(Point p, int half, const Colour& colour) {
        for (int i = -half; i <= half; ++i)
            for (const auto& [dx, dy] : {std::array{i, -half}, {i, half}, {-half, i}, {half, i}})
                dot({p[0] + static_cast<float>(dx), p[1] + static_cast<float>(dy)}, 0, colour);
    }

    /// @param gap  pixels of a dash and of the gap behind it; 0: unbroken
    void line(Point a, Point b, int gap, int half, const Colour& colour) {
        const float span = std::max(std::fabs(b[0] - a[0]), std::fabs(b[1] - a[1]));
        if (!(span < 1e5f)) return;
        const int steps = std::max(1, static_cast<int>(span));
        for (int i = 0; i <= steps; ++i) {
            if (gap > 0 && i / gap % 2 == 1) continue;
            const float t = static_cast<float>(i) / static_cast<float>(steps);
            dot({a[0] + (b[0] - a[0]) * t, a[1] + (b[1] - a[1]) * t}, half, colour);
        }
    }

    void label(Point p, const std::string& text, int scale, const Colour& colour) {
        if (!(std::fabs(p[0]) < 1e6f && std::fabs(p[1]) < 1e6f)) return;
        constexpr Colour kShadow = {0, 0, 0};
        const int x = static_cast<int>(p[0]) + 2 + scale, y = static_cast<int>(p[1]) - 3 * scale;
        drawText(m_image, x + 1, y + 1, text, scale, kShadow);
        drawText(m_image, x, y, text, scale, colour);
    }

private:
    Image& m_image;
};

void drawFace(Pen& pen, const zel_face& face, const float (*points)[2], int scale) {
    constexpr Colour kOutlineColour = {0, 160, 160};
    const auto isGuessed = [&face](int group) { return group != kNoGroup && mostlyGuessed(face, group); };
    const auto at = [points](int i) { return Point{points[i][0], points[i][1]}; };
    for (const auto& [outline, landmarks] : outlines()) {
        const int gap = isGuessed(landmarks) ? 4 * scale : 0;
        for (std::size_t i = 0; i < outline.size(); ++i)
            pen.line(at(outline[i]), at(outline[(i + 1) % outline.size()]), gap, scale / 2, kOutlineColour);
    }
    for (const PointGroup& group : kGroups)
        for (int i = group.first; i <= group.last; ++i) {
            if (isGuessed(group.landmarks))
                pen.ring(at(i), 2 * scale + 1, group.colour);
            else
                pen.dot(at(i), scale, group.colour);
            pen.label(at(i), std::to_string(i), scale, group.colour);
        }
}

/// The size of digits at which three of them fit between two points of an eye, whatever share of the picture the face
/// is.
int scaleOf(const zel_face& face, const Image& image) {
    constexpr float kFaceOfSmallestDigits = 500;  // pixels across
    const float across = face.rect[2] * static_cast<float>(image.width);
    return std::clamp(static_cast<int>(across / kFaceOfSmallestDigits), 1, 12);
}

}  // namespace

void drawFaceOverlay(Image& image, const zel_faces* faces) {
    Pen pen(image);
    const int scale = std::max(1, std::max(image.width, image.height) / 1500);
    bool guesses = false;
    for (std::size_t face = 0; face < zel_faces_count(faces); ++face) {
        float points[ZEL_FACE_POINTS][2];
        libzel::require(zel_faces_interpolate(faces, face, image.width, image.height, points));
        const zel_face told = libzel::faceAt(faces, face);
        drawFace(pen, told, points, scaleOf(told, image));
        for (int group = 0; group < ZEL_FACE_GROUPS; ++group) guesses |= mostlyGuessed(told, group);
    }
    if (!guesses) return;
    constexpr Colour kLegendColour = {255, 255, 255};
    const int size = 2 * scale;
    pen.ring({8.0f * size, 8.0f * size}, 2 * size, kLegendColour);
    pen.label({11.0f * size, 8.0f * size}, "hollow: guessed, not seen", size, kLegendColour);
}

Image enlargedForOverlay(const Image& image, int longSide) {
    const int factor = std::max(1, longSide / std::max({image.width, image.height, 1}));
    Image large{image.width * factor, image.height * factor, {}};
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

}  // namespace zelcli
