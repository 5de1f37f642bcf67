#include "bokeh/disparityMap.h"

#include <algorithm>
#include <array>

namespace zellab::Bokeh {
namespace {

constexpr float kCutShare = 0.01f;  // of the pixels, at either end

}  // namespace

void DisparityMap::set(PlaneView<const Byte> plane) {
    *this = {};
    if (!plane.valid()) return;
    m_width = plane.width;
    m_height = plane.height;
    m_bytes.reserve(sampleCount(plane.width, plane.height));
    for (int y = 0; y < plane.height; ++y)
        m_bytes.insert(m_bytes.end(), plane.row(y), plane.row(y) + plane.width);

    std::array<std::int64_t, 256> histogram{};
    for (const Byte value : m_bytes) ++histogram[value];
    const auto cut = static_cast<std::int64_t>(static_cast<float>(m_bytes.size()) * kCutShare);
    std::int64_t left = cut;
    while ((left -= histogram[static_cast<std::size_t>(m_minimum)]) >= 1) ++m_minimum;
    left = cut;
    while ((left -= histogram[static_cast<std::size_t>(m_maximum)]) >= 1) --m_maximum;
    const auto lowest = static_cast<Byte>(m_minimum), highest = static_cast<Byte>(m_maximum);
    for (Byte& value : m_bytes) value = std::clamp(value, lowest, highest);
}

}  // namespace zellab::Bokeh
