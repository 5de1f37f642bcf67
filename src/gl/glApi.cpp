#include "gl/glApi.h"

#include <atomic>
#include <charconv>
#include <cstring>
#include <mutex>

#include "platform/glPlatform.h"

namespace zellab::gl {

namespace {

GlCore g_core;
std::atomic<bool> g_loaded{false};

/// What the extension loader answers under EGL, with everything of OpenGL loaded: it looked for GLX as well.
constexpr GLenum kNoGlxDisplay = 4;

template <typename Function>
bool resolve(Function& function, const char* name) {
    function = reinterpret_cast<Function>(platform::glEntryPoint(name));
    return function != nullptr;
}

bool loadCore(GlCore& core) {
    resolve(core.pixelTransferf, "glPixelTransferf");
    resolve(core.blendFuncSeparatei, "glBlendFuncSeparatei");
    resolve(core.blendEquationSeparatei, "glBlendEquationSeparatei");
    resolve(core.getFloatiV, "glGetFloati_v");
    resolve(core.viewportIndexedfv, "glViewportIndexedfv");
    return resolve(core.bindTexture, "glBindTexture") && resolve(core.colorMask, "glColorMask") &&
           resolve(core.deleteTextures, "glDeleteTextures") && resolve(core.disable, "glDisable") &&
           resolve(core.drawElements, "glDrawElements") && resolve(core.enable, "glEnable") &&
           resolve(core.genTextures, "glGenTextures") && resolve(core.getError, "glGetError") &&
           resolve(core.getFloatv, "glGetFloatv") && resolve(core.getIntegerv, "glGetIntegerv") &&
           resolve(core.getString, "glGetString") &&
           resolve(core.getTexLevelParameteriv, "glGetTexLevelParameteriv") &&
           resolve(core.getTexParameteriv, "glGetTexParameteriv") && resolve(core.isEnabled, "glIsEnabled") &&
           resolve(core.pixelStorei, "glPixelStorei") && resolve(core.polygonMode, "glPolygonMode") &&
           resolve(core.readPixels, "glReadPixels") && resolve(core.texImage2D, "glTexImage2D") &&
           resolve(core.texParameteri, "glTexParameteri") && resolve(core.texSubImage2D, "glTexSubImage2D") &&
           resolve(core.viewport, "glViewport");
}

/// The pointers of the extension loader that this library calls.
bool loaderIsComplete() {
    return glActiveTexture && glAttachShader && glBindBuffer && glBindSampler && glBlendEquation &&
           glBlendEquationSeparate && glClampColor && glColorMaski && glDisablei && glEnablei &&
           glGetBooleani_v && glGetIntegeri_v && glIsEnabledi && glBindFramebuffer && glBindVertexArray &&
           glBlendFuncSeparate && glBufferData && glCheckFramebufferStatus && glCompileShader &&
           glCreateProgram && glCreateShader && glDeleteBuffers && glDeleteFramebuffers && glDeleteProgram &&
           glDeleteShader && glDeleteVertexArrays && glEnableVertexAttribArray && glFramebufferTexture2D &&
           glGenBuffers && glGenFramebuffers && glGenVertexArrays && glGetProgramInfoLog && glGetProgramiv &&
           glGetShaderInfoLog && glGetShaderiv && glGetUniformLocation && glLinkProgram && glShaderSource &&
           glUniform1fv && glUniform1i && glUniform2fv && glUniform3fv && glUniform4fv && glUseProgram &&
           glVertexAttribPointer;
}

/// What is wrong with the context that is current, or null. Each is asked for itself: drivers make the
/// highest version that is compatible, and a host may have several. The text alone is asked for: a context of
/// OpenGL ES may refuse the question for numbers.
const char* contextFault() {
    decltype(&::glGetString) getString = nullptr;
    if (!platform::currentGlContext().context || !resolve(getString, "glGetString"))
        return "Missing GL version";
    const auto* const text = reinterpret_cast<const char*>(getString(GL_VERSION));
    return isOpenGl33(text) ? nullptr : "OpenGL 3.3 is not available";
}

}  // namespace

const GlCore& glCore() {
    return g_core;
}

const char* loadEntryPoints() {
    static std::mutex mutex;
    const std::lock_guard guard(mutex);
    if (const char* const fault = contextFault()) return fault;
    if (g_loaded) return nullptr;
    const GLenum status = glewInit();
    if (status != GLEW_OK && status != kNoGlxDisplay)
        return reinterpret_cast<const char*>(glewGetErrorString(status));
    if (!GLEW_VERSION_3_3) return "OpenGL 3.3 is not available";
    if (!loadCore(g_core) || !loaderIsComplete()) return "an entry point is missing";
    g_loaded = true;
    return nullptr;
}

bool isOpenGl33(const char* versionText) {
    if (!versionText) return false;
    int major = 0, minor = 0;
    const char* const end = versionText + std::strlen(versionText);
    const auto whole = std::from_chars(versionText, end, major);  // "OpenGL ES ..." begins with no number
    if (whole.ec != std::errc()) return false;
    if (whole.ptr != end) std::from_chars(whole.ptr + 1, end, minor);
    return major > 3 || (major == 3 && minor >= 3);
}

bool glUsable() {
    return g_loaded ? !contextFault() : !loadEntryPoints();
}

}  // namespace zellab::gl
