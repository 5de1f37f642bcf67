#include "gl/glApi.h"

#include <atomic>
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
    return resolve(core.bindTexture, "glBindTexture") && resolve(core.deleteTextures, "glDeleteTextures") &&
           resolve(core.disable, "glDisable") && resolve(core.drawElements, "glDrawElements") &&
           resolve(core.enable, "glEnable") && resolve(core.genTextures, "glGenTextures") &&
           resolve(core.getError, "glGetError") && resolve(core.getIntegerv, "glGetIntegerv") &&
           resolve(core.getString, "glGetString") &&
           resolve(core.getTexLevelParameteriv, "glGetTexLevelParameteriv") &&
           resolve(core.getTexParameteriv, "glGetTexParameteriv") &&
           resolve(core.pixelStorei, "glPixelStorei") && resolve(core.readPixels, "glReadPixels") &&
           resolve(core.texImage2D, "glTexImage2D") && resolve(core.texParameteri, "glTexParameteri") &&
           resolve(core.texSubImage2D, "glTexSubImage2D") && resolve(core.viewport, "glViewport");
}

/// The pointers of the extension loader that this library calls.
bool loaderIsComplete() {
    return glActiveTexture && glAttachShader && glBindBuffer && glBindFramebuffer && glBindVertexArray &&
           glBlendFuncSeparate && glBufferData && glCheckFramebufferStatus && glCompileShader &&
           glCreateProgram && glCreateShader && glDeleteBuffers && glDeleteFramebuffers && glDeleteProgram &&
           glDeleteShader && glDeleteVertexArrays && glEnableVertexAttribArray && glFramebufferTexture2D &&
           glGenBuffers && glGenFramebuffers && glGenVertexArrays && glGetProgramInfoLog && glGetProgramiv &&
           glGetShaderInfoLog && glGetShaderiv && glGetUniformLocation && glLinkProgram && glShaderSource &&
           glUniform1fv && glUniform1i && glUniform2fv && glUniform3fv && glUniform4fv && glUseProgram &&
           glVertexAttribPointer;
}

/// Drivers make the highest version that is compatible, so the context itself must be asked.
bool contextReaches33() {
    GLint major = 0, minor = 0;
    g_core.getIntegerv(GL_MAJOR_VERSION, &major);
    g_core.getIntegerv(GL_MINOR_VERSION, &minor);
    return major > 3 || (major == 3 && minor >= 3);
}

}  // namespace

const GlCore& glCore() {
    return g_core;
}

const char* loadEntryPoints() {
    static std::mutex mutex;
    const std::lock_guard guard(mutex);
    if (!platform::currentGlContext().context) return "Missing GL version";
    if (!g_loaded) {
        const GLenum status = glewInit();
        if (status != GLEW_OK && status != kNoGlxDisplay)
            return reinterpret_cast<const char*>(glewGetErrorString(status));
        if (!GLEW_VERSION_3_3) return "OpenGL 3.3 is not available";
        if (!loadCore(g_core) || !loaderIsComplete()) return "an entry point is missing";
        g_loaded = true;
    }
    return contextReaches33() ? nullptr : "OpenGL 3.3 is not available";
}

bool glUsable() {
    if (g_loaded) return platform::currentGlContext().context != nullptr;
    return platform::currentGlContext().context && !loadEntryPoints();
}

}  // namespace zellab::gl
