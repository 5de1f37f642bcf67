#include "pixels.h"

#include <cstring>

namespace zelpy {

namespace {

std::string shapeText(const py::array& array) {
    return py::str(py::tuple(array.attr("shape")));
}

/// What is told of every array: its type, whether it may be written, and sides that a picture may have.
Samples samplesOf(const py::array& array, const std::string& name, bool written, bool booleans) {
    const bool isBool = array.dtype().kind() == 'b';
    const bool isByte = array.dtype().kind() == 'u' && array.itemsize() == 1;
    if (!isByte && !(booleans && isBool))
        throw py::type_error(name + " must be of uint8, not of " + std::string(py::str(array.dtype())));
    if (written && !array.writeable()) throw py::value_error(name + " is read-only");
    const py::ssize_t height = array.shape(0), width = array.shape(1);
    if (width < 1 || height < 1 || width > ZEL_LONGEST_SIDE || height > ZEL_LONGEST_SIDE)
        throw py::value_error(name + " must be 1 to " + std::to_string(ZEL_LONGEST_SIDE) +
                              " pixels a side; its shape is " + shapeText(array));
    Samples samples;
    // Only written to where `written` has looked.
    samples.data = static_cast<unsigned char*>(const_cast<void*>(array.data()));
    samples.width = static_cast<int>(width);
    samples.height = static_cast<int>(height);
    samples.down = array.strides(0);
    samples.across = array.strides(1);
    samples.flags = isBool;
    return samples;
}

constexpr int kRgba = 4;

}  // namespace

bool Samples::direct() const {
    const std::ptrdiff_t row = std::ptrdiff_t{channels} * width;
    return (channels == kRgba || channels == 1) && !flags && deep == 1 &&
           (across == channels || width == 1) && (down >= row || height == 1);
}

zel_pixels Samples::pixels() const {
    const std::size_t stride = height == 1 ? 0 : static_cast<std::size_t>(down);
    return {data, width, height, stride, channels == 1 ? ZEL_GRAY8 : ZEL_RGBA8, 0};
}

Samples pictureSamples(const py::array& array, const std::string& name, bool written) {
    if (array.ndim() != 3 || (array.shape(2) != 3 && array.shape(2) != kRgba))
        throw py::value_error(name + " must have the shape (height, width, 3 or 4), not " + shapeText(array));
    Samples samples = samplesOf(array, name, written, false);
    samples.channels = static_cast<int>(array.shape(2));
    samples.deep = array.strides(2);
    return samples;
}

Samples planeSamples(const py::array& array, const std::string& name, bool written) {
    if (array.ndim() != 2)
        throw py::value_error(name + " must have the shape (height, width), not " + shapeText(array));
    return samplesOf(array, name, written, !written);
}

Copy::Copy(const Samples& from)
    : m_width(from.width), m_height(from.height), m_channels(from.channels == 1 ? 1 : kRgba) {
    const auto across = static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_channels);
    m_bytes.resize(across * static_cast<std::size_t>(m_height), 255);
    unsigned char* to = m_bytes.data();
    for (int y = 0; y < m_height; ++y) {
        const unsigned char* pixel = from.data + y * from.down;
        if (from.direct()) {
            std::memcpy(to, pixel, across);
            to += across;
            continue;
        }
        for (int x = 0; x < m_width; ++x, pixel += from.across, to += m_channels)
            for (int c = 0; c < from.channels; ++c) {
                const unsigned char sample = pixel[c * from.deep];
                to[c] = from.flags && sample ? 255 : sample;
            }
    }
}

Copy::Copy(int width, int height)
    : m_width(width),
      m_height(height),
      m_bytes(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {}

void Copy::writeTo(const Samples& to) const {
    const unsigned char* from = m_bytes.data();
    for (int y = 0; y < m_height; ++y) {
        unsigned char* pixel = to.data + y * to.down;
        for (int x = 0; x < m_width; ++x, pixel += to.across, from += m_channels)
            for (int c = 0; c < to.channels; ++c) pixel[c * to.deep] = from[c];
    }
}

zel_pixels Copy::pixels() {
    return {m_bytes.data(), m_width, m_height, 0, m_channels == 1 ? ZEL_GRAY8 : ZEL_RGBA8, 0};
}

ReadPixels::ReadPixels(const Samples& samples) : m_pixels(samples.pixels()) {
    if (samples.direct()) return;
    m_copy = Copy(samples);
    m_pixels = m_copy.pixels();
}

FilledPlane::FilledPlane(const Samples& samples)
    : m_samples(samples), m_copy(samples.width, samples.height), m_pixels(m_copy.pixels()) {}

void FilledPlane::deliver() const {
    m_copy.writeTo(m_samples);
}

}  // namespace zelpy
