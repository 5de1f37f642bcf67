#include "gl/environment.h"

#include <gmock/gmock.h>

#include <barrier>
#include <filesystem>
#include <thread>

#include "gl/glLog.h"
#include "gl/texture2D.h"
#include "gl/utils.h"
#include "glSupport.h"
#include "support/streamCapture.h"

namespace {

using namespace zellab::gl;
using zellab::Bokeh::Texture2D;

std::string g_seen;

TEST(EnvironmentLog, FiltersByLevelAndTellsTheCallback) {
    setEnvironmentLogCallback([](int level, const char* format, std::va_list arguments) {
        char text[64];
        std::vsnprintf(text, sizeof text, format, arguments);
        g_seen += std::to_string(level) + text;
    });
    std::string text;
    {
        zeltest::StreamCapture log(stdout);
        logEnvironment(kEnvironmentDebug, "silent %d", 1);
        logEnvironment(kEnvironmentError, "seen %d", 2);
        setEnvironmentLogThreshold(2);
        logEnvironment(kEnvironmentDebug, "seen %d", 3);
        setEnvironmentLogThreshold(6);
        logEnvironment(kEnvironmentError, "silent %d", 4);
        text = log.text();
    }
    setEnvironmentLogThreshold(3);
    setEnvironmentLogCallback(nullptr);
    EXPECT_EQ(text, "<[zelgl]   ERROR:> seen 2\n<[zelgl]   DEBUG:> seen 3\n");
    EXPECT_EQ(g_seen, "5seen 22seen 3");
}

TEST(Utils, ReadsTheShadingLanguageVersion) {
    const struct {
        const char* text;
        int version;
    } cases[] = {{"4.60.0", 460}, {"3.30 vendor 1.2", 330}, {"OpenGL ES GLSL ES 3.00", 300},
                 {"4", 400},      {"no digit here", -1},    {"", -1},
                 {nullptr, -1}};
    for (const auto& c : cases)
        EXPECT_EQ(Utils::parseShadingLanguageVersion(c.text), c.version) << (c.text ? c.text : "null");
}

TEST(GlVersion, OnlyDesktopContextsFrom33OnWillDo) {
    for (const char* text : {"3.3", "3.3 (Core Profile) x 22.3", "3.10.1", "4.0.0", "10.0"})
        EXPECT_TRUE(isOpenGl33(text)) << text;
    for (const char* text :
         {"3.2.9", "3", "2.1 x 22.3", "1.4 (3.3)", "OpenGL ES 3.2 x", "OpenGL ES-CM 4.4", "", "x"})
        EXPECT_FALSE(isOpenGl33(text)) << text;
    EXPECT_FALSE(isOpenGl33(nullptr));
}

TEST(Environment, ABorrowedContextStaysCurrentAndAlive) {
    const zeltest::CurrentContext host;
    ASSERT_TRUE(host.usable());
    const auto before = zellab::platform::currentGlContext();
    {
        const EnvironmentHolder borrowed = EnvironmentHolder::current();
        EXPECT_TRUE(borrowed.isValid() && borrowed.get()->isBorrowed() && borrowed.get()->hasGlsl330());
        EXPECT_EQ(borrowed.get()->hasGlsl330(), Utils::shadingLanguageVersion() >= 330);
    }
    EXPECT_TRUE(checkGlEnv());
    EXPECT_EQ(zellab::platform::currentGlContext().context, before.context);
    unsigned char byte = 9;
    const Texture2D texture(1, 1, 1, 1, &byte);
    EXPECT_TRUE(texture.read(0, 0, 1, 1, &byte));
    EXPECT_EQ(byte, 9);
}

std::ptrdiff_t openFiles() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

TEST(Environment, TwoHundredContextsLeaveNothingBehind) {
    { const zeltest::CurrentContext warmUp; }
    const std::ptrdiff_t before = openFiles();
    for (int i = 0; i < 200; ++i) {
        const zeltest::CurrentContext context;
        ASSERT_TRUE(context.usable()) << i;
        const Texture2D texture(8, 8, 3, 1, nullptr);
        ASSERT_FALSE(texture.isEmpty());
    }
    EXPECT_EQ(openFiles(), before);
    EXPECT_EQ(zellab::platform::currentGlContext().context, nullptr);
}

/// Names of a context that is gone must not reach the next one: it gives out the same names.
TEST(Environment, ATextureMayOutliveItsContext) {
    Texture2D late;
    {
        const zeltest::CurrentContext context;
        ASSERT_TRUE(context.usable());
        late = Texture2D(4, 4, 3, 1, nullptr);
    }
    unsigned char pixel[4];
    EXPECT_FALSE(late.read(0, 0, 1, 1, pixel));
    EXPECT_FALSE(late.write(0, 0, 1, 1, pixel));
    EXPECT_EQ(late.bind(), 0u);
}

/// The first round of a process counts most: the first thread writes down what the display can do, which the
/// others read. The thread sanitizer sees where nothing keeps them apart.
TEST(Environment, ThreadsThatMakeContextsAtOnceDoNotMeet) {
    constexpr unsigned char kThreads = 4;
    std::barrier all(kThreads);
    const auto work = [&all](unsigned char value) {
        for (int round = 0; round < 10; ++round) {
            all.arrive_and_wait();
            const zeltest::CurrentContext context;
            EXPECT_TRUE(context.usable()) << "thread " << int{value} << ", round " << round;
            std::vector<unsigned char> pixels(33 * 7, value), seen(pixels.size());
            const Texture2D texture(33, 7, 1, 1, pixels.data());
            EXPECT_TRUE(texture.read(0, 0, 33, 7, seen.data()));
            EXPECT_EQ(seen, pixels);
        }
    };
    std::vector<std::jthread> threads;
    for (unsigned char value = 0; value < kThreads; ++value) threads.emplace_back(work, value);
}

}  // namespace
