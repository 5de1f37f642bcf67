#include "faces.h"

#include <pybind11/stl.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "calls.h"

namespace zelpy {

namespace {

using Floats = py::array_t<float, py::array::c_style | py::array::forcecast>;

/// The numbers as floats, in this shape. Throws ValueError.
Floats numbersOf(const py::object& object, const std::vector<py::ssize_t>& shape, const char* name) {
    Floats numbers = Floats::ensure(object);
    if (!numbers) throw py::error_already_set();
    if (!std::equal(shape.begin(), shape.end(), numbers.shape(), numbers.shape() + numbers.ndim()))
        throw py::value_error(std::string(name) + " must have the shape " +
                              std::string(py::str(py::tuple(py::cast(shape)))));
    return numbers;
}

/// A rectangle about landmarks.
void spanOf(zel_face& face) {
    float low[2] = {std::numeric_limits<float>::max(), std::numeric_limits<float>::max()},
          high[2] = {std::numeric_limits<float>::lowest(), std::numeric_limits<float>::lowest()};
    for (const auto& point : face.points)
        for (int i = 0; i < 2; ++i) {
            low[i] = std::min(low[i], point[i]);
            high[i] = std::max(high[i], point[i]);
        }
    for (int i = 0; i < 2; ++i) {
        face.rect[i] = low[i];
        face.rect[2 + i] = high[i] - low[i];
    }
}

/// An array with a row of numbers for each face.
template <typename Get>
py::array rowsOf(const Faces& faces, std::vector<py::ssize_t> shape, const Get& get) {
    shape.insert(shape.begin(), static_cast<py::ssize_t>(faces.count()));
    py::array_t<float> rows(shape);
    float* to = rows.mutable_data();
    for (std::size_t i = 0; i < faces.count(); ++i) {
        const zel_face face = libzel::faceAt(faces.get(), i);
        to = get(face, to);
    }
    return rows;
}

}  // namespace

Faces Faces::ofArrays(const py::array& points, const py::object& rects, const py::object& confidence,
                      std::pair<int, int> size) {
    const py::ssize_t count = points.ndim() > 0 ? points.shape(0) : 0;
    const Floats places = numbersOf(points, {count, ZEL_LANDMARKS, 2}, "points");
    std::vector<zel_face> all(static_cast<std::size_t>(count));
    const float* from = places.data();
    for (zel_face& face : all) {
        std::copy_n(from, 2 * ZEL_LANDMARKS, &face.points[0][0]);
        from += 2 * ZEL_LANDMARKS;
        face.confidence = -1;
        spanOf(face);
    }
    if (!rects.is_none()) {
        const Floats told = numbersOf(rects, {count, 4}, "rects");
        for (std::size_t i = 0; i < all.size(); ++i) std::copy_n(told.data() + 4 * i, 4, all[i].rect);
    }
    if (!confidence.is_none()) {
        const Floats told = numbersOf(confidence, {count}, "confidence");
        for (std::size_t i = 0; i < all.size(); ++i) all[i].confidence = told.data()[i];
    }
    zel_faces* made = nullptr;
    require(zel_faces_create(all.data(), all.size(), size.first, size.second, &made));
    return Faces(libzel::Faces(made));
}

Faces Faces::ofJson(const std::string& text) {
    zel_faces* made = nullptr;
    require(zel_faces_from_json(text.data(), text.size(), &made));
    return Faces(libzel::Faces(made));
}

std::pair<int, int> Faces::size() const {
    std::pair<int, int> size;
    require(zel_faces_size(m_faces.get(), &size.first, &size.second));
    return size;
}

py::array Faces::points() const {
    return rowsOf(*this, {ZEL_LANDMARKS, 2}, [](const zel_face& face, float* to) {
        return std::copy_n(&face.points[0][0], 2 * ZEL_LANDMARKS, to);
    });
}

py::array Faces::rects() const {
    return rowsOf(*this, {4}, [](const zel_face& face, float* to) { return std::copy_n(face.rect, 4, to); });
}

py::array Faces::confidence() const {
    return rowsOf(*this, {}, [](const zel_face& face, float* to) {
        *to = face.confidence < 0 ? std::numeric_limits<float>::quiet_NaN() : face.confidence;
        return to + 1;
    });
}

py::array Faces::dense(std::ptrdiff_t index, int width, int height) const {
    if (index < 0 || static_cast<std::size_t>(index) >= count())
        throw py::index_error("there is no such face");
    py::array_t<float> points({ZEL_FACE_POINTS, 2});
    require(zel_faces_interpolate(m_faces.get(), static_cast<std::size_t>(index), width, height,
                                  reinterpret_cast<float(*)[2]>(points.mutable_data())));
    return points;
}

void defineFaces(py::module_& module) {
    py::class_<Faces>(module, "Faces", "Faces of a picture: 83 landmarks each, as fractions of its size.")
        .def(py::init(&Faces::ofArrays), py::arg("points"), py::kw_only(), py::arg("rects") = py::none(),
             py::arg("confidence") = py::none(), py::arg("size"),
             "Of landmarks, (n, 83, 2); size is the (width, height) that they belong to.")
        .def_static("from_json", &Faces::ofJson, py::arg("text"), "Face data as zel faces writes them.")
        .def("to_json", &Faces::json, "Face data as zel apply --faces takes them.")
        .def("__len__", &Faces::count)
        .def("__repr__",
             [](const Faces& faces) {
                 const auto size = faces.size();
                 return "<zel.Faces: " + std::to_string(faces.count()) + " on " + std::to_string(size.first) +
                        " x " + std::to_string(size.second) + ">";
             })
        .def_property_readonly("size", &Faces::size, "Width and height that they were found at.")
        .def_property_readonly("points", &Faces::points, "Landmarks, (n, 83, 2), x before y.")
        .def_property_readonly("rects", &Faces::rects, "Left, top, width, height, (n, 4).")
        .def_property_readonly("confidence", &Faces::confidence, "0 to 1, (n,); NaN: not told.")
        .def("dense_points", &Faces::dense, py::arg("index"), py::arg("width"), py::arg("height"),
             "The 310 points that effects make of one face, (310, 2), in pixels of a picture of that size.");
}

}  // namespace zelpy
