#pragma once

#include <array>

#include "platform/linux/eglLibrary.h"

namespace zeltest {

/// What a host's context is like.
struct HostContextKind {
    bool compatibility = false;  // with the fixed functions
    bool es = false;             // OpenGL ES, of version 3.0
    int major = 3, minor = 3;
};

/// A context that a host made by itself, without this library; current while it lives.
class HostContext {
public:
    explicit HostContext(const HostContextKind& kind) : m_egl(zellab::platform::eglLibrary()) {
        if (!m_egl || !m_egl->getPlatformDisplay) return;
        m_display = m_egl->getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
        if (!m_egl->initialize(m_display, nullptr, nullptr)) return;
        m_egl->bindApi(kind.es ? EGL_OPENGL_ES_API : EGL_OPENGL_API);
        const std::array<EGLint, 7> desktop = {EGL_CONTEXT_MAJOR_VERSION,
                                               kind.major,
                                               EGL_CONTEXT_MINOR_VERSION,
                                               kind.minor,
                                               EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                               kind.compatibility
                                                   ? EGL_CONTEXT_OPENGL_COMPATIBILITY_PROFILE_BIT
                                                   : EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT,
                                               EGL_NONE};
        const std::array<EGLint, 3> embedded = {EGL_CONTEXT_MAJOR_VERSION, 3, EGL_NONE};
        m_context = m_egl->createContext(m_display, nullptr, EGL_NO_CONTEXT,
                                         kind.es ? embedded.data() : desktop.data());
        m_isCurrent = m_context != EGL_NO_CONTEXT &&
                      m_egl->makeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, m_context);
    }
    ~HostContext() {
        if (!m_isCurrent) return;
        m_egl->makeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        m_egl->destroyContext(m_display, m_context);
        m_egl->bindApi(EGL_OPENGL_ES_API);  // what a thread begins with
    }
    HostContext(const HostContext&) = delete;
    HostContext& operator=(const HostContext&) = delete;

    bool isCurrent() const { return m_isCurrent; }

private:
    const zellab::platform::EglLibrary* m_egl;
    EGLDisplay m_display = EGL_NO_DISPLAY;
    EGLContext m_context = EGL_NO_CONTEXT;
    bool m_isCurrent = false;
};

}  // namespace zeltest
