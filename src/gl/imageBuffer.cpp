#include "gl/imageBuffer.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace zellab::Bokeh {

ImageBuffer::ImageBuffer(int width, int height, int channels, const unsigned char* data) {
    if (width < 1 || height < 1 || channels < 1) return;
    m_width = width;
    m_height = height;
    m_channels = channels;
    m_data = {static_cast<unsigned char*>(std::malloc(byteCount())), std::free};
    if (!m_data) throw std::bad_alloc();
    if (data) std::memcpy(m_data.get(), data, byteCount());
}

}  // namespace zellab::Bokeh
