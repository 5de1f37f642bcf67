#pragma once

#include <GL/glew.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "gl/glLog.h"
#include "gl/parameterTable.h"
#include "gl/texture2D.h"

namespace zellab::Bokeh {

/// The log of programs and their cache.
gl::RendererLog& shaderLog();

/// The GL objects of a program with its quad. Deleted with the last reference, on the GL thread.
struct ProgramRecord {
    GLuint vertexArray = 0;
    GLuint vertexBuffer = 0;
    GLuint elementBuffer = 0;
    GLuint program = 0;
    bool linked = false;
};

/// A linked program with values for its uniforms. Copies share the GL objects; each has values of its own,
/// which reach OpenGL when it draws.
class ShaderProgram {
public:
    /// Empty: setters do nothing, draw returns false.
    ShaderProgram() = default;
    /// Compiles and links. Errors of the driver go to the log and leave a program that draws nothing useful;
    /// empty without a usable context alone.
    ShaderProgram(const std::string& vertexSource, const std::string& fragmentSource);

    bool isValid() const { return m_record != nullptr; }
    /// Whether the driver took it; only then does a draw paint what its text says.
    bool isLinked() const { return m_record && m_record->linked; }

    ShaderProgram& setFloat(const char* name, float x);
    ShaderProgram& setVec2(const char* name, float x, float y);
    ShaderProgram& setVec3(const char* name, float x, float y, float z);
    ShaderProgram& setVec4(const char* name, float x, float y, float z, float w);
    ShaderProgram& setInt(const char* name, int value);
    /// Arrays of `count` elements; the values are copied. Null or a count below 1 is ignored.
    ShaderProgram& setFloatArray(const char* name, int count, const float* values);
    ShaderProgram& setVec2Array(const char* name, int count, const float* values);
    ShaderProgram& setVec3Array(const char* name, int count, const float* values);
    ShaderProgram& setVec4Array(const char* name, int count, const float* values);
    ShaderProgram& setTexture(const char* name, const Texture2D& texture, int unit);
    /// Factors of glBlendFuncSeparate. With (GL_ONE, GL_ZERO, GL_ONE, GL_ZERO), the default, nothing is
    /// blended.
    ShaderProgram& setBlend(GLenum sourceRgb, GLenum targetRgb, GLenum sourceAlpha, GLenum targetAlpha);

    /// Draws over the whole of the current target. Mode and rectangle are not read: callers that hand out
    /// tiles rely on each draw being complete.
    bool draw(GLenum mode, float x, float y, float width, float height) const;

private:
    struct TextureSlot {
        Texture2D texture;
        int unit = 0;
    };
    template <std::size_t N>
    using Vectors = gl::ParameterTable<std::array<float, N>>;
    using Arrays = gl::ParameterTable<std::vector<float>>;

    /// The key under which values for this name are kept; false for an empty program.
    bool locate(const char* name, std::uint32_t& location) const;
    ShaderProgram& setArray(Arrays& arrays, const char* name, int count, int components, const float* values);
    void applyUniforms() const;
    void drawQuad() const;
    bool blends() const;

    std::shared_ptr<ProgramRecord> m_record;
    std::array<GLenum, 4> m_blend = {GL_ONE, GL_ZERO, GL_ONE, GL_ZERO};
    Vectors<1> m_floats;
    Vectors<2> m_vec2s;
    Vectors<3> m_vec3s;
    Vectors<4> m_vec4s;
    /// Arrays of elements with one to four components.
    std::array<Arrays, 4> m_arrays;
    gl::ParameterTable<int> m_ints;
    gl::ParameterTable<TextureSlot> m_textures;
};

}  // namespace zellab::Bokeh
