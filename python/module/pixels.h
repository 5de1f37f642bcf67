#pragma once

#include <pybind11/numpy.h>

#include <cstddef>
#include <string>
#include <vector>

#include "zel/zel.h"

/// Arrays as the library takes pixels.

namespace zelpy {

namespace py = pybind11;

/// Samples in the caller's memory, of any strides. Known without the interpreter's lock.
struct Samples {
    unsigned char* data = nullptr;
    int width = 0, height = 0, channels = 1;
    std::ptrdiff_t down = 0, across = 0,
                   deep = 1;  // bytes from row to row, pixel to pixel, channel to channel
    bool flags = false;       // booleans: 0 and 1 stand for 0 and 255

    /// Whether the library can work on them where they are.
    bool direct() const;
    zel_pixels pixels() const;
    bool operator==(const Samples&) const = default;
};

/// A picture, (height, width, 3 or 4) of uint8. Throws TypeError and ValueError.
/// @param written  it must be writable
Samples pictureSamples(const py::array& array, const std::string& name, bool written = false);

/// A plane, (height, width) of uint8, or of bool where it is only read.
Samples planeSamples(const py::array& array, const std::string& name, bool written = false);

/// Packed pixels of the module's own: RGBA of a picture, opaque where it has three channels; grey of a plane.
class Copy {
public:
    Copy() = default;
    explicit Copy(const Samples& from);
    /// Of a plane to be filled.
    Copy(int width, int height);

    void writeTo(const Samples& to) const;
    zel_pixels pixels();

private:
    int m_width = 0, m_height = 0, m_channels = 1;
    std::vector<unsigned char> m_bytes;
};

/// A plane that a call reads, where it is or as a copy. Needs no lock.
class ReadPixels {
public:
    explicit ReadPixels(const Samples& samples);
    const zel_pixels& get() const { return m_pixels; }

private:
    Copy m_copy;
    zel_pixels m_pixels;
};

/// A plane that a call fills.
class FilledPlane {
public:
    explicit FilledPlane(const Samples& samples);
    const zel_pixels& get() const { return m_pixels; }
    /// Once the call has done well.
    void deliver() const;

private:
    Samples m_samples;
    Copy m_copy;
    zel_pixels m_pixels;
};

}  // namespace zelpy
