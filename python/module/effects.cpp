#include "effects.h"

#include <pybind11/stl.h>

#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "calls.h"

namespace zelpy {

namespace {

const char* nameOf(zel_need need) {
    return need == ZEL_REQUIRED ? "required" : need == ZEL_OPTIONAL ? "optional" : "no";
}

const char* nameOf(zel_kind kind) {
    constexpr const char* kNames[] = {"number", "whole number", "choice", "switch",
                                      "point",  "colour",       "file",   "text"};
    return kNames[kind];
}

bool isBoolean(const py::handle& value) {
    return PyBool_Check(value.ptr()) || std::strncmp(Py_TYPE(value.ptr())->tp_name, "numpy.bool", 10) == 0;
}

/// One value as text: numbers in Python's own form, which reads back as the same number.
std::string textOf(const std::string& name, const py::handle& value) {
    if (isBoolean(value)) return PyObject_IsTrue(value.ptr()) ? "true" : "false";
    if (py::isinstance<py::str>(value)) return py::cast<std::string>(value);
    if (PyIndex_Check(value.ptr())) return py::str(py::module_::import("operator").attr("index")(value));
    if (PyNumber_Check(value.ptr())) return py::repr(py::float_(py::reinterpret_borrow<py::object>(value)));
    if (py::hasattr(value, "__fspath__")) return py::cast<std::string>(py::str(value.attr("__fspath__")()));
    if (py::isinstance<py::sequence>(value) && py::len(value) == 2) {
        const auto both = py::reinterpret_borrow<py::sequence>(value);
        return textOf(name, both[0]) + "," + textOf(name, both[1]);
    }
    throw py::type_error(name + " takes no " + Py_TYPE(value.ptr())->tp_name);
}

std::vector<const zel_parameter*> parametersOf(const zel_effect& effect) {
    return {effect.parameters, effect.parameters + effect.parameter_count};
}

std::vector<std::string> choicesOf(const zel_parameter& parameter) {
    std::vector<std::string> choices;
    for (const char* const* choice = parameter.choices; choice && *choice; ++choice)
        choices.emplace_back(*choice);
    return choices;
}

std::vector<const zel_effect*> allEffects() {
    std::vector<const zel_effect*> all;
    while (const zel_effect* effect = zel_effect_at(all.size())) all.push_back(effect);
    return all;
}

std::vector<const zel_parameter*> portraitParameters() {
    std::vector<const zel_parameter*> all;
    for (std::size_t i = 0; i < zel_portrait_parameter_count(); ++i)
        all.push_back(zel_portrait_parameter_at(i));
    return all;
}

/// What lives as long as the library is never Python's to delete.
constexpr auto kKept = py::return_value_policy::reference;

}  // namespace

libzel::Values valuesOf(const py::dict& values) {
    libzel::Values texts;
    for (const auto& [name, value] : values) {
        const std::string key = py::str(name);
        texts.set(key, textOf(key, value));
    }
    return texts;
}

void defineDescriptions(py::module_& module) {
    using Parameter = zel_parameter;
    using Effect = zel_effect;
    const auto keep = [](auto member) {
        return py::cpp_function([member](const Effect& effect) { return nameOf(effect.*member); });
    };
    py::class_<Parameter, std::unique_ptr<Parameter, py::nodelete>>(module, "Parameter",
                                                                    "One parameter of an effect.")
        .def_readonly("name", &Parameter::name)
        .def_readonly("title", &Parameter::title)
        .def_readonly("help", &Parameter::help)
        .def_readonly("unit", &Parameter::unit)
        .def_property_readonly("kind", [](const Parameter& p) { return nameOf(p.kind); })
        .def_readonly("minimum", &Parameter::minimum)
        .def_readonly("maximum", &Parameter::maximum)
        .def_readonly("step", &Parameter::step)
        .def_readonly("default", &Parameter::default_value)
        .def_property_readonly("choices", choicesOf)
        .def_property_readonly("advanced", [](const Parameter& p) { return p.advanced != 0; })
        .def("__repr__", [](const Parameter& p) { return std::string("<zel.Parameter ") + p.name + ">"; });
    py::class_<Effect, std::unique_ptr<Effect, py::nodelete>>(module, "Effect",
                                                              "One effect, as the library describes it.")
        .def_readonly("name", &Effect::name)
        .def_readonly("title", &Effect::title)
        .def_readonly("summary", &Effect::summary)
        .def_readonly("advice", &Effect::advice)
        .def_readonly("operation", &Effect::operation)
        .def_readonly("example", &Effect::example)
        .def_property_readonly("parameters", parametersOf, kKept)
        .def_property_readonly("faces", keep(&Effect::faces))
        .def_property_readonly("mask", keep(&Effect::mask))
        .def_property_readonly("second", keep(&Effect::second))
        .def_property_readonly("depth", keep(&Effect::depth))
        .def_property_readonly("mask_out", keep(&Effect::mask_out))
        .def_property_readonly("depth_out", keep(&Effect::depth_out))
        .def_property_readonly("gl", keep(&Effect::gl))
        .def("__repr__", [](const Effect& e) { return std::string("<zel.Effect ") + e.name + ">"; });
    py::class_<libzel::Network>(module, "Network",
                                "One network that the library makes use of where it is there.")
        .def_readonly("name", &libzel::Network::name)
        .def_readonly("purpose", &libzel::Network::purpose)
        .def_readonly("path", &libzel::Network::path)
        .def_readonly("problem", &libzel::Network::problem)
        .def("__repr__", [](const libzel::Network& n) {
            return "<zel.Network " + n.name + (n.problem.empty() ? ">" : ": " + n.problem + ">");
        });
    module.def("_meaning", [](const std::string& effect, const py::dict& values) {
        const libzel::Values texts = valuesOf(values);
        auto meaning = libzel::sized<zel_meaning>();
        require(zel_check_values(effect.c_str(), texts.list().data(), texts.list().size(), &meaning));
        return py::make_tuple(meaning.uses_faces != 0, std::string(meaning.caution));
    });
    module.def("effects", allEffects, kKept, "Every effect, in the order of menus.");
    module.def("portrait_parameters", portraitParameters, kKept,
               "What draw_portrait takes beside size and seed; what is not given follows the seed.");
}

}  // namespace zelpy
