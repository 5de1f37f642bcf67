#include "proportions.h"

#include <random>

#include "disguise.h"

namespace zeltrain {

namespace {

/// Reads a curve that is straight between its knots and goes on with a slope of 1 beyond them.
template <typename Levels>
float follow(const Levels& from, const Levels& to, float at) {
    if (at <= from.front()) return to.front() + at - from.front();
    for (std::size_t i = 1; i < from.size(); ++i)
        if (at <= from[i])
            return to[i - 1] + (to[i] - to[i - 1]) * (at - from[i - 1]) / (from[i] - from[i - 1]);
    return to.back() + at - from.back();
}

/// The same for a factor, which stays as it is beyond the knots.
template <typename Levels>
float factorAt(const Levels& from, const Levels& factor, float at) {
    if (at <= from.front()) return factor.front();
    if (at >= from.back()) return factor.back();
    return follow(from, factor, at);
}

}  // namespace

Proportions::Proportions(const zel::Landmarks& mean, const zel::Similarity& toPicture, unsigned seed)
    : m_toPicture(toPicture), m_toFrame(toPicture.inverse()) {
    std::mt19937 random(seed);
    // Crown, above the brows, brows, eyes, base of the nose, mouth, chin, neck.
    m_from = {-1.6f, -0.75f, mean[35].y, 0, mean[58].y, mean[45].y, mean[0].y, mean[0].y + 0.7f};
    m_to[0] = m_from[0];
    const float spread = uniform(random, 0, 1) < 0.7f ? 0.24f : 0.08f;
    for (std::size_t i = 1; i < kLevels; ++i) {
        const bool lower = i >= 5 && i < 7;  // about the mouth people differ most
        const float stretch = 1 + uniform(random, -1, 1) * spread * (lower ? 1.3f : 0.7f);
        m_to[i] = m_to[i - 1] + stretch * (m_from[i] - m_from[i - 1]);
    }
    const float shift = m_to[3] - m_from[3];
    for (float& level : m_to) level -= shift;
    m_width = {1, 1, 1, 1, 1, 1, 1, 1};
    const float whole = 1 + uniform(random, -0.07f, 0.07f);
    for (float& width : m_width) width = whole + uniform(random, -0.06f, 0.06f);
    m_width[3] = whole;
}

zellab::Vector2f Proportions::operator()(zellab::Vector2f pixel) const {
    const auto p = m_toFrame(pixel);
    return m_toPicture({p.x * factorAt(m_from, m_width, p.y), follow(m_from, m_to, p.y)});
}

zellab::Vector2f Proportions::back(zellab::Vector2f pixel) const {
    const auto p = m_toFrame(pixel);
    const float y = follow(m_to, m_from, p.y);
    return m_toPicture({p.x / factorAt(m_from, m_width, y), y});
}

}  // namespace zeltrain
