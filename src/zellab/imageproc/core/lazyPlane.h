#pragma once

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// A plane of bytes like Plane<Byte>, zero at first, for work that touches a small part of it: the system hands
/// the zeros out page by page, so that what nobody touches costs nothing, however large the picture is.
class LazyPlane {
public:
    LazyPlane(int width, int height)
        : m_samples(static_cast<Byte*>(std::calloc(std::max<std::size_t>(sampleCount(width, height), 1), 1))),
          m_width(width),
          m_height(height) {
        if (!m_samples) throw std::bad_alloc();
    }

    PlaneView<Byte> view() { return {m_samples.get(), m_width, m_height}; }

private:
    struct Free {
        void operator()(Byte* samples) const { std::free(samples); }
    };
    std::unique_ptr<Byte, Free> m_samples;
    int m_width, m_height;
};

}  // namespace zellab
