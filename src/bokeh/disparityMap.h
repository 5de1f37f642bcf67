#pragma once

#include <vector>

#include "zellab/imageproc/core/imageView.h"

namespace zellab::Bokeh {

/// A plane of disparities (larger is nearer) whose lowest and highest percent are cut off.
class DisparityMap {
public:
    /// Copies `plane` and clamps its values to the range between its outermost percents.
    void set(PlaneView<const Byte> plane);

    bool isEmpty() const { return m_bytes.empty(); }
    int width() const { return m_width; }
    int height() const { return m_height; }
    int minimum() const { return m_minimum; }  ///< 0 for an empty map
    int maximum() const { return m_maximum; }  ///< 255 for an empty map
    PlaneView<const Byte> view() const { return {m_bytes.data(), m_width, m_height}; }

private:
    int m_width = 0, m_height = 0;
    int m_maximum = 255, m_minimum = 0;
    std::vector<Byte> m_bytes;
};

}  // namespace zellab::Bokeh
