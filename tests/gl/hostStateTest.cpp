// A host with a life of its own: whatever it has set and bound, a render comes out the same and the host
// finds everything as it was.
#include "gl/hostState.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <map>

#include "gl/glApi.h"
#include "gl/texture2D.h"
#include "hostContext.h"
#include "support/randomImage.h"
#include "zel_effects/zel_effects.h"

namespace {

using zellab::gl::glCore;
using zeltest::Bytes;

/// The whole state that a host can read back, by the names of the questions.
using State = std::map<std::string, std::vector<float>>;

class StateReader {
public:
    StateReader(int version, bool compatibility) : m_version(version), m_compatibility(compatibility) {}

    State read() const {
        State state;
        const auto numbers = [&](const std::string& name, GLenum question) {
            std::vector<float> values(16, -1.0f);  // room for whatever the driver writes
            glCore().getFloatv(question, values.data());
            state[name] = values;
        };
        std::vector<GLenum> questions = {GL_UNPACK_ALIGNMENT,
                                         GL_UNPACK_ROW_LENGTH,
                                         GL_UNPACK_SKIP_ROWS,
                                         GL_UNPACK_SKIP_PIXELS,
                                         GL_UNPACK_IMAGE_HEIGHT,
                                         GL_UNPACK_SKIP_IMAGES,
                                         GL_UNPACK_SWAP_BYTES,
                                         GL_UNPACK_LSB_FIRST,
                                         GL_PACK_ALIGNMENT,
                                         GL_PACK_ROW_LENGTH,
                                         GL_PACK_SKIP_ROWS,
                                         GL_PACK_SKIP_PIXELS,
                                         GL_PACK_IMAGE_HEIGHT,
                                         GL_PACK_SKIP_IMAGES,
                                         GL_PACK_SWAP_BYTES,
                                         GL_PACK_LSB_FIRST,
                                         GL_CURRENT_PROGRAM,
                                         GL_VERTEX_ARRAY_BINDING,
                                         GL_ARRAY_BUFFER_BINDING,
                                         GL_ELEMENT_ARRAY_BUFFER_BINDING,
                                         GL_PIXEL_PACK_BUFFER_BINDING,
                                         GL_PIXEL_UNPACK_BUFFER_BINDING,
                                         GL_DRAW_FRAMEBUFFER_BINDING,
                                         GL_READ_FRAMEBUFFER_BINDING,
                                         GL_RENDERBUFFER_BINDING,
                                         GL_ACTIVE_TEXTURE,
                                         GL_POLYGON_MODE,
                                         GL_CULL_FACE_MODE,
                                         GL_FRONT_FACE,
                                         GL_BLEND_COLOR,
                                         GL_COLOR_CLEAR_VALUE,
                                         GL_LOGIC_OP_MODE,
                                         GL_SCISSOR_BOX,
                                         GL_VIEWPORT,
                                         GL_DEPTH_FUNC,
                                         GL_DEPTH_WRITEMASK,
                                         GL_STENCIL_FUNC,
                                         GL_DRAW_BUFFER0,
                                         GL_READ_BUFFER,
                                         GL_LINE_WIDTH,
                                         GL_PRIMITIVE_RESTART_INDEX};
        if (m_compatibility)
            for (const int question : {GL_ALPHA_TEST, GL_POLYGON_STIPPLE, GL_MAP_COLOR, GL_RED_SCALE,
                                       GL_GREEN_BIAS, GL_ALPHA_BIAS, GL_CLAMP_FRAGMENT_COLOR})
                questions.push_back(static_cast<GLenum>(question));
        for (const GLenum question : questions) numbers("number " + std::to_string(question), question);
        for (const GLenum name :
             {GL_CULL_FACE, GL_RASTERIZER_DISCARD, GL_COLOR_LOGIC_OP, GL_PRIMITIVE_RESTART, GL_POLYGON_SMOOTH,
              GL_CLIP_DISTANCE0, GL_CLIP_DISTANCE0 + 7, GL_DEPTH_TEST, GL_STENCIL_TEST, GL_SCISSOR_TEST,
              GL_DITHER, GL_FRAMEBUFFER_SRGB})
            state["switch " + std::to_string(name)] = {
                static_cast<float>(glCore().isEnabled(static_cast<GLenum>(name)))};
        GLint active = 0;
        glCore().getIntegerv(GL_ACTIVE_TEXTURE, &active);
        for (GLuint unit = 0; unit < 8; ++unit) {
            glActiveTexture(GL_TEXTURE0 + unit);
            const std::string place = " of unit " + std::to_string(unit);
            numbers("texture" + place, GL_TEXTURE_BINDING_2D);
            numbers("sampler" + place, GL_SAMPLER_BINDING);
        }
        glActiveTexture(static_cast<GLenum>(active));
        for (GLuint buffer = 0; buffer < 4; ++buffer) readColourBuffer(buffer, state);
        for (GLuint i = 0; m_version >= 41 && i < 3; ++i) {
            std::vector<float>& values = state["viewport " + std::to_string(i)];
            values.resize(5);
            glCore().getFloatiV(GL_VIEWPORT, i, values.data());
            values[4] = glIsEnabledi(GL_SCISSOR_TEST, i);
        }
        return state;
    }

private:
    void readColourBuffer(GLuint i, State& state) const {
        std::vector<float>& values = state["colour buffer " + std::to_string(i)];
        GLboolean mask[4];
        glGetBooleani_v(GL_COLOR_WRITEMASK, i, mask);
        values.assign(mask, mask + 4);
        values.push_back(glIsEnabledi(GL_BLEND, i));
        for (const GLenum name : {GL_BLEND_SRC_RGB, GL_BLEND_DST_RGB, GL_BLEND_SRC_ALPHA, GL_BLEND_DST_ALPHA,
                                  GL_BLEND_EQUATION_RGB, GL_BLEND_EQUATION_ALPHA}) {
            GLint value = 0;
            if (m_version >= 40)
                glGetIntegeri_v(name, i, &value);
            else
                glCore().getIntegerv(name, &value);
            values.push_back(static_cast<float>(value));
        }
    }

    int m_version;
    bool m_compatibility;
};

/// The host's own objects, bound everywhere, and every setting as a renderer would not like it.
class HostileHost {
public:
    HostileHost(int version, bool compatibility) {
        for (const auto rule :
             {GL_UNPACK_ROW_LENGTH, GL_UNPACK_IMAGE_HEIGHT, GL_PACK_ROW_LENGTH, GL_PACK_IMAGE_HEIGHT,
              GL_UNPACK_SKIP_ROWS, GL_PACK_SKIP_ROWS, GL_UNPACK_SKIP_PIXELS, GL_PACK_SKIP_PIXELS,
              GL_UNPACK_SKIP_IMAGES, GL_PACK_SKIP_IMAGES})
            glCore().pixelStorei(static_cast<GLenum>(rule), 5000);
        for (const auto rule :
             {GL_UNPACK_SWAP_BYTES, GL_PACK_SWAP_BYTES, GL_UNPACK_LSB_FIRST, GL_PACK_LSB_FIRST})
            glCore().pixelStorei(static_cast<GLenum>(rule), 1);
        glCore().pixelStorei(GL_UNPACK_ALIGNMENT, 8);
        glCore().pixelStorei(GL_PACK_ALIGNMENT, 8);
        bindObjects();
        for (const auto name : {GL_CULL_FACE, GL_RASTERIZER_DISCARD, GL_COLOR_LOGIC_OP, GL_PRIMITIVE_RESTART,
                                GL_POLYGON_SMOOTH, GL_CLIP_DISTANCE0, GL_CLIP_DISTANCE0 + 7, GL_DEPTH_TEST,
                                GL_STENCIL_TEST, GL_SCISSOR_TEST, GL_BLEND, GL_FRAMEBUFFER_SRGB})
            glCore().enable(static_cast<GLenum>(name));
        glPrimitiveRestartIndex(1);
        glColorMaski(0, GL_FALSE, GL_TRUE, GL_FALSE, GL_FALSE);
        glColorMaski(2, GL_TRUE, GL_FALSE, GL_TRUE, GL_FALSE);
        glBlendFuncSeparate(GL_ZERO, GL_ONE, GL_DST_COLOR, GL_ZERO);
        glBlendEquationSeparate(GL_FUNC_REVERSE_SUBTRACT, GL_MAX);
        glCore().polygonMode(GL_FRONT_AND_BACK, GL_POINT);
        glCore().viewport(3, 4, 5, 6);
        if (version >= 41) {
            const float rectangle[4] = {0.5f, 1.25f, 7.5f, 8.25f};
            glCore().viewportIndexedfv(2, rectangle);
            glDisablei(GL_SCISSOR_TEST, 1);
        }
        if (version >= 40) glCore().blendFuncSeparatei(1, GL_ONE, GL_ONE, GL_ZERO, GL_ONE);
        glDisablei(GL_BLEND, 3);
        if (compatibility) {
            glCore().enable(GL_ALPHA_TEST);
            glCore().enable(GL_POLYGON_STIPPLE);
            glCore().polygonMode(GL_BACK, GL_LINE);
            glCore().pixelTransferf(GL_RED_SCALE, 0.25f);
            glCore().pixelTransferf(GL_GREEN_BIAS, 0.5f);
            glClampColor(GL_CLAMP_FRAGMENT_COLOR, GL_TRUE);
        }
    }

private:
    void bindObjects() {
        glGenBuffers(4, m_buffers);
        constexpr GLenum kTargets[] = {GL_PIXEL_PACK_BUFFER, GL_PIXEL_UNPACK_BUFFER, GL_ARRAY_BUFFER,
                                       GL_ELEMENT_ARRAY_BUFFER};
        glGenVertexArrays(1, &m_vertexArray);
        glBindVertexArray(m_vertexArray);
        for (std::size_t i = 0; i < 4; ++i) {
            glBindBuffer(kTargets[i], m_buffers[i]);
            glBufferData(kTargets[i], 64, nullptr, GL_STATIC_DRAW);
        }
        glCore().genTextures(8, m_textures);
        glGenSamplers(8, m_samplers);
        for (GLuint i = 0; i < 8; ++i) {
            glActiveTexture(GL_TEXTURE0 + i);
            glCore().bindTexture(GL_TEXTURE_2D, m_textures[i]);
            glBindSampler(i, m_samplers[i]);
            glSamplerParameteri(m_samplers[i], GL_TEXTURE_WRAP_S, GL_CLAMP_TO_BORDER);
            glSamplerParameteri(m_samplers[i], GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
        }
        glGenFramebuffers(2, m_framebuffers);
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, m_framebuffers[0]);
        glBindFramebuffer(GL_READ_FRAMEBUFFER, m_framebuffers[1]);
        m_program = glCreateProgram();
        const GLuint shader = glCreateShader(GL_VERTEX_SHADER);
        const char* const text = "#version 330\nvoid main() { gl_Position = vec4(0); }";
        glShaderSource(shader, 1, &text, nullptr);
        glCompileShader(shader);
        glAttachShader(m_program, shader);
        glLinkProgram(m_program);
        glUseProgram(m_program);
    }

    GLuint m_buffers[4], m_vertexArray, m_textures[8], m_samplers[8], m_framebuffers[2], m_program;
};

/// Depth of field over half of a picture whose other half is hair, so that every pass draws.
Bytes rendered() {
    constexpr int kWidth = 301, kHeight = 203;
    Bytes picture = zeltest::patternRgba(kWidth, kHeight, 4), depth(64 * 48, 20),
          shape(std::size_t{4} * 1056 * 176, 255), hair(kWidth * kHeight, 0);
    for (std::size_t i = 0; i < depth.size(); ++i)
        if (i % 64 > 32) depth[i] = 220;
    std::fill_n(hair.begin(), hair.size() / 2, 255);
    DefocusCore::ZelDepthDefocusRender render;
    render.setResourcePath("", ZEL_ASSETS "/bokeh");
    render.SetBokehImage("defocus_spin", shape.data(), 1056, 176);
    render.SetDepthPlane(depth.data(), 64, 48);
    render.SetHairMaskData(hair.data(), kWidth, kHeight);
    std::srand(3);
    EXPECT_TRUE(render.Run(picture.data(), kWidth, kHeight, 0, nullptr, 0.9f, 0.5f, 80, 1.0f, true, true,
                           1.0f, 0.5f, 0.0f));
    return picture;
}

struct Kind {
    const char* name;
    bool compatibility;
};

class HostStateTest : public testing::TestWithParam<Kind> {};

TEST_P(HostStateTest, ARenderComesOutTheSameAndLeavesEverythingAsItWas) {
    const Kind& kind = GetParam();
    const zeltest::HostContext context({.compatibility = kind.compatibility});
    ASSERT_TRUE(context.isCurrent());
    ASSERT_TRUE(zellab::gl::glUsable());
    const Bytes expected = rendered();
    EXPECT_NE(expected, zeltest::patternRgba(301, 203, 4));
    GLint major = 0, minor = 0;
    glCore().getIntegerv(GL_MAJOR_VERSION, &major);
    glCore().getIntegerv(GL_MINOR_VERSION, &minor);
    const int version = 10 * major + minor;
    const StateReader reader(version, kind.compatibility);

    const HostileHost host(version, kind.compatibility);
    ASSERT_EQ(glCore().getError(), GLenum{GL_NO_ERROR});
    const State before = reader.read();
    EXPECT_EQ(rendered(), expected);
    EXPECT_EQ(reader.read(), before);
    const auto drawAndThrow = [] {
        const zellab::gl::HostState state;
        const unsigned char pixel[4] = {};
        zellab::Bokeh::Texture2D(1, 1, 3, 1, pixel).drawInto(nullptr);
    };
    EXPECT_THROW(drawAndThrow(), std::bad_function_call);
    EXPECT_EQ(reader.read(), before);
    EXPECT_EQ(glCore().getError(), GLenum{GL_NO_ERROR});
}

INSTANTIATE_TEST_SUITE_P(Profiles, HostStateTest,
                         testing::Values(Kind{"core", false}, Kind{"compatibility", true}),
                         [](const auto& kind) { return std::string(kind.param.name); });

}  // namespace
