#include "gl/shaderProgram.h"

#include <gmock/gmock.h>

#include "gl/builtinVertex.h"
#include "gl/shaderCache.h"
#include "glSupport.h"
#include "shaderFile.h"
#include "support/randomImage.h"
#include "support/scratchFolder.h"
#include "support/streamCapture.h"

namespace {

using namespace zellab::Bokeh;
using testing::HasSubstr;
using zeltest::Bytes;

class ShaderProgramTest : public zeltest::GlTest {
protected:
    /// A program whose fragment shader is `uniforms` and one assignment to the colour c at the coordinate t.
    static ShaderProgram withBody(const std::string& uniforms, const std::string& body) {
        return {std::string("#version 330\n") + kBuiltinVertex,
                "#version 330\nin vec2 textureCoordinate; out vec4 c;" + uniforms +
                    "void main() { vec2 t = textureCoordinate;" + body + "}"};
    }
    static Bytes drawn(const Texture2D& target, const ShaderProgram& program) {
        bool done = false;
        EXPECT_TRUE(target.drawInto([&] { done = program.draw(GL_LINES, 0.25f, 0.25f, 0.5f, 0.5f); }));
        EXPECT_TRUE(done);
        Bytes seen(4u * static_cast<unsigned>(target.width()) * static_cast<unsigned>(target.height()));
        EXPECT_TRUE(target.read(0, 0, target.width(), target.height(), seen.data()));
        return seen;
    }
};

/// Whatever rectangle and mode the caller names; row 0 of the memory is the bottom of the coordinates.
TEST_F(ShaderProgramTest, EveryDrawCoversTheWholeTarget) {
    const int width = 51, height = 30;
    const Bytes before(4 * width * height, 0x66);
    const Texture2D target(width, height, kOrderRgba, kTypeByte, before.data());
    const Bytes seen = drawn(target, withBody("", "c = vec4(t, 0., 1.);"));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const std::size_t i = 4 * static_cast<std::size_t>(y * width + x);
            ASSERT_NEAR(seen[i], 255 * (x + 0.5) / width, 0.51);
            ASSERT_NEAR(seen[i + 1], 255 * (y + 0.5) / height, 0.51);
            ASSERT_EQ(seen[i + 3], 255);
        }
    EXPECT_EQ(
        integer(GL_CURRENT_PROGRAM) + integer(GL_VERTEX_ARRAY_BINDING) + integer(GL_ARRAY_BUFFER_BINDING), 0);
}

TEST_F(ShaderProgramTest, EveryKindOfUniformArrives) {
    const Texture2D target(1, 1, kOrderRgba, kTypeFloat, nullptr);
    const float values[12] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    const Bytes texel = {255, 0, 51, 255};
    ShaderProgram program = withBody(
        "uniform float f; uniform vec2 v2; uniform vec3 v3; uniform vec4 v4; uniform int i; uniform float "
        "fa[3];"
        "uniform vec2 a2[3]; uniform vec3 a3[3]; uniform vec4 a4[3]; uniform sampler2D s;",
        "vec4 x = texture(s, t); c = vec4(f + 10. * v2.y + 100. * v3.z, v4.w + 10. * float(i) + 100. * fa[2],"
        "a2[2].y + 10. * a3[2].z + 100. * a4[2].w, x.r + 5. * x.b);");
    program.setFloat("f", 9)
        .setFloat("f", 1)
        .setVec2("v2", 0, 2)
        .setVec3("v3", 0, 0, 3)
        .setVec4("v4", 0, 0, 0, 4);
    program.setInt("i", 5).setFloatArray("fa", 3, values).setVec2Array("a2", 3, values);
    program.setVec3Array("a3", 3, values).setVec4Array("a4", 3, values).setFloatArray("fa", 0, values);
    program.setTexture("s", Texture2D(1, 1, kOrderRgba, kTypeByte, texel.data()), 3);
    program.setFloat("unknown", 1).setVec3Array("a3", 3, nullptr);
    const ShaderProgram other = ShaderProgram(program).setFloat("f", 0);
    float seen[4] = {};
    EXPECT_TRUE(target.drawInto([&] { program.draw(0, 0, 0, 1, 1); }));
    EXPECT_TRUE(target.read(0, 0, 1, 1, seen));
    EXPECT_THAT(seen, testing::ElementsAre(321, 354, 6 + 90 + 1200, 2));
    EXPECT_TRUE(target.drawInto([&] { other.draw(0, 0, 0, 1, 1); }));
    EXPECT_TRUE(target.read(0, 0, 1, 1, seen));
    EXPECT_EQ(seen[0], 320) << "a copy has values of its own";
}

TEST_F(ShaderProgramTest, BlendsAsAskedAndForThisDrawAlone) {
    const Bytes under = {100, 40, 0, 200};
    const Texture2D target(1, 1, kOrderRgba, kTypeByte, under.data());
    ShaderProgram program = withBody("", "c = vec4(1., 0., 1., 0.2);");
    program.setBlend(GL_ONE_MINUS_SRC_ALPHA, GL_SRC_ALPHA, GL_ONE, GL_ONE);
    const Bytes seen = drawn(target, program);
    EXPECT_NEAR(seen[0], 0.8 * 255 + 0.2 * 100, 1);
    EXPECT_NEAR(seen[1], 0.2 * 40, 1);
    EXPECT_NEAR(seen[3], 251, 1) << "alpha is summed";
    EXPECT_EQ(integer(GL_BLEND), 0);
    program.setBlend(GL_ONE, GL_ZERO, GL_ONE, GL_ZERO);
    EXPECT_EQ(drawn(target, program), (Bytes{255, 0, 255, 51}));
}

/// The error shows in the log; the program counts as made, and drawing with it harms nothing.
TEST_F(ShaderProgramTest, AFaultyShaderIsLoggedAndDrawnWithoutHarm) {
    const Texture2D target(2, 2, kOrderRgba, kTypeByte, nullptr);
    for (const char* body : {"garbage", "c = undeclared;", "\xFF\xFE("}) {
        zeltest::StreamCapture log(stderr);
        const ShaderProgram program = withBody("", body);
        EXPECT_TRUE(program.isValid());
        EXPECT_THAT(log.text(), HasSubstr("[ERROR  ] [OpenGL::CreateFragShader]\n"));
        EXPECT_THAT(log.text(), HasSubstr("[ERROR  ] [OpenGL::CreateProgram]\n"));
        target.drawInto([&] { program.draw(0, 0, 0, 1, 1); });
        while (takeError() != GL_NO_ERROR) {
        }
    }
    zeltest::StreamCapture log(stderr);
    EXPECT_TRUE(ShaderProgram("void", "void").isValid());
    EXPECT_THAT(log.text(), HasSubstr("[ERROR  ] [OpenGL::CreateVertexShader]\n"));
    EXPECT_EQ(drawn(target, withBody("", "c = vec4(1.);")), Bytes(16, 255));
}

TEST_F(ShaderProgramTest, TheCacheCompilesOnceAndTellsWhatIsMissing) {
    const zeltest::ScratchFolder scratch;
    scratch.write("shader.3.bin", shaderpack::packShaders({{7, "out vec4 c; void main() { c = vec4(1.); }"},
                                                           {9, std::string(kBuiltinVertex)}}));
    ShaderCache cache;
    ASSERT_TRUE(cache.load(scratch.path(".")));
    zeltest::StreamCapture log(stderr);
    EXPECT_FALSE(cache.program(5).isValid());
    EXPECT_FALSE(cache.program(7, 6).isValid());
    EXPECT_TRUE(cache.program(7).isValid());
    EXPECT_TRUE(cache.program(7).isValid() && cache.program(7, 9).isValid());
    EXPECT_EQ(cache.programCount(), 2u);
    ShaderProgram kept = cache.program(7);
    cache.release();
    EXPECT_EQ(cache.programCount() + cache.store().size(), 0u);
    EXPECT_EQ(
        log.text(),
        "[ERROR  ] fragment shader [00000005] not in cache\n[ERROR  ] vertex shader [00000006] not in cache\n"
        "[DEBUG  ] release shader cache\n");
    EXPECT_EQ(drawn(Texture2D(1, 1, kOrderRgba, kTypeByte, nullptr), kept), Bytes(4, 255))
        << "copies outlive it";
}

}  // namespace
