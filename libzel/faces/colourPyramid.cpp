#include "libzel/faces/colourPyramid.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "zellab/imageproc/core/parallelRows.h"

namespace zel {

namespace {

constexpr int kSmallestSide = 32;  // of a level that is still halved

struct Colour {
    unsigned red, green, blue;
};

/// The pixel on white.
Colour onWhite(const unsigned char* p) {
    if (p[3] == 255) return {p[0], p[1], p[2]};
    const auto over = [alpha = unsigned{p[3]}](unsigned c) {
        return (c * alpha + 255u * (255u - alpha) + 127u) / 255u;
    };
    return {over(p[0]), over(p[1]), over(p[2])};
}

std::uint32_t pixelAt(const unsigned char* p) {
    std::uint32_t pixel;
    std::memcpy(&pixel, p, sizeof pixel);
    return pixel;
}

/// The rounded mean of four opaque pixels, two channels in each half of the arithmetic.
std::uint32_t meanOfFour(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    constexpr std::uint32_t kOdd = 0x00FF00FFu, kHalf = 0x00020002u;
    const std::uint32_t even = (a & kOdd) + (b & kOdd) + (c & kOdd) + (d & kOdd) + kHalf;
    const std::uint32_t odd = (a >> 8 & kOdd) + (b >> 8 & kOdd) + (c >> 8 & kOdd) + (d >> 8 & kOdd) + kHalf;
    return (even >> 2 & kOdd) | (odd >> 2 & kOdd) << 8;
}

void halveOnWhite(const unsigned char* upper, const unsigned char* lower, unsigned char* out) {
    const std::array<Colour, 4> four{onWhite(upper), onWhite(upper + 4), onWhite(lower), onWhite(lower + 4)};
    Colour sum{2, 2, 2};
    for (const Colour& c : four) sum = {sum.red + c.red, sum.green + c.green, sum.blue + c.blue};
    out[0] = static_cast<unsigned char>(sum.red / 4);
    out[1] = static_cast<unsigned char>(sum.green / 4);
    out[2] = static_cast<unsigned char>(sum.blue / 4);
    out[3] = 255;
}

bool rowIsOpaque(const unsigned char* row, int width) {
    unsigned char all = 255;
    for (int x = 0; x < width; ++x) all &= row[4 * x + 3];
    return all == 255;
}

void halveRow(const unsigned char* upper, const unsigned char* lower, int width, unsigned char* out) {
    if (!rowIsOpaque(upper, 2 * width) || !rowIsOpaque(lower, 2 * width)) {
        for (int x = 0; x < width; ++x) halveOnWhite(upper + 8 * x, lower + 8 * x, out + 4 * x);
        return;
    }
    for (int x = 0; x < width; ++x) {
        const std::uint32_t mean = meanOfFour(pixelAt(upper + 8 * x), pixelAt(upper + 8 * x + 4),
                                              pixelAt(lower + 8 * x), pixelAt(lower + 8 * x + 4));
        std::memcpy(out + 4 * x, &mean, sizeof mean);
    }
}

struct Sample {
    float red = 0, green = 0, blue = 0;

    void add(const unsigned char* pixel, float weight) {
        const Colour colour = onWhite(pixel);
        red += weight * static_cast<float>(colour.red);
        green += weight * static_cast<float>(colour.green);
        blue += weight * static_cast<float>(colour.blue);
    }
};

/// Between four pixels, the shares u and v of the way from the upper left one; those beyond the edge are black.
Sample sampleAt(zellab::ConstImageView level, int left, int top, float u, float v) {
    Sample sample;
    if (left >= 0 && top >= 0 && left + 1 < level.width && top + 1 < level.height) {
        const unsigned char* upper = level.at(left, top);
        const unsigned char* lower = upper + level.stride;
        sample.add(upper, (1 - u) * (1 - v));
        sample.add(upper + 4, u * (1 - v));
        sample.add(lower, (1 - u) * v);
        sample.add(lower + 4, u * v);
        return sample;
    }
    for (int corner = 0; corner < 4; ++corner) {
        const int x = left + corner % 2, y = top + corner / 2;
        if (x < 0 || y < 0 || x >= level.width || y >= level.height) continue;
        sample.add(level.at(x, y), (corner % 2 ? u : 1 - u) * (corner / 2 ? v : 1 - v));
    }
    return sample;
}

}  // namespace

ColourPyramid::ColourPyramid(zellab::ConstImageView picture) : m_levels{picture} {
    while (std::min(m_levels.back().width, m_levels.back().height) >= 2 * kSmallestSide) {
        const zellab::ConstImageView above = m_levels.back();
        const int width = above.width / 2, height = above.height / 2;
        std::vector<unsigned char>& bytes = m_halves.emplace_back(zellab::sampleCount(width, height, 4));
        const zellab::ImageView half(bytes.data(), width, height);
        zellab::parallelRows(height, [&](int begin, int end) {
            for (int y = begin; y < end; ++y)
                halveRow(above.row(2 * y), above.row(2 * y + 1), width, half.row(y));
        });
        m_levels.push_back(half);
    }
}

std::vector<float> ColourPyramid::cut(const TurnedSquare& square, int side, float gain, float offset) const {
    // One sample steps by one to two pixels of the level.
    std::size_t index = 0;
    float scale = 1;
    while (index + 1 < m_levels.size() && square.side > 2 * scale * static_cast<float>(side)) {
        ++index;
        scale *= 2;
    }
    const zellab::ConstImageView level = m_levels[index];
    const auto plane = static_cast<std::size_t>(side) * static_cast<std::size_t>(side);
    std::vector<float> samples(3 * plane, offset);
    const float step = 1 / static_cast<float>(side);
    // Pixel centres lie half a pixel off their numbers.
    const auto onLevel = [&](zellab::Vector2f p) {
        return zellab::Vector2f{p.x / scale - 0.5f, p.y / scale - 0.5f};
    };
    const zellab::Vector2f along = square.direction({step / scale, 0});
    for (int row = 0; row < side; ++row) {
        const zellab::Vector2f first =
            onLevel(square.at({0.5f * step, (static_cast<float>(row) + 0.5f) * step}));
        float* out = samples.data() + static_cast<std::size_t>(row) * static_cast<std::size_t>(side);
        for (int column = 0; column < side; ++column, ++out) {
            const float x = first.x + static_cast<float>(column) * along.x;
            const float y = first.y + static_cast<float>(column) * along.y;
            if (!(x > -1 && y > -1 && x < static_cast<float>(level.width) &&
                  y < static_cast<float>(level.height)))
                continue;
            // Counted from -1, so that cutting off goes downwards.
            const int left = static_cast<int>(x + 1) - 1, top = static_cast<int>(y + 1) - 1;
            const Sample sample =
                sampleAt(level, left, top, x - static_cast<float>(left), y - static_cast<float>(top));
            out[0] += gain * sample.red;
            out[plane] += gain * sample.green;
            out[2 * plane] += gain * sample.blue;
        }
    }
    return samples;
}

}  // namespace zel
