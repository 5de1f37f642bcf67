#pragma once

#include <gtest/gtest.h>

#include "gl/environment.h"
#include "gl/glApi.h"
#include "gl/utils.h"

namespace zeltest {

/// Current while it lives. Where no context can be had the tests fail: the driver that draws in software is
/// among the packages of the tests.
class CurrentContext {
public:
    CurrentContext() {
        m_holder.makeCurrent();
        m_usable = zellab::gl::Utils::initializeGlew() && m_holder.isValid();
    }
    bool usable() const { return m_usable; }

private:
    zellab::gl::EnvironmentHolder m_holder{0, nullptr, true};
    bool m_usable = false;
};

class GlTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_context.usable()) << "no OpenGL 3.3; is libgl1-mesa-dri installed?";
    }
    void TearDown() override { EXPECT_EQ(zellab::gl::glCore().getError(), GLenum{GL_NO_ERROR}); }
    /// Takes the error that a test provoked.
    static GLenum takeError() { return zellab::gl::glCore().getError(); }
    static GLint integer(GLenum name) {
        GLint value = -1;
        zellab::gl::glCore().getIntegerv(name, &value);
        return value;
    }

private:
    CurrentContext m_context;
};

}  // namespace zeltest
