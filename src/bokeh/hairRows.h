#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "zellab/imageproc/core/imageView.h"

namespace zellab::Bokeh {

/// The hair's pass: puts the sharp hair back by a mask of half the photograph's size.
class HairRows {
public:
    HairRows(const PlaneView<const Byte>& mask, int width, int height);

    /// Blends row y of the photograph over the finished picture, and adds the hair to its alpha.
    void blend(int y, const Byte* photograph, Byte* finished) const;

private:
    /// Between the samples of the mask along an axis: the first, and the second's share, for each pixel.
    struct Places {
        std::vector<int> first;
        std::vector<float> part;
    };
    static Places placesAt(float shift, int length, int mask);

    PlaneView<const Byte> m_mask;
    std::array<Places, 3> m_columns, m_rows;  // kReach pixels before, at, and behind each pixel
};

}  // namespace zellab::Bokeh
