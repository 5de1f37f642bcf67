#pragma once

#include <memory>

#include "platform/glPlatform.h"

namespace zellab::gl {

/// An OpenGL context that this library made, or a note of the one that its caller has current.
/// Not for use by two threads at once; a context is current on one thread at a time.
class Environment {
public:
    /// Makes a context.
    /// @param window   non-zero marks the on-screen form, which makes the same hidden surface
    /// @param share    null, or the environment whose textures and programs the new one sees; its glsl330
    /// then
    ///                 replaces the argument
    /// @param glsl330  whether shaders of version 3.30 are wanted
    Environment(int window, Environment* share, bool glsl330);
    /// Describes the context that is current on this thread and owns nothing.
    Environment();
    /// Destroys the context, unless it is the caller's.
    ~Environment();
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

    void makeCurrent() const;
    bool isValid() const { return m_context.display && m_context.context; }
    bool isBorrowed() const { return m_borrowed; }
    bool hasGlsl330() const { return m_glsl330; }

private:
    bool initializePlatform(const Environment* share);
    bool terminate();

    platform::GlContext m_context;
    bool m_borrowed;
    bool m_glsl330;
    /// The constructor's argument when non-zero; kept, not otherwise used.
    int m_externalWindow = 0;
};

/// What callers hold: an environment or none.
class EnvironmentHolder {
public:
    /// Holds nothing.
    EnvironmentHolder() = default;
    EnvironmentHolder(int window, const EnvironmentHolder* share, bool glsl330);
    /// A holder of the context that is current on this thread.
    static EnvironmentHolder current();

    /// Without an environment nothing happens.
    void makeCurrent() const;
    /// Leaves this thread without a context.
    static void doneCurrent();
    /// False without an environment and where its context could not be had.
    bool isValid() const { return m_environment && m_environment->isValid(); }
    const Environment* get() const { return m_environment.get(); }

private:
    std::unique_ptr<Environment> m_environment;
};

}  // namespace zellab::gl
