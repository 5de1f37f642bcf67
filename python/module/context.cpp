#include "context.h"

#include <pybind11/stl.h>

#include <algorithm>
#include <array>

#include "calls.h"
#include "effects.h"
#include "pixels.h"

namespace zelpy {

namespace {

zel_gl glNamed(const std::string& name) {
    if (name == "own") return ZEL_GL_IF_THERE;
    if (name == "never") return ZEL_GL_NEVER;
    if (name == "current") return ZEL_GL_CURRENT;
    throw py::value_error("gl is 'own', 'current' or 'never', not '" + name + "'");
}

/// A fresh grey array of the picture's size.
py::array_t<unsigned char> planeFor(const Samples& picture) {
    return py::array_t<unsigned char>({py::ssize_t{picture.height}, py::ssize_t{picture.width}});
}

/// The picture as the library takes it: where it is, or as a copy that is changed in its place.
class ChangedPicture {
public:
    /// Nothing of `to` is changed before the call has done well, but where both are one.
    ChangedPicture(const Samples& from, const Samples& to)
        : m_to(to), m_inPlace(from == to && to.direct()), m_copy(m_inPlace ? Copy() : Copy(from)) {
        m_pixels = m_inPlace ? to.pixels() : m_copy.pixels();
    }
    const zel_pixels& get() const { return m_pixels; }
    void deliver() const {
        if (!m_inPlace) m_copy.writeTo(m_to);
    }

private:
    Samples m_to;
    bool m_inPlace;
    Copy m_copy;
    zel_pixels m_pixels{};
};

}  // namespace

Context::Context(std::optional<std::string> assets, int threads, const std::string& gl, py::object log)
    : m_log(std::move(log)) {
    auto settings = libzel::sized<zel_settings>();
    settings.assets = assets ? assets->c_str() : nullptr;
    settings.threads = threads;
    settings.gl = glNamed(gl);
    if (!m_log.is_none()) {
        settings.log = hear;
        settings.log_user = this;
    }
    zel_context* made = nullptr;
    require(zel_context_create(&settings, &made));
    m_context.reset(made);
}

void Context::hear(void* user, zel_log_level level, const char* message, const char* source) noexcept {
    const py::gil_scoped_acquire locked;
    try {
        constexpr const char* kLevels[] = {"error", "debug", "info"};
        static_cast<Context*>(user)->m_log(kLevels[level], message, source);
    } catch (py::error_already_set& raised) {
        raised.discard_as_unraisable("zel log");
    } catch (...) {  // a log is no reason to fail
    }
}

void Context::apply(const std::string& effect, const py::array& image, const py::array& out,
                    const py::dict& values, const Inputs& inputs) const {
    const Samples from = pictureSamples(image, "image"), to = pictureSamples(out, "out", true);
    if (from.width != to.width || from.height != to.height || from.channels != to.channels)
        throw py::value_error("out must have the shape of the image");
    const libzel::Values texts = valuesOf(values);
    const auto read = [](const std::optional<py::array>& array, const char* name) {
        return array ? std::optional(planeSamples(*array, name)) : std::nullopt;
    };
    const auto filled = [](const std::optional<py::array>& array, const char* name) {
        return array ? std::optional(planeSamples(*array, name, true)) : std::nullopt;
    };
    const auto mask = read(inputs.mask, "mask"), depth = read(inputs.depth, "depth");
    const auto second =
        inputs.second ? std::optional(pictureSamples(*inputs.second, "second")) : std::nullopt;
    const auto maskOut = filled(inputs.maskOut, "mask_out"), depthOut = filled(inputs.depthOut, "depth_out");
    Listener listener(inputs.progress);
    const zel_status status = unlocked([&] {
        auto told = libzel::sized<zel_inputs>();
        told.values = texts.list().data();
        told.value_count = texts.list().size();
        told.faces = inputs.faces ? inputs.faces->get() : nullptr;
        const auto reading = [](const std::optional<Samples>& samples) {
            return samples ? std::optional<ReadPixels>(*samples) : std::nullopt;
        };
        const auto maskPixels = reading(mask), secondPixels = reading(second), depthPixels = reading(depth);
        if (maskPixels) told.mask = &maskPixels->get();
        if (secondPixels) told.second = &secondPixels->get();
        if (depthPixels) told.depth = &depthPixels->get();
        std::optional<FilledPlane> maskFilled, depthFilled;
        if (maskOut) told.mask_out = &maskFilled.emplace(*maskOut).get();
        if (depthOut) told.depth_out = &depthFilled.emplace(*depthOut).get();
        told.progress = Listener::ask;
        told.progress_user = &listener;
        const ChangedPicture picture(from, to);
        const zel_status done = zel_apply(m_context.get(), effect.c_str(), &picture.get(), &told);
        if (done == ZEL_OK) {
            picture.deliver();
            if (maskFilled) maskFilled->deliver();
            if (depthFilled) depthFilled->deliver();
        }
        return done;
    });
    listener.finish(status);
}

Faces Context::findFaces(const py::array& image) const {
    const Samples samples = pictureSamples(image, "image");
    zel_faces* found = nullptr;
    const zel_status status = unlocked([&] {
        const ReadPixels pixels(samples);
        return zel_find_faces(m_context.get(), &pixels.get(), &found);
    });
    require(status);
    return Faces(libzel::Faces(found));
}

py::array Context::estimateDepth(const py::array& image, const std::optional<py::array>& person,
                                 const std::optional<std::string>& network, bool raw,
                                 py::object progress) const {
    const Samples samples = pictureSamples(image, "image");
    const auto mask = person ? std::optional(planeSamples(*person, "person")) : std::nullopt;
    auto depth = planeFor(samples);
    const zel_pixels out = planeSamples(depth, "depth", true).pixels();
    Listener listener(std::move(progress));
    const zel_status status = unlocked([&] {
        auto options = libzel::sized<zel_depth_options>();
        options.network = network ? network->c_str() : nullptr;
        const auto maskPixels = mask ? std::optional<ReadPixels>(*mask) : std::nullopt;
        if (maskPixels) options.person = &maskPixels->get();
        options.raw = raw ? 1 : 0;
        options.progress = Listener::ask;
        options.progress_user = &listener;
        const ReadPixels pixels(samples);
        return zel_estimate_depth(m_context.get(), &pixels.get(), &options, &out);
    });
    listener.finish(status);
    return depth;
}

py::array Context::mask(const std::string& kind, const py::array& image, const Faces* faces) const {
    const Samples samples = pictureSamples(image, "image");
    auto mask = planeFor(samples);
    const zel_pixels out = planeSamples(mask, "mask", true).pixels();
    const zel_mask_kind meant = kind == "skin" ? ZEL_MASK_SKIN : ZEL_MASK_PERSON;
    const zel_status status = unlocked([&] {
        const ReadPixels pixels(samples);
        return zel_make_mask(m_context.get(), meant, &pixels.get(), faces ? faces->get() : nullptr, &out);
    });
    require(status);
    return mask;
}

py::array Context::decode(const py::object& source, bool onWhite, int longestSide, bool scrambled) const {
    auto options = libzel::sized<zel_decode_options>();
    options.on_white = onWhite ? 1 : 0;
    options.longest_side = longestSide;
    options.scrambled = scrambled ? 1 : 0;
    zel_picture* made = nullptr;
    zel_status status = ZEL_FAILED;
    if (py::isinstance<py::bytes>(source)) {
        char* bytes = nullptr;
        py::ssize_t length = 0;
        if (PyBytes_AsStringAndSize(source.ptr(), &bytes, &length) != 0) throw py::error_already_set();
        status = unlocked([&] {
            return zel_decode_memory(m_context.get(), bytes, static_cast<std::size_t>(length), &options,
                                     &made);
        });
    } else {
        // As the file system has it, whatever the encoding.
        const py::object fs = py::module_::import("os").attr("fsencode")(source);
        const std::string path = py::cast<std::string>(py::bytes(fs));
        status = unlocked([&] { return zel_decode_file(m_context.get(), path.c_str(), &options, &made); });
    }
    require(status);
    const libzel::Picture picture(made);
    const zel_pixels pixels = libzel::pixelsOf(picture.get());
    py::array_t<unsigned char> image({py::ssize_t{pixels.height}, py::ssize_t{pixels.width}, py::ssize_t{4}});
    std::copy_n(static_cast<const unsigned char*>(pixels.data), static_cast<std::size_t>(image.size()),
                image.mutable_data());
    return image;
}

void defineContext(py::module_& module) {
    py::class_<Context>(module, "Context",
                        "The library with its settings; any number of threads may use one.")
        .def(py::init<std::optional<std::string>, int, std::string, py::object>(), py::kw_only(),
             py::arg("assets") = py::none(), py::arg("threads") = 0, py::arg("gl") = "own",
             py::arg("log") = py::none())
        .def_property_readonly("assets", &Context::assets)
        .def("networks", &Context::networks)
        .def("_apply",
             [](const Context& own, const std::string& effect, const py::array& image, const py::array& out,
                const py::dict& values, const Faces* faces, std::optional<py::array> mask,
                std::optional<py::array> second, std::optional<py::array> depth,
                std::optional<py::array> maskOut, std::optional<py::array> depthOut, py::object progress) {
                 own.apply(effect, image, out, values,
                           {faces, std::move(mask), std::move(second), std::move(depth), std::move(maskOut),
                            std::move(depthOut), std::move(progress)});
             })
        .def("_find_faces", &Context::findFaces)
        .def("_estimate_depth", &Context::estimateDepth)
        .def("_mask", &Context::mask)
        .def("_decode", &Context::decode);
}

}  // namespace zelpy
