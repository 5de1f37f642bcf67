#pragma once

#include <GL/glew.h>

/// How this library reaches OpenGL. The extension loader resolves what came after version 1.1 and leaves the
/// rest to the linker; a link against an OpenGL library would keep the whole product from loading where none
/// is installed, so the old entry points are resolved here at run time as well.
namespace zellab::gl {

/// Entry points of OpenGL 1.1.
struct GlCore {
    decltype(&::glBindTexture) bindTexture = nullptr;
    decltype(&::glDeleteTextures) deleteTextures = nullptr;
    decltype(&::glDisable) disable = nullptr;
    decltype(&::glDrawElements) drawElements = nullptr;
    decltype(&::glEnable) enable = nullptr;
    decltype(&::glGenTextures) genTextures = nullptr;
    decltype(&::glGetError) getError = nullptr;
    decltype(&::glGetIntegerv) getIntegerv = nullptr;
    decltype(&::glGetString) getString = nullptr;
    decltype(&::glGetTexLevelParameteriv) getTexLevelParameteriv = nullptr;
    decltype(&::glGetTexParameteriv) getTexParameteriv = nullptr;
    decltype(&::glPixelStorei) pixelStorei = nullptr;
    decltype(&::glReadPixels) readPixels = nullptr;
    decltype(&::glTexImage2D) texImage2D = nullptr;
    decltype(&::glTexParameteri) texParameteri = nullptr;
    decltype(&::glTexSubImage2D) texSubImage2D = nullptr;
    decltype(&::glViewport) viewport = nullptr;
};

/// The table; its members are null until the entry points were loaded.
const GlCore& glCore();

/// Loads all entry points through the context that is current on this thread. Done once for the process;
/// later calls look whether the current context is good enough. Safe from several threads.
/// @return null on success, else what is wrong
const char* loadEntryPoints();

/// Whether OpenGL may be called on this thread: a context is current and all entry points are there. Loads
/// them if need be. Every operation that calls OpenGL asks this first.
bool glUsable();

}  // namespace zellab::gl
