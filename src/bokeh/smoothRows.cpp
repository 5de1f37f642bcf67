#include "bokeh/smoothRows.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "platform/simdLevel.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace zellab::Bokeh {

namespace {

constexpr int kLanes = 8;
/// Colour distance (levels) at which a neighbour counts half.
constexpr float kHalfDistance = 0.08f * 255.0f;

inline std::uint32_t pixelAt(const Byte* row, int x) {
    std::uint32_t pixel;
    std::memcpy(&pixel, row + std::ptrdiff_t{4} * x, 4);
    return pixel;
}

/// Rows that have a pixel before the first and kLanes pixels behind the last. Every lane is a pixel of its own.
[[gnu::always_inline]] inline void smoothRow(const Byte* const rows[3], int width, Byte* target) {
    constexpr float kFalloff = 1.0f / (kHalfDistance * kHalfDistance);
    for (int x = 0; x < width; x += kLanes) {
        float middle[3][kLanes], sum[4][kLanes] = {};
        for (int i = 0; i < kLanes; ++i) {
            const std::uint32_t pixel = pixelAt(rows[1], x + i);
            middle[0][i] = static_cast<float>(static_cast<int>(pixel & 255));
            middle[1][i] = static_cast<float>(static_cast<int>(pixel >> 8 & 255));
            middle[2][i] = static_cast<float>(static_cast<int>(pixel >> 16 & 255));
        }
        for (int tap = 0; tap < 9; ++tap) {
            const Byte* const row = rows[tap / 3];
            const int dx = tap % 3 - 1;
            const auto binomial = static_cast<float>((dx == 0 ? 2 : 1) * (tap / 3 == 1 ? 2 : 1));
            for (int i = 0; i < kLanes; ++i) {
                const std::uint32_t pixel = pixelAt(row, x + i + dx);
                const auto red = static_cast<float>(static_cast<int>(pixel & 255)),
                           green = static_cast<float>(static_cast<int>(pixel >> 8 & 255)),
                           blue = static_cast<float>(static_cast<int>(pixel >> 16 & 255));
                const float r = red - middle[0][i], g = green - middle[1][i], b = blue - middle[2][i];
                const float weight = binomial / (1.0f + (r * r + g * g + b * b) * kFalloff);
                sum[0][i] += red * weight;
                sum[1][i] += green * weight;
                sum[2][i] += blue * weight;
                sum[3][i] += weight;
            }
        }
        std::uint32_t pixels[kLanes];
        for (int i = 0; i < kLanes; ++i) {
            const auto level = [&](int c) {
                return static_cast<std::uint32_t>(static_cast<int>(sum[c][i] / sum[3][i] + 0.5f));
            };
            pixels[i] = level(0) | level(1) << 8 | level(2) << 16 | (pixelAt(rows[1], x + i) & 0xff000000u);
        }
        std::memcpy(target + std::ptrdiff_t{4} * x, pixels,
                    std::size_t{4} * static_cast<std::size_t>(std::min(width - x, kLanes)));
    }
}

void smoothRowPlain(const Byte* const rows[3], int width, Byte* target) {
    smoothRow(rows, width, target);
}
ZEL_TARGET_AVX2 void smoothRowAvx2(const Byte* const rows[3], int width, Byte* target) {
    smoothRow(rows, width, target);
}

/// Three rows of the source that follow each other, each with its ends repeated.
class PaddedRows {
public:
    explicit PaddedRows(const ConstImageView& source)
        : m_source(source), m_pitch(std::ptrdiff_t{4} * (source.width + 1 + kLanes)) {
        m_bytes.resize(3 * static_cast<std::size_t>(m_pitch));
    }
    void fill(int y) {
        Byte* const row = slot(y);
        const Byte* const from = m_source.row(std::clamp(y, 0, m_source.height - 1));
        std::memcpy(row, from, 4);
        std::memcpy(row + 4, from, sampleCount(m_source.width, 4));
        for (int i = 0; i < kLanes; ++i)
            std::memcpy(row + std::ptrdiff_t{4} * (1 + m_source.width + i),
                        from + std::ptrdiff_t{4} * (m_source.width - 1), 4);
    }
    /// The first pixel of row y.
    const Byte* row(int y) { return slot(y) + 4; }

private:
    Byte* slot(int y) { return m_bytes.data() + (y + 3) % 3 * m_pitch; }

    ConstImageView m_source;
    std::ptrdiff_t m_pitch;
    std::vector<Byte> m_bytes;
};

}  // namespace

void smoothPicture(const ConstImageView& source, const ImageView& target) {
    const auto kernel = platform::pick(platform::simdLevel(), smoothRowPlain, smoothRowAvx2);
    parallelRows(source.height, [&](int begin, int end) {
        PaddedRows padded(source);
        padded.fill(begin - 1);
        padded.fill(begin);
        for (int y = begin; y < end; ++y) {
            padded.fill(y + 1);
            const Byte* const rows[3] = {padded.row(y - 1), padded.row(y), padded.row(y + 1)};
            kernel(rows, source.width, target.row(y));
        }
    });
}

}  // namespace zellab::Bokeh
