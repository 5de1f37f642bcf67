#include <pybind11/stl.h>

#include <cstring>
#include <string>
#include <vector>

#include "calls.h"
#include "context.h"
#include "effects.h"

namespace zelpy {

namespace {

/// A drawn portrait. Its planes are arrays over its own memory, which they keep alive.
struct Portrait {
    libzel::Portrait portrait;
};

Portrait drawPortrait(const Context& context, int width, int height, unsigned seed, const py::dict& values) {
    const libzel::Values texts = valuesOf(values);
    zel_portrait* drawn = nullptr;
    const zel_status status = unlocked([&] {
        return zel_draw_portrait(context.get(), width, height, seed, texts.list().data(), texts.list().size(),
                                 &drawn);
    });
    require(status);
    return {libzel::Portrait(drawn)};
}

py::array planeOf(const py::object& self, const std::string& name) {
    zel_pixels pixels;
    require(zel_portrait_plane(self.cast<Portrait&>().portrait.get(), name.c_str(), &pixels));
    const py::ssize_t sample = pixels.format == ZEL_GRAY16 ? 2 : 1,
                      channels = pixels.format == ZEL_RGBA8 ? 4 : 1;
    const py::ssize_t across = sample * channels;
    const py::ssize_t down = pixels.stride ? static_cast<py::ssize_t>(pixels.stride) : across * pixels.width;
    std::vector<py::ssize_t> shape = {pixels.height, pixels.width}, strides = {down, across};
    if (channels > 1) {
        shape.push_back(channels);
        strides.push_back(sample);
    }
    return py::array(py::dtype(sample == 2 ? "uint16" : "uint8"), shape, strides, pixels.data, self);
}

py::array spotsOf(const Portrait& portrait, const char* kind) {
    const zel_spot* spots = nullptr;
    std::size_t count = 0;
    require(zel_portrait_spots(portrait.portrait.get(), kind, &spots, &count));
    py::array_t<float> circles({static_cast<py::ssize_t>(count), py::ssize_t{3}});
    if (count > 0) std::memcpy(circles.mutable_data(), spots, count * sizeof(zel_spot));
    return circles;
}

Faces facesOf(const Portrait& portrait) {
    zel_faces* faces = nullptr;
    require(zel_portrait_faces(portrait.portrait.get(), &faces));
    return Faces(libzel::Faces(faces));
}

std::vector<std::string> planeNames() {
    std::vector<std::string> names;
    while (const char* name = zel_portrait_plane_name(names.size())) names.emplace_back(name);
    return names;
}

}  // namespace

void definePortrait(py::module_& module) {
    static_assert(sizeof(zel_spot) == 3 * sizeof(float));
    py::class_<Portrait>(module, "Portrait", "A drawn portrait with its truth.")
        .def("plane", planeOf, py::arg("name"), "One of portrait_planes(), over the portrait's own memory.")
        .def_property_readonly("picture", [](const py::object& self) { return planeOf(self, "picture"); })
        .def_property_readonly("faces", facesOf, "Its face, exact.")
        .def_property_readonly(
            "irises", [](const Portrait& p) { return spotsOf(p, "irises"); },
            "Circles in pixels: x, y, radius.")
        .def_property_readonly(
            "moles", [](const Portrait& p) { return spotsOf(p, "moles"); },
            "Circles in pixels: x, y, radius.");
    module.def("portrait_planes", planeNames, "The names of a portrait's planes.");
    module.def("_draw_portrait", drawPortrait);
}

}  // namespace zelpy
