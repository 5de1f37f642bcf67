// What a host learns about a picture that could not be drawn: Run itself tells only whether its files were
// there.
#include <gmock/gmock.h>

#include <algorithm>

#include "bokeh/shaderKeys.h"
#include "gl/glApi.h"
#include "gl/hostContext.h"
#include "shaderFile.h"
#include "support/randomImage.h"
#include "support/scratchFolder.h"
#include "support/streamCapture.h"
#include "zel_effects/zel_effects.h"

namespace {

using zeltest::Bytes;
using Render = DefocusCore::ZelDepthDefocusRender;

constexpr int kWidth = 320, kHeight = 240;

class DefocusOutcome : public testing::Test {
protected:
    DefocusOutcome() {
        Bytes shape(std::size_t{4} * 1056 * 176, 255), depth(100, 9);
        std::fill_n(depth.begin(), 50, static_cast<unsigned char>(200));
        render.setResourcePath("", ZEL_ASSETS "/bokeh");
        render.SetBokehImage("disc", shape.data(), 1056, 176);
        render.SetDepthPlane(depth.data(), 10, 10);
    }

    /// Runs in place; a picture that was not drawn must be as it was, with one line that says so.
    Render::Outcome outcomeOf(int width, int height, bool expectedResult = true) {
        const Bytes before = zeltest::randomRgba(width, height, 2);
        Bytes picture = before;
        zeltest::StreamCapture log(stderr);
        EXPECT_EQ(render.Run(picture.data(), width, height, 0, nullptr, 0.5f, 0.1f, 90, 1.0f, false, true,
                             1.0f, 0.5f, 0.0f),
                  expectedResult);
        const bool drawn = render.LastOutcome() == Render::Outcome::drawn;
        EXPECT_EQ(picture == before, !drawn);
        const std::string text = log.text();
        const std::size_t line = text.find("[ERROR  ] nothing rendered: ");
        EXPECT_EQ(line == text.npos, drawn) << text;
        EXPECT_TRUE(drawn || text.find("nothing rendered", line + 20) == text.npos) << text;
        return render.LastOutcome();
    }
    void useShaders(const std::vector<shaderpack::Shader>& shaders) {
        m_folder.write("shader.3.bin", shaderpack::packShaders(shaders));
        render.setResourcePath("", m_folder.path(".").c_str());
    }

    Render render;

private:
    const zeltest::ScratchFolder m_folder;
};

TEST_F(DefocusOutcome, EachContextIsJudgedOnItsOwn) {
    EXPECT_EQ(render.LastOutcome(), Render::Outcome::none);
    EXPECT_EQ(outcomeOf(kWidth, kHeight), Render::Outcome::noContext);
    {
        const zeltest::HostContext good({});
        ASSERT_TRUE(good.isCurrent());
        EXPECT_EQ(outcomeOf(kWidth, kHeight), Render::Outcome::drawn);
    }
    {
        const zeltest::HostContext embedded({.es = true});
        ASSERT_TRUE(embedded.isCurrent());
        EXPECT_EQ(outcomeOf(kWidth, kHeight), Render::Outcome::noContext);
    }
    const zeltest::HostContext good({});
    EXPECT_EQ(outcomeOf(kWidth, kHeight), Render::Outcome::drawn);
    EXPECT_FALSE(render.Run(nullptr, 0, 0, 0, nullptr, 0, 0, 0, 0, false, true, 0, 0, 0));
    EXPECT_EQ(render.LastOutcome(), Render::Outcome::none);
}

TEST_F(DefocusOutcome, PicturesLongerThanATextureAreNotDrawn) {
    const zeltest::HostContext context({});
    ASSERT_TRUE(context.isCurrent());
    EXPECT_EQ(outcomeOf(40000, 2), Render::Outcome::tooLarge);
    EXPECT_EQ(outcomeOf(2, 40000), Render::Outcome::tooLarge);
}

/// A driver that lost the context, by a reset or an update, takes every call and does nothing.
TEST_F(DefocusOutcome, AContextThatIsLostDrawsNothing) {
    const zeltest::HostContext context({});
    ASSERT_TRUE(context.isCurrent());
    ASSERT_EQ(outcomeOf(kWidth, kHeight), Render::Outcome::drawn);
    auto& readPixels = const_cast<zellab::gl::GlCore&>(zellab::gl::glCore()).readPixels;
    const auto whole = readPixels;
    readPixels = [](auto...) {};
    EXPECT_EQ(outcomeOf(kWidth, kHeight), Render::Outcome::noContext);
    readPixels = whole;
    EXPECT_EQ(outcomeOf(kWidth, kHeight), Render::Outcome::drawn);
}

TEST_F(DefocusOutcome, AnyShaderThatIsMissingOrDoesNotLinkIsAFailure) {
    const zeltest::HostContext context({});
    ASSERT_TRUE(context.isCurrent());
    const std::vector<shaderpack::Shader> sound = shaderpack::readPassShaders(ZEL_SHADER_SOURCES);
    useShaders(sound);
    EXPECT_EQ(outcomeOf(kWidth, kHeight), Render::Outcome::drawn);
    for (const auto& pass : {zellab::Bokeh::kDownscale, zellab::Bokeh::kRatio, zellab::Bokeh::kConvolution,
                             zellab::Bokeh::kCopy, zellab::Bokeh::kComposition}) {
        std::vector<shaderpack::Shader> shaders = sound;
        const auto one =
            std::find_if(shaders.begin(), shaders.end(), [&](const auto& s) { return s.key == pass.key; });
        one->text = "void main() { undeclared(); }";
        useShaders(shaders);
        EXPECT_EQ(outcomeOf(kWidth, kHeight), Render::Outcome::faultyShaders) << pass.file;
        shaders.erase(one);
        useShaders(shaders);
        EXPECT_EQ(outcomeOf(kWidth, kHeight), Render::Outcome::faultyShaders) << pass.file;
    }
    render.setResourcePath("", "/nonexistent");
    EXPECT_EQ(outcomeOf(kWidth, kHeight, false), Render::Outcome::faultyShaders);
}

}  // namespace
