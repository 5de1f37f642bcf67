#pragma once

// Only the types: the library is opened at run time. Without the window system's headers.
#define EGL_NO_X11
#include <EGL/egl.h>
#include <EGL/eglext.h>

namespace zellab::platform {

/// The entry points of EGL that a context needs. The extension's three are null where the library lacks them.
struct EglLibrary {
    decltype(&::eglBindAPI) bindApi = nullptr;
    decltype(&::eglChooseConfig) chooseConfig = nullptr;
    decltype(&::eglCreateContext) createContext = nullptr;
    decltype(&::eglCreatePbufferSurface) createPbufferSurface = nullptr;
    decltype(&::eglDestroyContext) destroyContext = nullptr;
    decltype(&::eglDestroySurface) destroySurface = nullptr;
    decltype(&::eglGetCurrentContext) getCurrentContext = nullptr;
    decltype(&::eglGetCurrentDisplay) getCurrentDisplay = nullptr;
    decltype(&::eglGetCurrentSurface) getCurrentSurface = nullptr;
    decltype(&::eglGetDisplay) getDisplay = nullptr;
    decltype(&::eglGetProcAddress) getProcAddress = nullptr;
    decltype(&::eglInitialize) initialize = nullptr;
    decltype(&::eglMakeCurrent) makeCurrent = nullptr;
    decltype(&::eglQueryAPI) queryApi = nullptr;
    decltype(&::eglQueryString) queryString = nullptr;

    PFNEGLQUERYDEVICESEXTPROC queryDevices = nullptr;
    PFNEGLQUERYDEVICESTRINGEXTPROC queryDeviceString = nullptr;
    PFNEGLGETPLATFORMDISPLAYEXTPROC getPlatformDisplay = nullptr;
};

/// The system's EGL library, opened on first use and never closed; null where there is none.
const EglLibrary* eglLibrary();

/// A function of the library that stands behind GLX, if this process has loaded it already; else null.
void* glxFunctionIfLoaded(const char* name);

}  // namespace zellab::platform
