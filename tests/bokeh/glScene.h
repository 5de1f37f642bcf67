#pragma once

#include <gtest/gtest.h>

#include <string>

#include "bokeh/passes.h"
#include "bokehCase.h"
#include "gl/environment.h"
#include "gl/utils.h"

namespace zeltest {

/// A test with a context of its own and the built shaders.
class GlScene : public testing::Test {
protected:
    void SetUp() override {
        m_environment.makeCurrent();
        if (!m_environment.isValid() || !zellab::gl::Utils::initializeGlew()) GTEST_SKIP() << "no OpenGL here";
        ASSERT_TRUE(cache.load(ZEL_ASSETS "/bokeh"));
    }
    void TearDown() override {
        cache.release();
        zellab::gl::EnvironmentHolder::doneCurrent();
    }

    zellab::Bokeh::ShaderCache cache;

private:
    zellab::gl::EnvironmentHolder m_environment{0, nullptr, true};
};

inline zellab::Bokeh::Texture2D rgbaTexture(int width, int height, const unsigned char* pixels) {
    return {width, height, zellab::Bokeh::kOrderRgba, zellab::Bokeh::kTypeByte, pixels};
}
inline zellab::Bokeh::Texture2D planeTexture(int width, int height, const unsigned char* pixels) {
    // Rows of one byte a pixel need not be a multiple of OpenGL's default alignment of 4: see the sizes used.
    return {width, height, zellab::Bokeh::kOrderRed, zellab::Bokeh::kTypeByte, pixels};
}

inline Bytes readRgba(const zellab::Bokeh::Texture2D& texture) {
    Bytes pixels(static_cast<std::size_t>(texture.width()) * static_cast<std::size_t>(texture.height()) * 4);
    if (!texture.read(0, 0, texture.width(), texture.height(), pixels.data())) pixels.clear();
    return pixels;
}

/// Largest and mean difference of two pictures' bytes.
struct Difference {
    int largest = 0;
    double mean = 0;
};
inline Difference differenceOf(const Bytes& a, const Bytes& b) {
    Difference d;
    if (a.size() != b.size() || a.empty()) return {256, 256};
    for (std::size_t i = 0; i < a.size(); ++i) {
        const int apart = std::abs(int{a[i]} - int{b[i]});
        d.largest = std::max(d.largest, apart);
        d.mean += apart;
    }
    d.mean /= static_cast<double>(a.size());
    return d;
}

}  // namespace zeltest
