#include "beautykernel/lazybeauty/smoothMix.h"

#include <algorithm>
#include <array>

#include "zellab/imageproc/parallelRows.h"

namespace zellab {

namespace {

/// Red, green, blue of the blurred colours, weight, edges, high pass, and two idle places: eight fill whole
/// vector registers.
constexpr std::size_t kSamples = 8;

using Sample = std::array<int, kSamples>;

/// One row of the planes at a height between two of their rows: the samples of every column, as floats.
class PlaneRow {
public:
    PlaneRow(const SmoothPlanes& planes, float position) {
        const int width = planes.weight.width(), last = planes.weight.height() - 1;
        const int top = std::min(static_cast<int>(position), last), bottom = std::min(top + 1, last);
        const float fraction = position - static_cast<float>(top);
        m_columns.resize(static_cast<std::size_t>(width));
        for (int x = 0; x < width; ++x) {
            const Sample upper = sampleAt(planes, x, top), lower = sampleAt(planes, x, bottom);
            for (std::size_t i = 0; i < kSamples; ++i)
                m_columns[static_cast<std::size_t>(x)][i] =
                    static_cast<float>(upper[i]) + static_cast<float>(lower[i] - upper[i]) * fraction;
        }
    }

    Sample at(float position) const {
        const int last = static_cast<int>(m_columns.size()) - 1,
                  whole = std::min(static_cast<int>(position), last);
        const auto left = static_cast<std::size_t>(whole),
                   right = static_cast<std::size_t>(std::min(whole + 1, last));
        const float fraction = position - static_cast<float>(whole);
        Sample sample;
        for (std::size_t i = 0; i < kSamples; ++i)
            sample[i] =
                static_cast<int>((m_columns[right][i] - m_columns[left][i]) * fraction + m_columns[left][i]);
        return sample;
    }

private:
    static Sample sampleAt(const SmoothPlanes& planes, int x, int y) {
        const std::size_t i = sampleCount(planes.weight.width(), y) + static_cast<std::size_t>(x);
        const Byte* colour = planes.blurred.data() + 4 * i;
        return {colour[0],
                colour[1],
                colour[2],
                planes.weight.data()[i],
                planes.edges.data()[i],
                planes.highPass.data()[i],
                0,
                0};
    }

    std::vector<std::array<float, kSamples>> m_columns;
};

/// The overlaid value of every blended value and high pass.
std::vector<Byte> overlaidValues(const OverlayTable& overlay, int level) {
    const float share = static_cast<float>(std::clamp(level, 0, 10)) / 10.0f;
    std::array<float, 256> shares{};
    for (std::size_t i = 1; i < shares.size(); ++i) shares[i] = shares[i - 1] + share;
    std::vector<Byte> values(256 * 256);
    for (int b = 0; b < 256; ++b)
        for (int h = 0; h < 256; ++h) {
            const float value =
                static_cast<float>(b) - shares[static_cast<std::size_t>(b)] + shares[overlay(b, h)];
            values[static_cast<std::size_t>(b * 256 + h)] = static_cast<Byte>(value);
        }
    return values;
}

void mixPixel(Byte* p, const Sample& sample, const std::vector<Byte>& overlaid) {
    const int weight = sample[3], edge = sample[4];
    for (std::size_t c = 0; c < 3; ++c) {
        const int smooth = ((sample[c] * weight + p[c] * (255 - weight)) >> 8) & 255;
        const int blended = ((smooth * (255 - edge) + p[c] * edge) >> 8) & 255;
        p[c] = overlaid[static_cast<std::size_t>(blended * 256 + sample[5])];
    }
}

}  // namespace

void mixSmooth(ImageView image, const SmoothPlanes& planes, const OverlayTable& overlay, int level) {
    const std::vector<Byte> overlaid = overlaidValues(overlay, level);
    const float stepX = static_cast<float>(planes.weight.width()) / static_cast<float>(image.width);
    const float stepY = static_cast<float>(planes.weight.height()) / static_cast<float>(image.height);
    parallelRows(image.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            const PlaneRow row(planes, static_cast<float>(y) * stepY);
            Byte* p = image.row(y);
            for (int x = 0; x < image.width; ++x, p += 4)
                mixPixel(p, row.at(static_cast<float>(x) * stepX), overlaid);
        }
    });
}

}  // namespace zellab
