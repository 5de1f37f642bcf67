#include "libzel/faces/lumaPyramid.h"

#include <algorithm>
#include <cmath>

namespace zel {

namespace {

constexpr int kSmallestSide = 8;  // of a level that is still halved

}  // namespace

std::vector<unsigned char> lumaOf(const Image& image) {
    std::vector<unsigned char> luma(static_cast<std::size_t>(image.width) *
                                    static_cast<std::size_t>(image.height));
    for (std::size_t i = 0; i < luma.size(); ++i) {
        const unsigned char* p = image.rgba.data() + 4 * i;
        const unsigned grey = (77u * p[0] + 150u * p[1] + 29u * p[2]) >> 8;
        luma[i] = static_cast<unsigned char>((grey * p[3] + 255u * (255u - p[3])) / 255u);
    }
    return luma;
}

LumaPyramid::LumaPyramid(const std::vector<unsigned char>& luma, int width, int height) {
    m_levels.push_back({width, height, 1.0f, {luma.begin(), luma.end()}});
    while (std::min(m_levels.back().width, m_levels.back().height) >= 2 * kSmallestSide)
        m_levels.push_back(halved(m_levels.back()));
}

LumaPyramid::Level LumaPyramid::halved(const Level& level) {
    Level half{level.width / 2, level.height / 2, level.scale * 2.0f, {}};
    half.values.reserve(static_cast<std::size_t>(half.width) * static_cast<std::size_t>(half.height));
    for (int y = 0; y < half.height; ++y) {
        const float* upper = level.values.data() + static_cast<std::size_t>(2 * y) * level.width;
        const float* lower = upper + level.width;
        for (int x = 0; x < half.width; ++x)
            half.values.push_back(0.25f *
                                  (upper[2 * x] + upper[2 * x + 1] + lower[2 * x] + lower[2 * x + 1]));
    }
    return half;
}

int LumaPyramid::levelFor(float pixels) const {
    const int wanted = pixels >= 2.0f ? static_cast<int>(std::log2(std::min(pixels, 65536.0f))) : 0;
    return std::min(wanted, static_cast<int>(m_levels.size()) - 1);
}

float LumaPyramid::at(int level, float x, float y) const {
    const Level& l = m_levels[static_cast<std::size_t>(level)];
    const float fx = std::clamp(x / l.scale - 0.5f, 0.0f, static_cast<float>(l.width - 1));
    const float fy = std::clamp(y / l.scale - 0.5f, 0.0f, static_cast<float>(l.height - 1));
    const int x0 = static_cast<int>(fx), y0 = static_cast<int>(fy);
    const int x1 = std::min(x0 + 1, l.width - 1), y1 = std::min(y0 + 1, l.height - 1);
    const float u = fx - static_cast<float>(x0), v = fy - static_cast<float>(y0);
    const float* upper = l.values.data() + static_cast<std::size_t>(y0) * l.width;
    const float* lower = l.values.data() + static_cast<std::size_t>(y1) * l.width;
    const float top = upper[x0] + u * (upper[x1] - upper[x0]);
    const float bottom = lower[x0] + u * (lower[x1] - lower[x0]);
    return top + v * (bottom - top);
}

}  // namespace zel
