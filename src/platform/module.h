#pragma once

#include <memory>
#include <string>

/// Code that is opened while the program runs.

namespace zellab::platform {

struct ModuleCloser {
    void operator()(void* handle) const;
};
/// A module that is open, and closed with its owner.
using Module = std::unique_ptr<void, ModuleCloser>;

/// Opens the file at an absolute path with all that it needs; its names stay its own. Null, with the system's
/// line about it in `why`, where that fails.
Module openModule(const std::string& path, std::string& why);

/// A function that the module shows by this name, or null.
void* functionOf(const Module& module, const char* name);

/// What the file of a module is called on this system.
std::string moduleFileName(const std::string& name);

}  // namespace zellab::platform
