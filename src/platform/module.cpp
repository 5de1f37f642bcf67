#include "platform/module.h"

#include <dlfcn.h>

#include <cstdlib>

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

const char* trustedEnvironment(const char* name) {
    return secure_getenv(name);
}

}  // namespace zellab::platform
