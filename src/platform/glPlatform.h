#pragma once

/// The few operations on an OpenGL context that another operating system does in another way. Nothing here is
/// linked against an OpenGL library: where none is installed, each operation reports that and does nothing.

namespace zellab::platform {

/// A context with what it is made current through. The handles are the window system's own.
struct GlContext {
    void* context = nullptr;
    void* display = nullptr;
    /// The small hidden surface; null where the context needs none.
    void* surface = nullptr;
};

/// What createGlContext says.
struct GlCreation {
    GlContext context;
    /// The name of the call that failed, null on success.
    const char* failedCall = nullptr;
};

/// What messages call this platform's way to contexts: "EGL", "WINDOWS".
const char* glPlatformName();

/// Makes an off-screen OpenGL 3.3 core context: RGBA 32, depth 16, stencil 8. Not current afterwards.
/// @param share  null, or the context whose textures and programs the new one sees; one without a context
///               fails
GlCreation createGlContext(const GlContext* share);

/// Makes the context current on this thread, in place of what was.
bool makeGlContextCurrent(const GlContext& context);

/// Leaves this thread without a context.
void releaseCurrentGlContext();

/// The context that is current on this thread, whoever made it; all null without one.
GlContext currentGlContext();

/// Destroys what createGlContext made and clears the handles. A context that is current on this thread is
/// released first; one that is current on another lives until that thread lets go of it.
void destroyGlContext(GlContext& context);

/// An entry point of OpenGL by name. Not null is no promise that a driver stands behind it.
void* glEntryPoint(const char* name);

}  // namespace zellab::platform
