#include "platform/linux/eglLibrary.h"

#include <dlfcn.h>

#include <optional>

namespace zellab::platform {

namespace {

template <typename Function>
bool resolve(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

template <typename Function>
void resolveExtension(const EglLibrary& egl, const char* name, Function& function) {
    function = reinterpret_cast<Function>(egl.getProcAddress(name));
}

std::optional<EglLibrary> openEgl() {
    // Not closed again: drivers keep thread-local state that outlives every context.
    void* library = dlopen("libEGL.so.1", RTLD_NOW | RTLD_LOCAL);
    if (!library) return std::nullopt;
    EglLibrary egl;
    const bool complete = resolve(library, "eglBindAPI", egl.bindApi) &&
                          resolve(library, "eglChooseConfig", egl.chooseConfig) &&
                          resolve(library, "eglCreateContext", egl.createContext) &&
                          resolve(library, "eglCreatePbufferSurface", egl.createPbufferSurface) &&
                          resolve(library, "eglDestroyContext", egl.destroyContext) &&
                          resolve(library, "eglDestroySurface", egl.destroySurface) &&
                          resolve(library, "eglGetCurrentContext", egl.getCurrentContext) &&
                          resolve(library, "eglGetCurrentDisplay", egl.getCurrentDisplay) &&
                          resolve(library, "eglGetCurrentSurface", egl.getCurrentSurface) &&
                          resolve(library, "eglGetDisplay", egl.getDisplay) &&
                          resolve(library, "eglGetProcAddress", egl.getProcAddress) &&
                          resolve(library, "eglInitialize", egl.initialize) &&
                          resolve(library, "eglMakeCurrent", egl.makeCurrent) &&
                          resolve(library, "eglQueryAPI", egl.queryApi) &&
                          resolve(library, "eglQueryString", egl.queryString);
    if (!complete) return std::nullopt;
    // Asked for by name, not by extension string: some drivers have them and do not say so.
    resolveExtension(egl, "eglQueryDevicesEXT", egl.queryDevices);
    resolveExtension(egl, "eglQueryDeviceStringEXT", egl.queryDeviceString);
    resolveExtension(egl, "eglGetPlatformDisplayEXT", egl.getPlatformDisplay);
    return egl;
}

}  // namespace

const EglLibrary* eglLibrary() {
    static const std::optional<EglLibrary> library = openEgl();
    return library ? &*library : nullptr;
}

void* glxFunctionIfLoaded(const char* name) {
    for (const char* file : {"libGLX.so.0", "libGL.so.1"}) {
        void* library = dlopen(file, RTLD_LAZY | RTLD_NOLOAD);
        if (!library) continue;
        void* function = dlsym(library, name);
        dlclose(library);  // gives back the reference that the look-up took
        if (function) return function;
    }
    return nullptr;
}

}  // namespace zellab::platform
