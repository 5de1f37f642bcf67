#include "gl/shaderProgram.h"

#include "gl/glApi.h"

namespace zellab::Bokeh {

namespace {

using gl::glCore;
using gl::glUsable;

/// x, y, u, v of the corners that cover the target.
constexpr std::array<GLfloat, 16> kQuad = {1, 1, 1, 1, -1, 1, 0, 1, -1, -1, 0, 0, 1, -1, 1, 0};
constexpr std::array<GLuint, 6> kTriangles = {0, 1, 3, 1, 2, 3};

using GetParameter = void(GLAPIENTRY*)(GLuint, GLenum, GLint*);
using GetText = void(GLAPIENTRY*)(GLuint, GLsizei, GLsizei*, GLchar*);

/// Logs the driver's text where a step failed and there is one.
void reportStep(const char* step, GLuint object, GLenum statusName, GetParameter parameter, GetText text) {
    GLint status = 0, length = 0;
    parameter(object, statusName, &status);
    if (status != 0) return;
    parameter(object, GL_INFO_LOG_LENGTH, &length);
    if (length < 1) return;
    std::string message(static_cast<std::size_t>(length), '\0');
    text(object, length, nullptr, message.data());
    if (message[0] == '\0') return;
    shaderLog().error("[OpenGL::%s]\n%s(%d)\n", step, message.c_str(), status);
}

GLuint compile(const char* step, GLenum kind, const std::string& source) {
    const GLuint shader = glCreateShader(kind);
    const GLchar* text = source.c_str();
    glShaderSource(shader, 1, &text, nullptr);
    glCompileShader(shader);
    reportStep(step, shader, GL_COMPILE_STATUS, glGetShaderiv, glGetShaderInfoLog);
    return shader;
}

/// Gives the program's name whether or not the steps succeeded: a faulty shader shows in the log and draws
/// nothing.
GLuint link(const std::string& vertexSource, const std::string& fragmentSource) {
    const GLuint vertex = compile("CreateVertexShader", GL_VERTEX_SHADER, vertexSource);
    const GLuint fragment = compile("CreateFragShader", GL_FRAGMENT_SHADER, fragmentSource);
    const GLuint program = glCreateProgram();
    glAttachShader(program, vertex);
    glAttachShader(program, fragment);
    glLinkProgram(program);
    reportStep("CreateProgram", program, GL_LINK_STATUS, glGetProgramiv, glGetProgramInfoLog);
    if (vertex != 0) {
        glDeleteShader(vertex);
        glDeleteShader(fragment);
    }
    return program;
}

void makeQuad(ProgramRecord& record) {
    constexpr GLsizei kStride = 4 * sizeof(GLfloat);
    glGenVertexArrays(1, &record.vertexArray);
    glBindVertexArray(record.vertexArray);
    glGenBuffers(1, &record.vertexBuffer);
    glBindBuffer(GL_ARRAY_BUFFER, record.vertexBuffer);
    glBufferData(GL_ARRAY_BUFFER, sizeof(kQuad), kQuad.data(), GL_STATIC_DRAW);
    glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, kStride, nullptr);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, kStride,
                          reinterpret_cast<const void*>(2 * sizeof(GLfloat)));
    glEnableVertexAttribArray(1);
    glGenBuffers(1, &record.elementBuffer);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, record.elementBuffer);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, sizeof(kTriangles), kTriangles.data(), GL_STATIC_DRAW);
    // The element buffer stays with its array: to unbind it now would take away the host's own.
    glBindVertexArray(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void releaseProgram(ProgramRecord* record) {
    if (glUsable()) {
        glDeleteProgram(record->program);
        glDeleteVertexArrays(1, &record->vertexArray);
        glDeleteBuffers(1, &record->vertexBuffer);
        glDeleteBuffers(1, &record->elementBuffer);
    }
    delete record;
}

}  // namespace

gl::RendererLog& shaderLog() {
    static gl::RendererLog log;
    return log;
}

ShaderProgram::ShaderProgram(const std::string& vertexSource, const std::string& fragmentSource) {
    if (!glUsable()) return;
    const GLuint program = link(vertexSource, fragmentSource);
    if (program == 0) return;
    m_record = {new ProgramRecord, releaseProgram};
    m_record->program = program;
    GLint linked = 0;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    m_record->linked = linked == GL_TRUE;
    makeQuad(*m_record);
}

bool ShaderProgram::locate(const char* name, std::uint32_t& location) const {
    if (!m_record || !glUsable()) return false;
    // Names that the shader does not use are at -1, where OpenGL ignores what it is given.
    location = static_cast<std::uint32_t>(glGetUniformLocation(m_record->program, name));
    return true;
}

ShaderProgram& ShaderProgram::setFloat(const char* name, float x) {
    std::uint32_t location = 0;
    if (locate(name, location)) m_floats.set(location, {x});
    return *this;
}

ShaderProgram& ShaderProgram::setVec2(const char* name, float x, float y) {
    std::uint32_t location = 0;
    if (locate(name, location)) m_vec2s.set(location, {x, y});
    return *this;
}

ShaderProgram& ShaderProgram::setVec3(const char* name, float x, float y, float z) {
    std::uint32_t location = 0;
    if (locate(name, location)) m_vec3s.set(location, {x, y, z});
    return *this;
}

ShaderProgram& ShaderProgram::setVec4(const char* name, float x, float y, float z, float w) {
    std::uint32_t location = 0;
    if (locate(name, location)) m_vec4s.set(location, {x, y, z, w});
    return *this;
}

ShaderProgram& ShaderProgram::setInt(const char* name, int value) {
    std::uint32_t location = 0;
    if (locate(name, location)) m_ints.set(location, value);
    return *this;
}

ShaderProgram& ShaderProgram::setArray(Arrays& arrays, const char* name, int count, int components,
                                       const float* values) {
    std::uint32_t location = 0;
    if (count < 1 || !values || !locate(name, location)) return *this;
    const auto length = static_cast<std::size_t>(count) * static_cast<std::size_t>(components);
    arrays.set(location, {values, values + length});
    return *this;
}

ShaderProgram& ShaderProgram::setFloatArray(const char* name, int count, const float* values) {
    return setArray(m_arrays[0], name, count, 1, values);
}

ShaderProgram& ShaderProgram::setVec2Array(const char* name, int count, const float* values) {
    return setArray(m_arrays[1], name, count, 2, values);
}

ShaderProgram& ShaderProgram::setVec3Array(const char* name, int count, const float* values) {
    return setArray(m_arrays[2], name, count, 3, values);
}

ShaderProgram& ShaderProgram::setVec4Array(const char* name, int count, const float* values) {
    return setArray(m_arrays[3], name, count, 4, values);
}

ShaderProgram& ShaderProgram::setTexture(const char* name, const Texture2D& texture, int unit) {
    std::uint32_t location = 0;
    if (locate(name, location)) m_textures.set(location, {texture, unit});
    return *this;
}

ShaderProgram& ShaderProgram::setBlend(GLenum sourceRgb, GLenum targetRgb, GLenum sourceAlpha,
                                       GLenum targetAlpha) {
    m_blend = {sourceRgb, targetRgb, sourceAlpha, targetAlpha};
    return *this;
}

bool ShaderProgram::blends() const {
    return m_blend != std::array<GLenum, 4>{GL_ONE, GL_ZERO, GL_ONE, GL_ZERO};
}

void ShaderProgram::applyUniforms() const {
    const auto at = [](std::uint32_t key) { return static_cast<GLint>(key); };
    for (const auto& entry : m_floats) glUniform1fv(at(entry.key), 1, entry.value.data());
    for (const auto& entry : m_vec2s) glUniform2fv(at(entry.key), 1, entry.value.data());
    for (const auto& entry : m_vec3s) glUniform3fv(at(entry.key), 1, entry.value.data());
    for (const auto& entry : m_vec4s) glUniform4fv(at(entry.key), 1, entry.value.data());
    const std::array setters = {glUniform1fv, glUniform2fv, glUniform3fv, glUniform4fv};
    for (std::size_t i = 0; i < setters.size(); ++i)
        for (const auto& entry : m_arrays[i])
            setters[i](at(entry.key), static_cast<GLsizei>(entry.value.size() / (i + 1)), entry.value.data());
    for (const auto& entry : m_ints) glUniform1i(at(entry.key), entry.value);
}

bool ShaderProgram::draw(GLenum, float, float, float, float) const {
    if (!m_record || !glUsable()) return false;
    struct Binding {
        GLint location;
        GLuint texture;
        int unit;
    };
    // Before anything is bound for the draw: a texture that takes on its parameters changes the binding.
    std::vector<Binding> bindings;
    for (const auto& entry : m_textures)
        bindings.push_back({static_cast<GLint>(entry.key), entry.value.texture.bind(), entry.value.unit});
    glUseProgram(m_record->program);
    applyUniforms();
    for (const Binding& binding : bindings) {
        glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(binding.unit));
        glCore().bindTexture(GL_TEXTURE_2D, binding.texture);
        glUniform1i(binding.location, binding.unit);
    }
    drawQuad();
    glUseProgram(0);
    glBindVertexArray(0);
    return true;
}

void ShaderProgram::drawQuad() const {
    glBindVertexArray(m_record->vertexArray);
    const bool blending = blends();
    if (blending) {
        glCore().enable(GL_BLEND);
        glBlendFuncSeparate(m_blend[0], m_blend[1], m_blend[2], m_blend[3]);
    }
    glCore().drawElements(GL_TRIANGLES, static_cast<GLsizei>(kTriangles.size()), GL_UNSIGNED_INT, nullptr);
    if (blending) glCore().disable(GL_BLEND);
}

}  // namespace zellab::Bokeh
