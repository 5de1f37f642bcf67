#include "calls.h"

namespace zelpy {

namespace {

/// The class of zel._errors that stands for a status.
const char* errorClass(zel_status status) {
    switch (status) {
        case ZEL_BAD_ARGUMENT:
        case ZEL_UNKNOWN_NAME:
        case ZEL_BAD_VALUE:
        case ZEL_MISSING_INPUT:
            return "ArgumentError";
        case ZEL_BAD_ASSET:
        case ZEL_BAD_FILE:
            return "FileError";
        case ZEL_NOT_AVAILABLE:
            return "UnavailableError";
        case ZEL_CANCELLED:
            return "Cancelled";
        case ZEL_OK:
        case ZEL_NO_MEMORY:
        case ZEL_FAILED:
            break;
    }
    return "Error";
}

}  // namespace

void require(zel_status status) {
    if (status == ZEL_OK) return;
    const std::string why = zel_message();
    if (status == ZEL_NO_MEMORY) {
        PyErr_SetString(PyExc_MemoryError, why.c_str());
    } else {
        const py::object type = py::module_::import("zel._errors").attr(errorClass(status));
        PyErr_SetObject(type.ptr(), type(why, zel_status_name(status)).ptr());
    }
    throw py::error_already_set();
}

bool Listener::wantsToEnd(double fraction, const char* stage) const {
    if (PyErr_CheckSignals() != 0) throw py::error_already_set();
    return !m_function.is_none() && py::bool_(m_function(fraction, stage));
}

int Listener::ask(void* user, double fraction, const char* stage) noexcept {
    auto& own = *static_cast<Listener*>(user);
    const py::gil_scoped_acquire locked;
    try {
        return own.wantsToEnd(fraction, stage) ? 1 : 0;
    } catch (...) {
        own.m_raised = std::current_exception();
        return 1;
    }
}

void Listener::finish(zel_status status) const {
    if (m_raised) std::rethrow_exception(m_raised);
    require(status);
}

}  // namespace zelpy
