// Machines without OpenGL, each played by a process of its own whose environment hides one part of it.
#include <gmock/gmock.h>

#include <cstdlib>

#include "gl/environment.h"
#include "gl/glApi.h"
#include "gl/shaderCache.h"
#include "gl/utils.h"
#include "support/environment.h"
#include "support/scratchFolder.h"
#include "support/streamCapture.h"

namespace {

using namespace zellab::gl;
using namespace zellab::Bokeh;

struct Missing {
    const char *what, *variable, *value, *failedCall;
};

/// Everything that a render does, in its order. Ends the process, with 0 where each step failed as it should.
void renderWithoutOpenGl(const char* failedCall) {
    bool failed = true;
    std::string log;
    {
        zeltest::StreamCapture output(stdout);
        const EnvironmentHolder holder(0, nullptr, true);
        holder.makeCurrent();
        failed = failed && !Utils::initializeGlew() && !holder.isValid() && !checkGlEnv() && !glUsable();
        log = output.text();
    }
    failed = failed && log.find(std::string("EGL ") + failedCall + " failed !\n") != std::string::npos;
    for (const char* line :
         {"Initialize off-screen environment failed !", "Utils::glew init error: Missing GL version",
          "Get current environment failed !"})
        failed = failed && log.find(line) != std::string::npos;
    {
        unsigned char pixel[4] = {};
        Texture2D texture(1, 1, kOrderRgba, kTypeByte, pixel);
        ShaderCache cache;
        ShaderProgram program("", "");
        failed = failed && texture.isEmpty() && texture.setMinFilter(GL_LINEAR).bind() == 0;
        failed = failed && !texture.write(0, 0, 1, 1, pixel) && !texture.read(0, 0, 1, 1, pixel);
        failed = failed && !texture.drawInto([] { std::abort(); });
        failed = failed && !cache.program(1).isValid();
        failed = failed && !program.setFloat("x", 1).setTexture("t", texture, 0).draw(0, 0, 0, 1, 1);
    }
    std::exit(failed ? 0 : 1);
}

class NoDriverDeathTest : public testing::TestWithParam<Missing> {};

TEST_P(NoDriverDeathTest, EveryStepFailsWithItsLineAndNoneCrashes) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const Missing& missing = GetParam();
    const zeltest::Environment hidden(missing.variable, missing.value);
    EXPECT_EXIT(renderWithoutOpenGl(missing.failedCall), testing::ExitedWithCode(0),
                "fail to read Texture2D: mem is empty\n.*not allow draw: fbo is empty\n"
                ".*fragment shader .00000001. not in cache");
}

INSTANTIATE_TEST_SUITE_P(Parts, NoDriverDeathTest,
                         testing::Values(Missing{"Driver", "LIBGL_DRIVERS_PATH", "/nonexistent",
                                                 "eglInitialize"},
                                         Missing{"Vendor", "__EGL_VENDOR_LIBRARY_FILENAMES",
                                                 "/nonexistent.json", "eglGetDisplay"}),
                         [](const auto& part) { return std::string(part.param.what); });

/// No EGL at all: a file that is no library stands before the system's.
TEST(NoEglDeathTest, WithoutTheLibraryItselfEveryStepFails) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const zeltest::ScratchFolder scratch;
    scratch.write("libEGL.so.1", {'n', 'o'});
    const zeltest::Environment path("LD_LIBRARY_PATH", scratch.path("").c_str());
    EXPECT_EXIT(renderWithoutOpenGl("dlopen libEGL.so.1"), testing::ExitedWithCode(0), "mem is empty");
}

}  // namespace
