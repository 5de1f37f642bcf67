#include "gl/texture2D.h"

#include <algorithm>
#include <array>

#include "gl/glApi.h"
#include "gl/glLog.h"

namespace zellab::Bokeh {

namespace {

using gl::glCore;
using gl::glUsable;

gl::RendererLog& textureLog() {
    static gl::RendererLog log;
    return log;
}

GLenum formatOf(int channelOrder) {
    switch (channelOrder) {
        case kOrderRed:
            return GL_RED;
        case kOrderRgb:
            return GL_RGB;
        case kOrderRgba:
            return GL_RGBA;
        default:
            textureLog().error("Unknown channel order");
            return 0;
    }
}

GLenum typeOf(int channelType) {
    switch (channelType) {
        case kTypeByte:
            return GL_UNSIGNED_BYTE;
        case kTypeFloat:
            return GL_FLOAT;
        default:
            textureLog().error("Unknown channel type");
            return 0;
    }
}

/// Rows of pixels in memory are packed, whatever their length in bytes; OpenGL's own rule fills them up to
/// four. The host's rule comes back with the rest of its state (hostState.h).
void packRows(GLenum alignment) {
    glCore().pixelStorei(alignment, 1);
}

const char* framebufferFault(GLenum status) {
    switch (status) {
        case GL_FRAMEBUFFER_UNSUPPORTED:
            return "FB: GL_FRAMEBUFFER_UNSUPPORTED";
        case GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT:
            return "FB: GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT";
        case GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT:
            return "FB: GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT";
        case GL_FRAMEBUFFER_UNDEFINED:
            return "FB: GL_FRAMEBUFFER_UNDEFINED";
        case GL_FRAMEBUFFER_INCOMPLETE_MULTISAMPLE:
            return "FB: GL_FRAMEBUFFER_INCOMPLETE_MULTISAMPLE";
        default:
            return nullptr;
    }
}

/// A size as the driver is given it. Beyond the driver's limit all are refused alike, and one that is barely
/// beyond is refused safely: a software driver overran its stack on a height of 2,147,483,647.
GLsizei refusable(int size) {
    GLint limit = 0;
    glCore().getIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
    return std::min(size, limit + 1);
}

GLuint makeTexture(const ITexture2D& record, GLenum internal, int unpackRowLength, const void* data) {
    GLuint texture = 0;
    glCore().genTextures(1, &texture);
    glCore().bindTexture(GL_TEXTURE_2D, texture);
    for (const auto& parameter : record.parameters)
        glCore().texParameteri(GL_TEXTURE_2D, parameter.key, parameter.value);
    packRows(GL_UNPACK_ALIGNMENT);
    glCore().pixelStorei(GL_UNPACK_ROW_LENGTH, unpackRowLength);
    glCore().texImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(internal), refusable(record.width),
                        refusable(record.height), 0, static_cast<GLenum>(record.format),
                        static_cast<GLenum>(record.type), data);
    glCore().pixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    return texture;
}

/// Whatever its status: a texture that cannot be drawn into may still be sampled.
void makeFramebuffer(ITexture2D& record) {
    glGenFramebuffers(1, &record.framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, record.framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, record.texture, 0);
    const GLenum status = glCheckFramebufferStatus(GL_FRAMEBUFFER);
    record.complete = status == GL_FRAMEBUFFER_COMPLETE;
    if (const char* fault = framebufferFault(status)) textureLog().error("%s", fault);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

void release(ITexture2D* record) {
    // Without a context the names have died with the one that they belonged to.
    if ((record->framebuffer != 0 || record->texture != 0) && glUsable()) {
        if (record->framebuffer != 0) glDeleteFramebuffers(1, &record->framebuffer);
        if (record->texture != 0) glCore().deleteTextures(1, &record->texture);
    }
    delete record;
}

/// A row of the format table: the sized format for each group of client types, 0 for none.
struct FormatRow {
    GLenum format;
    GLenum ofUnsignedByte, ofByte, ofFloat, ofUnsignedShort, ofShort, ofUnsignedInt, ofInt;
};

constexpr std::array<FormatRow, 8> kFormats = {{
    {GL_RED, GL_R8, GL_R8_SNORM, GL_R16F, 0, 0, 0, 0},
    {GL_RED_INTEGER, GL_R8UI, GL_R8I, 0, GL_R16UI, GL_R16I, GL_R32UI, GL_R32I},
    {GL_RG, GL_RG8, GL_RG8_SNORM, GL_RG16F, 0, 0, 0, 0},
    {GL_RG_INTEGER, GL_RG8UI, GL_RG8I, 0, GL_RG16UI, GL_RG16I, GL_RG32UI, GL_RG32I},
    {GL_RGB, GL_RGB8, GL_RGB8_SNORM, GL_RGB16F, 0, 0, 0, 0},
    {GL_RGB_INTEGER, GL_RGB8UI, GL_RGB8I, 0, GL_RGB16UI, GL_RGB16I, GL_RGB32UI, GL_RGB32I},
    {GL_RGBA, GL_RGBA8, GL_RGBA8_SNORM, GL_RGBA16F, 0, 0, 0, 0},
    {GL_RGBA_INTEGER, GL_RGBA8UI, GL_RGBA8I, 0, GL_RGBA16UI, GL_RGBA16I, GL_RGBA32UI, GL_RGBA32I},
}};

GLenum inRow(const FormatRow& row, GLenum type) {
    switch (type) {
        case GL_UNSIGNED_BYTE:
            return row.ofUnsignedByte;
        case GL_BYTE:
            return row.ofByte;
        case GL_HALF_FLOAT:
        case GL_FLOAT:
            return row.ofFloat;
        case GL_UNSIGNED_SHORT:
            return row.ofUnsignedShort;
        case GL_SHORT:
            return row.ofShort;
        case GL_UNSIGNED_INT:
            return row.ofUnsignedInt;
        case GL_INT:
            return row.ofInt;
        default:
            return 0;
    }
}

}  // namespace

GLenum internalFormat(GLenum format, GLenum type) {
    if (format == GL_ALPHA) return GL_ALPHA;
    for (const FormatRow& row : kFormats)
        if (row.format == format) return inRow(row, type);
    return 0;
}

Texture2D::Texture2D(int width, int height, int unpackRowLength, int channelOrder, int channelType,
                     const void* data)
    : m_record(new ITexture2D, release) {
    m_record->width = width;
    m_record->height = height;
    const GLenum type = typeOf(channelType), format = formatOf(channelOrder);
    m_record->type = static_cast<int>(type);
    m_record->format = static_cast<int>(format);
    m_record->parameters.set(GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    m_record->parameters.set(GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    m_record->parameters.set(GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    m_record->parameters.set(GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    const GLenum internal = internalFormat(format, type);
    if (internal == 0) {
        textureLog().error("Internal Format Not Support [%04X,%04X]", format, type);
        return;
    }
    if (!glUsable()) return;
    m_record->texture = makeTexture(*m_record, internal, unpackRowLength, data);
    makeFramebuffer(*m_record);
    glCore().bindTexture(GL_TEXTURE_2D, 0);
}

bool Texture2D::isEmpty() const {
    return !m_record || m_record->texture == 0 || m_record->width < 1 || m_record->height < 1;
}

Texture2D& Texture2D::setParameter(GLenum name, GLint value) {
    m_wishes.set(name, value);
    return *this;
}

Texture2D Texture2D::clone(GLint minFilter, GLint magFilter) const {
    Texture2D copy;
    copy.m_record = m_record;
    copy.setMinFilter(minFilter).setMagFilter(magFilter);
    return copy;
}

GLuint Texture2D::bind() const {
    if (isEmpty() || !glUsable()) return 0;
    bool bound = false;
    for (const auto& wish : m_wishes) {
        const GLint* now = m_record->parameters.find(wish.key);
        if (now && *now == wish.value) continue;
        if (!bound) glCore().bindTexture(GL_TEXTURE_2D, m_record->texture);
        bound = true;
        m_record->parameters.set(wish.key, wish.value);
        glCore().texParameteri(GL_TEXTURE_2D, wish.key, wish.value);
    }
    if (bound) glCore().bindTexture(GL_TEXTURE_2D, 0);
    return m_record->texture;
}

bool Texture2D::write(int x, int y, int width, int height, const void* data) const {
    if (!m_record || !data || !glUsable()) return false;
    if (m_record->texture == 0) return true;
    packRows(GL_UNPACK_ALIGNMENT);
    glCore().bindTexture(GL_TEXTURE_2D, m_record->texture);
    glCore().texSubImage2D(GL_TEXTURE_2D, 0, x, y, width, height, static_cast<GLenum>(m_record->format),
                           static_cast<GLenum>(m_record->type), data);
    glCore().bindTexture(GL_TEXTURE_2D, 0);
    return true;
}

namespace {

/// Whether OpenGL answers at all. A context that was lost takes every call and does nothing: it leaves what a byte
/// was before, whatever that was.
bool readsPixels(int x, int y, GLenum format, GLenum type) {
    for (const unsigned char fill : {0x00, 0xFF}) {
        std::array<unsigned char, 16> pixel;  // the largest has four floats
        pixel.fill(fill);
        glCore().readPixels(x, y, 1, 1, format, type, pixel.data());
        if (std::count(pixel.begin(), pixel.end(), fill) < static_cast<std::ptrdiff_t>(pixel.size()))
            return true;
    }
    return false;
}

}  // namespace

bool Texture2D::read(int x, int y, int width, int height, void* data) const {
    if (!m_record || !data) return false;
    if (m_record->texture == 0) {
        textureLog().error("fail to read Texture2D: mem is empty");
        return false;
    }
    if (m_record->framebuffer == 0) {
        textureLog().error("fail to read Texture2D: fbo is empty");
        return false;
    }
    if (!glUsable()) return false;
    packRows(GL_PACK_ALIGNMENT);
    glCore().bindTexture(GL_TEXTURE_2D, m_record->texture);
    glBindFramebuffer(GL_FRAMEBUFFER, m_record->framebuffer);
    const auto format = static_cast<GLenum>(m_record->format), type = static_cast<GLenum>(m_record->type);
    glCore().readPixels(x, y, width, height, format, type, data);
    const bool isThere = readsPixels(x, y, format, type);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glCore().bindTexture(GL_TEXTURE_2D, 0);
    if (!isThere) textureLog().error("fail to read Texture2D: the context is lost");
    return isThere;
}

bool Texture2D::drawInto(const std::function<void()>& draw) const {
    if (!m_record) return false;
    if (m_record->framebuffer == 0 || !glUsable()) {
        textureLog().error("not allow draw: fbo is empty");
        return false;
    }
    glBindFramebuffer(GL_FRAMEBUFFER, m_record->framebuffer);
    glCore().viewport(0, 0, m_record->width, m_record->height);
    draw();
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    return true;
}

}  // namespace zellab::Bokeh
