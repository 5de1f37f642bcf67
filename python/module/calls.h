#pragma once

#include <pybind11/pybind11.h>

#include <exception>

#include "zel/zel.h"

/// What every call of the module does around the library's: the interpreter's lock, failures, progress.

namespace zelpy {

namespace py = pybind11;

/// Raises the exception that stands for a failure of the last call on this thread. Needs the lock.
void require(zel_status status);

/// A call's way to the interpreter while it runs without the lock: whether the user pressed Ctrl-C, and what the
/// caller's own function says.
class Listener {
public:
    /// @param function  takes fraction and stage, and cancels by returning what is true; or None
    explicit Listener(py::object function) : m_function(std::move(function)) {}

    static int ask(void* user, double fraction, const char* stage) noexcept;

    /// Raises what was raised while the call ran, else what the status says.
    void finish(zel_status status) const;

private:
    bool wantsToEnd(double fraction, const char* stage) const;

    py::object m_function;
    std::exception_ptr m_raised;
};

/// The status of call(), made without the interpreter's lock, or what it threw.
template <typename Call>
zel_status unlocked(const Call& call) {
    const py::gil_scoped_release released;
    return call();
}

}  // namespace zelpy
