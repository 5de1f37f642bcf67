#pragma once

#include <cstddef>
#include <memory>

namespace zellab::Bokeh {

/// Pixels in memory with shared ownership: packed rows of width * channels bytes, 1 or 4 channels. Copies
/// share the pixels; the last one may be dropped on any thread.
class ImageBuffer {
public:
    /// Empty.
    ImageBuffer() = default;
    /// Allocates with `malloc` and copies `data` where it is not null. A size or channel count below 1 gives
    /// an empty buffer; a failed allocation throws std::bad_alloc.
    ImageBuffer(int width, int height, int channels, const unsigned char* data);

    int width() const { return m_width; }
    int height() const { return m_height; }
    int channels() const { return m_channels; }
    unsigned char* data() const { return m_data.get(); }
    std::size_t rowBytes() const {
        return static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_channels);
    }
    std::size_t byteCount() const { return rowBytes() * static_cast<std::size_t>(m_height); }
    bool isEmpty() const { return m_data == nullptr; }

private:
    int m_width = 0;
    int m_height = 0;
    int m_channels = 0;
    std::shared_ptr<unsigned char> m_data;
};

}  // namespace zellab::Bokeh
