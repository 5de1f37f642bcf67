#pragma once

#include <GL/glew.h>

#include <functional>
#include <memory>

#include "gl/parameterTable.h"

namespace zellab::Bokeh {

using GlParameters = gl::ParameterTable<GLint>;

/// A texture and its framebuffer, with the parameters that are now set on it. The GL names die with the last
/// reference, which must be dropped on the thread that has the context.
struct ITexture2D {
    int width = 0;
    int height = 0;
    /// GL_UNSIGNED_BYTE or GL_FLOAT.
    int type = 0;
    /// GL_RED, GL_RGB or GL_RGBA.
    int format = 0;
    /// 0: not created.
    GLuint texture = 0;
    /// 0: none.
    GLuint framebuffer = 0;
    /// Whether the driver has made it as large as it was asked for: it can be drawn into.
    bool complete = false;
    GlParameters parameters;
};

/// Values of the channelOrder argument.
inline constexpr int kOrderRed = 1;
inline constexpr int kOrderRgb = 2;
inline constexpr int kOrderRgba = 3;
/// Values of the channelType argument. Float textures hold 16-bit floats.
inline constexpr int kTypeByte = 1;
inline constexpr int kTypeFloat = 2;

/// The sized format for a client format and type; 0 for pairs that have none. Float and half float both give
/// the 16-bit float format.
GLenum internalFormat(GLenum format, GLenum type);

/// A shared texture with the filters and wraps that this object wants of it. Copies share the texture and
/// have wishes of their own. All operations but the default constructor and the plain getters need a current
/// context; without one they fail as an empty object does.
class Texture2D {
public:
    /// Empty.
    Texture2D() = default;
    /// @param unpackRowLength  pixels from row to row in `data`, 0 for packed rows
    /// @param data             packed pixels, or null for undefined content
    /// An unknown order or type, and sizes that the driver refuses, leave an object that cannot be drawn
    /// into.
    Texture2D(int width, int height, int unpackRowLength, int channelOrder, int channelType,
              const void* data);
    /// The same with packed rows.
    Texture2D(int width, int height, int channelOrder, int channelType, const void* data)
        : Texture2D(width, height, 0, channelOrder, channelType, data) {}

    /// 0 for an empty object.
    int width() const { return m_record ? m_record->width : 0; }
    int height() const { return m_record ? m_record->height : 0; }
    bool isEmpty() const;
    /// Whether the driver had room for it. What is not complete is drawn into without effect.
    bool isComplete() const { return m_record && m_record->complete; }

    /// Wishes; they reach the texture when it is bound.
    Texture2D& setMinFilter(GLint filter) { return setParameter(GL_TEXTURE_MIN_FILTER, filter); }
    Texture2D& setMagFilter(GLint filter) { return setParameter(GL_TEXTURE_MAG_FILTER, filter); }
    Texture2D& setWrapS(GLint wrap) { return setParameter(GL_TEXTURE_WRAP_S, wrap); }
    Texture2D& setWrapT(GLint wrap) { return setParameter(GL_TEXTURE_WRAP_T, wrap); }
    /// A copy that wants this pair of filters and no more.
    Texture2D clone(GLint minFilter, GLint magFilter) const;

    /// Brings the texture's parameters to this object's wishes.
    /// @return the name of the texture, 0 when empty
    GLuint bind() const;
    /// Puts packed pixels of the texture's own format into a rectangle. False for an empty object or null
    /// data.
    bool write(int x, int y, int width, int height, const void* data) const;
    /// Gets packed pixels of the texture's own format (floats for a float texture).
    bool read(int x, int y, int width, int height, void* data) const;
    /// Runs `draw` with the texture as the target of drawing, its whole area as the viewport.
    /// @return false without running it where there is no framebuffer
    bool drawInto(const std::function<void()>& draw) const;

    const std::shared_ptr<ITexture2D>& record() const { return m_record; }
    const GlParameters& wishes() const { return m_wishes; }

private:
    Texture2D& setParameter(GLenum name, GLint value);

    std::shared_ptr<ITexture2D> m_record;
    GlParameters m_wishes;
};

}  // namespace zellab::Bokeh
