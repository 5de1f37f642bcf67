#pragma once

#include <pybind11/pybind11.h>

#include "zel/zel.hpp"

namespace zelpy {

namespace py = pybind11;

/// Values by name as the library takes them. Throws TypeError for what is no value.
libzel::Values valuesOf(const py::dict& values);

/// Descriptions of effects, parameters and networks.
void defineDescriptions(py::module_& module);

}  // namespace zelpy
