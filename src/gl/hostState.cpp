#include "gl/hostState.h"

#include "gl/glApi.h"

namespace zellab::gl {
namespace {

/// How pixels lie in memory, and how the renderer's do: packed, whatever a row's length in bytes.
struct PixelRule {
    GLenum name;
    GLint packed;
};
constexpr PixelRule kPixelStore[] = {
    {GL_UNPACK_ALIGNMENT, 1},   {GL_UNPACK_ROW_LENGTH, 0},   {GL_UNPACK_SKIP_ROWS, 0},
    {GL_UNPACK_SKIP_PIXELS, 0}, {GL_UNPACK_IMAGE_HEIGHT, 0}, {GL_UNPACK_SKIP_IMAGES, 0},
    {GL_UNPACK_SWAP_BYTES, 0},  {GL_UNPACK_LSB_FIRST, 0},    {GL_PACK_ALIGNMENT, 1},
    {GL_PACK_ROW_LENGTH, 0},    {GL_PACK_SKIP_ROWS, 0},      {GL_PACK_SKIP_PIXELS, 0},
    {GL_PACK_IMAGE_HEIGHT, 0},  {GL_PACK_SKIP_IMAGES, 0},    {GL_PACK_SWAP_BYTES, 0},
    {GL_PACK_LSB_FIRST, 0}};

void bindProgram(GLenum, GLuint name) {
    glUseProgram(name);
}
void bindVertexArray(GLenum, GLuint name) {
    glBindVertexArray(name);
}
void bindBuffer(GLenum target, GLuint name) {
    glBindBuffer(target, name);
}
void bindFramebuffer(GLenum target, GLuint name) {
    glBindFramebuffer(target, name);
}

/// What is bound outside the texture units.
struct Binding {
    GLenum query, target;
    void (*bind)(GLenum target, GLuint name);
};
constexpr Binding kBindings[] = {{GL_CURRENT_PROGRAM, 0, bindProgram},
                                 {GL_VERTEX_ARRAY_BINDING, 0, bindVertexArray},
                                 {GL_ARRAY_BUFFER_BINDING, GL_ARRAY_BUFFER, bindBuffer},
                                 {GL_PIXEL_PACK_BUFFER_BINDING, GL_PIXEL_PACK_BUFFER, bindBuffer},
                                 {GL_PIXEL_UNPACK_BUFFER_BINDING, GL_PIXEL_UNPACK_BUFFER, bindBuffer},
                                 {GL_DRAW_FRAMEBUFFER_BINDING, GL_DRAW_FRAMEBUFFER, bindFramebuffer},
                                 {GL_READ_FRAMEBUFFER_BINDING, GL_READ_FRAMEBUFFER, bindFramebuffer}};

/// What takes pixels away from a draw or changes their colours, all off for the renderer.
constexpr GLenum kSwitches[] = {
    GL_CULL_FACE,      GL_RASTERIZER_DISCARD, GL_COLOR_LOGIC_OP,    GL_PRIMITIVE_RESTART, GL_POLYGON_SMOOTH,
    GL_CLIP_DISTANCE0, GL_CLIP_DISTANCE1,     GL_CLIP_DISTANCE2,    GL_CLIP_DISTANCE3,    GL_CLIP_DISTANCE4,
    GL_CLIP_DISTANCE5, GL_CLIP_DISTANCE0 + 6, GL_CLIP_DISTANCE0 + 7};
/// The same of contexts with the fixed functions.
constexpr GLenum kOldSwitches[] = {GL_ALPHA_TEST, GL_POLYGON_STIPPLE};

/// What the fixed functions do to every pixel on its way to and from memory, and the value that does nothing.
struct PixelTransfer {
    GLenum name;
    GLfloat nothing;
};
constexpr PixelTransfer kPixelTransfer[] = {
    {GL_MAP_COLOR, 0.0f},  {GL_RED_SCALE, 1.0f},   {GL_GREEN_SCALE, 1.0f},
    {GL_BLUE_SCALE, 1.0f}, {GL_ALPHA_SCALE, 1.0f}, {GL_RED_BIAS, 0.0f},
    {GL_GREEN_BIAS, 0.0f}, {GL_BLUE_BIAS, 0.0f},   {GL_ALPHA_BIAS, 0.0f}};

constexpr GLenum kFactors[] = {GL_BLEND_SRC_RGB, GL_BLEND_DST_RGB, GL_BLEND_SRC_ALPHA, GL_BLEND_DST_ALPHA};
constexpr GLenum kEquations[] = {GL_BLEND_EQUATION_RGB, GL_BLEND_EQUATION_ALPHA};

GLint integer(GLenum name) {
    GLint value = 0;
    glCore().getIntegerv(name, &value);
    return value;
}

bool isOn(GLenum name) {
    return glCore().isEnabled(name) == GL_TRUE;
}

void turn(GLenum name, bool on) {
    (on ? glCore().enable : glCore().disable)(name);
}

void turnIndexed(GLenum name, GLuint index, bool on) {
    (on ? glEnablei : glDisablei)(name, index);
}

GLenum enumOf(GLint value) {
    return static_cast<GLenum>(value);
}

/// Whether each colour buffer of a context of that version has factors and equations of its own.
bool blendsByBuffer(int version) {
    return version >= 40 && glCore().blendFuncSeparatei && glCore().blendEquationSeparatei;
}

/// Whether a context of that version has several viewports.
bool hasManyViewports(int version) {
    return version >= 41 && glCore().viewportIndexedfv && glCore().getFloatiV;
}

}  // namespace

HostState::HostState() : m_usable(glUsable()) {
    if (!m_usable) return;
    save();
    reset();
    if (m_compatibility) resetCompatibility();
}

HostState::~HostState() {
    if (m_usable && glUsable()) restore();
}

void HostState::save() {
    m_version = 10 * integer(GL_MAJOR_VERSION) + integer(GL_MINOR_VERSION);
    m_compatibility = (integer(GL_CONTEXT_PROFILE_MASK) & GL_CONTEXT_COMPATIBILITY_PROFILE_BIT) != 0;
    for (const PixelRule& rule : kPixelStore) m_pixelStore.push_back(integer(rule.name));
    for (const Binding& binding : kBindings) m_bindings.push_back(integer(binding.query));
    for (const GLenum name : kSwitches) m_switches.push_back(isOn(name));
    glCore().getIntegerv(GL_POLYGON_MODE, m_polygonMode.data());
    m_activeTexture = integer(GL_ACTIVE_TEXTURE);
    for (int i = 0; i < kUnits; ++i) {
        glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(i));
        m_units[static_cast<std::size_t>(i)] = {integer(GL_TEXTURE_BINDING_2D), integer(GL_SAMPLER_BINDING)};
    }
    saveColourBuffers();
    saveViewports();
    if (m_compatibility) saveCompatibility();
}

void HostState::saveColourBuffers() {
    const bool byBuffer = blendsByBuffer(m_version);
    m_colourBuffers.resize(static_cast<std::size_t>(integer(GL_MAX_DRAW_BUFFERS)));
    for (GLuint i = 0; i < m_colourBuffers.size(); ++i) {
        ColourBuffer& buffer = m_colourBuffers[i];
        const auto get = [&](GLenum name, GLint* value) {
            if (byBuffer)
                glGetIntegeri_v(name, i, value);
            else
                glCore().getIntegerv(name, value);
        };
        buffer.blends = glIsEnabledi(GL_BLEND, i) == GL_TRUE;
        glGetBooleani_v(GL_COLOR_WRITEMASK, i, buffer.mask.data());
        for (std::size_t k = 0; k < buffer.factors.size(); ++k) get(kFactors[k], &buffer.factors[k]);
        // NOLINTNEXTLINE(clang-analyzer-core.CallAndMessage): both arrays have one length
        for (std::size_t k = 0; k < buffer.equations.size(); ++k) get(kEquations[k], &buffer.equations[k]);
    }
}

void HostState::saveViewports() {
    if (!hasManyViewports(m_version)) {
        m_viewports.resize(1);
        glCore().getFloatv(GL_VIEWPORT, m_viewports[0].rectangle.data());
        m_viewports[0].scissors = isOn(GL_SCISSOR_TEST);
        return;
    }
    m_viewports.resize(static_cast<std::size_t>(integer(GL_MAX_VIEWPORTS)));
    for (GLuint i = 0; i < m_viewports.size(); ++i) {
        glCore().getFloatiV(GL_VIEWPORT, i, m_viewports[i].rectangle.data());
        m_viewports[i].scissors = glIsEnabledi(GL_SCISSOR_TEST, i) == GL_TRUE;
    }
}

void HostState::saveCompatibility() {
    for (const GLenum name : kOldSwitches) m_oldSwitches.push_back(isOn(name));
    m_fragmentClamp = integer(GL_CLAMP_FRAGMENT_COLOR);
    for (const PixelTransfer& transfer : kPixelTransfer)
        glCore().getFloatv(transfer.name, &m_pixelTransfer.emplace_back());
}

void HostState::reset() {
    for (const PixelRule& rule : kPixelStore) glCore().pixelStorei(rule.name, rule.packed);
    for (const Binding& binding : kBindings) binding.bind(binding.target, 0);
    for (const GLenum name : kSwitches) glCore().disable(name);
    for (const GLenum name : {GL_BLEND, GL_SCISSOR_TEST}) glCore().disable(enumOf(name));
    glCore().polygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glCore().colorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glBlendEquation(GL_FUNC_ADD);
    for (int i = kUnits - 1; i >= 0; --i) {  // ends with unit 0
        glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(i));
        glCore().bindTexture(GL_TEXTURE_2D, 0);
        glBindSampler(static_cast<GLuint>(i), 0);
    }
}

void HostState::resetCompatibility() const {
    for (const GLenum name : kOldSwitches) glCore().disable(name);
    glClampColor(GL_CLAMP_FRAGMENT_COLOR, GL_FALSE);
    for (const PixelTransfer& transfer : kPixelTransfer)
        glCore().pixelTransferf(transfer.name, transfer.nothing);
}

void HostState::restore() const {
    for (std::size_t i = 0; i < m_pixelStore.size(); ++i)
        glCore().pixelStorei(kPixelStore[i].name, m_pixelStore[i]);
    for (std::size_t i = 0; i < m_bindings.size(); ++i)
        kBindings[i].bind(kBindings[i].target, static_cast<GLuint>(m_bindings[i]));
    for (std::size_t i = 0; i < m_switches.size(); ++i) turn(kSwitches[i], m_switches[i]);
    for (GLuint i = 0; i < m_units.size(); ++i) {
        glActiveTexture(GL_TEXTURE0 + i);
        glCore().bindTexture(GL_TEXTURE_2D, static_cast<GLuint>(m_units[i].texture));
        glBindSampler(i, static_cast<GLuint>(m_units[i].sampler));
    }
    glActiveTexture(enumOf(m_activeTexture));
    if (m_compatibility) {
        glCore().polygonMode(GL_FRONT, enumOf(m_polygonMode[0]));
        glCore().polygonMode(GL_BACK, enumOf(m_polygonMode[1]));
    } else {
        glCore().polygonMode(GL_FRONT_AND_BACK, enumOf(m_polygonMode[0]));
    }
    restoreColourBuffers();
    restoreViewports();
    if (m_compatibility) restoreCompatibility();
}

void HostState::restoreColourBuffers() const {
    const bool byBuffer = blendsByBuffer(m_version);
    for (GLuint i = 0; i < m_colourBuffers.size(); ++i) {
        const ColourBuffer& buffer = m_colourBuffers[i];
        const auto& f = buffer.factors;
        turnIndexed(GL_BLEND, i, buffer.blends);
        glColorMaski(i, buffer.mask[0], buffer.mask[1], buffer.mask[2], buffer.mask[3]);
        if (byBuffer) {
            glCore().blendFuncSeparatei(i, enumOf(f[0]), enumOf(f[1]), enumOf(f[2]), enumOf(f[3]));
            glCore().blendEquationSeparatei(i, enumOf(buffer.equations[0]), enumOf(buffer.equations[1]));
        } else {
            glBlendFuncSeparate(enumOf(f[0]), enumOf(f[1]), enumOf(f[2]), enumOf(f[3]));
            glBlendEquationSeparate(enumOf(buffer.equations[0]), enumOf(buffer.equations[1]));
        }
    }
}

void HostState::restoreViewports() const {
    if (!hasManyViewports(m_version)) {
        const auto& r = m_viewports[0].rectangle;
        glCore().viewport(static_cast<GLint>(r[0]), static_cast<GLint>(r[1]), static_cast<GLsizei>(r[2]),
                          static_cast<GLsizei>(r[3]));
        turn(GL_SCISSOR_TEST, m_viewports[0].scissors);
        return;
    }
    for (GLuint i = 0; i < m_viewports.size(); ++i) {
        glCore().viewportIndexedfv(i, m_viewports[i].rectangle.data());
        turnIndexed(GL_SCISSOR_TEST, i, m_viewports[i].scissors);
    }
}

void HostState::restoreCompatibility() const {
    // NOLINTNEXTLINE(clang-analyzer-core.CallAndMessage): both arrays have one length
    for (std::size_t i = 0; i < m_oldSwitches.size(); ++i) turn(kOldSwitches[i], m_oldSwitches[i]);
    glClampColor(GL_CLAMP_FRAGMENT_COLOR, enumOf(m_fragmentClamp));
    for (std::size_t i = 0; i < m_pixelTransfer.size(); ++i)
        glCore().pixelTransferf(kPixelTransfer[i].name, m_pixelTransfer[i]);
}

}  // namespace zellab::gl
