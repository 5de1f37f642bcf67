// Depth of field in the host's own OpenGL context, as a host with a window would have it drawn.
#include <gtest/gtest.h>

#include "gl/glApi.h"
#include "gl/hostContext.h"
#include "hostScene.h"

namespace {

using zellab::gl::glCore;

libzel::Context contextWith(zel_gl gl) {
    auto settings = libzel::sized<zel_settings>();
    settings.gl = gl;
    settings.assets = ZEL_ASSETS;
    return libzel::createContext(&settings);
}

TEST(CurrentContext, GivesTheSamePictureAndKeepsTheHostsState) {
    const libzel::Context own = contextWith(ZEL_GL_IF_THERE), current = contextWith(ZEL_GL_CURRENT);
    zeltest::HostScene scene(own.get());
    const zel_effect* effect = nullptr;
    libzel::require(zel_effect_find("defocus", &effect));
    const auto expected = zeltest::retouched(own.get(), scene, *effect);
    EXPECT_NE(expected, scene.bytes());

    // Where none is current, the processor draws.
    EXPECT_EQ(zeltest::retouched(current.get(), scene, *effect),
              zeltest::retouched(contextWith(ZEL_GL_NEVER).get(), scene, *effect));

    const zeltest::HostContext host({.compatibility = true});
    ASSERT_TRUE(host.isCurrent());
    ASSERT_TRUE(zellab::gl::glUsable());
    GLuint texture = 0, framebuffer = 0;
    glCore().genTextures(1, &texture);
    glCore().bindTexture(GL_TEXTURE_2D, texture);
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer);
    glCore().viewport(3, 4, 5, 6);
    glCore().enable(GL_SCISSOR_TEST);
    glCore().enable(GL_BLEND);
    glCore().pixelStorei(GL_PACK_ROW_LENGTH, 5000);
    const auto state = [] {
        std::vector<GLint> numbers(16, -1);
        glCore().getIntegerv(GL_VIEWPORT, numbers.data());
        for (const int name : {GL_TEXTURE_BINDING_2D, GL_DRAW_FRAMEBUFFER_BINDING, GL_SCISSOR_TEST, GL_BLEND,
                               GL_PACK_ROW_LENGTH, GL_CURRENT_PROGRAM, GL_VERTEX_ARRAY_BINDING}) {
            numbers.push_back(-1);
            glCore().getIntegerv(static_cast<GLenum>(name), &numbers.back());
        }
        return numbers;
    };
    const auto before = state();
    EXPECT_EQ(zeltest::retouched(current.get(), scene, *effect), expected);
    EXPECT_EQ(state(), before);
    // One of the library's own, made meanwhile, gives the host's back.
    EXPECT_EQ(zeltest::retouched(own.get(), scene, *effect), expected);
    EXPECT_EQ(state(), before);
    EXPECT_EQ(glCore().getError(), GLenum{GL_NO_ERROR});
}

}  // namespace
