#pragma once

#include <GL/glew.h>

/// How this library reaches OpenGL. The extension loader resolves what came after version 1.1 and leaves the
/// rest to the linker; a link against an OpenGL library would keep the whole product from loading where none
/// is installed, so the old entry points are resolved here at run time as well.
namespace zellab::gl {

/// Entry points of OpenGL 1.1.
struct GlCore {
    decltype(&::glBindTexture) bindTexture = nullptr;
    decltype(&::glColorMask) colorMask = nullptr;
    decltype(&::glDeleteTextures) deleteTextures = nullptr;
    decltype(&::glDisable) disable = nullptr;
    decltype(&::glDrawElements) drawElements = nullptr;
    decltype(&::glEnable) enable = nullptr;
    decltype(&::glGenTextures) genTextures = nullptr;
    decltype(&::glGetError) getError = nullptr;
    decltype(&::glGetFloatv) getFloatv = nullptr;
    decltype(&::glGetIntegerv) getIntegerv = nullptr;
    decltype(&::glGetString) getString = nullptr;
    decltype(&::glGetTexLevelParameteriv) getTexLevelParameteriv = nullptr;
    decltype(&::glGetTexParameteriv) getTexParameteriv = nullptr;
    decltype(&::glIsEnabled) isEnabled = nullptr;
    decltype(&::glPixelStorei) pixelStorei = nullptr;
    decltype(&::glPolygonMode) polygonMode = nullptr;
    decltype(&::glReadPixels) readPixels = nullptr;
    decltype(&::glTexImage2D) texImage2D = nullptr;
    decltype(&::glTexParameteri) texParameteri = nullptr;
    decltype(&::glTexSubImage2D) texSubImage2D = nullptr;
    decltype(&::glViewport) viewport = nullptr;

    /// Of contexts with the fixed functions; null elsewhere.
    decltype(&::glPixelTransferf) pixelTransferf = nullptr;
    /// Of versions 4.0 and 4.1. The extension loader has them only where the first context had them.
    PFNGLBLENDFUNCSEPARATEIPROC blendFuncSeparatei = nullptr;
    PFNGLBLENDEQUATIONSEPARATEIPROC blendEquationSeparatei = nullptr;
    PFNGLGETFLOATI_VPROC getFloatiV = nullptr;
    PFNGLVIEWPORTINDEXEDFVPROC viewportIndexedfv = nullptr;
};

/// The table; its members are null until the entry points were loaded.
const GlCore& glCore();

/// Loads all entry points through the context that is current on this thread. Done once for the process;
/// later calls look whether the current context is good enough: it must be of OpenGL 3.3 or later, not of
/// OpenGL ES. Safe from several threads.
/// @return null on success, else what is wrong
const char* loadEntryPoints();

/// Whether a context that tells this version is one of OpenGL 3.3 or later; null is none.
bool isOpenGl33(const char* versionText);

/// Whether OpenGL may be called on this thread: a good enough context is current and all entry points are
/// there. Loads them if need be. Every operation that calls OpenGL asks this first.
bool glUsable();

}  // namespace zellab::gl
