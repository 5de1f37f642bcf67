#include "platform/module.h"

#include <dlfcn.h>

namespace zellab::platform {

void ModuleCloser::operator()(void* handle) const {
    dlclose(handle);
}

Module openModule(const std::string& path, std::string& why) {
    Module module(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL));
    if (!module) {
        const char* said = dlerror();
        why = said ? said : "the system does not say why";
    }
    return module;
}

void* functionOf(const Module& module, const char* name) {
    return dlsym(module.get(), name);
}

std::string moduleFileName(const std::string& name) {
    return "lib" + name + ".so";
}

}  // namespace zellab::platform
