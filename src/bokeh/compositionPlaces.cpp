#include "bokeh/compositionPlaces.h"

#include <algorithm>
#include <cmath>

#include "bokeh/weightedRows.h"

namespace zellab::Bokeh {

CompositionAxis::CompositionAxis(int photograph, int working, float radiusSpacing, float smallSpacing)
    : m_corners(static_cast<std::size_t>(photograph)),
      m_parts(m_corners.size()),
      m_weights(2 * m_corners.size()) {
    const double scale = static_cast<double>(working) / photograph;
    const auto tapAt = [&](double offset) {
        const double whole = std::floor(offset);
        Tap tap{static_cast<int>(whole), static_cast<float>(offset - whole), {}};
        for (int i = 0; i < photograph; ++i) {
            const double place = std::clamp(i + 0.5 + offset, 0.5, photograph - 0.5);
            tap.places.push_back(std::min(static_cast<int>(place * scale), working - 1));
        }
        return tap;
    };
    for (int i = -kRadiusReach; i <= kRadiusReach; ++i)
        m_radius[static_cast<std::size_t>(i + kRadiusReach)] = tapAt(static_cast<double>(radiusSpacing) * i);
    for (int i = -kSmallReach; i <= kSmallReach; ++i)
        m_small[static_cast<std::size_t>(i + kSmallReach)] = tapAt(-static_cast<double>(smallSpacing) * i);
    for (int i = 0; i < photograph; ++i) {
        const double place = (i + 0.5) * scale - 0.5, corner = std::floor(place);
        const auto at = static_cast<std::size_t>(i);
        m_corners[at] = static_cast<int>(corner);
        m_parts[at] = static_cast<float>(place - corner);
        const auto next = static_cast<std::int16_t>(std::lround((place - corner) * (1 << kWeightBits)));
        m_weights[2 * at] = static_cast<std::int16_t>((1 << kWeightBits) - next);
        m_weights[2 * at + 1] = next;
    }
    const float farthest = std::max(kRadiusReach * radiusSpacing, kSmallReach * smallSpacing);
    m_farthest = static_cast<int>(std::ceil(farthest));
    m_reach = static_cast<int>(std::ceil(static_cast<double>(farthest) * scale)) + 1;
}

}  // namespace zellab::Bokeh
