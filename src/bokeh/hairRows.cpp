#include "bokeh/hairRows.h"

#include <algorithm>
#include <cmath>

namespace zellab::Bokeh {

namespace {

constexpr float kReach = 4.0f;  // pixels: two of the mask, a hair's width and the space beside it
constexpr float kLines = 1.5f;  // strength of what stands out
constexpr float kBase = 0.06f;

}  // namespace

HairRows::HairRows(const PlaneView<const Byte>& mask, int width, int height) : m_mask(mask) {
    for (int i = 0; i < 3; ++i) {
        const float shift = kReach * static_cast<float>(i - 1);
        m_columns[static_cast<std::size_t>(i)] = placesAt(shift, width, mask.width);
        m_rows[static_cast<std::size_t>(i)] = placesAt(shift, height, mask.height);
    }
}

HairRows::Places HairRows::placesAt(float shift, int length, int mask) {
    Places places;
    const float scale = static_cast<float>(mask) / static_cast<float>(length);
    for (int i = 0; i < length; ++i) {
        const float place = std::clamp((static_cast<float>(i) + 0.5f + shift) * scale - 0.5f, 0.0f,
                                       static_cast<float>(mask - 1));
        places.first.push_back(std::min(static_cast<int>(place), std::max(mask - 2, 0)));
        places.part.push_back(place - static_cast<float>(places.first.back()));
    }
    return places;
}

void HairRows::blend(int y, const Byte* photograph, Byte* finished) const {
    // The mask's row here, and the sum of the three rows around; a sample more, which repeats the last.
    const auto width = static_cast<std::size_t>(m_mask.width);
    std::vector<float> middle(width + 1), around(width + 1);
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        const int first = m_rows[i].first[static_cast<std::size_t>(y)];
        const float part = m_rows[i].part[static_cast<std::size_t>(y)];
        const Byte *upper = m_mask.row(first), *lower = m_mask.row(std::min(first + 1, m_mask.height - 1));
        for (std::size_t x = 0; x < width; ++x) {
            const auto above = static_cast<float>(upper[x]);
            const float value = above + (static_cast<float>(lower[x]) - above) * part;
            if (i == 1) middle[x] = value;
            around[x] += value;
        }
    }
    middle[width] = middle[width - 1];
    around[width] = around[width - 1];

    const auto between = [](const std::vector<float>& row, const Places& places, std::size_t x) {
        const float* const two = row.data() + places.first[x];
        return two[0] + (two[1] - two[0]) * places.part[x];
    };
    for (std::size_t x = 0; x < m_columns[1].first.size(); ++x, photograph += 4, finished += 4) {
        const float* const two = middle.data() + m_columns[1].first[x];
        if (two[0] == 0.0f && two[1] == 0.0f) continue;  // where there is no hair, none stands out
        const float here = between(middle, m_columns[1], x) / 255.0f;
        const float mean = (between(around, m_columns[0], x) + between(around, m_columns[1], x) +
                            between(around, m_columns[2], x)) /
                           (9.0f * 255.0f);
        const float hair = here + kLines * (here - mean) * here;
        const float alpha = std::clamp((hair - kBase) / (1.0f - 2.0f * kBase), 0.0f, 1.0f) * 255.0f + 0.5f;
        const int share = static_cast<int>(alpha);
        for (int c = 0; c < 3; ++c)
            finished[c] =
                static_cast<Byte>((finished[c] * (255 - share) + photograph[c] * share + 127) / 255);
        finished[3] = static_cast<Byte>(std::min(photograph[3] + share, 255));
    }
}

}  // namespace zellab::Bokeh
