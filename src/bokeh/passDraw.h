#pragma once

#include <cmath>

#include "bokeh/shaderKeys.h"
#include "gl/shaderCache.h"
#include "gl/texture2D.h"

namespace zellab::Bokeh {

/// Draws a prepared program over the whole of `target`.
inline bool drawOver(const Texture2D& target, const ShaderProgram& program) {
    bool drawn = false;
    return target.drawInto([&] { drawn = program.draw(GL_TRIANGLES, 0.0f, 0.0f, 1.0f, 1.0f); }) && drawn;
}

inline bool sameSize(const Texture2D& a, const Texture2D& b) {
    return a.width() == b.width() && a.height() == b.height();
}

/// Size of one pixel of `texture` in texture coordinates.
inline ShaderProgram& setPixelSize(ShaderProgram& program, const char* name, const Texture2D& texture) {
    return program.setVec2(name, 1.0f / static_cast<float>(texture.width()),
                           1.0f / static_cast<float>(texture.height()));
}

inline Texture2D nearest(const Texture2D& texture) {
    return texture.clone(GL_NEAREST, GL_NEAREST);
}
inline Texture2D linear(const Texture2D& texture) {
    return texture.clone(GL_LINEAR, GL_LINEAR);
}
inline Texture2D mirrored(Texture2D texture) {
    return texture.setWrapS(GL_MIRRORED_REPEAT).setWrapT(GL_MIRRORED_REPEAT);
}

}  // namespace zellab::Bokeh
