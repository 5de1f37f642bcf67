// The package's way to the library: zel.h for Python, without the package's habits, which are written in Python.
#include "context.h"
#include "effects.h"

PYBIND11_MODULE(_zel, module) {
    module.doc() = "The functions of zel.h.";
    module.attr("__version__") = zel_version();
    zelpy::defineDescriptions(module);
    zelpy::defineFaces(module);
    zelpy::defineContext(module);
    zelpy::definePortrait(module);
}
