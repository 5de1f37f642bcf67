#pragma once

#include <array>
#include <cstdint>

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

using Histogram = std::array<std::uint64_t, 256>;
using ColourHistograms = std::array<Histogram, 3>;

/// Counts the values of one band of rows, fewer than 2^32 pixels. Neighbouring pixels are counted apart, so
/// that an increment need not wait for the one before it.
class BandHistograms {
public:
    /// @tparam kChannels  4 counts bytes 0 to 2 of RGBA pixels, 1 a plane, as the first colour
    template <int kChannels>
    void addRow(const Byte* p, int width) {
        constexpr int kUsed = kChannels == 4 ? 3 : 1;
        int x = 0;
        for (; x + 2 <= width; x += 2, p += 2 * kChannels)
            for (int c = 0; c < kUsed; ++c) {
                ++m_even[c][p[c]];
                ++m_odd[c][p[kChannels + c]];
            }
        if (x < width)
            for (int c = 0; c < kUsed; ++c) ++m_even[c][p[c]];
    }

    void addTo(ColourHistograms& colours) const {
        for (std::size_t c = 0; c < 3; ++c)
            for (std::size_t i = 0; i < 256; ++i) colours[c][i] += std::uint64_t{m_even[c][i]} + m_odd[c][i];
    }

private:
    std::uint32_t m_odd[3][256] = {}, m_even[3][256] = {};
};

}  // namespace zellab
