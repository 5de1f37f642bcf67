// Contexts through EGL. Nothing here ends a display: displays belong to the process and are not counted, so
// ending one would destroy the contexts that the host has on it.
#include "platform/glPlatform.h"

#include <array>
#include <mutex>
#include <string_view>
#include <vector>

#include "platform/linux/eglLibrary.h"

namespace zellab::platform {

namespace {

/// Of the hidden surface, where a context cannot do without one.
constexpr EGLint kSurfaceSize = 32;

bool hasWord(const char* words, std::string_view word) {
    if (!words) return false;
    std::string_view rest(words);
    while (!rest.empty()) {
        const std::size_t end = rest.find(' ');
        if (rest.substr(0, end) == word) return true;
        if (end == std::string_view::npos) break;
        rest.remove_prefix(end + 1);
    }
    return false;
}

/// Selects OpenGL on this thread and gives the host's choice back.
class BoundOpenGl {
public:
    explicit BoundOpenGl(const EglLibrary& egl) : m_egl(egl), m_previous(egl.queryApi()) {
        m_bound = egl.bindApi(EGL_OPENGL_API) == EGL_TRUE;
    }
    ~BoundOpenGl() {
        if (m_previous != EGL_NONE) m_egl.bindApi(m_previous);
    }
    BoundOpenGl(const BoundOpenGl&) = delete;
    BoundOpenGl& operator=(const BoundOpenGl&) = delete;
    explicit operator bool() const { return m_bound; }

private:
    const EglLibrary& m_egl;
    EGLenum m_previous;
    bool m_bound;
};

/// Displays in the order of preference: each real device, then without any window system (where the software
/// driver is found), then the default one.
std::vector<EGLDisplay> displays(const EglLibrary& egl) {
    std::vector<EGLDisplay> found;
    const auto add = [&found](EGLDisplay display) {
        if (display != EGL_NO_DISPLAY) found.push_back(display);
    };
    EGLint count = 0;
    if (egl.queryDevices && egl.queryDeviceString && egl.getPlatformDisplay &&
        egl.queryDevices(0, nullptr, &count) && count > 0) {
        std::vector<EGLDeviceEXT> devices(static_cast<std::size_t>(count));
        if (!egl.queryDevices(count, devices.data(), &count)) count = 0;
        devices.resize(static_cast<std::size_t>(count));
        for (EGLDeviceEXT device : devices)
            if (!hasWord(egl.queryDeviceString(device, EGL_EXTENSIONS), "EGL_MESA_device_software"))
                add(egl.getPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, device, nullptr));
    }
    if (egl.getPlatformDisplay)
        add(egl.getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr));
    add(egl.getDisplay(EGL_DEFAULT_DISPLAY));
    return found;
}

/// RGBA 32, depth 16, stencil 8; null where the display has none.
EGLConfig chooseConfig(const EglLibrary& egl, EGLDisplay display) {
    constexpr std::array<EGLint, 17> kWanted = {EGL_SURFACE_TYPE,
                                                EGL_PBUFFER_BIT,
                                                EGL_RENDERABLE_TYPE,
                                                EGL_OPENGL_BIT,
                                                EGL_RED_SIZE,
                                                8,
                                                EGL_GREEN_SIZE,
                                                8,
                                                EGL_BLUE_SIZE,
                                                8,
                                                EGL_ALPHA_SIZE,
                                                8,
                                                EGL_DEPTH_SIZE,
                                                16,
                                                EGL_STENCIL_SIZE,
                                                8,
                                                EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    return egl.chooseConfig(display, kWanted.data(), &config, 1, &count) && count > 0 ? config : nullptr;
}

/// A context on one display, with a surface where it cannot be current without. Names the failed call, or
/// null.
const char* createOn(const EglLibrary& egl, EGLDisplay display, EGLContext share, GlContext& made) {
    if (!egl.initialize(display, nullptr, nullptr)) return "eglInitialize";
    const BoundOpenGl bound(egl);
    if (!bound) return "eglBindAPI";
    const char* extensions = egl.queryString(display, EGL_EXTENSIONS);
    const bool needsSurface = !hasWord(extensions, "EGL_KHR_surfaceless_context");
    EGLConfig config = chooseConfig(egl, display);
    // Contexts that draw to textures alone need no format of their own.
    if (!config && (needsSurface || !hasWord(extensions, "EGL_KHR_no_config_context")))
        return "eglChooseConfig";
    constexpr std::array<EGLint, 7> kVersion = {EGL_CONTEXT_MAJOR_VERSION,
                                                3,
                                                EGL_CONTEXT_MINOR_VERSION,
                                                3,
                                                EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                                EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT,
                                                EGL_NONE};
    EGLContext context = egl.createContext(display, config, share, kVersion.data());
    if (context == EGL_NO_CONTEXT) return "eglCreateContext";
    EGLSurface surface = EGL_NO_SURFACE;
    if (needsSurface) {
        constexpr std::array<EGLint, 5> kSize = {EGL_WIDTH, kSurfaceSize, EGL_HEIGHT, kSurfaceSize, EGL_NONE};
        surface = egl.createPbufferSurface(display, config, kSize.data());
        if (surface == EGL_NO_SURFACE) {
            egl.destroyContext(display, context);
            return "eglCreatePbufferSurface";
        }
    }
    made = {context, display, surface};
    return nullptr;
}

/// What GLX has current, for hosts that draw through it.
GlContext currentGlxContext() {
    using GetCurrent = void* (*)();
    const auto context = reinterpret_cast<GetCurrent>(glxFunctionIfLoaded("glXGetCurrentContext"));
    const auto display = reinterpret_cast<GetCurrent>(glxFunctionIfLoaded("glXGetCurrentDisplay"));
    if (!context || !display) return {};
    return {context(), display(), nullptr};
}

}  // namespace

const char* glPlatformName() {
    return "EGL";
}

GlCreation createGlContext(const GlContext* share) {
    // A display belongs to the process, and its extension text is written anew by every initialisation: one
    // thread's must not meet another that reads.
    static std::mutex mutex;
    const std::lock_guard guard(mutex);
    const EglLibrary* egl = eglLibrary();
    if (!egl) return {{}, "dlopen libEGL.so.1"};
    if (share && !share->context) return {{}, "eglCreateContext"};
    GlCreation creation;
    // Contexts share within one display only.
    const std::vector<EGLDisplay> candidates =
        share ? std::vector<EGLDisplay>{share->display} : displays(*egl);
    creation.failedCall = "eglGetDisplay";
    for (EGLDisplay display : candidates) {
        creation.failedCall =
            createOn(*egl, display, share ? share->context : EGL_NO_CONTEXT, creation.context);
        if (!creation.failedCall) break;
    }
    return creation;
}

bool makeGlContextCurrent(const GlContext& context) {
    const EglLibrary* egl = eglLibrary();
    return egl && context.display &&
           egl->makeCurrent(context.display, context.surface, context.surface, context.context);
}

void releaseCurrentGlContext() {
    const EglLibrary* egl = eglLibrary();
    if (!egl) return;
    EGLDisplay display = egl->getCurrentDisplay();
    if (display != EGL_NO_DISPLAY) egl->makeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
}

GlContext currentGlContext() {
    if (const EglLibrary* egl = eglLibrary()) {
        EGLContext context = egl->getCurrentContext();
        if (context != EGL_NO_CONTEXT)
            return {context, egl->getCurrentDisplay(), egl->getCurrentSurface(EGL_DRAW)};
    }
    return currentGlxContext();
}

void destroyGlContext(GlContext& context) {
    const EglLibrary* egl = eglLibrary();
    if (egl && context.context) {
        if (egl->getCurrentContext() == context.context) releaseCurrentGlContext();
        egl->destroyContext(context.display, context.context);
        if (context.surface) egl->destroySurface(context.display, context.surface);
    }
    context = {};
}

void* glEntryPoint(const char* name) {
    if (const EglLibrary* egl = eglLibrary()) return reinterpret_cast<void*>(egl->getProcAddress(name));
    using GetAddress = void* (*)(const unsigned char*);
    const auto getAddress = reinterpret_cast<GetAddress>(glxFunctionIfLoaded("glXGetProcAddressARB"));
    return getAddress ? getAddress(reinterpret_cast<const unsigned char*>(name)) : nullptr;
}

}  // namespace zellab::platform
