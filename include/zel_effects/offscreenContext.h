#pragma once

/// An OpenGL context for hosts that have none of their own, from the static library `zel_gl_context`.

namespace zellab {

/// A context without a window, OpenGL 3.3 core, current on the thread that makes the object until the object
/// dies on that same thread; what was current before is current again then. Needs no display. No OpenGL
/// library is linked: the system's is looked for when an object is made.
class OffscreenContext {
public:
    OffscreenContext();
    ~OffscreenContext();
    OffscreenContext(const OffscreenContext&) = delete;
    OffscreenContext& operator=(const OffscreenContext&) = delete;

    /// Whether a context could be had; without one OpenGL work fails.
    bool isCurrent() const { return m_failedCall == nullptr; }
    /// The call that failed, null where none did.
    const char* failedCall() const { return m_failedCall; }

private:
    struct Handles {
        void *context = nullptr, *display = nullptr, *surface = nullptr;
    };
    Handles m_own, m_before;
    const char* m_failedCall = nullptr;
};

}  // namespace zellab
