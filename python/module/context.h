#pragma once

#include <pybind11/numpy.h>

#include <optional>
#include <string>

#include "faces.h"
#include "zel/zel.hpp"

namespace zelpy {

namespace py = pybind11;

/// The library with its settings. Any number of threads may use one at once.
class Context {
public:
    /// @param gl   "own": a context of its own for depth of field; "current": the caller's; "never"
    /// @param log  takes level, message and source; or None
    Context(std::optional<std::string> assets, int threads, const std::string& gl, py::object log);
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    std::string assets() const { return zel_context_assets(m_context.get()); }
    std::vector<libzel::Network> networks() const { return libzel::networks(m_context.get()); }

    /// What an effect takes beside the picture; None, or null: none.
    struct Inputs {
        const Faces* faces;
        std::optional<py::array> mask, second, depth, maskOut, depthOut;
        py::object progress;
    };
    /// @param out  the picture's shape; may be the picture
    void apply(const std::string& effect, const py::array& image, const py::array& out,
               const py::dict& values, const Inputs& inputs) const;

    Faces findFaces(const py::array& image) const;
    py::array estimateDepth(const py::array& image, const std::optional<py::array>& person,
                            const std::optional<std::string>& network, bool raw, py::object progress) const;
    py::array mask(const std::string& kind, const py::array& image, const Faces* faces) const;
    py::array decode(const py::object& source, bool onWhite, int longestSide, bool scrambled) const;

    zel_context* get() const { return m_context.get(); }

private:
    static void hear(void* user, zel_log_level level, const char* message, const char* source) noexcept;

    py::object m_log;
    libzel::Context m_context;
};

void defineContext(py::module_& module);
void definePortrait(py::module_& module);

}  // namespace zelpy
