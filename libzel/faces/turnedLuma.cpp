#include "libzel/faces/turnedLuma.h"

#include <algorithm>
#include <cmath>

#include "zellab/geometry/vector2.h"

namespace zel {

using zellab::Vector2f;

namespace {

constexpr float kLargestSide = 900;  // more than that the detector would shrink again

}  // namespace

TurnedLuma::TurnedLuma(const LumaPyramid& picture, float turn)
    : m_turn(turn),
      m_middle{0.5f * static_cast<float>(picture.width()), 0.5f * static_cast<float>(picture.height())} {
    const float c = std::abs(std::cos(turn)), s = std::abs(std::sin(turn));
    const float width = 2 * (c * m_middle.x + s * m_middle.y), height = 2 * (s * m_middle.x + c * m_middle.y);
    m_scale = std::max(1.0f, std::max(width, height) / kLargestSide);
    m_width = std::max(1, static_cast<int>(width / m_scale));
    m_height = std::max(1, static_cast<int>(height / m_scale));
    m_luma.reserve(static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_height));
    const int level = picture.levelFor(m_scale);
    for (int y = 0; y < m_height; ++y)
        for (int x = 0; x < m_width; ++x) {
            const Vector2f p = placeInPicture({static_cast<float>(x) + 0.5f, static_cast<float>(y) + 0.5f});
            m_luma.push_back(static_cast<unsigned char>(std::lround(picture.at(level, p.x, p.y))));
        }
}

Vector2f TurnedLuma::placeInPicture(Vector2f p) const {
    const float x = m_scale * (p.x - 0.5f * static_cast<float>(m_width));
    const float y = m_scale * (p.y - 0.5f * static_cast<float>(m_height));
    const float c = std::cos(m_turn), s = std::sin(m_turn);
    return m_middle + Vector2f{c * x - s * y, s * x + c * y};
}

FaceBox TurnedLuma::inPicture(const FaceBox& box) const {
    const Vector2f middle = placeInPicture({box.x + 0.5f * box.side, box.y + 0.5f * box.side});
    const float side = box.side * m_scale;
    return {middle.x - 0.5f * side, middle.y - 0.5f * side, side, box.votes, m_turn};
}

}  // namespace zel
