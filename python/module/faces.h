#pragma once

#include <pybind11/numpy.h>

#include <string>
#include <utility>

#include "zel/zel.hpp"

namespace zelpy {

namespace py = pybind11;

/// A list of faces that Python holds.
class Faces {
public:
    explicit Faces(libzel::Faces faces) : m_faces(std::move(faces)) {}

    /// @param points  (n, 83, 2) fractions of the picture
    /// @param rects   (n, 4), or None: what the landmarks span
    /// @param size    width and height of the picture
    static Faces ofArrays(const py::array& points, const py::object& rects, const py::object& confidence,
                          std::pair<int, int> size);
    static Faces ofJson(const std::string& text);

    std::size_t count() const { return zel_faces_count(m_faces.get()); }
    std::pair<int, int> size() const;
    py::array points() const;
    py::array rects() const;
    py::array confidence() const;
    std::string json() const { return libzel::toJson(m_faces.get()); }
    /// The 310 points of one face in pixels.
    py::array dense(std::ptrdiff_t index, int width, int height) const;

    const zel_faces* get() const { return m_faces.get(); }

private:
    libzel::Faces m_faces;
};

void defineFaces(py::module_& module);

}  // namespace zelpy
